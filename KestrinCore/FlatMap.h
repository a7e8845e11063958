// Maps that are one block of memory. Quick to walk along and small, where each entry of a std::map is a block of its own
// somewhere else; slow to put an entry into the middle of. So a large one is made all at once.
#pragma once

#include <algorithm>
#include <boost/container/flat_map.hpp>
#include <cstddef>
#include <iterator>
#include <utility>

namespace kestrin {

template <class Key, class Value>
using FlatMap = boost::container::flat_map<Key, Value>;

// Which of several entries with one key a map gets.
enum class OfSameKey { first, last };

// Takes entries in any order. In ascending order, as most come, they are already where they belong.
template <class Map, OfSameKey kept>
class FlatMapBuilder {
 public:
    void reserve(std::size_t count) { entries_.reserve(count); }

    void add(typename Map::key_type key, typename Map::mapped_type value) {
        isAscending_ = isAscending_ && (entries_.empty() || entries_.back().first < key);
        entries_.emplace_back(std::move(key), std::move(value));
    }

    Map take() && {
        if (!isAscending_) sort();
        Map map;
        map.adopt_sequence(boost::container::ordered_unique_range, std::move(entries_));
        return map;
    }

 private:
    void sort() {
        const auto before = [](const auto& one, const auto& other) { return one.first < other.first; };
        const auto hasSameKey = [](const auto& one, const auto& other) { return one.first == other.first; };
        std::stable_sort(entries_.begin(), entries_.end(), before);
        if constexpr (kept == OfSameKey::first) {
            entries_.erase(std::unique(entries_.begin(), entries_.end(), hasSameKey), entries_.end());
        } else {
            const auto rest = std::unique(entries_.rbegin(), entries_.rend(), hasSameKey);
            entries_.erase(entries_.begin(), rest.base());
        }
    }

    typename Map::sequence_type entries_;
    bool isAscending_ = true;
};

}  // namespace kestrin
