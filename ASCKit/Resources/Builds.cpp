#include "ASCKit/Resources/Builds.h"

#include "ASCKit/Resources/AttributeReading.h"

namespace kestrin {
namespace {

std::optional<std::string> preReleaseVersion(const ResourceObject& build,
                                             const std::vector<ResourceObject>& included) {
    const auto id = build.relatedID("preReleaseVersion");
    if (!id) return std::nullopt;
    for (const auto& resource : included) {
        if (resource.type == "preReleaseVersions" && resource.id == *id) return resource.string("version");
    }
    return std::nullopt;
}

}  // namespace

ASCBuild::ASCBuild(const ResourceObject& resource, const std::vector<ResourceObject>& included)
    : id(resource.id),
      buildNumber(resource.string("version").value_or("")),
      versionString(preReleaseVersion(resource, included)),
      processingState(resource.string("processingState")),
      usesNonExemptEncryption(AttributeReading::boolean(resource.attributes, "usesNonExemptEncryption")),
      uploadedDate(resource.string("uploadedDate")),
      isExpired(AttributeReading::boolean(resource.attributes, "expired").value_or(false)) {}

namespace ASC {
namespace {

constexpr std::int64_t kNewestBuilds = 50;

std::vector<ASCBuild> buildsOf(const JSONAPIDocument& document) {
    std::vector<ASCBuild> builds;
    for (const auto& resource : document.data) builds.emplace_back(resource, document.included);
    return builds;
}

}  // namespace

std::vector<ASCBuild> builds(ASCClient& client, const BuildFilter& filter) {
    ASCRequest request;
    request.path = "/v1/builds";
    request.query = {QueryParameter::filter("app", {filter.appID}), QueryParameter::sort({"-uploadedDate"}),
                     QueryParameter::include({"preReleaseVersion"}), QueryParameter::limit(kNewestBuilds)};
    if (filter.versionString) {
        request.query.push_back(QueryParameter::filter("preReleaseVersion.version", {*filter.versionString}));
    }
    if (filter.platform) {
        request.query.push_back(QueryParameter::filter("preReleaseVersion.platform", {*filter.platform}));
    }
    return buildsOf(client.send(request));
}

std::optional<ASCBuild> build(ASCClient& client, const std::string& id) {
    ASCRequest request;
    request.path = "/v1/builds/" + id;
    request.query = {QueryParameter::include({"preReleaseVersion"})};
    const auto found = buildsOf(client.send(request));
    return found.empty() ? std::nullopt : std::optional(found.front());
}

void setUsesNonExemptEncryption(ASCClient& client, bool usesNonExemptEncryption, const std::string& buildID) {
    update(client, {.type = "builds",
                    .id = buildID,
                    .attributes = {{"usesNonExemptEncryption", usesNonExemptEncryption}}});
}

}  // namespace ASC
}  // namespace kestrin
