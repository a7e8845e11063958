// The attributes of a listing that aren't localized texts: what a ContentKey names besides fields and media.
//
// Six enumerations with a raw value per case, which is the case's name; raw values are printed and stored as parts
// of ContentKey::id, so a case is never renamed.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

namespace kestrin {

enum class AppInfoAttribute { primaryCategory, secondaryCategory };

enum class VersionAttribute { versionString, copyright, releaseType };

enum class ReviewAttribute {
    contactFirstName,
    contactLastName,
    contactPhone,
    contactEmail,
    demoAccountRequired,
    demoAccountName,
    notes,
};

enum class PageAttribute { name, visible, deepLink };

enum class ExperimentAttribute { name, platform, trafficProportion };

enum class TreatmentAttribute { name, appIconName };

// The raw values of an attribute enumeration, in the order of its cases.
template <class Attribute>
struct AttributeTable;

template <>
struct AttributeTable<AppInfoAttribute> {
    static constexpr std::array<std::string_view, 2> rawValues = {"primaryCategory", "secondaryCategory"};
};

template <>
struct AttributeTable<VersionAttribute> {
    static constexpr std::array<std::string_view, 3> rawValues = {"versionString", "copyright",
                                                                  "releaseType"};
};

template <>
struct AttributeTable<ReviewAttribute> {
    static constexpr std::array<std::string_view, 7> rawValues = {
        "contactFirstName",    "contactLastName", "contactPhone", "contactEmail",
        "demoAccountRequired", "demoAccountName", "notes"};
};

template <>
struct AttributeTable<PageAttribute> {
    static constexpr std::array<std::string_view, 3> rawValues = {"name", "visible", "deepLink"};
};

template <>
struct AttributeTable<ExperimentAttribute> {
    static constexpr std::array<std::string_view, 3> rawValues = {"name", "platform", "trafficProportion"};
};

template <>
struct AttributeTable<TreatmentAttribute> {
    static constexpr std::array<std::string_view, 2> rawValues = {"name", "appIconName"};
};

template <class T>
concept ContentAttribute = requires {
    AttributeTable<T>::rawValues;
};

template <ContentAttribute Attribute>
constexpr std::string_view rawValue(Attribute attribute) {
    return AttributeTable<Attribute>::rawValues[static_cast<std::size_t>(attribute)];
}

// Every case in its order.
template <ContentAttribute Attribute>
inline constexpr auto allCases = [] {
    std::array<Attribute, AttributeTable<Attribute>::rawValues.size()> cases{};
    for (std::size_t i = 0; i < cases.size(); ++i) cases[i] = static_cast<Attribute>(i);
    return cases;
}();

// The case with this raw value, if there is one.
template <ContentAttribute Attribute>
constexpr std::optional<Attribute> attribute(std::string_view rawValue) {
    for (const auto candidate : allCases<Attribute>) {
        if (kestrin::rawValue(candidate) == rawValue) return candidate;
    }
    return std::nullopt;
}

}  // namespace kestrin
