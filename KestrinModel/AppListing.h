// The part of a listing that all platforms share.
#pragma once

#include <optional>
#include <string>

#include "KestrinCore/JSONDecoding.h"
#include "KestrinModel/LocalizedFields.h"

namespace kestrin {

// "info.json": the categories, in App Store Connect's identifiers.
struct AppInfoContent {
    std::optional<std::string> primaryCategory;
    std::optional<std::string> secondaryCategory;
    UnknownFields unknownFields;

    JSONValue toJSON() const;
    static AppInfoContent fromJSON(const JSONValue& value);

    bool operator==(const AppInfoContent&) const = default;
};

struct AppListing {
    AppInfoContent info;
    LocalizedTexts locales;

    bool operator==(const AppListing&) const = default;
};

}  // namespace kestrin
