// The identifiers and states that App Store Connect has for what a project names itself.
//
// Kept between runs outside the package ("remote-ids.json"), so that a page keeps its slug through any rename.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "KestrinCore/JSONDecoding.h"
#include "KestrinCore/UnicodeText.h"
#include "KestrinModel/Slug.h"
#include "KestrinModel/StoreLocale.h"
#include "KestrinModel/StorePlatform.h"

namespace kestrin {

using LocalizationIDs = std::map<StoreLocale, std::string>;

// Per locale and slot description the placements of the slot in their order.
using PlacementIDs = std::map<StoreLocale, text::TextMap<std::vector<std::string>>>;

struct RemoteVersion {
    std::string id;
    std::string state;  // "" when the service names none
    LocalizationIDs localizations;
    PlacementIDs placements;
    std::optional<std::string> reviewDetailID;
    std::optional<std::string> buildID;  // of the attached build

    JSONValue toJSON() const;
    static RemoteVersion fromJSON(const JSONValue& value);  // only `id` and `state` are required
    bool operator==(const RemoteVersion&) const = default;
};

struct RemotePage {
    std::string id;
    std::optional<std::string> url;  // the page's public address
    std::string versionID;           // of the version that the project mirrors
    std::string versionState;
    LocalizationIDs localizations;
    PlacementIDs placements;

    bool isEditable() const;

    JSONValue toJSON() const;
    static RemotePage fromJSON(const JSONValue& value);  // all but `url` required
    bool operator==(const RemotePage&) const = default;
};

struct RemoteTreatment {
    std::string id;
    LocalizationIDs localizations;
    PlacementIDs placements;

    JSONValue toJSON() const;
    static RemoteTreatment fromJSON(const JSONValue& value);  // all required
    bool operator==(const RemoteTreatment&) const = default;
};

struct RemoteExperiment {
    std::string id;
    std::string state;
    std::map<Slug, RemoteTreatment> treatments;

    JSONValue toJSON() const;
    static RemoteExperiment fromJSON(const JSONValue& value);  // all required
    bool operator==(const RemoteExperiment&) const = default;
};

struct RemoteIDs {
    std::optional<std::string> appInfoID;
    std::optional<std::string> appInfoState;
    LocalizationIDs appInfoLocalizations;
    std::map<StorePlatform, RemoteVersion> versions;
    std::map<Slug, RemotePage> pages;
    std::map<Slug, RemoteExperiment> experiments;

    JSONValue toJSON() const;
    static RemoteIDs fromJSON(const JSONValue& value);  // each may be missing
    bool operator==(const RemoteIDs&) const = default;
};

}  // namespace kestrin
