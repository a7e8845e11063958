// The three-way merge of a pull: what moved on App Store Connect comes in, what was edited here stays.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "KestrinModel/Project.h"
#include "SyncEngine/Content/ContentGraph.h"
#include "SyncEngine/Remote/RemoteListing.h"

namespace kestrin {

// A value that both sides moved apart; the project keeps the local one.
struct PullConflict {
    ContentKey key;
    std::string local;
    std::string remote;
    bool operator==(const PullConflict&) const = default;
};

struct PullResult {
    Project project;
    std::vector<ContentKey> updatedKeys;  // taken from the remote side, ascending
    std::vector<PullConflict> conflicts;  // ascending by key
    FlatValues base;                      // the new snapshot: the remote values
};

namespace PullMerger {

// `base` is the snapshot of the last agreement; nullopt on a first pull, where every differing value that the project
// has is a conflict.
//
// Values are compared as plain text here, not as the diff compares them: a mere change of line ends or trailing white
// space is merged as any other. The new base is the remote side for conflicts too, so that one left alone is an
// ordinary local change afterwards, ready to be pushed.
//
// The manifest follows: platforms of the remote side are added; locales in use are added behind those that stand
// there, with the primary one moved to the front. A first pull also drops the platforms and locales without content
// and takes the remote primary locale.
PullResult merge(Project local, const RemoteListing& remote, const std::optional<FlatValues>& base);

}  // namespace PullMerger

}  // namespace kestrin
