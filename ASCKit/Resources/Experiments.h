// Product page optimization tests and their treatments.
//
// The API's two generations meet here: a test is read, written and addressed as a resource of v2, treatments are
// created and their localizations listed under v1, and treatments are listed below a test of v2.
#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "ASCKit/Resources/ResourceRequests.h"

namespace kestrin {

struct ASCExperiment {
    static const std::set<std::string> editableStates;

    std::string id;
    std::string name;  // may be empty
    std::optional<std::string> platform;
    std::optional<std::int64_t> trafficProportion;  // in percent
    std::string state;                              // may be empty
    std::optional<std::string> startDate, endDate;  // as the service writes them

    explicit ASCExperiment(const ResourceObject& resource);
    bool operator==(const ASCExperiment&) const = default;
};

struct ASCTreatment {
    std::string id;
    std::string name;  // may be empty
    std::optional<std::string> appIconName;

    explicit ASCTreatment(const ResourceObject& resource);
    bool operator==(const ASCTreatment&) const = default;
};

struct ASCTreatmentLocalization {
    std::string id;
    std::string locale;  // may be empty

    explicit ASCTreatmentLocalization(const ResourceObject& resource);
    bool operator==(const ASCTreatmentLocalization&) const = default;
};

namespace ASC {

struct NewExperiment {
    std::string appID;
    std::string name;
    std::string platform;
    std::int64_t trafficProportion = 0;
};

// Only what is given is sent.
struct ExperimentChange {
    std::optional<std::string> name = std::nullopt;
    std::optional<std::int64_t> trafficProportion = std::nullopt;
    std::optional<bool> started = std::nullopt;
};

struct NewTreatment {
    std::string experimentID;
    std::string name;
    std::optional<std::string> appIconName = std::nullopt;
};

// GET /v1/apps/{id}/appStoreVersionExperimentsV2, all pages.
std::vector<ASCExperiment> experiments(ASCClient& client, const std::string& appID);

// GET /v2/appStoreVersionExperiments/{id}/appStoreVersionExperimentTreatments, all pages.
std::vector<ASCTreatment> treatments(ASCClient& client, const std::string& experimentID);

// GET /v1/appStoreVersionExperimentTreatments/{id}/appStoreVersionExperimentTreatmentLocalizations, all pages.
std::vector<ASCTreatmentLocalization> treatmentLocalizations(ASCClient& client,
                                                             const std::string& treatmentID);

// POST /v2/appStoreVersionExperiments
ASCExperiment createExperiment(ASCClient& client, const NewExperiment& experiment);

// PATCH /v2/appStoreVersionExperiments/{id}; the reply isn't read.
void updateExperiment(ASCClient& client, const std::string& id, const ExperimentChange& change);

// POST /v1/appStoreVersionExperimentTreatments
ASCTreatment createTreatment(ASCClient& client, const NewTreatment& treatment);

// POST /v1/appStoreVersionExperimentTreatmentLocalizations
ASCTreatmentLocalization createTreatmentLocalization(ASCClient& client, const std::string& treatmentID,
                                                     const std::string& locale);

}  // namespace ASC
}  // namespace kestrin
