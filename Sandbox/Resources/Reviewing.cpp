#include "Sandbox/Resources/Reviewing.h"

#include <fmt/format.h>

#include <algorithm>
#include <stdexcept>

#include "Sandbox/Refusal.h"
#include "Sandbox/Resources/Placing.h"
#include "Sandbox/Resources/States.h"
#include "Sandbox/Schema.h"

namespace kestrin::sandbox {
namespace {

constexpr const char* kVersions = "appStoreVersions";
constexpr const char* kVersionLocalizations = "appStoreVersionLocalizations";
constexpr const char* kPageVersions = "appCustomProductPageVersions";
constexpr const char* kPageLocalizations = "appCustomProductPageLocalizations";
constexpr const char* kExperiments = "appStoreVersionExperiments";
constexpr const char* kTreatments = "appStoreVersionExperimentTreatments";
constexpr const char* kExperiment = "appStoreVersionExperimentV2";

// From the state of a version to the one of its app info, and to the one of the media on it. Those that aren't here
// have the same name.
struct Counterpart {
    std::string_view version, appInfo, media;
};
constexpr Counterpart kCounterparts[] = {
    {"DEVELOPER_REJECTED", "DEVELOPER_REJECTED", "PREPARE_FOR_SUBMISSION"},
    {"PENDING_DEVELOPER_RELEASE", "PENDING_RELEASE", "APPROVED"},
    {"PENDING_APPLE_RELEASE", "PENDING_RELEASE", "APPROVED"},
    {"READY_FOR_DISTRIBUTION", "READY_FOR_DISTRIBUTION", "APPROVED"},
};

Counterpart counterpartOf(std::string_view state) {
    for (const auto& row : kCounterparts) {
        if (row.version == state) return row;
    }
    return {state, state, state};
}

std::vector<const Resource*> localizationsOf(const State& state, const Resource& thing) {
    if (thing.type() == kVersions) {
        return state.store.pointing(kVersionLocalizations, "appStoreVersion", thing.id());
    }
    if (thing.type() == kPageVersions) {
        return state.store.pointing(kPageLocalizations, "appCustomProductPageVersion", thing.id());
    }
    std::vector<const Resource*> all;
    for (const auto* treatment : state.store.pointing(kTreatments, kExperiment, thing.id())) {
        const auto some = state.store.pointing("appStoreVersionExperimentTreatmentLocalizations",
                                               "appStoreVersionExperimentTreatment", treatment->id());
        all.insert(all.end(), some.begin(), some.end());
    }
    return all;
}

// A medium that was approved stays so, wherever else it is placed; one that isn't processed isn't reviewed.
bool followsReview(std::string_view assetState) {
    constexpr std::string_view kFollowing[] = {"PREPARE_FOR_SUBMISSION",
                                               "READY_FOR_REVIEW",
                                               "WAITING_FOR_REVIEW",
                                               "IN_REVIEW",
                                               "COMPLETE",
                                               "REJECTED"};
    return std::find(std::begin(kFollowing), std::end(kFollowing), assetState) != std::end(kFollowing);
}

void moveMedia(State& state, const Resource& thing, std::string_view mediaState) {
    for (const auto* localization : localizationsOf(state, thing)) {
        for (const auto* placement : placementsOn(state, *localization)) {
            for (const char* medium : {"image", "video"}) {
                const auto related = placement->related.find(medium);
                if (related == placement->related.end()) continue;
                auto& asset = state.store.at(related->second);
                if (followsReview(asset.text("state"))) asset.attributes["state"] = mediaState;
            }
        }
    }
}

// nullptr when everything is on sale.
Resource* appInfoInPreparation(State& state, const Ref& app) {
    const auto infos = state.store.pointing("appInfos", "app", app.id);
    if (infos.empty()) return nullptr;
    const auto newest = infos.back()->text("state");
    return newest == "READY_FOR_DISTRIBUTION" || newest == "REPLACED_WITH_NEW_INFO" ? nullptr : infos.back();
}

void retirePrevious(State& state, const Resource& thing, const char* type, const char* parent,
                    const std::string& live, const std::string& replaced) {
    for (auto* other : state.store.pointing(type, parent, thing.relatedID(parent))) {
        if (other == &thing || reviewState(*other) != live) continue;
        if (other->text("platform") != thing.text("platform")) continue;
        if (other->type() == kVersions) {
            setVersionState(*other, replaced);
        } else if (other->type() == "appInfos") {
            setAppInfoState(*other, replaced);
        } else {
            other->attributes["state"] = replaced;
        }
    }
}

void release(State& state, Resource& version) {
    retirePrevious(state, version, kVersions, "app", "READY_FOR_DISTRIBUTION", "REPLACED_WITH_NEW_VERSION");
    if (const auto* info = appInfoInPreparation(state, version.related.at("app"))) {
        retirePrevious(state, *info, "appInfos", "app", "READY_FOR_DISTRIBUTION", "REPLACED_WITH_NEW_INFO");
    }
    setReviewState(state, version, "READY_FOR_DISTRIBUTION");
}

void approve(State& state, Resource& thing) {
    if (thing.type() == kVersions) {
        const auto when = thing.text("releaseType");
        if (when == "MANUAL") return setReviewState(state, thing, "PENDING_DEVELOPER_RELEASE");
        if (when == "SCHEDULED") return setReviewState(state, thing, "PENDING_APPLE_RELEASE");
        return release(state, thing);
    }
    if (thing.type() == kPageVersions) {
        retirePrevious(state, thing, kPageVersions, "appCustomProductPage", "APPROVED",
                       "REPLACED_WITH_NEW_VERSION");
    }
    setReviewState(state, thing, "APPROVED");
}

// What things lack, by the path of the resource that lacks it.
class Lacks {
 public:
    void attribute(const Resource& owner, const char* name) {
        const auto found = owner.attributes.find(name);
        const bool isThere =
            found != owner.attributes.end() && !found->is_null() && (!found->is_string() || *found != "");
        if (!isThere) add(owner, refusals::attribute("REQUIRED", name, name));
    }
    void attributes(const Resource& owner, std::initializer_list<const char*> names) {
        for (const char* name : names) attribute(owner, name);
    }
    void relationship(const Resource& owner, const char* name) {
        add(owner, refusals::relationship("REQUIRED", name, name));
    }
    void add(const Resource& owner, ErrorItem item) {
        const auto path =
            fmt::format("/{}/{}/{}", resourceType(owner.type()).apiVersion, owner.type(), owner.id());
        items_[path].push_back(std::move(item));
    }

    void refuse(State& state, const Resource& thing) const {
        if (items_.empty()) return;
        auto refusal = refusals::state(
            "ENTITY_STATE_INVALID",
            fmt::format("{} '{}' can't be reviewed yet: something is missing", thing.type(), thing.id()));
        Json associated = Json::object();
        for (const auto& [path, items] : items_) {
            for (const auto& item : items) {
                associated[path].push_back(errorObject(item, state.store.makeID("errors")));
            }
        }
        refusal.meta = {{"associatedErrors", std::move(associated)}};
        throw Refusal(refusal);
    }

 private:
    std::map<std::string, std::vector<ErrorItem>> items_;
};

bool hasEarlierVersion(State& state, const Resource& version) {
    const auto versions = state.store.pointing(kVersions, "app", version.relatedID("app"));
    return std::any_of(versions.begin(), versions.end(), [&](const Resource* other) {
        const auto otherState = reviewState(*other);
        return other->text("platform") == version.text("platform") &&
               (otherState == "READY_FOR_DISTRIBUTION" || otherState == "REPLACED_WITH_NEW_VERSION");
    });
}

void checkTexts(State& state, const Resource& version, Lacks& lacks) {
    const bool isUpdate = hasEarlierVersion(state, version);
    for (const auto* localization : localizationsOf(state, version)) {
        lacks.attributes(*localization, {"description", "keywords", "supportUrl"});
        if (isUpdate) lacks.attribute(*localization, "whatsNew");
    }
}

void checkScreenshots(State& state, const Resource& version, const std::string& primaryLocale, Lacks& lacks) {
    for (const auto* localization : localizationsOf(state, version)) {
        if (localization->text("locale") != primaryLocale) continue;
        const auto placements = placementsOn(state, *localization);
        const bool hasOne = std::any_of(placements.begin(), placements.end(), [](const Resource* each) {
            return each->text("placementType") == "APP_SCREENSHOT";
        });
        if (!hasOne) lacks.relationship(*localization, "placements");
    }
}

void checkBuild(State& state, const Resource& version, Lacks& lacks) {
    const auto related = version.related.find("build");
    if (related == version.related.end()) return lacks.relationship(version, "build");
    const auto& build = state.store.at(related->second);
    lacks.attribute(build, "usesNonExemptEncryption");
    if (build.isTrue("expired")) {
        lacks.add(build, refusals::attribute("INVALID", "expired", "The build has expired"));
    }
}

void checkReviewDetail(State& state, const Resource& version, Lacks& lacks) {
    const auto details = state.store.pointing("appStoreReviewDetails", "appStoreVersion", version.id());
    if (details.empty()) return lacks.relationship(version, "appStoreReviewDetail");
    const auto& detail = *details.front();
    lacks.attributes(detail, {"contactFirstName", "contactLastName", "contactPhone", "contactEmail"});
    if (detail.isTrue("demoAccountRequired")) {
        lacks.attributes(detail, {"demoAccountName", "demoAccountPassword"});
    }
}

void checkAppInfo(State& state, const Resource& app, Lacks& lacks) {
    const auto* info = appInfoInPreparation(state, app.ref);
    if (info == nullptr) return;
    if (!info->related.contains("primaryCategory")) lacks.relationship(*info, "primaryCategory");
    for (const auto* localization : state.store.pointing("appInfoLocalizations", "appInfo", info->id())) {
        if (localization->text("locale") == app.text("primaryLocale")) {
            lacks.attribute(*localization, "privacyPolicyUrl");
        }
    }
}

void checkVersion(State& state, const Resource& version, Lacks& lacks) {
    const auto& app = state.store.at(version.related.at("app"));
    lacks.attribute(version, "copyright");
    checkBuild(state, version, lacks);
    checkTexts(state, version, lacks);
    checkScreenshots(state, version, app.text("primaryLocale"), lacks);
    checkReviewDetail(state, version, lacks);
    checkAppInfo(state, app, lacks);
}

}  // namespace

const std::vector<ReviewedKind>& reviewedKinds() {
    static const std::vector<ReviewedKind> kinds{{"appStoreVersion", kVersions},
                                                 {"appCustomProductPageVersion", kPageVersions},
                                                 {kExperiment, kExperiments}};
    return kinds;
}

Resource* reviewedBy(State& state, const Resource& item) {
    for (const auto& kind : reviewedKinds()) {
        const auto found = item.related.find(kind.relationship);
        if (found != item.related.end()) return state.store.find(found->second);
    }
    return nullptr;
}

std::string reviewState(const Resource& thing) {
    return thing.text(thing.type() == kVersions ? "appVersionState" : "state");
}

const Ref& appOf(const State& state, const Resource& thing) {
    if (thing.type() != kPageVersions) return thing.related.at("app");
    return state.store.find(thing.related.at("appCustomProductPage"))->related.at("app");
}

void setReviewState(State& state, Resource& thing, const std::string& reviewState) {
    const auto counterpart = counterpartOf(reviewState);
    if (thing.type() == kVersions) {
        setVersionState(thing, reviewState);
        auto* info = appInfoInPreparation(state, thing.related.at("app"));
        if (info != nullptr) setAppInfoState(*info, std::string(counterpart.appInfo));
    } else {
        thing.attributes["state"] = reviewState;
    }
    moveMedia(state, thing, counterpart.media);
}

void requireComplete(State& state, const Resource& thing) {
    Lacks lacks;
    if (thing.type() == kVersions) checkVersion(state, thing, lacks);
    if (thing.type() == kPageVersions && localizationsOf(state, thing).empty()) {
        lacks.relationship(thing, kPageLocalizations);
    }
    if (thing.type() == kExperiments && state.store.pointing(kTreatments, kExperiment, thing.id()).empty()) {
        lacks.relationship(thing, kTreatments);
    }
    lacks.refuse(state, thing);
}

void judge(State& state, Resource& submission, Verdict verdict) {
    const auto current = submission.text("state");
    if (current != "WAITING_FOR_REVIEW" && current != "IN_REVIEW") {
        throw std::invalid_argument(
            fmt::format("the submission '{}' isn't with App Review: {}", submission.id(), current));
    }
    for (auto* item : state.store.pointing("reviewSubmissionItems", "reviewSubmission", submission.id())) {
        auto* reviewed = reviewedBy(state, *item);
        if (reviewed == nullptr || item->text("state") == "REMOVED") continue;
        auto& thing = *reviewed;
        if (verdict == Verdict::begin) {
            setReviewState(state, thing, "IN_REVIEW");
        } else if (verdict == Verdict::approve) {
            item->attributes["state"] = "APPROVED";
            approve(state, thing);
        } else {
            item->attributes["state"] = "REJECTED";
            setReviewState(state, thing, "REJECTED");
        }
    }
    submission.attributes["state"] = verdict == Verdict::begin     ? "IN_REVIEW"
                                     : verdict == Verdict::approve ? "COMPLETE"
                                                                   : "UNRESOLVED_ISSUES";
}

}  // namespace kestrin::sandbox
