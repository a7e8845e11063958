// Looking at keyed values from several sides at once.
#pragma once

#include <initializer_list>
#include <string>
#include <vector>

#include "KestrinCore/MapLookup.h"
#include "SyncEngine/Content/ContentGraph.h"

namespace kestrin::FlatValue {

// The value of a key; "" when there is none.
inline const std::string& of(const ContentKey& key, const FlatValues& values) {
    return valueOrEmpty(values, key);
}

// Every key of any of them, ascending, once.
std::vector<ContentKey> keys(std::initializer_list<const FlatValues*> sides);

}  // namespace kestrin::FlatValue
