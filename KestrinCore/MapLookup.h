// Looking a value up without making it.
#pragma once

namespace kestrin {

// The value under `key`, valid as long as the entry is there; nullptr when there is none.
template <class Map>
const typename Map::mapped_type* valueIn(const Map& map, const typename Map::key_type& key) {
    const auto found = map.find(key);
    return found == map.end() ? nullptr : &found->second;
}

template <class Map>
typename Map::mapped_type* valueIn(Map& map, const typename Map::key_type& key) {
    const auto found = map.find(key);
    return found == map.end() ? nullptr : &found->second;
}

// The value under `key`; an empty one, which lives as long as the program, when there is none.
template <class Map>
const typename Map::mapped_type& valueOrEmpty(const Map& map, const typename Map::key_type& key) {
    static const typename Map::mapped_type kEmpty{};
    const auto* value = valueIn(map, key);
    return value ? *value : kEmpty;
}

}  // namespace kestrin
