// Looking at keyed values from several sides at once.
#pragma once

#include <initializer_list>
#include <string>
#include <vector>

#include "SyncEngine/Content/ContentGraph.h"

namespace kestrin::FlatValue {

// The value of a key; "" when there is none.
inline const std::string& of(const ContentKey& key, const FlatValues& values) {
    static const std::string kNone;
    const auto found = values.find(key);
    return found == values.end() ? kNone : found->second;
}

// Every key of any of them, ascending, once.
std::vector<ContentKey> keys(std::initializer_list<const FlatValues*> sides);

}  // namespace kestrin::FlatValue
