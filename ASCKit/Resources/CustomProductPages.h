// Custom product pages, their versions and localizations.
#pragma once

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "ASCKit/Resources/ResourceRequests.h"

namespace kestrin {

struct ASCCustomProductPage {
    std::string id;
    std::string name;  // may be empty
    std::optional<std::string> url;
    std::optional<bool> visible;

    explicit ASCCustomProductPage(const ResourceObject& resource);
    bool operator==(const ASCCustomProductPage&) const = default;
};

struct ASCCustomProductPageVersion {
    static const std::set<std::string> editableStates;

    std::string id;
    std::optional<std::string> version;
    std::string state;  // may be empty
    std::optional<std::string> deepLink;

    explicit ASCCustomProductPageVersion(const ResourceObject& resource);
    bool isEditable() const { return editableStates.contains(state); }
    bool operator==(const ASCCustomProductPageVersion&) const = default;
};

struct ASCCustomProductPageLocalization {
    std::string id;
    std::string locale;  // may be empty
    std::optional<std::string> promotionalText;

    explicit ASCCustomProductPageLocalization(const ResourceObject& resource);
    bool operator==(const ASCCustomProductPageLocalization&) const = default;
};

namespace ASC {

struct NewPageLocalization {
    std::string locale;
    std::optional<std::string> promotionalText = std::nullopt;
};

struct NewCustomProductPage {
    std::string appID;
    std::string name;
    std::optional<std::string> deepLink = std::nullopt;
    std::vector<NewPageLocalization> localizations = {};
};

// GET /v1/apps/{id}/appCustomProductPages, all pages.
std::vector<ASCCustomProductPage> customProductPages(ASCClient& client, const std::string& appID);

// GET /v1/appCustomProductPages/{id}/appCustomProductPageVersions, all pages.
std::vector<ASCCustomProductPageVersion> customProductPageVersions(ASCClient& client,
                                                                   const std::string& pageID);

// GET /v1/appCustomProductPageVersions/{id}/appCustomProductPageLocalizations, all pages.
std::vector<ASCCustomProductPageLocalization> customProductPageLocalizations(ASCClient& client,
                                                                             const std::string& versionID);

// POST /v1/appCustomProductPages with the page's first version and its localizations in the same request: they are
// `included` under temporary ids, which the relationships name (the API's inline creation). Their real ids aren't in
// the reply; they have to be read.
ASCCustomProductPage createCustomProductPage(ASCClient& client, const NewCustomProductPage& page);

// POST /v1/appCustomProductPageLocalizations
ASCCustomProductPageLocalization createCustomProductPageLocalization(ASCClient& client,
                                                                     const std::string& versionID,
                                                                     const NewPageLocalization& localization);

}  // namespace ASC
}  // namespace kestrin
