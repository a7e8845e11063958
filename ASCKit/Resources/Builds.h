// Builds that App Store Connect has received.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "ASCKit/Resources/ResourceRequests.h"

namespace kestrin {

struct ASCBuild {
    std::string id;
    std::string buildNumber;                   // may be empty; the API calls it the build's version
    std::optional<std::string> versionString;  // of its pre-release version, where the reply includes that
    std::optional<std::string> processingState;
    std::optional<bool> usesNonExemptEncryption;
    std::optional<std::string> uploadedDate;  // as the service writes it
    bool isExpired = false;

    ASCBuild(const ResourceObject& resource, const std::vector<ResourceObject>& included);
    bool operator==(const ASCBuild&) const = default;
};

namespace ASC {

struct BuildFilter {
    std::string appID;
    std::optional<std::string> versionString = std::nullopt;
    std::optional<std::string> platform = std::nullopt;
};

// GET /v1/builds: the 50 newest, newest first. Older ones aren't asked for: nobody ships them.
std::vector<ASCBuild> builds(ASCClient& client, const BuildFilter& filter);

// GET /v1/builds/{id}
std::optional<ASCBuild> build(ASCClient& client, const std::string& id);

// PATCH /v1/builds/{id}
void setUsesNonExemptEncryption(ASCClient& client, bool usesNonExemptEncryption, const std::string& buildID);

}  // namespace ASC
}  // namespace kestrin
