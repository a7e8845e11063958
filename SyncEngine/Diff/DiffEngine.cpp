#include "SyncEngine/Diff/DiffEngine.h"

#include "SyncEngine/Content/ContentValue.h"
#include "SyncEngine/Content/FlatValues.h"

namespace kestrin::DiffEngine {

ChangeSet diff(const Project& local, const RemoteListing& remote, const std::optional<FlatValues>& base) {
    const auto localValues = ContentGraph::flatten(local);
    const auto remoteValues = remote.values();
    const auto& baseValues = base ? *base : remoteValues;

    ChangeSet set;
    const auto classify = [&](const ContentKey& key, const std::string& here, const std::string& there,
                              const std::string& agreed) {
        if (ContentValue::areEquivalent(here, there)) return;
        Change change{key, there, here};
        const bool isFirstContact = !base && here.empty();
        if (isFirstContact || ContentValue::areEquivalent(here, agreed)) {
            set.drift.push_back(std::move(change));
        } else if (const auto reason = blockReason(key, local, remote)) {
            set.blocked.push_back({std::move(change), *reason});
        } else if (ContentValue::areEquivalent(there, agreed)) {
            set.changes.push_back(std::move(change));
        } else {
            set.conflicts.push_back(std::move(change));
        }
    };
    FlatValue::forEach(localValues, remoteValues, baseValues, classify);
    return set;
}

}  // namespace kestrin::DiffEngine
