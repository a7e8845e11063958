// Forgiving look-ups in a resource's attributes: the server is believed only where it says what is asked for, and
// a value of another type is none.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "KestrinCore/JSONValue.h"
#include "KestrinCore/MapLookup.h"

namespace kestrin::AttributeReading {

std::optional<std::string> text(const JSONObject& object, const std::string& key);
std::string textOrEmpty(const JSONObject& object, const std::string& key);
std::optional<std::int64_t> integer(const JSONObject& object, const std::string& key);
std::optional<bool> boolean(const JSONObject& object, const std::string& key);

// The nested object; an empty one when there is none. Valid as long as `object`.
const JSONObject& objectOrEmpty(const JSONObject& object, const std::string& key);

bool isList(const JSONObject& object, const std::string& key);

// The texts in a list; other items are left out, and a value that isn't a list has none.
std::vector<std::string> strings(const JSONObject& object, const std::string& key);

// Calls `use` with every object in a list, in order.
template <class Use>
void forEachObject(const JSONObject& object, const std::string& key, Use&& use) {
    const auto* value = valueIn(object, key);
    const auto* list = value ? value->arrayValue() : nullptr;
    if (!list) return;
    for (const auto& item : *list) {
        if (const auto* itemObject = item.objectValue()) use(*itemObject);
    }
}

}  // namespace kestrin::AttributeReading
