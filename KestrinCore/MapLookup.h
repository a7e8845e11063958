// Looking a value up without making it.
#pragma once

#include <map>

namespace kestrin {

// The value under `key`, valid as long as the entry is there; nullptr when there is none.
template <class Key, class Value, class Order>
const Value* valueIn(const std::map<Key, Value, Order>& map, const Key& key) {
    const auto found = map.find(key);
    return found == map.end() ? nullptr : &found->second;
}

template <class Key, class Value, class Order>
Value* valueIn(std::map<Key, Value, Order>& map, const Key& key) {
    const auto found = map.find(key);
    return found == map.end() ? nullptr : &found->second;
}

// The value under `key`; an empty one, which lives as long as the program, when there is none.
template <class Key, class Value, class Order>
const Value& valueOrEmpty(const std::map<Key, Value, Order>& map, const Key& key) {
    static const Value kEmpty{};
    const auto* value = valueIn(map, key);
    return value ? *value : kEmpty;
}

}  // namespace kestrin
