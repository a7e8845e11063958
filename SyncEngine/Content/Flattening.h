// The values of a project on their way into one map.
#pragma once

#include <iterator>
#include <string>
#include <utility>

#include "SyncEngine/Content/ContentGraph.h"

namespace kestrin::ContentGraph {

// Takes values in any order. What is flattened comes in runs of ascending keys, so each is looked for beside the one
// before it first, where two comparisons of keys that are still at hand find its place; a search from the root takes
// many, of keys all over the memory, and ever more as the listing grows.
class Flattening {
 public:
    Flattening() = default;
    Flattening(const Flattening&) = delete;
    Flattening& operator=(const Flattening&) = delete;

    // Keeps one value, unless it is empty or its key has one already.
    void add(ContentKey key, std::string value) {
        if (value.empty()) return;
        const auto beside = last_ == values_.end() ? last_ : std::next(last_);
        last_ = values_.emplace_hint(beside, std::move(key), std::move(value));
    }

    FlatValues take() && { return std::move(values_); }

 private:
    FlatValues values_;
    FlatValues::iterator last_ = values_.end();
};

}  // namespace kestrin::ContentGraph
