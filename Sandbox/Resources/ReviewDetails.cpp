#include "Sandbox/Document.h"
#include "Sandbox/Reads.h"
#include "Sandbox/Refusal.h"
#include "Sandbox/Resources/Endpoints.h"
#include "Sandbox/Resources/Localizations.h"
#include "Sandbox/Resources/States.h"
#include "Sandbox/WriteForm.h"

namespace kestrin::sandbox {
namespace {

QueryRules reviewDetailRules() {
    QueryRules rules;
    rules.includes = {"appStoreVersion", "appStoreReviewAttachments"};
    rules.fields = {"appStoreReviewDetails", "appStoreVersions", "appStoreReviewAttachments"};
    rules.relationshipLimits = {"appStoreReviewAttachments"};
    return rules;
}

// 404 for a version without review details: no document tells whether the service answers so or with null.
HTTPReply readReviewDetail(State& state, const Call& call) {
    const auto& version = named(state, "appStoreVersions", call);
    const auto details = state.store.pointing("appStoreReviewDetails", "appStoreVersion", version.id());
    if (details.empty()) {
        throw Refusal(ErrorItem{404, "NOT_FOUND", "The version has no App Review details"});
    }
    return singleReply(state, call, *details.front());
}

std::vector<AttributeRule> details() {
    return {{.name = "contactFirstName"},
            {.name = "contactLastName"},
            {.name = "contactPhone"},
            {.name = "contactEmail"},
            {.name = "demoAccountName"},
            {.name = "demoAccountPassword"},
            {.name = "demoAccountRequired", .kind = Kind::truth},
            {.name = "notes", .limit = 4000}};
}

HTTPReply createReviewDetail(State& state, const Call& call) {
    static const WriteForm form{
        .type = "appStoreReviewDetails",
        .attributes = details(),
        .relationships = {{.name = "appStoreVersion", .type = "appStoreVersions", .need = Need::required}}};
    const auto write = readCreate(call.request.body, form, state.store);
    const auto& version = write.ref("appStoreVersion");
    requireEditableVersion(state.store.at(version));
    if (!state.store.pointing(form.type, "appStoreVersion", version.id).empty()) {
        throw Refusal(refusals::relationship("INVALID.DUPLICATE", "appStoreVersion",
                                             "The version has App Review details already"));
    }
    return createdReply(state, call,
                        state.store.add(form.type, write.attributes, {{"appStoreVersion", version}}));
}

HTTPReply updateReviewDetail(State& state, const Call& call) {
    static const WriteForm form{.type = "appStoreReviewDetails", .attributes = details()};
    auto& detail = named(state, form.type, call);
    const auto write = readUpdate(call.request.body, form, state.store, detail.id());
    requireEditableVersion(state.store.at(detail.related.at("appStoreVersion")));
    applyAttributes(write.attributes, detail);
    return singleReply(state, call, detail);
}

}  // namespace

void addReviewDetailEndpoints(Router& router) {
    router.add(
        {"GET", "/v1/appStoreVersions/{id}/appStoreReviewDetail", reviewDetailRules(), readReviewDetail});
    router.add({"POST", "/v1/appStoreReviewDetails", {}, createReviewDetail});
    router.add({"PATCH", "/v1/appStoreReviewDetails/{id}", {}, updateReviewDetail});
}

}  // namespace kestrin::sandbox
