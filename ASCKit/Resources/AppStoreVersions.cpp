#include "ASCKit/Resources/AppStoreVersions.h"

#include "ASCKit/Resources/AppStoreState.h"
#include "ASCKit/Resources/ResourceLists.h"
#include "KestrinCore/JSONRecords.h"
#include "KestrinCore/StableJSON.h"

namespace kestrin {

ASCAppStoreVersion::ASCAppStoreVersion(const ResourceObject& resource)
    : id(resource.id),
      platform(resource.string("platform").value_or("")),
      versionString(resource.string("versionString")),
      state(resource.string({"appVersionState", "appStoreState"})),
      copyright(resource.string("copyright")),
      releaseType(resource.string("releaseType")),
      createdDate(resource.string("createdDate")) {}

bool ASCAppStoreVersion::isEditable() const {
    return state && AppStoreState::editable.contains(*state);
}

namespace ASC {

std::vector<ASCAppStoreVersion> appStoreVersions(ASCClient& client, const std::string& appID) {
    return listOf<ASCAppStoreVersion>(client, "/v1/apps/" + appID + "/appStoreVersions");
}

std::vector<ASCLocalization> appStoreVersionLocalizations(ASCClient& client, const std::string& versionID) {
    return listOf<ASCLocalization>(client,
                                   "/v1/appStoreVersions/" + versionID + "/appStoreVersionLocalizations");
}

ASCAppStoreVersion createAppStoreVersion(ASCClient& client, const NewAppStoreVersion& version) {
    JSONObject attributes{{"platform", version.platform}, {"versionString", version.versionString}};
    JSONRecords::setOptional(attributes, "copyright", version.copyright);
    JSONRecords::setOptional(attributes, "releaseType", version.releaseType);
    return ASCAppStoreVersion(
        create(client, {.type = "appStoreVersions",
                        .attributes = std::move(attributes),
                        .relationships = {{"app", relationship("apps", version.appID)}}}));
}

std::optional<std::string> attachedBuildID(ASCClient& client, const std::string& versionID) {
    ASCRequest request;
    request.path = "/v1/appStoreVersions/" + versionID;
    request.query = {QueryParameter::include({"build"}),
                     QueryParameter::fields("appStoreVersions", {"build"})};
    const auto version = one(client, request);
    return version ? version->relatedID("build") : std::nullopt;
}

void attachBuild(ASCClient& client, const std::string& buildID, const std::string& versionID) {
    ASCRequest request;
    request.method = HTTPMethod::patch;
    request.path = "/v1/appStoreVersions/" + versionID + "/relationships/build";
    request.body = StableJSON::encode(relationship("builds", buildID));
    client.data(request);
}

}  // namespace ASC
}  // namespace kestrin
