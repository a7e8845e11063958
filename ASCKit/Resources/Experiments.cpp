#include "ASCKit/Resources/Experiments.h"

#include "ASCKit/Resources/AttributeReading.h"
#include "ASCKit/Resources/ResourceLists.h"
#include "KestrinCore/JSONRecords.h"

namespace kestrin {

using JSONRecords::setOptional;

const std::set<std::string> ASCExperiment::editableStates = {"PREPARE_FOR_SUBMISSION", "READY_FOR_REVIEW",
                                                             "REJECTED"};

ASCExperiment::ASCExperiment(const ResourceObject& resource)
    : id(resource.id),
      name(resource.string("name").value_or("")),
      platform(resource.string("platform")),
      trafficProportion(AttributeReading::integer(resource.attributes, "trafficProportion")),
      state(resource.string("state").value_or("")),
      startDate(resource.string("startDate")),
      endDate(resource.string("endDate")) {}

ASCTreatment::ASCTreatment(const ResourceObject& resource)
    : id(resource.id),
      name(resource.string("name").value_or("")),
      appIconName(resource.string("appIconName")) {}

ASCTreatmentLocalization::ASCTreatmentLocalization(const ResourceObject& resource)
    : id(resource.id), locale(resource.string("locale").value_or("")) {}

namespace ASC {
namespace {

constexpr const char* kExperiments = "appStoreVersionExperiments";
constexpr const char* kTreatments = "appStoreVersionExperimentTreatments";
constexpr const char* kTreatmentLocalizations = "appStoreVersionExperimentTreatmentLocalizations";

}  // namespace

std::vector<ASCExperiment> experiments(ASCClient& client, const std::string& appID) {
    return listOf<ASCExperiment>(client, "/v1/apps/" + appID + "/appStoreVersionExperimentsV2");
}

std::vector<ASCTreatment> treatments(ASCClient& client, const std::string& experimentID) {
    return listOf<ASCTreatment>(client,
                                std::string("/v2/") + kExperiments + "/" + experimentID + "/" + kTreatments);
}

std::vector<ASCTreatmentLocalization> treatmentLocalizations(ASCClient& client,
                                                             const std::string& treatmentID) {
    return listOf<ASCTreatmentLocalization>(
        client, std::string("/v1/") + kTreatments + "/" + treatmentID + "/" + kTreatmentLocalizations);
}

ASCExperiment createExperiment(ASCClient& client, const NewExperiment& experiment) {
    return ASCExperiment(create(client, {.type = kExperiments,
                                         .attributes = {{"name", experiment.name},
                                                        {"platform", experiment.platform},
                                                        {"trafficProportion", experiment.trafficProportion}},
                                         .relationships = {{"app", relationship("apps", experiment.appID)}},
                                         .apiVersion = "v2"}));
}

void updateExperiment(ASCClient& client, const std::string& id, const ExperimentChange& change) {
    JSONObject attributes;
    setOptional(attributes, "name", change.name);
    setOptional(attributes, "trafficProportion", change.trafficProportion);
    setOptional(attributes, "started", change.started);
    update(client, {.type = kExperiments, .id = id, .attributes = std::move(attributes), .apiVersion = "v2"});
}

// The relationship is named after v2 of the resource, the type it leads to isn't; the API has it so.
ASCTreatment createTreatment(ASCClient& client, const NewTreatment& treatment) {
    JSONObject attributes{{"name", treatment.name}};
    setOptional(attributes, "appIconName", treatment.appIconName);
    return ASCTreatment(
        create(client, {.type = kTreatments,
                        .attributes = std::move(attributes),
                        .relationships = {{"appStoreVersionExperimentV2",
                                           relationship(kExperiments, treatment.experimentID)}}}));
}

ASCTreatmentLocalization createTreatmentLocalization(ASCClient& client, const std::string& treatmentID,
                                                     const std::string& locale) {
    return ASCTreatmentLocalization(create(
        client,
        {.type = kTreatmentLocalizations,
         .attributes = {{"locale", locale}},
         .relationships = {{"appStoreVersionExperimentTreatment", relationship(kTreatments, treatmentID)}}}));
}

}  // namespace ASC
}  // namespace kestrin
