#include "SyncEngine/Pull/PullService.h"

#include <map>
#include <string_view>
#include <unordered_map>

#include "ASCKit/Resources/Apps.h"
#include "ASCKit/Resources/AttributeReading.h"
#include "SyncEngine/Pull/AssetsSeen.h"
#include "SyncEngine/Pull/CurrentVersion.h"

namespace kestrin {
namespace {

constexpr int kForbidden = 403;
constexpr int kNotFound = 404;

// A key may not have the right to see pages or tests, and an app may not have any: both are none.
template <class Read>
auto listOrNone(Read&& read) -> decltype(read()) {
    try {
        return read();
    } catch (const ASCError& error) {
        const auto* http = error.as<ASCError::HTTP>();
        if (!http || (http->status != kForbidden && http->status != kNotFound)) throw;
        return {};
    }
}

std::map<std::string, std::vector<ASCAppStoreVersion>> byPlatform(
    const std::vector<ASCAppStoreVersion>& versions) {
    std::map<std::string, std::vector<ASCAppStoreVersion>> groups;
    for (const auto& version : versions) groups[version.platform].push_back(version);
    return groups;
}

// A locale without media has no entry in the content, whose slots are never empty, and an empty one in the ids.
void store(PullService::Slots slots, const StoreLocale& locale, LocalizedMedia& media,
           PlacementIDs& placements) {
    if (!slots.items.empty()) media.insert_or_assign(locale, std::move(slots.items));
    placements.insert_or_assign(locale, std::move(slots.ids));
}

// The file names of the assets that a reply includes: nearly always all that its placements name.
std::unordered_map<std::string_view, std::string_view> fileNames(
    const std::vector<ASCLibraryAsset>& included) {
    std::unordered_map<std::string_view, std::string_view> names;
    names.reserve(included.size());
    for (const auto& asset : included) names.insert_or_assign(asset.id, asset.fileName);
    return names;
}

}  // namespace

const std::set<std::string> PullService::finishedExperimentStates = {"COMPLETED", "STOPPED"};

RemoteListing PullService::fetch(const std::string& appID, ProductPageSlugs slugs) const {
    RemoteListing listing;
    listing.appID = appID;
    const auto app = ASC::appWithID(client_, appID);
    if (app && app->primaryLocale) listing.primaryLocale = StoreLocale{*app->primaryLocale};
    fetchAppInfo(appID, listing);
    AssetsSeen assets(listing.assets);
    fetchVersions(appID, listing, assets);
    fetchPages(appID, slugs, listing, assets);
    fetchExperiments(appID, slugs, listing, assets);
    assets.finish();
    return listing;
}

void PullService::fetchAppInfo(const std::string& appID, RemoteListing& listing) const {
    const auto info = CurrentVersion::current(ASC::appInfos(client_, appID));
    if (!info) return;
    listing.app.info.primaryCategory = info->primaryCategoryID;
    listing.app.info.secondaryCategory = info->secondaryCategoryID;
    listing.ids.appInfoID = info->id;
    listing.ids.appInfoState = info->state;
    for (const auto& localization : ASC::appInfoLocalizations(client_, info->id)) {
        const StoreLocale locale{localization.locale};
        Texts::setFields(listing.app.locales, locale, fields(ListingFields::appInfo, localization));
        listing.ids.appInfoLocalizations[locale] = localization.id;
    }
}

void PullService::fetchVersions(const std::string& appID, RemoteListing& listing, AssetsSeen& assets) const {
    for (const auto& [platform, versions] : byPlatform(ASC::appStoreVersions(client_, appID))) {
        if (const auto version = CurrentVersion::currentVersion(versions))
            fetchVersion(*version, listing, assets);
    }
}

void PullService::fetchVersion(const ASCAppStoreVersion& version, RemoteListing& listing,
                               AssetsSeen& assets) const {
    PlatformListing content;
    content.version.versionString = version.versionString;
    content.version.copyright = version.copyright;
    content.version.releaseType = version.releaseType;
    RemoteVersion remote;
    remote.id = version.id;
    remote.state = version.state.value_or("");
    for (const auto& localization : ASC::appStoreVersionLocalizations(client_, version.id)) {
        const StoreLocale locale{localization.locale};
        Texts::setFields(content.locales, locale, fields(ListingFields::version, localization));
        remote.localizations[locale] = localization.id;
        store(placements({PlacementParent::Kind::versionLocalization, localization.id}, assets), locale,
              content.media, remote.placements);
    }
    if (const auto detail = ASC::reviewDetail(client_, version.id)) {
        content.review = review(*detail);
        remote.reviewDetailID = detail->id;
    }
    remote.buildID = ASC::attachedBuildID(client_, version.id);
    const StorePlatform platform{version.platform};
    listing.platforms.insert_or_assign(platform, std::move(content));
    listing.ids.versions.insert_or_assign(platform, std::move(remote));
}

void PullService::fetchProductPages(const std::string& appID, ProductPageSlugs& slugs,
                                    RemoteListing& listing) const {
    AssetsSeen assets(listing.assets);
    fetchPages(appID, slugs, listing, assets);
    fetchExperiments(appID, slugs, listing, assets);
    assets.finish();
}

void PullService::fetchPages(const std::string& appID, ProductPageSlugs& slugs, RemoteListing& listing,
                             AssetsSeen& assets) const {
    for (const auto& page : listOrNone([&] { return ASC::customProductPages(client_, appID); })) {
        const auto version =
            CurrentVersion::currentPageVersion(ASC::customProductPageVersions(client_, page.id));
        if (version) fetchPage(page, *version, slugs.pages.slug(page.id, page.name), listing, assets);
    }
}

void PullService::fetchPage(const ASCCustomProductPage& page, const ASCCustomProductPageVersion& version,
                            const Slug& slug, RemoteListing& listing, AssetsSeen& assets) const {
    CustomProductPage content;
    content.name = page.name;
    content.visible = page.visible;
    content.deepLink = version.deepLink;
    RemotePage remote;
    remote.id = page.id;
    remote.url = page.url;
    remote.versionID = version.id;
    remote.versionState = version.state;
    for (const auto& localization : ASC::customProductPageLocalizations(client_, version.id)) {
        const StoreLocale locale{localization.locale};
        content.locales.push_back(locale);
        const auto& text = localization.promotionalText;
        if (text && !text->empty()) content.promotionalText[locale] = *text;
        remote.localizations[locale] = localization.id;
        store(placements({PlacementParent::Kind::customPageLocalization, localization.id}, assets), locale,
              content.media, remote.placements);
    }
    listing.pages.insert_or_assign(slug, CustomProductPage::made(std::move(content)));
    listing.ids.pages.insert_or_assign(slug, std::move(remote));
}

void PullService::fetchExperiments(const std::string& appID, ProductPageSlugs& slugs, RemoteListing& listing,
                                   AssetsSeen& assets) const {
    for (const auto& experiment : listOrNone([&] { return ASC::experiments(client_, appID); })) {
        if (finishedExperimentStates.contains(experiment.state)) continue;
        const auto slug = slugs.experiments.slug(experiment.id, experiment.name);
        auto& content = listing.experiments[slug];
        content.name = experiment.name;
        if (experiment.platform) content.platform = StorePlatform{*experiment.platform};
        content.trafficProportion = experiment.trafficProportion;
        auto& remote = listing.ids.experiments[slug];
        remote.id = experiment.id;
        remote.state = experiment.state;
        auto treatmentSlugs = slugs.treatments(slug);
        for (const auto& treatment : ASC::treatments(client_, experiment.id)) {
            const auto treatmentSlug = treatmentSlugs.slug(treatment.id, treatment.name);
            fetchTreatment(treatment, content.treatments[treatmentSlug], remote.treatments[treatmentSlug],
                           assets);
        }
    }
}

void PullService::fetchTreatment(const ASCTreatment& treatment, Treatment& content, RemoteTreatment& remote,
                                 AssetsSeen& assets) const {
    content.name = treatment.name;
    content.appIconName = treatment.appIconName;
    remote.id = treatment.id;
    for (const auto& localization : ASC::treatmentLocalizations(client_, treatment.id)) {
        const StoreLocale locale{localization.locale};
        content.locales.push_back(locale);
        remote.localizations[locale] = localization.id;
        store(placements({PlacementParent::Kind::treatmentLocalization, localization.id}, assets), locale,
              content.media, remote.placements);
    }
    content = Treatment::made(std::move(content));
}

PullService::Slots PullService::placements(const PlacementParent& parent, RemoteListing& listing) const {
    AssetsSeen assets(listing.assets);
    auto slots = placements(parent, assets);
    assets.finish();
    return slots;
}

PullService::Slots PullService::placements(const PlacementParent& parent, AssetsSeen& assets) const {
    auto list = ASC::placements(client_, parent);
    const auto included = fileNames(list.assets);
    Slots slots;
    for (auto& placement : list.placements) {
        if (!placement.assetID) continue;
        const PlacementSlot slot{placement.group, placement.type};
        const auto name = included.find(*placement.assetID);
        auto fileName =
            name == included.end() ? assets.fileName(*placement.assetID) : std::string(name->second);
        slots.items[slot].push_back(MediaItem::remote(*std::move(placement.assetID), std::move(fileName)));
        slots.ids[slot.description()].push_back(std::move(placement.id));
    }
    for (auto& asset : list.assets) assets.add(std::move(asset));
    return slots;
}

LocalizedFields PullService::fields(std::span<const ListingField> keys, const ASCLocalization& localization) {
    LocalizedFields fields;
    for (const auto field : keys) {
        if (auto text = localization.string(rawValue(field))) fields.set(field, *std::move(text));
    }
    return fields;
}

ReviewDetailContent PullService::review(const ASCReviewDetail& detail) {
    const auto text = [&](const char* name) {
        auto value = AttributeReading::text(detail.attributes, name);
        return value && value->empty() ? std::nullopt : value;
    };
    ReviewDetailContent review;
    review.contactFirstName = text("contactFirstName");
    review.contactLastName = text("contactLastName");
    review.contactPhone = text("contactPhone");
    review.contactEmail = text("contactEmail");
    review.demoAccountRequired = AttributeReading::boolean(detail.attributes, "demoAccountRequired");
    review.demoAccountName = text("demoAccountName");
    review.notes = text("notes");
    return review;
}

std::size_t PullService::estimatedRequests(const RemoteListing& listing) {
    std::size_t requests = 6;
    for (const auto& [platform, version] : listing.ids.versions) requests += 3 + version.localizations.size();
    for (const auto& [slug, page] : listing.ids.pages) requests += 2 + page.localizations.size();
    for (const auto& [slug, experiment] : listing.ids.experiments) {
        requests += 1;
        for (const auto& [name, treatment] : experiment.treatments)
            requests += 1 + treatment.localizations.size();
    }
    return requests;
}

}  // namespace kestrin
