#include <fmt/format.h>

#include "Sandbox/Document.h"
#include "Sandbox/Reads.h"
#include "Sandbox/Refusal.h"
#include "Sandbox/Resources/Endpoints.h"
#include "Sandbox/Resources/Localizations.h"
#include "Sandbox/Resources/Placing.h"
#include "Sandbox/Resources/States.h"
#include "Sandbox/Resources/Values.h"
#include "Sandbox/WriteForm.h"

namespace kestrin::sandbox {
namespace {

QueryRules versionRules() {
    QueryRules rules;
    rules.includes = {"app",
                      "ageRatingDeclaration",
                      "appStoreVersionLocalizations",
                      "build",
                      "appStoreVersionPhasedRelease",
                      "gameCenterAppVersion",
                      "routingAppCoverage",
                      "appStoreReviewDetail",
                      "appStoreVersionSubmission",
                      "appClipDefaultExperience",
                      "appStoreVersionExperiments",
                      "appStoreVersionExperimentsV2",
                      "alternativeDistributionPackage"};
    rules.fields = {"appStoreVersions",
                    "apps",
                    "ageRatingDeclarations",
                    "appStoreVersionLocalizations",
                    "builds",
                    "appStoreVersionPhasedReleases",
                    "gameCenterAppVersions",
                    "routingAppCoverages",
                    "appStoreReviewDetails",
                    "appStoreVersionSubmissions",
                    "appClipDefaultExperiences",
                    "appStoreVersionExperiments",
                    "alternativeDistributionPackages"};
    rules.relationshipLimits = {"appStoreVersionLocalizations", "appStoreVersionExperiments",
                                "appStoreVersionExperimentsV2"};
    return rules;
}

QueryRules versionListRules() {
    auto rules = versionRules();
    rules.filters = {{"platform", kPlatforms},
                     {"versionString"},
                     {"appStoreState", kAppStoreStates},
                     {"appVersionState", kAppVersionStates},
                     {"id"}};
    return rules;
}

std::vector<AttributeRule> changeable() {
    return {{.name = "copyright"},
            {.name = "reviewType", .values = kReviewTypes},
            {.name = "releaseType", .values = kReleaseTypes},
            {.name = "earliestReleaseDate", .kind = Kind::date},
            {.name = "usesIdfa", .kind = Kind::truth}};
}

WriteForm createForm() {
    WriteForm form{.type = "appStoreVersions",
                   .attributes = changeable(),
                   .relationships = {{.name = "app", .type = "apps", .need = Need::required},
                                     {.name = "build", .type = "builds"}}};
    form.attributes.push_back({.name = "platform", .need = Need::required, .values = kPlatforms});
    form.attributes.push_back({.name = "versionString", .need = Need::required});
    return form;
}

WriteForm updateForm() {
    WriteForm form{.type = "appStoreVersions",
                   .attributes = changeable(),
                   .relationships = {{.name = "build", .type = "builds"}}};
    form.attributes.push_back({.name = "versionString", .need = Need::required});
    form.attributes.push_back({.name = "downloadable", .kind = Kind::truth});
    return form;
}

// A platform has one version on its way at a time, and each version string once.
void requireRoom(const State& state, const Resource& app, const std::string& platform,
                 const std::string& versionString, const Resource* except = nullptr) {
    for (const auto* other : state.store.pointing("appStoreVersions", "app", app.id())) {
        if (other == except || other->text("platform") != platform) continue;
        if (other->text("versionString") == versionString) {
            throw Refusal(refusals::attribute("INVALID.DUPLICATE", "versionString",
                                              fmt::format("The version '{}' exists already", versionString)));
        }
        const auto versionState = other->text("appVersionState");
        const bool isDone =
            versionState == "READY_FOR_DISTRIBUTION" || versionState == "REPLACED_WITH_NEW_VERSION";
        if (except == nullptr && !isDone) {
            throw Refusal(refusals::state("ENTITY_STATE_INVALID",
                                          fmt::format("A version of the platform is on its way already: {}",
                                                      other->text("versionString"))));
        }
    }
}

void checkRelease(const Resource& version) {
    if (version.text("releaseType") != "SCHEDULED" || !version.text("earliestReleaseDate").empty()) return;
    throw Refusal(refusals::attribute("REQUIRED", "earliestReleaseDate",
                                      "A scheduled release needs the date of the earliest release"));
}

void checkBuildFits(const State& state, const Resource& version, const Ref& ref) {
    const auto& build = *state.store.find(ref);
    const auto& train = *state.store.find(build.related.at("preReleaseVersion"));
    const bool fits = build.relatedID("app") == version.relatedID("app") &&
                      train.text("platform") == version.text("platform") &&
                      train.text("version") == version.text("versionString");
    if (!fits) {
        throw Refusal(
            refusals::relationship("INVALID", "build", "The build is not of this version and platform"));
    }
    if (build.text("processingState") != "VALID" || build.isTrue("expired")) {
        throw Refusal(refusals::relationship("INVALID", "build", "The build has expired or isn't processed"));
    }
}

const Resource* newestVersion(const State& state, const Resource& app, const std::string& platform) {
    const Resource* newest = nullptr;
    for (const auto* other : state.store.pointing("appStoreVersions", "app", app.id())) {
        if (other->text("platform") == platform) newest = other;
    }
    return newest;
}

void copyLocalization(State& state, const Resource& from, const Resource& version) {
    auto attributes = from.attributes;
    attributes["whatsNew"] = nullptr;
    const auto& copy = state.store.add("appStoreVersionLocalizations", std::move(attributes),
                                       {{"appStoreVersion", version.ref}});
    copyPlacements(state, from, copy);
}

// A version starts with what the one before it had, except for what is new in it.
void copyContent(State& state, const Resource& from, const Resource& version) {
    for (const auto* localization :
         state.store.pointing("appStoreVersionLocalizations", "appStoreVersion", from.id())) {
        copyLocalization(state, *localization, version);
    }
    for (const auto* detail : state.store.pointing("appStoreReviewDetails", "appStoreVersion", from.id())) {
        state.store.add("appStoreReviewDetails", detail->attributes, {{"appStoreVersion", version.ref}});
    }
}

// While everything is on sale, a new version brings a new app info to edit.
void ensureEditableAppInfo(State& state, const Resource& app) {
    const auto infos = state.store.pointing("appInfos", "app", app.id());
    if (infos.empty() || isEditableState(infos.back()->text("state"))) return;
    auto& info = state.store.add("appInfos", infos.back()->attributes, infos.back()->related);
    setAppInfoState(info, "PREPARE_FOR_SUBMISSION");
    for (const auto* localization :
         state.store.pointing("appInfoLocalizations", "appInfo", infos.back()->id())) {
        state.store.add("appInfoLocalizations", localization->attributes, {{"appInfo", info.ref}});
    }
}

HTTPReply createVersion(State& state, const Call& call) {
    static const auto form = createForm();
    const auto write = readCreate(call.request.body, form, state.store);
    const auto& app = state.store.at(write.ref("app"));
    const auto platform = write.text("platform");
    requireRoom(state, app, platform, write.text("versionString"));

    Resource draft{{}, write.attributes, {{"app", app.ref}}};
    checkRelease(draft);
    const auto* build = write.optionalRef("build");
    if (build != nullptr) checkBuildFits(state, draft, *build);

    const auto* previous = newestVersion(state, app, platform);
    draft.attributes["createdDate"] = state.store.pacificDate();
    draft.attributes["downloadable"] = true;
    if (write.text("reviewType").empty()) draft.attributes["reviewType"] = "APP_STORE";
    if (write.text("releaseType").empty()) draft.attributes["releaseType"] = "AFTER_APPROVAL";
    auto& version = state.store.add("appStoreVersions", draft.attributes, draft.related);
    setVersionState(version, "PREPARE_FOR_SUBMISSION");
    if (build != nullptr) state.store.relate(version, "build", *build);
    if (previous != nullptr) {
        copyContent(state, *previous, version);
    } else {
        state.store.add("appStoreVersionLocalizations", {{"locale", app.text("primaryLocale")}},
                        {{"appStoreVersion", version.ref}});
    }
    ensureEditableAppInfo(state, app);
    return createdReply(state, call, version);
}

HTTPReply updateVersion(State& state, const Call& call) {
    static const auto form = updateForm();
    auto& version = named(state, "appStoreVersions", call);
    const auto write = readUpdate(call.request.body, form, state.store, version.id());
    requireEditableVersion(version);
    Resource draft = version;
    applyAttributes(write.attributes, draft);
    checkRelease(draft);
    if (write.has("versionString")) {
        requireRoom(state, state.store.at(version.related.at("app")), version.text("platform"),
                    draft.text("versionString"), &version);
    }
    const auto* build = write.optionalRef("build");
    if (build != nullptr) checkBuildFits(state, draft, *build);
    version.attributes = draft.attributes;
    if (build != nullptr) state.store.relate(version, "build", *build);
    return singleReply(state, call, version);
}

HTTPReply attachBuild(State& state, const Call& call) {
    auto& version = named(state, "appStoreVersions", call);
    const auto build = readLinkage(call.request.body, "builds", state.store);
    requireEditableVersion(version);
    checkBuildFits(state, version, build);
    state.store.relate(version, "build", build);
    return noContent();
}

}  // namespace

void addVersionEndpoints(Router& router) {
    router.add(
        listEndpoint("/v1/apps/{id}/appStoreVersions", versionListRules(),
                     {.type = "appStoreVersions", .parent = "apps", .via = "app", .newestFirst = true}));
    router.add(readEndpoint("/v1/appStoreVersions/{id}", versionRules(), "appStoreVersions"));
    router.add({"POST", "/v1/appStoreVersions", {}, createVersion});
    router.add({"PATCH", "/v1/appStoreVersions/{id}", {}, updateVersion});
    router.add({"PATCH", "/v1/appStoreVersions/{id}/relationships/build", {}, attachBuild});
}

}  // namespace kestrin::sandbox
