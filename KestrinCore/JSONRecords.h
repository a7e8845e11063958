// What the JSON forms of records share.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "KestrinCore/JSONDecoding.h"

namespace kestrin::JSONRecords {

// An absent value is not written, and doesn't take away an unknown member of that name, since there can't be one.
template <class Value>
void setOptional(JSONObject& members, const char* key, const std::optional<Value>& value) {
    if (value) members.insert_or_assign(key, JSONValue(*value));
}

// A list of identifiers (StorePlatform, StoreLocale) as the array of their raw values.
template <class Identifier>
JSONValue rawValues(const std::vector<Identifier>& identifiers) {
    JSONArray array;
    for (const auto& identifier : identifiers) array.emplace_back(identifier.rawValue);
    return array;
}

template <class Identifier>
std::vector<Identifier> identifiers(std::vector<std::string> rawValues) {
    std::vector<Identifier> result;
    for (auto& rawValue : rawValues) result.push_back({std::move(rawValue)});
    return result;
}

}  // namespace kestrin::JSONRecords
