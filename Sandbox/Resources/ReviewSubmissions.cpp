#include <fmt/format.h>

#include "Sandbox/Document.h"
#include "Sandbox/Reads.h"
#include "Sandbox/Refusal.h"
#include "Sandbox/Resources/Endpoints.h"
#include "Sandbox/Resources/Localizations.h"
#include "Sandbox/Resources/Processing.h"
#include "Sandbox/Resources/Reviewing.h"
#include "Sandbox/Resources/States.h"
#include "Sandbox/Resources/Values.h"
#include "Sandbox/WriteForm.h"

namespace kestrin::sandbox {
namespace {

constexpr const char* kSubmissions = "reviewSubmissions";
constexpr const char* kItems = "reviewSubmissionItems";
constexpr const char* kOldExperiment = "appStoreVersionExperiment";  // the first API's name of the same

QueryRules submissionListRules() {
    QueryRules rules;
    rules.filters = {{"platform", kPlatforms}, {"state", kSubmissionStates}, {"app", {}, true}};
    rules.includes = {"app", "items", "appStoreVersionForReview", "submittedByActor", "lastUpdatedByActor"};
    rules.fields = {kSubmissions, kItems};
    rules.relationshipLimits = {"items"};
    return rules;
}

QueryRules itemListRules() {
    QueryRules rules;
    rules.includes = {"appStoreVersion", "appCustomProductPageVersion", kOldExperiment,
                      "appStoreVersionExperimentV2", "appEvent"};
    rules.fields = {kItems, "appStoreVersions", "appCustomProductPageVersions", "appStoreVersionExperiments",
                    "appEvents"};
    return rules;
}

// Taking things back takes a while.
void finishCancelling(State& state, Resource& submission) {
    if (submission.text("state") == "CANCELING" && isDue(state, submission)) {
        submission.attributes["state"] = "COMPLETE";
    }
}

void finishCancellings(State& state, const Call&) {
    for (auto* submission : state.store.all(kSubmissions)) finishCancelling(state, *submission);
}

HTTPReply createSubmission(State& state, const Call& call) {
    static const WriteForm form{.type = kSubmissions,
                                .attributes = {{.name = "platform", .values = kPlatforms}},
                                .relationships = {{.name = "app", .type = "apps", .need = Need::required}}};
    const auto write = readCreate(call.request.body, form, state.store);
    for (const auto* other : state.store.pointing(kSubmissions, "app", write.ref("app").id)) {
        if (other->text("platform") != write.text("platform")) continue;
        if (other->text("state") != "READY_FOR_REVIEW") continue;
        throw Refusal(refusals::state(
            "ENTITY_STATE_INVALID",
            fmt::format("The review submission '{}' of the platform isn't sent yet", other->id())));
    }
    auto& submission = state.store.add(kSubmissions, write.attributes, {{"app", write.ref("app")}});
    submission.attributes["state"] = "READY_FOR_REVIEW";
    return createdReply(state, call, submission);
}

bool takesItems(const Resource& submission) {
    const auto current = submission.text("state");
    return current == "READY_FOR_REVIEW" || current == "UNRESOLVED_ISSUES";
}

// A thing is in one submission at a time, until that is done with it.
void requireNotSubmitted(State& state, const Resource& thing, const std::string& relationship) {
    for (const auto* item : state.store.pointing(kItems, relationship, thing.id())) {
        const auto itemState = item->text("state");
        if (itemState == "APPROVED" || itemState == "REMOVED") continue;
        throw Refusal(
            refusals::state("ITEM_PART_OF_ANOTHER_SUBMISSION",
                            fmt::format("{} '{}' was added to the review submission '{}' already",
                                        thing.type(), thing.id(), item->relatedID("reviewSubmission"))));
    }
}

void requireFits(const State& state, const Resource& submission, const Resource& thing,
                 const std::string& relationship) {
    const auto platform = thing.text("platform");
    const bool isOfPlatform = platform.empty() || platform == submission.text("platform");
    if (isOfPlatform && appOf(state, thing) == submission.related.at("app")) return;
    throw Refusal(refusals::relationship("INVALID", relationship,
                                         "The item is of another app or platform than its submission"));
}

WriteForm itemForm() {
    WriteForm form{
        .type = kItems,
        .relationships = {{.name = "reviewSubmission", .type = kSubmissions, .need = Need::required},
                          {.name = kOldExperiment, .type = "appStoreVersionExperiments"}}};
    for (const auto& kind : reviewedKinds()) {
        form.relationships.push_back({.name = kind.relationship, .type = kind.type});
    }
    return form;
}

std::vector<std::string> itemRelationships() {
    std::vector<std::string> names;
    for (const auto& kind : reviewedKinds()) names.push_back(kind.relationship);
    names.emplace_back(kOldExperiment);
    return names;
}

const std::string& relationshipTo(const Resource& thing) {
    const auto& kinds = reviewedKinds();
    return std::find_if(kinds.begin(), kinds.end(),
                        [&](const auto& kind) { return kind.type == thing.type(); })
        ->relationship;
}

HTTPReply createItem(State& state, const Call& call) {
    static const auto form = itemForm();
    const auto write = readCreate(call.request.body, form, state.store);
    const auto& submission = state.store.at(write.ref("reviewSubmission"));
    auto& thing = state.store.at(write.onlyRef(itemRelationships()));
    const auto& relationship = relationshipTo(thing);
    if (!takesItems(submission)) {
        throw Refusal(refusals::state(
            "ENTITY_STATE_INVALID",
            fmt::format("The review submission takes no more items: {}", submission.text("state"))));
    }
    requireFits(state, submission, thing, relationship);
    requireNotSubmitted(state, thing, relationship);
    requireEditable(thing, thing.type() == "appStoreVersions" ? "appVersionState" : "state", "item");
    requireComplete(state, thing);
    const auto& item = state.store.add(kItems, {{"state", "READY_FOR_REVIEW"}},
                                       {{"reviewSubmission", submission.ref}, {relationship, thing.ref}});
    setReviewState(state, thing, "READY_FOR_REVIEW");
    return createdReply(state, call, item);
}

// An item that App Review has yet to decide on, and the thing that it names.
struct Pending {
    Resource& item;
    Resource& thing;
};

std::vector<Pending> pendingItems(State& state, const Resource& submission) {
    std::vector<Pending> pending;
    for (auto* item : state.store.pointing(kItems, "reviewSubmission", submission.id())) {
        const auto itemState = item->text("state");
        auto* thing = reviewedBy(state, *item);
        if (thing != nullptr && itemState != "APPROVED" && itemState != "REMOVED")
            pending.push_back({*item, *thing});
    }
    return pending;
}

void submit(State& state, Resource& submission) {
    const auto items = pendingItems(state, submission);
    if (!takesItems(submission) || items.empty()) {
        throw Refusal(refusals::state(
            "ENTITY_STATE_INVALID",
            items.empty() ? "There is nothing in the review submission"
                          : fmt::format("The review submission is {}", submission.text("state"))));
    }
    for (const auto& [item, thing] : items) requireComplete(state, thing);
    for (const auto& [item, thing] : items) {
        item.attributes["state"] = "READY_FOR_REVIEW";
        setReviewState(state, thing, "WAITING_FOR_REVIEW");
        if (thing.type() == "appStoreVersions") {
            state.store.relate(submission, "appStoreVersionForReview", thing.ref);
        }
    }
    submission.attributes["submittedDate"] = state.store.date();
    submission.attributes["state"] = "WAITING_FOR_REVIEW";
}

// Versions have a state for what was taken back; the other things are as if they had never been submitted.
void cancel(State& state, Resource& submission) {
    const auto current = submission.text("state");
    if (current != "WAITING_FOR_REVIEW" && current != "IN_REVIEW" && current != "UNRESOLVED_ISSUES") {
        throw Refusal(refusals::state("ENTITY_STATE_INVALID",
                                      fmt::format("The review submission can't be cancelled: {}", current)));
    }
    for (const auto& [item, thing] : pendingItems(state, submission)) {
        const bool isVersion = thing.type() == "appStoreVersions";
        item.attributes["state"] = "REMOVED";
        setReviewState(state, thing, isVersion ? "DEVELOPER_REJECTED" : "PREPARE_FOR_SUBMISSION");
    }
    submission.attributes["state"] = "CANCELING";
    beginProcessing(submission);
}

void changePlatform(State& state, Resource& submission, const std::string& platform) {
    if (submission.text("state") != "READY_FOR_REVIEW" || !pendingItems(state, submission).empty()) {
        throw Refusal(refusals::attribute("INVALID.INVALID_STATE", "platform",
                                          "The platform is fixed once there are items"));
    }
    submission.attributes["platform"] = platform;
}

void requireTrue(const Write& write, const char* name) {
    if (write.attributes.value(name, Json()) != false) return;
    throw Refusal(refusals::attribute("INVALID", name, "The value can only be true"));
}

HTTPReply updateSubmission(State& state, const Call& call) {
    static const WriteForm form{.type = kSubmissions,
                                .attributes = {{.name = "platform", .values = kPlatforms},
                                               {.name = "submitted", .kind = Kind::truth},
                                               {.name = "canceled", .kind = Kind::truth}}};
    auto& submission = named(state, kSubmissions, call);
    const auto write = readUpdate(call.request.body, form, state.store, submission.id());
    for (const char* name : {"submitted", "canceled"}) requireTrue(write, name);
    const bool submits = write.attributes.value("submitted", Json()) == true;
    const bool cancels = write.attributes.value("canceled", Json()) == true;
    if (submits && cancels) {
        throw Refusal(refusals::attribute("INVALID", "canceled",
                                          "A review submission is sent or cancelled, not both at once"));
    }
    if (!write.text("platform").empty()) changePlatform(state, submission, write.text("platform"));
    if (submits) submit(state, submission);
    if (cancels) cancel(state, submission);
    return singleReply(state, call, submission);
}

}  // namespace

void addReviewSubmissionEndpoints(Router& router) {
    router.add(afterwards(finishCancellings, listEndpoint("/v1/reviewSubmissions", submissionListRules(),
                                                          {.type = kSubmissions, .newestFirst = true})));
    router.add({"POST", "/v1/reviewSubmissions", {}, createSubmission});
    router.add({"PATCH", "/v1/reviewSubmissions/{id}", {}, updateSubmission});
    router.add(listEndpoint("/v1/reviewSubmissions/{id}/items", itemListRules(),
                            {.type = kItems, .parent = kSubmissions, .via = "reviewSubmission"}));
    router.add({"POST", "/v1/reviewSubmissionItems", {}, createItem});
}

}  // namespace kestrin::sandbox
