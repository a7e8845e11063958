// Changes to be planned, written as the ids of their keys.
#pragma once

#include <initializer_list>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "SyncEngine/Diff/ChangeSet.h"

namespace kestrin {

inline ContentKey keyOf(const std::string& id) {
    const auto key = ContentKey::fromID(id);
    if (!key) throw std::invalid_argument("no key: " + id);
    return *key;
}

// What the project holds, by key; App Store Connect holds something else.
inline std::vector<Change> changesTo(std::initializer_list<std::pair<const char*, const char*>> localValues) {
    std::vector<Change> changes;
    for (const auto& [id, local] : localValues) changes.push_back({keyOf(id), "as it was", local});
    return changes;
}

}  // namespace kestrin
