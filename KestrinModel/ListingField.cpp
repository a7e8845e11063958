#include "KestrinModel/ListingField.h"

namespace kestrin {
namespace {

using enum ListingField;
using enum ListingFieldInfo::Parent;

constexpr bool yes = true;
constexpr bool no = false;
constexpr std::nullopt_t none = std::nullopt;

constexpr ListingFieldInfo kFields[] = {
    // field, raw value, parent, text file, limit, multiline, URL, editable when live
    {name, "name", appInfoLocalization, "", 30, no, no, no},
    {subtitle, "subtitle", appInfoLocalization, "", 30, no, no, no},
    {privacyPolicyUrl, "privacyPolicyUrl", appInfoLocalization, "", none, no, yes, no},
    {privacyChoicesUrl, "privacyChoicesUrl", appInfoLocalization, "", none, no, yes, no},
    {description, "description", appStoreVersionLocalization, "description.txt", 4000, yes, no, no},
    {keywords, "keywords", appStoreVersionLocalization, "", 100, no, no, no},
    {promotionalText, "promotionalText", appStoreVersionLocalization, "promotional-text.txt", 170, yes, no,
     yes},
    {whatsNew, "whatsNew", appStoreVersionLocalization, "whats-new.txt", 4000, yes, no, no},
    {supportUrl, "supportUrl", appStoreVersionLocalization, "", none, no, yes, no},
    {marketingUrl, "marketingUrl", appStoreVersionLocalization, "", none, no, yes, no},
};

}  // namespace

const ListingFieldInfo& info(ListingField field) {
    return kFields[static_cast<std::size_t>(field)];
}

std::optional<ListingField> listingField(std::string_view rawValue) {
    for (const auto& row : kFields) {
        if (row.rawValue == rawValue) return row.field;
    }
    return std::nullopt;
}

namespace ListingFields {

constinit const std::array<ListingField, 10> all = {
    name,     subtitle,        privacyPolicyUrl, privacyChoicesUrl, description,
    keywords, promotionalText, whatsNew,         supportUrl,        marketingUrl};
constinit const std::span<const ListingField> appInfo(all.begin(), 4);
constinit const std::span<const ListingField> version(all.begin() + 4, 6);
constinit const std::array<ListingField, 3> versionJSON = {keywords, supportUrl, marketingUrl};

}  // namespace ListingFields

}  // namespace kestrin
