// What a project is about: the content of the manifest "Kestrin.json".
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "KestrinCore/JSONDecoding.h"
#include "KestrinCore/UUID.h"
#include "KestrinModel/StoreLocale.h"
#include "KestrinModel/StorePlatform.h"

namespace kestrin {

// The tie to the app.
struct AppBinding {
    std::string bundleID;                 // may be empty
    std::optional<std::string> ascAppID;  // the App Store Connect ID; absent: never connected
    UnknownFields unknownFields;

    JSONValue toJSON() const;
    static AppBinding fromJSON(const JSONValue& value);

    bool operator==(const AppBinding&) const = default;
};

struct ProjectManifest {
    UUID projectID;
    AppBinding app;
    std::vector<StorePlatform> platforms;
    std::optional<StoreLocale> primaryLocale;
    std::vector<StoreLocale> locales;
    UnknownFields unknownFields;

    // With the format identifier and the schema version of this program; both are known members on reading, and
    // whoever reads a package has looked at them before. A missing or malformed "projectID" is a DecodingError.
    JSONValue toJSON() const;
    static ProjectManifest fromJSON(const JSONValue& value);

    bool operator==(const ProjectManifest&) const = default;
};

}  // namespace kestrin
