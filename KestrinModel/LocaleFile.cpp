#include "KestrinModel/LocaleFile.h"

#include <algorithm>

#include "KestrinCore/StableJSON.h"

namespace kestrin::LocaleFile {
namespace {

bool isAllowed(std::optional<ListingField> field, std::span<const ListingField> allowed) {
    return field && std::find(allowed.begin(), allowed.end(), *field) != allowed.end();
}

}  // namespace

LocalizedFields decode(std::string_view bytes, std::span<const ListingField> allowed) {
    auto document = StableJSON::decode(bytes);
    auto* members = document.objectValue();
    if (!members) throw DecodingError({}, "expected an object");
    LocalizedFields fields;
    for (auto& [key, value] : *members) {
        const auto field = listingField(key);
        const auto* string = value.stringValue();
        if (string && isAllowed(field, allowed)) {
            fields.set(*field, *string);
        } else {
            fields.unknownFields.emplace(key, std::move(value));
        }
    }
    return fields;
}

std::string encode(const LocalizedFields& fields, std::span<const ListingField> allowed) {
    auto members = fields.unknownFields;
    for (const auto field : allowed) {
        if (!fields[field].empty()) members.insert_or_assign(std::string(rawValue(field)), fields[field]);
    }
    return StableJSON::encode(members);
}

bool hasContent(const LocalizedFields& fields, std::span<const ListingField> allowed) {
    const auto hasText = [&](ListingField field) { return !fields[field].empty(); };
    return !fields.unknownFields.empty() || std::any_of(allowed.begin(), allowed.end(), hasText);
}

}  // namespace kestrin::LocaleFile
