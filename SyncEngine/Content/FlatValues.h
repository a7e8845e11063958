// Looking at keyed values from several sides at once.
#pragma once

#include <functional>
#include <string>

#include "KestrinCore/MapLookup.h"
#include "SyncEngine/Content/ContentGraph.h"

namespace kestrin::FlatValue {

// The value of a key; "" when there is none.
inline const std::string& of(const ContentKey& key, const FlatValues& values) {
    return valueOrEmpty(values, key);
}

// Every key of any of the three sides, ascending, once, with its value on each side, "" where there is none. In one walk
// along all three: looking every key up anew takes longer, and ever more so as the listing grows.
using Visit = std::function<void(const ContentKey&, const std::string& first, const std::string& second,
                                 const std::string& third)>;
void forEach(const FlatValues& first, const FlatValues& second, const FlatValues& third, const Visit& visit);

}  // namespace kestrin::FlatValue
