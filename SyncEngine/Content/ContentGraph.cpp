#include "SyncEngine/Content/ContentGraph.h"

#include "KestrinCore/DecimalInteger.h"
#include "SyncEngine/Content/ProductPageContent.h"

namespace kestrin::ContentGraph {
namespace {

std::optional<std::string> unlessEmpty(std::string value) {
    if (value.empty()) return std::nullopt;
    return value;
}

template <class Content>
auto& member(AppInfoAttribute attribute, Content& info) {
    switch (attribute) {
        case AppInfoAttribute::primaryCategory:
            return info.primaryCategory;
        case AppInfoAttribute::secondaryCategory:
            return info.secondaryCategory;
    }
    __builtin_unreachable();
}

template <class Content>
auto& member(VersionAttribute attribute, Content& version) {
    switch (attribute) {
        case VersionAttribute::versionString:
            return version.versionString;
        case VersionAttribute::copyright:
            return version.copyright;
        case VersionAttribute::releaseType:
            return version.releaseType;
    }
    __builtin_unreachable();
}

void flattenApp(const AppListing& app, Flattening& values) {
    for (const auto attribute : allCases<AppInfoAttribute>) {
        values.add(ContentKey::AppInfo{attribute}, member(attribute, app.info).value_or(""));
    }
    for (const auto& [locale, fields] : app.locales) {
        for (const auto& [field, text] : fields.values()) {
            values.add(ContentKey::AppInfoLocale{locale, field}, text);
        }
    }
}

void flattenPlatform(const StorePlatform& platform, const PlatformListing& listing, Flattening& values) {
    for (const auto attribute : allCases<VersionAttribute>) {
        values.add(ContentKey::Version{platform, attribute}, member(attribute, listing.version).value_or(""));
    }
    for (const auto& [locale, fields] : listing.locales) {
        for (const auto& [field, text] : fields.values()) {
            values.add(ContentKey::VersionLocale{platform, locale, field}, text);
        }
    }
    for (const auto attribute : allCases<ReviewAttribute>) {
        values.add(ContentKey::Review{platform, attribute},
                   reviewValue(attribute, listing.review).value_or(""));
    }
    for (const auto& [locale, slots] : listing.media) {
        for (const auto& [slot, items] : slots) {
            values.add(ContentKey::Placements{platform, locale, slot}, mediaValue(items));
        }
    }
}

std::string read(const ContentKey::AppInfo& key, const Project& project) {
    return member(key.attribute, project.app.info).value_or("");
}

std::string read(const ContentKey::AppInfoLocale& key, const Project& project) {
    return Texts::fields(project.app.locales, key.locale)[key.field];
}

std::string read(const ContentKey::Version& key, const Project& project) {
    return member(key.attribute, project[key.platform].version).value_or("");
}

std::string read(const ContentKey::VersionLocale& key, const Project& project) {
    return Texts::fields(project[key.platform].locales, key.locale)[key.field];
}

std::string read(const ContentKey::Placements& key, const Project& project) {
    return mediaValue(Media::items(project[key.platform].media, key.locale, key.slot));
}

std::string read(const ContentKey::Review& key, const Project& project) {
    return reviewValue(key.attribute, project[key.platform].review).value_or("");
}

void write(std::string value, const ContentKey::AppInfo& key, Project& project) {
    member(key.attribute, project.app.info) = unlessEmpty(std::move(value));
}

void write(std::string value, const ContentKey::AppInfoLocale& key, Project& project) {
    Texts::setField(project.app.locales, key.locale, key.field, std::move(value));
}

void write(std::string value, const ContentKey::Version& key, Project& project) {
    member(key.attribute, project.platforms[key.platform].version) = unlessEmpty(std::move(value));
}

void write(std::string value, const ContentKey::VersionLocale& key, Project& project) {
    Texts::setField(project.platforms[key.platform].locales, key.locale, key.field, std::move(value));
}

void write(std::string value, const ContentKey::Placements& key, Project& project) {
    auto& media = project.platforms[key.platform].media;
    Media::setItems(media, key.locale, key.slot,
                    mediaItems(value, Media::items(media, key.locale, key.slot)));
}

void write(std::string value, const ContentKey::Review& key, Project& project) {
    auto& review = project.platforms[key.platform].review;
    auto text = unlessEmpty(std::move(value));
    switch (key.attribute) {
        case ReviewAttribute::contactFirstName:
            review.contactFirstName = std::move(text);
            return;
        case ReviewAttribute::contactLastName:
            review.contactLastName = std::move(text);
            return;
        case ReviewAttribute::contactPhone:
            review.contactPhone = std::move(text);
            return;
        case ReviewAttribute::contactEmail:
            review.contactEmail = std::move(text);
            return;
        case ReviewAttribute::demoAccountName:
            review.demoAccountName = std::move(text);
            return;
        case ReviewAttribute::notes:
            review.notes = std::move(text);
            return;
        case ReviewAttribute::demoAccountRequired:
            review.demoAccountRequired = text ? std::optional(*text == "true") : std::nullopt;
            return;
    }
}

}  // namespace

FlatValues flatten(const Project& project) {
    return flatten(project.app, project.platforms, project.pages, project.experiments);
}

FlatValues flatten(const AppListing& app, const std::map<StorePlatform, PlatformListing>& platforms,
                   const std::map<Slug, CustomProductPage>& pages,
                   const std::map<Slug, Experiment>& experiments) {
    Flattening values;
    flattenApp(app, values);
    for (const auto& [platform, listing] : platforms) flattenPlatform(platform, listing, values);
    flattenProductPages(pages, experiments, values);
    return std::move(values).take();
}

std::string value(const ContentKey& key, const Project& project) {
    if (auto text = productPageValue(key, project)) return *std::move(text);
    return std::visit(
        [&]<class Case>(const Case& address) {
            if constexpr (ContentKey::isProductPageCase<Case>)
                return std::string();
            else
                return read(address, project);
        },
        key.kind());
}

void set(std::string value, const ContentKey& key, Project& project) {
    if (setProductPageValue(value, key, project)) return;
    std::visit(
        [&]<class Case>(const Case& address) {
            if constexpr (!ContentKey::isProductPageCase<Case>) write(std::move(value), address, project);
        },
        key.kind());
}

void copy(const ContentKey& key, const Project& source, Project& destination) {
    if (copyProductPageMedia(key, source, destination)) return;
    if (const auto* placements = key.as<ContentKey::Placements>()) {
        const auto& [platform, locale, slot] = *placements;
        Media::setItems(destination.platforms[platform].media, locale, slot,
                        Media::items(source[platform].media, locale, slot));
        return;
    }
    set(value(key, source), key, destination);
}

std::string mediaValue(const MediaItems& items) {
    std::size_t size = 0;
    for (const auto& item : items) {
        const auto [prefix, rest] = item.tokenPieces();
        size += prefix.size() + rest.size() + 1;
    }
    std::string lines;
    lines.reserve(size);
    for (const auto& item : items) {
        const auto [prefix, rest] = item.tokenPieces();
        if (&item != &items.front()) lines += '\n';
        lines.append(prefix).append(rest);
    }
    return lines;
}

std::optional<std::string> reviewValue(ReviewAttribute attribute, const ReviewDetailContent& review) {
    switch (attribute) {
        case ReviewAttribute::contactFirstName:
            return review.contactFirstName;
        case ReviewAttribute::contactLastName:
            return review.contactLastName;
        case ReviewAttribute::contactPhone:
            return review.contactPhone;
        case ReviewAttribute::contactEmail:
            return review.contactEmail;
        case ReviewAttribute::demoAccountName:
            return review.demoAccountName;
        case ReviewAttribute::notes:
            return review.notes;
        case ReviewAttribute::demoAccountRequired:
            if (!review.demoAccountRequired) return std::nullopt;
            return flagValue(review.demoAccountRequired);
    }
    __builtin_unreachable();
}

std::optional<std::int64_t> trafficProportion(std::string_view value) {
    return decimalInteger(value);
}

}  // namespace kestrin::ContentGraph
