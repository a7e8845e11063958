#include "SyncEngine/Content/FlatValues.h"

#include <algorithm>
#include <iterator>

namespace kestrin::FlatValue {

std::vector<ContentKey> keys(std::initializer_list<const FlatValues*> sides) {
    std::vector<ContentKey> all;
    for (const auto* side : sides) {
        std::vector<ContentKey> merged;
        std::vector<ContentKey> own;
        for (const auto& [key, value] : *side) own.push_back(key);
        std::set_union(all.begin(), all.end(), own.begin(), own.end(), std::back_inserter(merged));
        all = std::move(merged);
    }
    return all;
}

}  // namespace kestrin::FlatValue
