// Looking a value up without making it.
#pragma once

#include <map>

namespace kestrin {

// The value under `key`, valid as long as the map isn't changed; nullptr when there is none.
template <class Key, class Value, class Order>
const Value* valueIn(const std::map<Key, Value, Order>& map, const Key& key) {
    const auto found = map.find(key);
    return found == map.end() ? nullptr : &found->second;
}

}  // namespace kestrin
