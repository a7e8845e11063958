// The ten localized texts of a store listing, and what the rest of the program has to know about each.
#pragma once

#include <array>
#include <compare>
#include <cstddef>
#include <optional>
#include <span>
#include <string_view>

namespace kestrin {

enum class ListingField {
    name,
    subtitle,
    privacyPolicyUrl,
    privacyChoicesUrl,
    description,
    keywords,
    promotionalText,
    whatsNew,
    supportUrl,
    marketingUrl,
};

// One row per field. The raw value is the API's attribute name and the member's name in JSON files.
struct ListingFieldInfo {
    enum class Parent { appInfoLocalization, appStoreVersionLocalization };  // the API resource that holds it

    ListingField field;
    std::string_view rawValue;
    Parent parent;
    std::string_view textFile;         // its file in a locale's folder; "" for a field stored as JSON
    std::optional<std::size_t> limit;  // in grapheme clusters
    bool isMultiline;
    bool isURL;
    bool isEditableWhenLive;  // also while the version is on sale

    bool isStoredAsJSON() const { return textFile.empty(); }
};

const ListingFieldInfo& info(ListingField field);

inline std::string_view rawValue(ListingField field) {
    return info(field).rawValue;
}
inline ListingFieldInfo::Parent parent(ListingField field) {
    return info(field).parent;
}

// The field with this raw value, if there is one.
std::optional<ListingField> listingField(std::string_view rawValue);

namespace ListingFields {

// In the order of the enumeration.
extern const std::array<ListingField, 10> all;
extern const std::span<const ListingField> appInfo;    // those of an app info localization: the first four
extern const std::span<const ListingField> version;    // those of a version localization: the other six
extern const std::array<ListingField, 3> versionJSON;  // of the version's, those that aren't text files

}  // namespace ListingFields

}  // namespace kestrin
