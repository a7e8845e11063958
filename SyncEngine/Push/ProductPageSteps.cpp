// The plan's part for custom pages and tests.
#include <algorithm>
#include <set>

#include "KestrinCore/Error.h"
#include "SyncEngine/Push/ChangedValues.h"
#include "SyncEngine/Push/PushPlanner.h"

namespace kestrin::PushPlanner {
namespace {

using Steps = std::vector<PushStep>;
using Keys = std::vector<ContentKey>;

constexpr std::int64_t kDefaultTrafficProportion = 50;

struct PageChanges {
    std::map<PageAttribute, std::string> attributes;
    Keys keys;
    std::map<StoreLocale, std::string> promotionalText;
    std::map<StoreLocale, Keys> textKeys;
    std::set<StoreLocale> mediaLocales;
};

struct TreatmentChanges {
    std::map<TreatmentAttribute, std::string> attributes;
    Keys keys;
    std::set<StoreLocale> mediaLocales;
};

struct ExperimentChanges {
    std::map<ExperimentAttribute, std::string> attributes;
    Keys keys;
    std::map<Slug, TreatmentChanges> treatments;
};

struct ProductPageChanges {
    std::map<Slug, PageChanges> pages;
    std::map<Slug, ExperimentChanges> experiments;
};

// Media keys aren't kept here: their slots have steps of their own. Their locales are, since media can only be placed
// on a localization.
ProductPageChanges collected(const std::vector<Change>& changes) {
    ProductPageChanges all;
    for (const auto& change : changes) {
        std::visit(
            Overloaded{
                [&](const ContentKey::Page& key) {
                    auto& page = all.pages[key.page];
                    page.attributes[key.attribute] = change.local;
                    page.keys.push_back(change.key);
                },
                [&](const ContentKey::PagePromotionalText& key) {
                    auto& page = all.pages[key.page];
                    page.promotionalText[key.locale] = change.local;
                    page.textKeys[key.locale].push_back(change.key);
                },
                [&](const ContentKey::PagePlacements& key) {
                    all.pages[key.page].mediaLocales.insert(key.locale);
                },
                [&](const ContentKey::Experiment& key) {
                    auto& experiment = all.experiments[key.experiment];
                    experiment.attributes[key.attribute] = change.local;
                    experiment.keys.push_back(change.key);
                },
                [&](const ContentKey::Treatment& key) {
                    auto& treatment = all.experiments[key.experiment].treatments[key.treatment];
                    treatment.attributes[key.attribute] = change.local;
                    treatment.keys.push_back(change.key);
                },
                [&](const ContentKey::TreatmentPlacements& key) {
                    all.experiments[key.experiment].treatments[key.treatment].mediaLocales.insert(key.locale);
                },
                [](const auto&) {},
            },
            change.key.kind());
    }
    return all;
}

Keys without(const Keys& keys, const ContentKey& left) {
    Keys rest;
    std::copy_if(keys.begin(), keys.end(), std::back_inserter(rest),
                 [&](const auto& key) { return key != left; });
    return rest;
}

std::optional<bool> visibility(const PageChanges& changes) {
    const auto value = changed(changes.attributes, PageAttribute::visible);
    return value ? std::optional(*value == "true") : std::nullopt;
}

Steps existingPageSteps(const Slug& slug, const PageChanges& changes, const RemotePage& remote) {
    Steps steps;
    const ContentKey deepLinkKey = ContentKey::Page{slug, PageAttribute::deepLink};
    const auto visible = visibility(changes);
    if (changed(changes.attributes, PageAttribute::name) || visible) {
        steps.push_back({PushStep::UpdateCustomPage{
                             slug, remote.id, changedText(changes.attributes, PageAttribute::name), visible},
                         without(changes.keys, deepLinkKey)});
    }
    if (const auto deepLink = changed(changes.attributes, PageAttribute::deepLink)) {
        steps.push_back({PushStep::UpdateCustomPageVersion{remote.versionID, *deepLink}, {deepLinkKey}});
    }
    auto locales = changes.mediaLocales;
    for (const auto& [locale, text] : changes.promotionalText) locales.insert(locale);
    for (const auto& locale : locales) {
        const auto* text = valueIn(changes.promotionalText, locale);
        const auto* textKeys = valueIn(changes.textKeys, locale);
        const Keys keys = textKeys ? *textKeys : Keys{};
        const auto* id = valueIn(remote.localizations, locale);
        if (!id) {
            steps.push_back(
                {PushStep::CreateCustomPageLocalization{slug, remote.versionID, locale, text ? *text : ""},
                 keys});
        } else if (text) {
            steps.push_back({PushStep::UpdateCustomPageLocalization{*id, *text}, keys});
        }
    }
    return steps;
}

// A new page can't take its visibility in the create, so that follows at once.
Steps newPageSteps(const Slug& slug, const PageChanges& changes, const RemoteListing& listing) {
    const auto name = changedText(changes.attributes, PageAttribute::name);
    if (!listing.appID || !name) return {};
    std::map<StoreLocale, std::string> localizations;
    for (const auto& locale : changes.mediaLocales) localizations[locale] = "";
    for (const auto& [locale, text] : changes.promotionalText) localizations[locale] = text;
    const ContentKey visibleKey = ContentKey::Page{slug, PageAttribute::visible};
    auto keys = without(changes.keys, visibleKey);
    for (const auto& [locale, textKeys] : changes.textKeys)
        keys.insert(keys.end(), textKeys.begin(), textKeys.end());

    Steps steps;
    steps.push_back({PushStep::CreateCustomPage{slug, *listing.appID, *name,
                                                changedText(changes.attributes, PageAttribute::deepLink),
                                                std::move(localizations)},
                     std::move(keys)});
    if (const auto visible = visibility(changes)) {
        steps.push_back(
            {PushStep::UpdateCustomPage{slug, std::nullopt, std::nullopt, visible}, {visibleKey}});
    }
    return steps;
}

Steps pageSteps(const Slug& slug, const PageChanges& changes, const RemoteListing& listing) {
    const auto* remote = valueIn(listing.ids.pages, slug);
    return remote ? existingPageSteps(slug, changes, *remote) : newPageSteps(slug, changes, listing);
}

std::optional<std::int64_t> changedProportion(const ExperimentChanges& changes) {
    const auto value = changed(changes.attributes, ExperimentAttribute::trafficProportion);
    return value ? ContentGraph::trafficProportion(*value) : std::nullopt;
}

// Nothing for a test that is new and can't be made: its treatments can't be either.
std::optional<Steps> ownExperimentSteps(const Slug& slug, const ExperimentChanges& changes,
                                        const RemoteExperiment* remote, const RemoteListing& listing) {
    const auto name = changedText(changes.attributes, ExperimentAttribute::name);
    const auto proportion = changedProportion(changes);
    if (remote) {
        if (!name && !proportion) return Steps{};
        // The platform of a test is settled when it is made and never written again.
        const ContentKey platformKey = ContentKey::Experiment{slug, ExperimentAttribute::platform};
        return Steps{
            {PushStep::UpdateExperiment{remote->id, name, proportion}, without(changes.keys, platformKey)}};
    }
    if (!listing.appID || !name) return std::nullopt;
    const auto platform = changedText(changes.attributes, ExperimentAttribute::platform);
    return Steps{{PushStep::CreateExperiment{slug, *listing.appID, *name,
                                             platform ? StorePlatform{*platform} : StorePlatform::iOS,
                                             proportion.value_or(kDefaultTrafficProportion)},
                  changes.keys}};
}

std::optional<PushStep> ownTreatmentStep(const Slug& experiment, const Slug& slug,
                                         const TreatmentChanges& changes,
                                         const RemoteExperiment* remoteExperiment,
                                         const RemoteTreatment* remote) {
    const auto name = changedText(changes.attributes, TreatmentAttribute::name);
    if (remote) {
        const auto icon = changed(changes.attributes, TreatmentAttribute::appIconName);
        if (!name && !icon) return std::nullopt;
        return PushStep{PushStep::UpdateTreatment{remote->id, name, icon}, changes.keys};
    }
    if (!name) return std::nullopt;
    return PushStep{PushStep::CreateTreatment{
                        experiment, remoteExperiment ? std::optional(remoteExperiment->id) : std::nullopt,
                        slug, *name, changedText(changes.attributes, TreatmentAttribute::appIconName)},
                    changes.keys};
}

// A treatment that has media but neither exists nor has a name still gets its localizations: they fail by its name
// when the plan runs, which is how the user hears what is missing.
Steps treatmentSteps(const Slug& experiment, const Slug& slug, const TreatmentChanges& changes,
                     const RemoteExperiment* remoteExperiment) {
    const auto* remote = remoteExperiment ? valueIn(remoteExperiment->treatments, slug) : nullptr;
    Steps steps;
    if (auto own = ownTreatmentStep(experiment, slug, changes, remoteExperiment, remote)) {
        steps.push_back(*std::move(own));
    }
    for (const auto& locale : changes.mediaLocales) {
        if (remote && remote->localizations.contains(locale)) continue;
        steps.push_back({PushStep::CreateTreatmentLocalization{
                             experiment, slug, remote ? std::optional(remote->id) : std::nullopt, locale},
                         {}});
    }
    return steps;
}

Steps experimentSteps(const Slug& slug, const ExperimentChanges& changes, const RemoteListing& listing) {
    const auto* remote = valueIn(listing.ids.experiments, slug);
    auto steps = ownExperimentSteps(slug, changes, remote, listing);
    if (!steps) return {};
    for (const auto& [treatment, treatmentChanges] : changes.treatments) {
        for (auto& step : treatmentSteps(slug, treatment, treatmentChanges, remote))
            steps->push_back(std::move(step));
    }
    return *std::move(steps);
}

}  // namespace

Steps productPageSteps(const std::vector<Change>& changes, const RemoteListing& listing) {
    const auto all = collected(changes);
    Steps steps;
    for (const auto& [slug, page] : all.pages) {
        for (auto& step : pageSteps(slug, page, listing)) steps.push_back(std::move(step));
    }
    for (const auto& [slug, experiment] : all.experiments) {
        for (auto& step : experimentSteps(slug, experiment, listing)) steps.push_back(std::move(step));
    }
    return steps;
}

}  // namespace kestrin::PushPlanner
