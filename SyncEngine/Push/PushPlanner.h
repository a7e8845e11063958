// Turns a flat list of changes into an ordered list of writes.
//
// App Store Connect takes writes on resources: a resource takes several values at once, a child needs its parent's id,
// and a child can't exist before its parent. What is decided here and nowhere else: how changes are grouped into
// writes, whether a write creates or updates, and the order. Nothing is asked of the network, and nothing can fail.
//
// The order is the promise; each line is finished for all its items before the next begins, and items are in the
// order of their names:
//   categories
//   localizations of the app info
//   attributes of versions
//   localizations of versions
//   review details
//   custom pages, then tests, each with what stands below it
//   assets that have to be in the library
//   slots
// So parents go ahead of their children, all text ahead of all media, and all uploads ahead of the first slot that is
// touched: a failing upload leaves every slot as it was.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "ASCKit/Resources/AssetLibraryRefData.h"
#include "SyncEngine/Diff/ChangeSet.h"
#include "SyncEngine/Push/PushStep.h"
#include "SyncEngine/Remote/RemoteListing.h"

namespace kestrin::PushPlanner {

// From a media file's path as written in the project to the MD5 of its content.
using MediaHashes = std::map<std::string, std::string>;

// The whole plan. Changes of a platform that has no version at App Store Connect give no step, and without an app
// info neither do categories and texts of the app. A file whose hash isn't known goes out under "missing:{path}", so
// that it fails by name when its step runs.
std::vector<PushStep> plan(const std::vector<Change>& changes, const RemoteListing& remote,
                           const MediaHashes& hashes, const std::optional<AssetLibraryRefData>& refData);

// For callers that have only the ids.
std::vector<PushStep> plan(const std::vector<Change>& changes, const RemoteIDs& remote);

// The steps of custom pages and tests, without their media.
std::vector<PushStep> productPageSteps(const std::vector<Change>& changes, const RemoteListing& listing);

// The steps of all slots: first the assets, one per content however many slots it stands in, then the slots.
std::vector<PushStep> mediaSteps(const std::vector<Change>& changes, const RemoteListing& listing,
                                 const MediaHashes& hashes,
                                 const std::optional<AssetLibraryRefData>& refData);

}  // namespace kestrin::PushPlanner
