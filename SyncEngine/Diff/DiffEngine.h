// Says what each difference between the local project and App Store Connect means.
//
// Pure functions: no network, no clock, no state. An absent value and "" are the same value; two values are the same
// when ContentValue::areEquivalent says so.
//
//   local is base's   remote is base's   outcome (for a value that differs between local and remote)
//   yes               no                 drift
//   no                yes                change, or blocked
//   no                no                 conflict, or blocked
//
// What both sides agree on is in sync, whatever the base says. Drift is never blocked: nothing is written for it.
#pragma once

#include <optional>

#include "KestrinModel/Project.h"
#include "SyncEngine/Content/ContentGraph.h"
#include "SyncEngine/Diff/ChangeSet.h"
#include "SyncEngine/Remote/RemoteListing.h"

namespace kestrin::DiffEngine {

// `base` is what both sides last agreed on. nullopt (there is no snapshot yet) isn't an empty snapshot: without one
// the remote side stands in for it, and a value that only the remote side has is drift, never a deletion.
ChangeSet diff(const Project& local, const RemoteListing& remote, const std::optional<FlatValues>& base);

// Why the key can't be written now; nullopt when it can. The first rule that applies gives the reason. Two rules look
// uneven and are meant: a version's promotional text can be written in any state of the version, and a locale that
// was emptied here is refused as removed only where the service has that localization.
std::optional<BlockReason> blockReason(const ContentKey& key, const Project& local,
                                       const RemoteListing& remote);

}  // namespace kestrin::DiffEngine
