#include "Sandbox/Document.h"
#include "Sandbox/Reads.h"
#include "Sandbox/Refusal.h"
#include "Sandbox/Resources/Endpoints.h"
#include "Sandbox/Resources/Processing.h"
#include "Sandbox/Resources/Values.h"
#include "Sandbox/WriteForm.h"

namespace kestrin::sandbox {
namespace {

QueryRules buildRules() {
    QueryRules rules;
    rules.includes = {"preReleaseVersion",
                      "individualTesters",
                      "betaGroups",
                      "betaBuildLocalizations",
                      "appEncryptionDeclaration",
                      "betaAppReviewSubmission",
                      "app",
                      "buildBetaDetail",
                      "appStoreVersion",
                      "icons",
                      "buildBundles",
                      "buildUpload"};
    rules.fields = {"builds",
                    "preReleaseVersions",
                    "betaTesters",
                    "betaBuildLocalizations",
                    "appEncryptionDeclarations",
                    "betaAppReviewSubmissions",
                    "apps",
                    "buildBetaDetails",
                    "appStoreVersions",
                    "buildIcons",
                    "betaGroups",
                    "buildUploads"};
    rules.relationshipLimits = {"betaBuildLocalizations", "betaGroups", "buildBundles", "icons",
                                "individualTesters"};
    return rules;
}

QueryRules buildListRules() {
    auto rules = buildRules();
    rules.filters = {{"version"},
                     {"expired", {"true", "false"}},
                     {"processingState", kProcessingStates},
                     {"betaAppReviewSubmission.betaReviewState",
                      {"WAITING_FOR_REVIEW", "IN_REVIEW", "REJECTED", "APPROVED"}},
                     {"usesNonExemptEncryption", {"true", "false"}},
                     {"preReleaseVersion.version"},
                     {"preReleaseVersion.platform", kPlatforms},
                     {"buildAudienceType", {"INTERNAL_ONLY", "APP_STORE_ELIGIBLE"}},
                     {"preReleaseVersion"},
                     {"app"},
                     {"betaGroups"},
                     {"appStoreVersion"},
                     {"id"}};
    rules.sorts = {"version", "uploadedDate", "preReleaseVersion"};
    return rules;
}

const WriteForm kUpdate{.type = "builds",
                        .attributes = {{"expired", Kind::truth}, {"usesNonExemptEncryption", Kind::truth}}};

// An answer about encryption is given once; saying the same again changes nothing.
void checkEncryptionAnswer(const Resource& build, const Write& write) {
    const auto& given = build.attributes.at("usesNonExemptEncryption");
    if (!write.has("usesNonExemptEncryption") || given.is_null()) return;
    if (write.attributes["usesNonExemptEncryption"] == given) return;
    throw Refusal(refusals::attribute("INVALID.INVALID_STATE", "usesNonExemptEncryption",
                                      "The value has been set already and can't be changed"));
}

void checkExpiry(const Resource& build, const Write& write) {
    if (!write.has("expired") || !build.isTrue("expired") || write.attributes["expired"] == true) return;
    throw Refusal(refusals::attribute("INVALID", "expired", "An expired build stays expired"));
}

HTTPReply updateBuild(State& state, const Call& call) {
    auto& build = named(state, "builds", call);
    const auto write = readUpdate(call.request.body, kUpdate, state.store, build.id());
    checkEncryptionAnswer(build, write);
    checkExpiry(build, write);
    for (const auto& [name, value] : write.attributes.items()) {
        if (!value.is_null()) build.attributes[name] = value;
    }
    return singleReply(state, call, build);
}

// A list is one reading of every build that is on its way.
void processBuilds(State& state, const Call&) {
    for (auto* build : state.store.all("builds")) processBuild(state, *build);
}

HTTPReply readBuild(State& state, const Call& call) {
    auto& build = named(state, "builds", call);
    processBuild(state, build);
    return singleReply(state, call, build);
}

}  // namespace

void addBuildEndpoints(Router& router) {
    router.add(afterwards(processBuilds, listEndpoint("/v1/builds", buildListRules(), {.type = "builds"})));
    router.add({"GET", "/v1/builds/{id}", buildRules(), readBuild});
    router.add({"PATCH", "/v1/builds/{id}", {}, updateBuild});
}

}  // namespace kestrin::sandbox
