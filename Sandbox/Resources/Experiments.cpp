#include <fmt/format.h>

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

constexpr std::size_t kTreatmentsPerExperiment = 3;
constexpr int kWholeTraffic = 100;

constexpr const char* kExperiments = "appStoreVersionExperiments";
constexpr const char* kTreatments = "appStoreVersionExperimentTreatments";
constexpr const char* kLocalizations = "appStoreVersionExperimentTreatmentLocalizations";
constexpr const char* kExperiment = "appStoreVersionExperimentV2";  // a treatment's, to its test
constexpr const char* kOldExperiment =
    "appStoreVersionExperiment";  // the same in the first version of the API
constexpr const char* kTreatment = "appStoreVersionExperimentTreatment";

QueryRules experimentListRules() {
    QueryRules rules;
    rules.filters = {{"state", kExperimentStates}};
    rules.includes = {"app", "latestControlVersion", "controlVersions", kTreatments};
    rules.fields = {kExperiments, "apps", "appStoreVersions", kTreatments};
    rules.relationshipLimits = {"controlVersions", kTreatments};
    return rules;
}

QueryRules treatmentListRules() {
    QueryRules rules;
    rules.includes = {kOldExperiment, kExperiment, kLocalizations};
    rules.fields = {kTreatments, kExperiments, kLocalizations};
    rules.relationshipLimits = {kLocalizations};
    return rules;
}

QueryRules localizationListRules() {
    QueryRules rules;
    rules.filters = {{"locale"}};
    rules.includes = {kTreatment, "appScreenshotSets", "appPreviewSets"};
    rules.fields = {kLocalizations, kTreatments, "appScreenshotSets", "appPreviewSets"};
    rules.relationshipLimits = {"appScreenshotSets", "appPreviewSets"};
    return rules;
}

const AttributeRule kName{.name = "name", .need = Need::required};
const AttributeRule kTraffic{.name = "trafficProportion", .kind = Kind::integer, .need = Need::required};
const AttributeRule kIcon{.name = "appIconName"};

void checkTraffic(const Write& write) {
    if (!write.has("trafficProportion")) return;
    const auto proportion = write.attributes["trafficProportion"].get<std::int64_t>();
    if (proportion >= 1 && proportion <= kWholeTraffic) return;
    throw Refusal(refusals::attribute("INVALID", "trafficProportion",
                                      fmt::format("The value must be from 1 to {}", kWholeTraffic)));
}

void requireEditableExperiment(const Resource& experiment) {
    requireEditable(experiment, "state", "product page optimization test");
}

bool isRunning(const Resource& experiment) {
    return !experiment.text("startDate").empty() && experiment.text("endDate").empty();
}

const Resource* versionOnSale(State& state, const Ref& app, const std::string& platform) {
    return state.store.first(
        "appStoreVersions",
        {{"app", app.id}, {"platform", platform}, {"appVersionState", "READY_FOR_DISTRIBUTION"}});
}

HTTPReply createExperiment(State& state, const Call& call) {
    static const WriteForm form{
        .type = kExperiments,
        .attributes = {kName, {.name = "platform", .need = Need::required, .values = kPlatforms}, kTraffic},
        .relationships = {{.name = "app", .type = "apps", .need = Need::required}}};
    const auto write = readCreate(call.request.body, form, state.store);
    checkTraffic(write);
    Relations related{{"app", write.ref("app")}};
    if (const auto* control = versionOnSale(state, write.ref("app"), write.text("platform"))) {
        related.emplace("latestControlVersion", control->ref);
    }
    auto& experiment = state.store.add(kExperiments, write.attributes, std::move(related));
    experiment.attributes["state"] = "PREPARE_FOR_SUBMISSION";
    experiment.attributes["reviewRequired"] = true;
    return createdReply(state, call, experiment);
}

void start(State& state, Resource& experiment) {
    const auto current = experiment.text("state");
    const bool mayStart = current == "APPROVED" || current == "ACCEPTED";
    if (!mayStart || isRunning(experiment)) {
        throw Refusal(
            refusals::state("ENTITY_STATE_INVALID", "A test can be started once, when it is approved"));
    }
    for (const auto* other : state.store.pointing(kExperiments, "app", experiment.relatedID("app"))) {
        if (!isRunning(*other) || other->text("platform") != experiment.text("platform")) continue;
        throw Refusal(refusals::state("ENTITY_STATE_INVALID",
                                      fmt::format("The test '{}' is running", other->text("name"))));
    }
    experiment.attributes["startDate"] = state.store.date();
}

void stop(State& state, Resource& experiment) {
    if (!isRunning(experiment)) {
        throw Refusal(refusals::state("ENTITY_STATE_INVALID", "The test isn't running"));
    }
    experiment.attributes["endDate"] = state.store.date();
    experiment.attributes["state"] = "STOPPED";
}

HTTPReply updateExperiment(State& state, const Call& call) {
    static const WriteForm form{.type = kExperiments,
                                .attributes = {kName, kTraffic, {.name = "started", .kind = Kind::truth}}};
    auto& experiment = named(state, kExperiments, call);
    auto write = readUpdate(call.request.body, form, state.store, experiment.id());
    checkTraffic(write);
    const auto started = write.attributes.value("started", Json());
    write.attributes.erase("started");
    if (!write.attributes.empty()) requireEditableExperiment(experiment);
    if (started == true) start(state, experiment);
    if (started == false) stop(state, experiment);
    applyAttributes(write.attributes, experiment);
    return singleReply(state, call, experiment);
}

HTTPReply createTreatment(State& state, const Call& call) {
    static const WriteForm form{.type = kTreatments,
                                .attributes = {kName, kIcon},
                                .relationships = {{.name = kExperiment, .type = kExperiments},
                                                  {.name = kOldExperiment, .type = kExperiments}}};
    const auto write = readCreate(call.request.body, form, state.store);
    const auto& experiment = write.onlyRef({kExperiment, kOldExperiment});
    requireEditableExperiment(state.store.at(experiment));
    if (state.store.pointing(kTreatments, kExperiment, experiment.id).size() >= kTreatmentsPerExperiment) {
        throw Refusal(refusals::relationship(
            "INVALID", kExperiment,
            fmt::format("A test has at most {} treatments", kTreatmentsPerExperiment)));
    }
    return createdReply(state, call,
                        state.store.add(kTreatments, write.attributes, {{kExperiment, experiment}}));
}

const Resource& experimentOf(State& state, const Resource& treatment) {
    return state.store.at(treatment.related.at(kExperiment));
}

HTTPReply updateTreatment(State& state, const Call& call) {
    static const WriteForm form{.type = kTreatments, .attributes = {kName, kIcon}};
    auto& treatment = named(state, kTreatments, call);
    const auto write = readUpdate(call.request.body, form, state.store, treatment.id());
    requireEditableExperiment(experimentOf(state, treatment));
    applyAttributes(write.attributes, treatment);
    return singleReply(state, call, treatment);
}

HTTPReply createLocalization(State& state, const Call& call) {
    static const WriteForm form{
        .type = kLocalizations,
        .attributes = {{.name = "locale", .kind = Kind::locale, .need = Need::required}},
        .relationships = {{.name = kTreatment, .type = kTreatments, .need = Need::required}}};
    const auto write = readCreate(call.request.body, form, state.store);
    const auto& treatment = write.ref(kTreatment);
    requireEditableExperiment(experimentOf(state, state.store.at(treatment)));
    requireFreeLocale(state, kLocalizations, kTreatment, treatment, write.text("locale"));
    return createdReply(state, call,
                        state.store.add(kLocalizations, write.attributes, {{kTreatment, treatment}}));
}

}  // namespace

// Tests are read below their app in the first version of the API and addressed in the second; treatments are listed
// in the second and otherwise addressed in the first.
void addExperimentEndpoints(Router& router) {
    router.add(listEndpoint("/v1/apps/{id}/appStoreVersionExperimentsV2", experimentListRules(),
                            {.type = kExperiments, .parent = "apps", .via = "app"}));
    router.add({"POST", "/v2/appStoreVersionExperiments", {}, createExperiment});
    router.add({"PATCH", "/v2/appStoreVersionExperiments/{id}", {}, updateExperiment});
    router.add(listEndpoint("/v2/appStoreVersionExperiments/{id}/appStoreVersionExperimentTreatments",
                            treatmentListRules(),
                            {.type = kTreatments, .parent = kExperiments, .via = kExperiment}));
    router.add({"POST", "/v1/appStoreVersionExperimentTreatments", {}, createTreatment});
    router.add({"PATCH", "/v1/appStoreVersionExperimentTreatments/{id}", {}, updateTreatment});
    router.add(listEndpoint(
        "/v1/appStoreVersionExperimentTreatments/{id}/appStoreVersionExperimentTreatmentLocalizations",
        localizationListRules(), {.type = kLocalizations, .parent = kTreatments, .via = kTreatment}));
    router.add({"POST", "/v1/appStoreVersionExperimentTreatmentLocalizations", {}, createLocalization});
}

}  // namespace kestrin::sandbox
