#include "ASCKit/Resources/Apps.h"

#include "ASCKit/Resources/AppStoreState.h"
#include "ASCKit/Resources/ResourceLists.h"

namespace kestrin {
namespace {

QueryParameter appFields() {
    return QueryParameter::fields("apps", {"name", "bundleId", "sku", "primaryLocale"});
}

std::optional<ASCApp> firstApp(ASCClient& client, const ASCRequest& request) {
    const auto resource = ASC::one(client, request);
    return resource ? std::optional(ASCApp(*resource)) : std::nullopt;
}

}  // namespace

ASCApp::ASCApp(const ResourceObject& resource)
    : id(resource.id),
      name(resource.string("name").value_or("")),
      bundleID(resource.string("bundleId").value_or("")),
      sku(resource.string("sku")),
      primaryLocale(resource.string("primaryLocale")) {}

ASCAppInfo::ASCAppInfo(const ResourceObject& resource)
    : id(resource.id),
      state(resource.string({"state", "appStoreState"})),
      primaryCategoryID(resource.relatedID("primaryCategory")),
      secondaryCategoryID(resource.relatedID("secondaryCategory")) {}

bool ASCAppInfo::isEditable() const {
    return state && AppStoreState::editable.contains(*state);
}

namespace ASC {

std::vector<ASCApp> apps(ASCClient& client) {
    return listOf<ASCApp>(client, "/v1/apps", {appFields(), QueryParameter::limit(kPageSize)});
}

std::optional<ASCApp> appWithBundleID(ASCClient& client, const std::string& bundleID) {
    ASCRequest request;
    request.path = "/v1/apps";
    request.query = {QueryParameter::filter("bundleId", {bundleID}), appFields()};
    return firstApp(client, request);
}

std::optional<ASCApp> appWithID(ASCClient& client, const std::string& id) {
    ASCRequest request;
    request.path = "/v1/apps/" + id;
    request.query = {appFields()};
    return firstApp(client, request);
}

void validate(ASCClient& client) {
    ASCRequest request;
    request.path = "/v1/apps";
    request.query = {QueryParameter::fields("apps", {"name"}), QueryParameter::limit(1)};
    one(client, request);
}

std::vector<ASCAppInfo> appInfos(ASCClient& client, const std::string& appID) {
    return listOf<ASCAppInfo>(client, "/v1/apps/" + appID + "/appInfos",
                              {QueryParameter::include({"primaryCategory", "secondaryCategory"}),
                               QueryParameter::limit(kPageSize)});
}

std::vector<ASCLocalization> appInfoLocalizations(ASCClient& client, const std::string& appInfoID) {
    return listOf<ASCLocalization>(client, "/v1/appInfos/" + appInfoID + "/appInfoLocalizations");
}

}  // namespace ASC
}  // namespace kestrin
