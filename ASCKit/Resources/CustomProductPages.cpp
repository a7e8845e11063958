#include "ASCKit/Resources/CustomProductPages.h"

#include "ASCKit/Resources/AttributeReading.h"
#include "ASCKit/Resources/ResourceLists.h"
#include "KestrinCore/JSONRecords.h"

namespace kestrin {

using JSONRecords::setOptional;

const std::set<std::string> ASCCustomProductPageVersion::editableStates = {"PREPARE_FOR_SUBMISSION",
                                                                           "READY_FOR_REVIEW", "REJECTED"};

ASCCustomProductPage::ASCCustomProductPage(const ResourceObject& resource)
    : id(resource.id),
      name(resource.string("name").value_or("")),
      url(resource.string("url")),
      visible(AttributeReading::boolean(resource.attributes, "visible")) {}

ASCCustomProductPageVersion::ASCCustomProductPageVersion(const ResourceObject& resource)
    : id(resource.id),
      version(resource.string("version")),
      state(resource.string("state").value_or("")),
      deepLink(resource.string("deepLink")) {}

ASCCustomProductPageLocalization::ASCCustomProductPageLocalization(const ResourceObject& resource)
    : id(resource.id),
      locale(resource.string("locale").value_or("")),
      promotionalText(resource.string("promotionalText")) {}

namespace ASC {
namespace {

constexpr const char* kPages = "appCustomProductPages";
constexpr const char* kVersions = "appCustomProductPageVersions";
constexpr const char* kLocalizations = "appCustomProductPageLocalizations";
constexpr const char* kTemporaryVersion = "${version}";

std::string temporaryID(const NewPageLocalization& localization) {
    return "${localization-" + localization.locale + "}";
}

JSONObject attributesOf(const NewPageLocalization& localization) {
    JSONObject attributes{{"locale", localization.locale}};
    setOptional(attributes, "promotionalText", localization.promotionalText);
    return attributes;
}

JSONObject firstVersionOf(const NewCustomProductPage& page) {
    std::vector<std::string> ids;
    for (const auto& localization : page.localizations) ids.push_back(temporaryID(localization));
    JSONObject version{{"type", kVersions},
                       {"id", kTemporaryVersion},
                       {"relationships", JSONObject{{kLocalizations, relationship(kLocalizations, ids)}}}};
    if (page.deepLink) version.emplace("attributes", JSONObject{{"deepLink", *page.deepLink}});
    return version;
}

}  // namespace

std::vector<ASCCustomProductPage> customProductPages(ASCClient& client, const std::string& appID) {
    return listOf<ASCCustomProductPage>(client, "/v1/apps/" + appID + "/appCustomProductPages");
}

std::vector<ASCCustomProductPageVersion> customProductPageVersions(ASCClient& client,
                                                                   const std::string& pageID) {
    return listOf<ASCCustomProductPageVersion>(
        client, "/v1/appCustomProductPages/" + pageID + "/appCustomProductPageVersions");
}

std::vector<ASCCustomProductPageLocalization> customProductPageLocalizations(ASCClient& client,
                                                                             const std::string& versionID) {
    return listOf<ASCCustomProductPageLocalization>(
        client, "/v1/appCustomProductPageVersions/" + versionID + "/appCustomProductPageLocalizations");
}

ASCCustomProductPage createCustomProductPage(ASCClient& client, const NewCustomProductPage& page) {
    JSONArray included{firstVersionOf(page)};
    for (const auto& localization : page.localizations) {
        included.emplace_back(JSONObject{{"type", kLocalizations},
                                         {"id", temporaryID(localization)},
                                         {"attributes", attributesOf(localization)}});
    }
    const std::vector<std::string> versions = {kTemporaryVersion};
    return ASCCustomProductPage(
        create(client, {.type = kPages,
                        .attributes = {{"name", page.name}},
                        .relationships = {{"app", relationship("apps", page.appID)},
                                          {kVersions, relationship(kVersions, versions)}},
                        .included = std::move(included)}));
}

ASCCustomProductPageLocalization createCustomProductPageLocalization(
    ASCClient& client, const std::string& versionID, const NewPageLocalization& localization) {
    return ASCCustomProductPageLocalization(create(
        client, {.type = kLocalizations,
                 .attributes = attributesOf(localization),
                 .relationships = {{"appCustomProductPageVersion", relationship(kVersions, versionID)}}}));
}

}  // namespace ASC
}  // namespace kestrin
