#include "SyncEngine/Diff/DiffEngine.h"

#include "SyncEngine/Content/ContentValue.h"
#include "SyncEngine/Content/FlatValues.h"

namespace kestrin::DiffEngine {
ChangeSet diff(const Project& local, const RemoteListing& remote, const std::optional<FlatValues>& base) {
    const auto localValues = ContentGraph::flatten(local);
    const auto remoteValues = remote.values();
    const auto& baseValues = base ? *base : remoteValues;

    ChangeSet set;
    for (const auto& key : FlatValue::keys({&localValues, &remoteValues, &baseValues})) {
        Change change{key, FlatValue::of(key, remoteValues), FlatValue::of(key, localValues)};
        const auto& agreed = FlatValue::of(key, baseValues);
        if (ContentValue::areEquivalent(change.local, change.remote)) continue;
        const bool isFirstContact = !base && change.local.empty();
        if (isFirstContact || ContentValue::areEquivalent(change.local, agreed)) {
            set.drift.push_back(std::move(change));
        } else if (const auto reason = blockReason(key, local, remote)) {
            set.blocked.push_back({std::move(change), *reason});
        } else if (ContentValue::areEquivalent(change.remote, agreed)) {
            set.changes.push_back(std::move(change));
        } else {
            set.conflicts.push_back(std::move(change));
        }
    }
    return set;
}

}  // namespace kestrin::DiffEngine
