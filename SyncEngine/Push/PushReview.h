// All that is needed to decide about a push: a snapshot of both sides and what it comes to.
#pragma once

#include <cstddef>
#include <optional>
#include <set>
#include <vector>

#include "ASCKit/Resources/AssetLibraryRefData.h"
#include "ASCKit/Transport/RateLimitStatus.h"
#include "SyncEngine/Content/ContentGraph.h"
#include "SyncEngine/Diff/ChangeSet.h"
#include "SyncEngine/Media/MediaResolver.h"
#include "SyncEngine/Push/PushStep.h"
#include "SyncEngine/Remote/RemoteListing.h"

namespace kestrin {

// Consumed by one push; nothing checks that the remote side is still as it was.
struct PushReview {
    RemoteListing remote;
    ChangeSet changeSet;
    std::optional<FlatValues> base;            // absent: the project has no snapshot yet
    std::optional<RateLimitStatus> rateLimit;  // as last seen
    std::optional<MediaResolution> media;      // only for a project with local media that could be looked for
    std::optional<AssetLibraryRefData> refData;  // only where media are to be written

    // The writes for the selected keys. Changes and conflicts can be selected; drift and what is blocked never go out.
    std::vector<PushStep> steps(const std::set<ContentKey>& selection) const;

    // The assets without their bytes, by id, of those that stand in the listing there or that a local file would be
    // taken for: nothing else tells that a slot which is as it should be shows no picture.
    KnownAssets assetsAwaitingUpload() const;

    // About how many requests pushing them takes, the read-back included.
    std::size_t estimatedRequests(const std::set<ContentKey>& selection) const;
};

}  // namespace kestrin
