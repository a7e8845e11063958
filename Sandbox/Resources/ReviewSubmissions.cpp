// A submission is opened, filled and sent; what is in it goes along from state to state. What happens after that is
// for App Review, and here for whoever changes the sandbox's state by hand.
#include <fmt/format.h>

#include <algorithm>

#include "Sandbox/Document.h"
#include "Sandbox/Reads.h"
#include "Sandbox/Refusal.h"
#include "Sandbox/Resources/Endpoints.h"
#include "Sandbox/Resources/Localizations.h"
#include "Sandbox/Resources/States.h"
#include "Sandbox/Resources/Values.h"
#include "Sandbox/WriteForm.h"

namespace kestrin::sandbox {
namespace {

constexpr const char* kSubmissions = "reviewSubmissions";
constexpr const char* kItems = "reviewSubmissionItems";
constexpr const char* kVersions = "appStoreVersions";
constexpr const char* kReady = "READY_FOR_REVIEW";
constexpr const char* kWaiting = "WAITING_FOR_REVIEW";

// What can be sent to App Review.
struct Thing {
    const char* relationship;  // of an item
    const char* type;
    const char* state;  // its attribute
    const char* app;    // the path to its app's id
};
constexpr Thing kThings[] = {
    {"appStoreVersion", kVersions, "appVersionState", "app.id"},
    {"appCustomProductPageVersion", "appCustomProductPageVersions", "state", "appCustomProductPage.app.id"},
    {"appStoreVersionExperimentV2", "appStoreVersionExperiments", "state", "app.id"},
};

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
    rules.includes = {"appStoreVersion", "appCustomProductPageVersion", "appStoreVersionExperiment",
                      "appStoreVersionExperimentV2", "appEvent"};
    rules.fields = {kItems, kVersions, "appCustomProductPageVersions", "appStoreVersionExperiments",
                    "appEvents"};
    return rules;
}

[[noreturn]] void refuseState(std::string detail, Json meta = nullptr) {
    auto item = refusals::state("ENTITY_STATE_INVALID", std::move(detail));
    item.meta = std::move(meta);
    throw Refusal(std::move(item));
}

// Not sent yet, or sent back.
bool isOpen(const Resource& submission) {
    return submission.text("state") == kReady || submission.text("state") == "UNRESOLVED_ISSUES";
}

HTTPReply createSubmission(State& state, const Call& call) {
    static const WriteForm form{.type = kSubmissions,
                                .attributes = {{.name = "platform", .values = kPlatforms}},
                                .relationships = {{.name = "app", .type = "apps", .need = Need::required}}};
    const auto write = readCreate(call.request.body, form, state.store);
    const auto& app = write.ref("app");
    for (const auto* other : state.store.pointing(kSubmissions, "app", app.id)) {
        if (other->text("platform") == write.text("platform") && other->text("state") == kReady) {
            refuseState("A submission of the platform is being put together already");
        }
    }
    auto& submission = state.store.add(kSubmissions, write.attributes, {{"app", app}});
    submission.attributes["state"] = kReady;
    submission.attributes["submittedDate"] = nullptr;
    return createdReply(state, call, submission);
}

WriteForm itemForm() {
    WriteForm form{
        .type = kItems,
        .relationships = {{.name = "reviewSubmission", .type = kSubmissions, .need = Need::required}}};
    for (const auto& thing : kThings) form.relationships.push_back({thing.relationship, thing.type});
    return form;
}

// Exactly one thing stands in an item.
const Thing& thingOf(const Write& write) {
    const Thing* found = nullptr;
    for (const auto& thing : kThings) {
        if (write.optionalRef(thing.relationship) == nullptr) continue;
        if (found != nullptr) {
            throw Refusal(
                refusals::relationship("INVALID", thing.relationship, "An item is one thing to review"));
        }
        found = &thing;
    }
    if (found != nullptr) return *found;
    throw Refusal(
        refusals::relationship("REQUIRED", kThings[0].relationship, "An item is a thing to review"));
}

void requireSameApp(const State& state, const Thing& thing, const Resource& subject,
                    const Resource& submission) {
    const auto apps = state.store.valuesAt(subject, thing.app);
    const auto platform = subject.text("platform");
    const bool fits = apps.size() == 1 && apps.front() == submission.relatedID("app") &&
                      (platform.empty() || platform == submission.text("platform"));
    if (fits) return;
    throw Refusal(refusals::relationship("INVALID", thing.relationship,
                                         "It is not of the submission's app and platform"));
}

void requireFree(const State& state, const Thing& thing, const Resource& subject) {
    for (const auto* item : state.store.pointing(kItems, thing.relationship, subject.id())) {
        const auto& submission = *state.store.find(item->related.at("reviewSubmission"));
        if (submission.text("state") == "COMPLETE") continue;
        throw Refusal(
            refusals::relationship("INVALID.DUPLICATE", thing.relationship, "It is in a submission already"));
    }
}

// The app info that goes along with a version; nullptr when it is on sale already.
Resource* appInfoOf(State& state, const Resource& version) {
    const auto infos = state.store.pointing("appInfos", "app", version.relatedID("app"));
    const bool isOnSale = infos.empty() || infos.back()->text("state") == "READY_FOR_DISTRIBUTION";
    return isOnSale ? nullptr : infos.back();
}

void moveTo(State& state, const Thing& thing, Resource& subject, const std::string& newState) {
    if (subject.type() != kVersions) {
        subject.attributes[thing.state] = newState;
        return;
    }
    if (auto* info = appInfoOf(state, subject)) setAppInfoState(*info, newState);
    setVersionState(subject, newState);
}

HTTPReply createItem(State& state, const Call& call) {
    static const auto form = itemForm();
    const auto write = readCreate(call.request.body, form, state.store);
    const auto& thing = thingOf(write);
    auto& submission = state.store.at(write.ref("reviewSubmission"));
    auto& subject = state.store.at(write.ref(thing.relationship));
    if (!isOpen(submission)) refuseState("The submission has been sent");
    requireSameApp(state, thing, subject, submission);
    requireFree(state, thing, subject);
    requireEditable(subject, thing.state, "thing to review");
    auto& item = state.store.add(kItems, {{"state", kReady}},
                                 {{"reviewSubmission", submission.ref}, {thing.relationship, subject.ref}});
    if (subject.type() == kVersions) state.store.relate(submission, "appStoreVersionForReview", subject.ref);
    moveTo(state, thing, subject, kReady);
    return createdReply(state, call, item);
}

// What App Review needs of a version, as the items of an error.
class VersionNeeds {
 public:
    VersionNeeds(const State& all, const Resource& subject) : state_(all), version_(subject) {
        lookAtBuild();
        for (const auto* localization :
             state_.store.pointing("appStoreVersionLocalizations", "appStoreVersion", version_.id())) {
            for (const auto* name : {"description", "keywords", "supportUrl"}) {
                if (localization->text(name).empty()) need(*localization, name);
            }
        }
    }

    // {"/v1/appStoreVersions/ver-1": [errors]}; null when nothing is missing.
    const Json& missing() const { return missing_; }

 private:
    void lookAtBuild() {
        const auto id = version_.relatedID("build");
        const auto* build = id.empty() ? nullptr : state_.store.find("builds", id);
        if (build == nullptr) {
            need(version_, "build");
        } else if (build->attributes.value("usesNonExemptEncryption", Json()).is_null()) {
            need(*build, "usesNonExemptEncryption");
        }
    }

    void need(const Resource& resource, const std::string& name) {
        const auto item =
            refusals::attribute("REQUIRED", name, fmt::format("You must provide a value for '{}'", name));
        missing_[fmt::format("/v1/{}/{}", resource.type(), resource.id())].push_back(
            errorObject(item, resource.id() + "-" + name));
    }

    const State& state_;
    const Resource& version_;
    Json missing_;
};

struct Subject {
    const Thing& thing;
    Resource& resource;
};

std::vector<Subject> subjectsOf(State& state, const Resource& submission) {
    std::vector<Subject> subjects;
    for (const auto* item : state.store.pointing(kItems, "reviewSubmission", submission.id())) {
        for (const auto& thing : kThings) {
            const auto related = item->related.find(thing.relationship);
            if (related != item->related.end()) subjects.push_back({thing, state.store.at(related->second)});
        }
    }
    return subjects;
}

void send(State& state, Resource& submission) {
    if (!isOpen(submission)) refuseState("The submission has been sent already");
    const auto subjects = subjectsOf(state, submission);
    if (subjects.empty()) refuseState("There is nothing in the submission");
    for (const auto& [thing, subject] : subjects) {
        if (subject.type() != kVersions) continue;
        const VersionNeeds needs(state, subject);
        if (!needs.missing().is_null()) {
            refuseState("The version is not ready for review", {{"associatedErrors", needs.missing()}});
        }
    }
    for (const auto& [thing, subject] : subjects) moveTo(state, thing, subject, kWaiting);
    submission.attributes["state"] = kWaiting;
    submission.attributes["submittedDate"] = state.store.date();
}

void cancel(State& state, Resource& submission) {
    if (submission.text("state") != kWaiting) refuseState("Only a submission that waits can be canceled");
    for (const auto& [thing, subject] : subjectsOf(state, submission)) {
        const bool isVersion = subject.type() == kVersions;
        moveTo(state, thing, subject, isVersion ? "DEVELOPER_REJECTED" : "PREPARE_FOR_SUBMISSION");
    }
    submission.attributes["state"] = "CANCELING";
}

HTTPReply updateSubmission(State& state, const Call& call) {
    static const WriteForm form{.type = kSubmissions,
                                .attributes = {{.name = "platform", .values = kPlatforms},
                                               {.name = "submitted", .kind = Kind::truth},
                                               {.name = "canceled", .kind = Kind::truth}}};
    auto& submission = named(state, kSubmissions, call);
    const auto write = readUpdate(call.request.body, form, state.store, submission.id());
    if (write.has("platform")) submission.attributes["platform"] = write.attributes["platform"];
    if (write.attributes.value("submitted", Json()) == true) send(state, submission);
    if (write.attributes.value("canceled", Json()) == true) cancel(state, submission);
    return singleReply(state, call, submission);
}

}  // namespace

void addReviewSubmissionEndpoints(Router& router) {
    router.add(listEndpoint("/v1/reviewSubmissions", submissionListRules(),
                            {.type = kSubmissions, .newestFirst = true}));
    router.add(listEndpoint("/v1/reviewSubmissions/{id}/items", itemListRules(),
                            {.type = kItems, .parent = kSubmissions, .via = "reviewSubmission"}));
    router.add({"POST", "/v1/reviewSubmissions", {}, createSubmission});
    router.add({"PATCH", "/v1/reviewSubmissions/{id}", {}, updateSubmission});
    router.add({"POST", "/v1/reviewSubmissionItems", {}, createItem});
}

}  // namespace kestrin::sandbox
