// Versions of an app on its platforms.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "ASCKit/Resources/Localization.h"
#include "ASCKit/Resources/ResourceRequests.h"

namespace kestrin {

struct ASCAppStoreVersion {
    std::string id;
    std::string platform;  // may be empty
    std::optional<std::string> versionString;
    std::optional<std::string> state;
    std::optional<std::string> copyright;
    std::optional<std::string> releaseType;
    std::optional<std::string> createdDate;  // as the service writes it

    explicit ASCAppStoreVersion(const ResourceObject& resource);
    bool isEditable() const;  // an absent state isn't
    bool operator==(const ASCAppStoreVersion&) const = default;
};

namespace ASC {

struct NewAppStoreVersion {
    std::string appID;
    std::string platform;
    std::string versionString;
    std::optional<std::string> copyright = std::nullopt;
    std::optional<std::string> releaseType = std::nullopt;
};

// GET /v1/apps/{id}/appStoreVersions, all pages, all platforms.
std::vector<ASCAppStoreVersion> appStoreVersions(ASCClient& client, const std::string& appID);

// GET /v1/appStoreVersions/{id}/appStoreVersionLocalizations, all pages.
std::vector<ASCLocalization> appStoreVersionLocalizations(ASCClient& client, const std::string& versionID);

// POST /v1/appStoreVersions
ASCAppStoreVersion createAppStoreVersion(ASCClient& client, const NewAppStoreVersion& version);

// GET /v1/appStoreVersions/{id}, only its build: the id of the build that the version has, if any.
std::optional<std::string> attachedBuildID(ASCClient& client, const std::string& versionID);

// PATCH /v1/appStoreVersions/{id}/relationships/build; the reply isn't read.
void attachBuild(ASCClient& client, const std::string& buildID, const std::string& versionID);

}  // namespace ASC
}  // namespace kestrin
