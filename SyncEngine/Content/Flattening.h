// The values of a project on their way into one map.
#pragma once

#include <string>
#include <utility>

#include "SyncEngine/Content/ContentGraph.h"

namespace kestrin::ContentGraph {

// Takes values in any order, and sorts them once they are all there: to look for the place of each in a growing map takes
// longer, and ever longer as the listing grows.
class Flattening {
 public:
    // Keeps one value, unless it is empty or its key has one already.
    void add(ContentKey key, std::string value) {
        if (!value.empty()) values_.add(std::move(key), std::move(value));
    }

    FlatValues take() && { return std::move(values_).take(); }

 private:
    FlatMapBuilder<FlatValues, OfSameKey::first> values_;
};

}  // namespace kestrin::ContentGraph
