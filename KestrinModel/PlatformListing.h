// The listing of one platform.
#pragma once

#include <optional>
#include <string>

#include "KestrinCore/JSONDecoding.h"
#include "KestrinModel/LocalizedFields.h"
#include "KestrinModel/MediaItem.h"

namespace kestrin {

// "version.json"
struct VersionContent {
    std::optional<std::string> versionString;
    std::optional<std::string> copyright;
    std::optional<std::string> releaseType;
    UnknownFields unknownFields;

    JSONValue toJSON() const;
    static VersionContent fromJSON(const JSONValue& value);

    bool operator==(const VersionContent&) const = default;
};

// "review.json": what App Review needs. The password of the demo account has no place here on purpose: a project
// in version control never holds it.
struct ReviewDetailContent {
    std::optional<std::string> contactFirstName;
    std::optional<std::string> contactLastName;
    std::optional<std::string> contactPhone;
    std::optional<std::string> contactEmail;
    std::optional<bool> demoAccountRequired;
    std::optional<std::string> demoAccountName;
    std::optional<std::string> notes;
    UnknownFields unknownFields;

    // Everything absent. An empty text in a field isn't absent here, and an unknown member is content.
    bool isEmpty() const { return *this == ReviewDetailContent{}; }

    JSONValue toJSON() const;
    static ReviewDetailContent fromJSON(const JSONValue& value);

    bool operator==(const ReviewDetailContent&) const = default;
};

struct PlatformListing {
    VersionContent version;
    LocalizedTexts locales;
    LocalizedMedia media;
    ReviewDetailContent review;

    bool operator==(const PlatformListing&) const = default;
};

}  // namespace kestrin
