#include "SyncEngine/Content/ProductPageContent.h"

#include <algorithm>

#include "KestrinCore/MapLookup.h"
#include "KestrinCore/Split.h"
#include "KestrinCore/UnicodeText.h"

namespace kestrin::ContentGraph {
namespace {

template <class SomeProject>
auto* findTreatment(SomeProject& project, const Slug& experiment, const Slug& treatment) {
    auto* parent = valueIn(project.experiments, experiment);
    return parent ? valueIn(parent->treatments, treatment) : nullptr;
}

Treatment& madeTreatment(Project& project, const Slug& experiment, const Slug& treatment) {
    return project.experiments[experiment].treatments[treatment];
}

void flattenPage(const Slug& slug, const CustomProductPage& page, Flattening& values) {
    values.add(ContentKey::Page{slug, PageAttribute::name}, page.name);
    values.add(ContentKey::Page{slug, PageAttribute::visible}, flagValue(page.visible));
    values.add(ContentKey::Page{slug, PageAttribute::deepLink}, page.deepLink.value_or(""));
    for (const auto& [locale, text] : page.promotionalText) {
        values.add(ContentKey::PagePromotionalText{slug, locale}, text);
    }
    for (const auto& [locale, slots] : page.media) {
        for (const auto& [slot, items] : slots) {
            values.add(ContentKey::PagePlacements{slug, locale, slot}, mediaValue(items));
        }
    }
}

void flattenTreatment(const Slug& experiment, const Slug& slug, const Treatment& treatment,
                      Flattening& values) {
    values.add(ContentKey::Treatment{experiment, slug, TreatmentAttribute::name}, treatment.name);
    values.add(ContentKey::Treatment{experiment, slug, TreatmentAttribute::appIconName},
               treatment.appIconName.value_or(""));
    for (const auto& [locale, slots] : treatment.media) {
        for (const auto& [slot, items] : slots) {
            values.add(ContentKey::TreatmentPlacements{experiment, slug, locale, slot}, mediaValue(items));
        }
    }
}

std::string proportionValue(std::optional<std::int64_t> proportion) {
    return proportion ? std::to_string(*proportion) : std::string();
}

void flattenExperiment(const Slug& slug, const Experiment& experiment, Flattening& values) {
    values.add(ContentKey::Experiment{slug, ExperimentAttribute::name}, experiment.name);
    values.add(ContentKey::Experiment{slug, ExperimentAttribute::platform}, experiment.platform.rawValue);
    values.add(ContentKey::Experiment{slug, ExperimentAttribute::trafficProportion},
               proportionValue(experiment.trafficProportion));
    for (const auto& [treatmentSlug, treatment] : experiment.treatments) {
        flattenTreatment(slug, treatmentSlug, treatment, values);
    }
}

std::string read(const ContentKey::Page& key, const Project& project) {
    const auto* page = valueIn(project.pages, key.page);
    if (!page) return {};
    switch (key.attribute) {
        case PageAttribute::name:
            return page->name;
        case PageAttribute::visible:
            return flagValue(page->visible);
        case PageAttribute::deepLink:
            return page->deepLink.value_or("");
    }
    __builtin_unreachable();
}

std::string read(const ContentKey::PagePromotionalText& key, const Project& project) {
    const auto* page = valueIn(project.pages, key.page);
    return page ? valueOrEmpty(page->promotionalText, key.locale) : std::string();
}

std::string read(const ContentKey::PagePlacements& key, const Project& project) {
    const auto* page = valueIn(project.pages, key.page);
    return page ? mediaValue(Media::items(page->media, key.locale, key.slot)) : std::string();
}

std::string read(const ContentKey::Experiment& key, const Project& project) {
    const auto* experiment = valueIn(project.experiments, key.experiment);
    if (!experiment) return {};
    switch (key.attribute) {
        case ExperimentAttribute::name:
            return experiment->name;
        case ExperimentAttribute::platform:
            return experiment->platform.rawValue;
        case ExperimentAttribute::trafficProportion:
            return proportionValue(experiment->trafficProportion);
    }
    __builtin_unreachable();
}

std::string read(const ContentKey::Treatment& key, const Project& project) {
    const auto* treatment = findTreatment(project, key.experiment, key.treatment);
    if (!treatment) return {};
    switch (key.attribute) {
        case TreatmentAttribute::name:
            return treatment->name;
        case TreatmentAttribute::appIconName:
            return treatment->appIconName.value_or("");
    }
    __builtin_unreachable();
}

std::string read(const ContentKey::TreatmentPlacements& key, const Project& project) {
    const auto* treatment = findTreatment(project, key.experiment, key.treatment);
    return treatment ? mediaValue(Media::items(treatment->media, key.locale, key.slot)) : std::string();
}

void clear(const ContentKey::Page& key, Project& project) {
    auto* page = valueIn(project.pages, key.page);
    if (!page) return;
    switch (key.attribute) {
        case PageAttribute::name:
            project.pages.erase(key.page);
            return;
        case PageAttribute::visible:
            page->visible.reset();
            return;
        case PageAttribute::deepLink:
            page->deepLink.reset();
            return;
    }
}

void clear(const ContentKey::PagePromotionalText& key, Project& project) {
    if (auto* page = valueIn(project.pages, key.page)) page->promotionalText.erase(key.locale);
}

void clear(const ContentKey::PagePlacements& key, Project& project) {
    if (auto* page = valueIn(project.pages, key.page)) Media::setItems(page->media, key.locale, key.slot, {});
}

void clear(const ContentKey::Experiment& key, Project& project) {
    auto* experiment = valueIn(project.experiments, key.experiment);
    if (!experiment) return;
    switch (key.attribute) {
        case ExperimentAttribute::name:
            project.experiments.erase(key.experiment);
            return;
        case ExperimentAttribute::platform:
            experiment->platform = StorePlatform::iOS;
            return;
        case ExperimentAttribute::trafficProportion:
            experiment->trafficProportion.reset();
            return;
    }
}

void clear(const ContentKey::Treatment& key, Project& project) {
    auto* treatment = findTreatment(project, key.experiment, key.treatment);
    if (!treatment) return;
    switch (key.attribute) {
        case TreatmentAttribute::name:
            project.experiments.at(key.experiment).treatments.erase(key.treatment);
            return;
        case TreatmentAttribute::appIconName:
            treatment->appIconName.reset();
            return;
    }
}

void clear(const ContentKey::TreatmentPlacements& key, Project& project) {
    if (auto* treatment = findTreatment(project, key.experiment, key.treatment)) {
        Media::setItems(treatment->media, key.locale, key.slot, {});
    }
}

// A CustomProductPage or Treatment: the owner of both media and a list of locales.
template <class Owner>
void store(MediaItems items, const StoreLocale& locale, const PlacementSlot& slot, Owner& owner) {
    if (!items.empty()) owner.locales = adding(locale, std::move(owner.locales));
    Media::setItems(owner.media, locale, slot, std::move(items));
}

template <class Owner>
void storeTokens(const std::string& value, const StoreLocale& locale, const PlacementSlot& slot,
                 Owner& owner) {
    store(mediaItems(value, Media::items(owner.media, locale, slot)), locale, slot, owner);
}

void write(const std::string& value, const ContentKey::Page& key, Project& project) {
    auto& page = project.pages[key.page];
    switch (key.attribute) {
        case PageAttribute::name:
            page.name = value;
            return;
        case PageAttribute::visible:
            page.visible = value == "true";
            return;
        case PageAttribute::deepLink:
            page.deepLink = value;
            return;
    }
}

void write(const std::string& value, const ContentKey::PagePromotionalText& key, Project& project) {
    auto& page = project.pages[key.page];
    page.promotionalText.insert_or_assign(key.locale, value);
    page.locales = adding(key.locale, std::move(page.locales));
}

void write(const std::string& value, const ContentKey::PagePlacements& key, Project& project) {
    storeTokens(value, key.locale, key.slot, project.pages[key.page]);
}

void write(const std::string& value, const ContentKey::Experiment& key, Project& project) {
    auto& experiment = project.experiments[key.experiment];
    switch (key.attribute) {
        case ExperimentAttribute::name:
            experiment.name = value;
            return;
        case ExperimentAttribute::platform:
            experiment.platform = {value};
            return;
        case ExperimentAttribute::trafficProportion:
            experiment.trafficProportion = trafficProportion(value);
            return;
    }
}

void write(const std::string& value, const ContentKey::Treatment& key, Project& project) {
    auto& treatment = madeTreatment(project, key.experiment, key.treatment);
    switch (key.attribute) {
        case TreatmentAttribute::name:
            treatment.name = value;
            return;
        case TreatmentAttribute::appIconName:
            treatment.appIconName = value;
            return;
    }
}

void write(const std::string& value, const ContentKey::TreatmentPlacements& key, Project& project) {
    storeTokens(value, key.locale, key.slot, madeTreatment(project, key.experiment, key.treatment));
}

const MediaItems& itemsOf(const ContentKey::PagePlacements& key, const Project& project) {
    static const MediaItems kNone;
    const auto* page = valueIn(project.pages, key.page);
    return page ? Media::items(page->media, key.locale, key.slot) : kNone;
}

const MediaItems& itemsOf(const ContentKey::TreatmentPlacements& key, const Project& project) {
    static const MediaItems kNone;
    const auto* treatment = findTreatment(project, key.experiment, key.treatment);
    return treatment ? Media::items(treatment->media, key.locale, key.slot) : kNone;
}

CustomProductPage& madeOwner(const ContentKey::PagePlacements& key, Project& project) {
    return project.pages[key.page];
}

Treatment& madeOwner(const ContentKey::TreatmentPlacements& key, Project& project) {
    return madeTreatment(project, key.experiment, key.treatment);
}

template <class Placements>
void copyItems(const Placements& key, const Project& source, Project& destination) {
    const auto& items = itemsOf(key, source);
    if (items.empty()) {
        clear(key, destination);
    } else {
        store(items, key.locale, key.slot, madeOwner(key, destination));
    }
}

}  // namespace

void flattenProductPages(const std::map<Slug, CustomProductPage>& pages,
                         const std::map<Slug, Experiment>& experiments, Flattening& values) {
    for (const auto& [slug, page] : pages) flattenPage(slug, page, values);
    for (const auto& [slug, experiment] : experiments) flattenExperiment(slug, experiment, values);
}

std::optional<std::string> productPageValue(const ContentKey& key, const Project& project) {
    return std::visit(
        [&]<class Case>(const Case& address) -> std::optional<std::string> {
            if constexpr (ContentKey::isProductPageCase<Case>) return read(address, project);
            return std::nullopt;
        },
        key.kind());
}

bool setProductPageValue(const std::string& value, const ContentKey& key, Project& project) {
    return std::visit(
        [&]<class Case>(const Case& address) {
            if constexpr (ContentKey::isProductPageCase<Case>) {
                value.empty() ? clear(address, project) : write(value, address, project);
            }
            return ContentKey::isProductPageCase<Case>;
        },
        key.kind());
}

bool copyProductPageMedia(const ContentKey& key, const Project& source, Project& destination) {
    if (const auto* ofPage = key.as<ContentKey::PagePlacements>()) {
        copyItems(*ofPage, source, destination);
        return true;
    }
    if (const auto* ofTreatment = key.as<ContentKey::TreatmentPlacements>()) {
        copyItems(*ofTreatment, source, destination);
        return true;
    }
    return false;
}

MediaItems mediaItems(std::string_view value, const MediaItems& known) {
    text::TextMap<std::string> names;
    for (const auto& item : known) names.emplace(item.token(), item.fileName());
    MediaItems items;
    for (const auto line : split(value, '\n')) {
        const auto name = names.find(line);
        auto item = MediaItem::fromToken(line, name == names.end() ? std::string() : name->second);
        if (item) items.push_back(*std::move(item));
    }
    return items;
}

std::vector<StoreLocale> adding(const StoreLocale& locale, std::vector<StoreLocale> locales) {
    if (std::find(locales.begin(), locales.end(), locale) != locales.end()) return locales;
    locales.push_back(locale);
    std::sort(locales.begin(), locales.end());
    return locales;
}

std::string flagValue(std::optional<bool> flag) {
    if (!flag) return {};
    return *flag ? "true" : "false";
}

}  // namespace kestrin::ContentGraph
