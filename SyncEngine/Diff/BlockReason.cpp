// The rules by which the service's state forbids a write, a function per kind of key, in the order in which they
// apply.
#include "ASCKit/Resources/AppStoreState.h"
#include "ASCKit/Resources/Experiments.h"
#include "KestrinCore/MapLookup.h"
#include "SyncEngine/Diff/DiffEngine.h"

namespace kestrin::DiffEngine {
namespace {

using Reason = std::optional<BlockReason>;

template <class Case>
Reason because(Case reason) {
    return BlockReason{std::move(reason)};
}

bool isEditable(const std::string& state) {
    return AppStoreState::editable.contains(state);
}

bool hasTexts(const LocalizedTexts& locales, const StoreLocale& locale) {
    return !Texts::fields(locales, locale).values().empty();
}

class Rules {
 public:
    Rules(const Project& project, const RemoteListing& listing) : local(project), ids(listing.ids) {}

    Reason operator()(const ContentKey::AppInfo&) const { return appInfoState(); }

    Reason operator()(const ContentKey::AppInfoLocale& key) const {
        if (ids.appInfoLocalizations.contains(key.locale) && !hasTexts(local.app.locales, key.locale)) {
            return because(BlockReason::LocaleRemovedLocally{});
        }
        return appInfoState();
    }

    Reason operator()(const ContentKey::Version& key) const { return versionState(key.platform); }
    Reason operator()(const ContentKey::Review& key) const { return versionState(key.platform); }

    Reason operator()(const ContentKey::VersionLocale& key) const {
        const auto* version = valueIn(ids.versions, key.platform);
        if (!version) return because(BlockReason::NoRemoteVersion{});
        if (version->localizations.contains(key.locale) &&
            !hasTexts(local[key.platform].locales, key.locale)) {
            return because(BlockReason::LocaleRemovedLocally{});
        }
        if (key.field == ListingField::promotionalText) return std::nullopt;
        return versionState(key.platform);
    }

    Reason operator()(const ContentKey::Placements& key) const {
        if (const auto reason = versionState(key.platform)) return reason;
        const bool isRemote = valueIn(ids.versions, key.platform)->localizations.contains(key.locale);
        if (isRemote || hasTexts(local[key.platform].locales, key.locale)) return std::nullopt;
        return because(BlockReason::LocalizationMissing{});
    }

    Reason operator()(const ContentKey::Page& key) const {
        const auto* page = valueIn(ids.pages, key.page);
        if (!page) return std::nullopt;
        if (!local.pages.contains(key.page)) return because(BlockReason::PageRemovedLocally{});
        if (key.attribute != PageAttribute::deepLink) return std::nullopt;  // on the page, not on its version
        return pageState(*page);
    }

    Reason operator()(const ContentKey::PagePromotionalText& key) const { return pageContent(key.page); }
    Reason operator()(const ContentKey::PagePlacements& key) const { return pageContent(key.page); }

    Reason operator()(const ContentKey::Experiment& key) const {
        const auto* experiment = valueIn(ids.experiments, key.experiment);
        if (!experiment) return std::nullopt;
        if (!local.experiments.contains(key.experiment))
            return because(BlockReason::ExperimentRemovedLocally{});
        if (key.attribute == ExperimentAttribute::platform)
            return because(BlockReason::ExperimentPlatformFixed{});
        return experimentState(*experiment);
    }

    Reason operator()(const ContentKey::Treatment& key) const {
        return treatment(key.experiment, key.treatment);
    }
    Reason operator()(const ContentKey::TreatmentPlacements& key) const {
        return treatment(key.experiment, key.treatment);
    }

 private:
    Reason appInfoState() const {
        if (!ids.appInfoState || isEditable(*ids.appInfoState)) return std::nullopt;
        return because(BlockReason::AppInfoNotEditable{*ids.appInfoState});
    }

    Reason versionState(const StorePlatform& platform) const {
        const auto* version = valueIn(ids.versions, platform);
        if (!version) return because(BlockReason::NoRemoteVersion{});
        if (isEditable(version->state)) return std::nullopt;
        return because(BlockReason::VersionNotEditable{version->state});
    }

    Reason pageContent(const Slug& slug) const {
        const auto* page = valueIn(ids.pages, slug);
        if (!page) return std::nullopt;
        if (!local.pages.contains(slug)) return because(BlockReason::PageRemovedLocally{});
        return pageState(*page);
    }

    static Reason pageState(const RemotePage& page) {
        if (page.isEditable()) return std::nullopt;
        return because(BlockReason::PageNotEditable{page.versionState});
    }

    Reason treatment(const Slug& slug, const Slug& treatment) const {
        const auto* remote = valueIn(ids.experiments, slug);
        if (!remote) return std::nullopt;
        const auto* experiment = valueIn(local.experiments, slug);
        if (!experiment) return because(BlockReason::ExperimentRemovedLocally{});
        if (remote->treatments.contains(treatment) && !experiment->treatments.contains(treatment)) {
            return because(BlockReason::ExperimentRemovedLocally{});
        }
        return experimentState(*remote);
    }

    static Reason experimentState(const RemoteExperiment& experiment) {
        if (ASCExperiment::editableStates.contains(experiment.state)) return std::nullopt;
        return because(BlockReason::ExperimentNotEditable{experiment.state});
    }

    const Project& local;
    const RemoteIDs& ids;
};

}  // namespace

std::optional<BlockReason> blockReason(const ContentKey& key, const Project& local,
                                       const RemoteListing& remote) {
    return std::visit(Rules(local, remote), key.kind());
}

}  // namespace kestrin::DiffEngine
