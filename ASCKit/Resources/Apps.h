// Apps and what all platforms of an app share.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "ASCKit/Resources/Localization.h"
#include "ASCKit/Resources/ResourceRequests.h"

namespace kestrin {

struct ASCApp {
    std::string id;
    std::string name;      // may be empty
    std::string bundleID;  // may be empty
    std::optional<std::string> sku;
    std::optional<std::string> primaryLocale;

    explicit ASCApp(const ResourceObject& resource);
    bool operator==(const ASCApp&) const = default;
};

struct ASCAppInfo {
    std::string id;
    std::optional<std::string> state;
    std::optional<std::string> primaryCategoryID;
    std::optional<std::string> secondaryCategoryID;

    explicit ASCAppInfo(const ResourceObject& resource);
    bool isEditable() const;  // an absent state isn't
    bool operator==(const ASCAppInfo&) const = default;
};

namespace ASC {

// GET /v1/apps, all pages.
std::vector<ASCApp> apps(ASCClient& client);

// GET /v1/apps, the one with this bundle ID; nothing when the key sees none.
std::optional<ASCApp> appWithBundleID(ASCClient& client, const std::string& bundleID);

// GET /v1/apps/{id}. An unknown id is HTTP 404.
std::optional<ASCApp> appWithID(ASCClient& client, const std::string& id);

// GET /v1/apps, one of them: a cheap proof that the key works. Throws what the request throws.
void validate(ASCClient& client);

// GET /v1/apps/{id}/appInfos, all pages.
std::vector<ASCAppInfo> appInfos(ASCClient& client, const std::string& appID);

// GET /v1/appInfos/{id}/appInfoLocalizations, all pages.
std::vector<ASCLocalization> appInfoLocalizations(ASCClient& client, const std::string& appInfoID);

}  // namespace ASC
}  // namespace kestrin
