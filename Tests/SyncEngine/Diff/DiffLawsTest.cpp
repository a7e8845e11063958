#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <set>

#include "SyncEngine/Content/ContentValue.h"
#include "SyncEngine/Diff/DiffEngine.h"
#include "Tests/SyncEngine/Content/AnySides.h"
#include "Tests/SyncEngine/Remote/ListingOf.h"

namespace kestrin {
namespace {

RC_GTEST_PROP(DiffLaws, NoKeyIsInTwoListsOfADiffAndKeysInNoneAreEquivalent, ()) {
    const auto sides = *anySides();
    const auto remote = listingOf(sides.remote);
    const auto set = DiffEngine::diff(sides.local, remote, sides.base);
    std::set<ContentKey> seen;
    const auto see = [&](const Change& change) { RC_ASSERT(seen.insert(change.key).second); };
    for (const auto& change : set.changes) see(change);
    for (const auto& change : set.conflicts) see(change);
    for (const auto& change : set.drift) see(change);
    for (const auto& blocked : set.blocked) see(blocked.change);
    auto unexplained = seen;
    for (const auto* side : {&sides.local, &sides.remote}) {
        for (const auto& [key, value] : ContentGraph::flatten(*side)) {
            const auto local = ContentGraph::value(key, sides.local);
            const auto other = ContentGraph::value(key, sides.remote);
            RC_ASSERT(seen.contains(key) != ContentValue::areEquivalent(local, other));
            unexplained.erase(key);
        }
    }
    RC_ASSERT(unexplained.empty());  // nothing is listed that neither side has
}

RC_GTEST_PROP(DiffLaws, WhenOnlyTheRemoteSideMovedThereIsOnlyDrift, ()) {
    const auto sides = *anySides();
    const auto set =
        DiffEngine::diff(sides.local, listingOf(sides.remote), ContentGraph::flatten(sides.local));
    RC_ASSERT(set.changes.empty() && set.conflicts.empty() && set.blocked.empty());
}

RC_GTEST_PROP(DiffLaws, WhenOnlyTheLocalSideMovedThereIsNeitherDriftNorConflict, ()) {
    const auto sides = *anySides();
    const auto set =
        DiffEngine::diff(sides.local, listingOf(sides.remote), ContentGraph::flatten(sides.remote));
    RC_ASSERT(set.drift.empty() && set.conflicts.empty());
}

RC_GTEST_PROP(DiffLaws, WithoutASnapshotDriftIsWhatIsEmptyHereAndNothingIsAConflict, ()) {
    const auto sides = *anySides();
    const auto set = DiffEngine::diff(sides.local, listingOf(sides.remote), std::nullopt);
    RC_ASSERT(set.conflicts.empty());
    for (const auto& change : set.drift) RC_ASSERT(change.local.empty());
    for (const auto& change : set.changes) RC_ASSERT(!change.local.empty());
    for (const auto& [change, reason] : set.blocked) RC_ASSERT(!change.local.empty());
}

RC_GTEST_PROP(DiffLaws, EqualSidesAreInSyncWhateverTheBase, ()) {
    const auto sides = *anySides();
    RC_ASSERT(DiffEngine::diff(sides.local, listingOf(sides.local), sides.base).isInSync());
}

RC_GTEST_PROP(DiffLaws, WhatIsBlockedHasTheReasonOfItsKeyAndNothingElseHasOne, ()) {
    const auto sides = *anySides();
    const auto remote = listingOf(sides.remote);
    const auto set = DiffEngine::diff(sides.local, remote, sides.base);
    for (const auto& [change, reason] : set.blocked)
        RC_ASSERT(DiffEngine::blockReason(change.key, sides.local, remote) == reason);
    for (const auto* list : {&set.changes, &set.conflicts}) {
        for (const auto& change : *list) RC_ASSERT(!DiffEngine::blockReason(change.key, sides.local, remote));
    }
}

}  // namespace
}  // namespace kestrin
