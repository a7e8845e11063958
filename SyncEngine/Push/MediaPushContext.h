// Brings media to a store page, in two moves: an asset is uploaded once into the app's asset library, and a slot of a
// localization is made to hold the wanted assets in the wanted order.
//
// All requests go out one after another. A failed request fails the step and leaves a slot as it then stands; the next
// push compares again and finishes it. Both operations throw MediaPushError and whatever the client throws.
#pragma once

#include <map>
#include <optional>
#include <stop_token>
#include <string>

#include "ASCKit/ASCClient.h"
#include "ASCKit/Resources/AssetLibraryRefData.h"
#include "KestrinCore/Clock.h"
#include "KestrinCore/LongWait.h"
#include "SyncEngine/Media/LibraryIndex.h"
#include "SyncEngine/Media/MediaResolver.h"
#include "SyncEngine/Push/PushStep.h"
#include "SyncEngine/Push/RunState.h"
#include "SyncEngine/Remote/RemoteListing.h"

namespace kestrin {

// Filled for each run by whoever starts it; there are no defaults.
struct MediaPushContext {
    std::string libraryID;  // the app's id
    MediaLocator locate;
    LibraryIndex index;       // the library as the review saw it
    KnownAssets knownAssets;  // those that the remote listing shows
    std::optional<AssetLibraryRefData> refData;
    std::map<std::string, std::string> hashes;  // by path as written in the project, MD5 of the content
    Seconds processingTimeout;  // how long an asset may be in processing, the requests not counted
    Seconds pollInterval;       // between two looks at it
    Sleep sleep;
    std::stop_token stop;  // ends the waits
    WaitNotes waitNotes;   // how they are told of when they last

    // The content `md5` as an asset of the library that is ready to be placed. One that the library has under this
    // digest is taken, and waited for if need be: nothing is uploaded twice. Otherwise the file is uploaded under a name
    // that carries the digest; an image with alpha as an opaque copy, unless the slot's matching specification allows
    // alpha. An empty `md5` is worked out from the file.
    //
    // MissingFile when there is nothing at `path`, NoUploadOperations when the service names no place to upload to, and
    // what waitUntilProcessed throws. A file that is no image or video is a MediaInspectorError, one that can't be made
    // opaque a FlattenError.
    RunState::Asset ensureAsset(const std::string& path, const std::string& md5, const PlacementSlot& slot,
                                ASCClient& client) const;

    // Returns when the asset is usable. Time is counted in poll intervals and read from no clock. ProcessingFailed when
    // the service gives the asset up; StillProcessing when the timeout is over, and then the asset stays in the library,
    // where the next push finds it.
    void waitUntilProcessed(const std::string& id, ASCLibraryAsset::Kind kind, const std::string& fileName,
                            ASCClient& client) const;

    // Makes the slot hold what is desired, with as few requests as that takes: none at all for a slot that is right as it
    // is. New placements come before deletions, so that a slot never stands empty, unless its limit has no room for both.
    //
    // MissingLocalization when nothing knows the parent. MissingFile, before any request, for a file that has no digest
    // in `hashes` or whose asset no earlier step of this run has ensured.
    void place(const SlotPlacement& placement, const RunState& state, ASCClient& client) const;
};

}  // namespace kestrin
