#include "SyncEngine/Push/PushReview.h"

#include <algorithm>
#include <iterator>
#include <string>

#include "KestrinCore/Error.h"
#include "SyncEngine/Media/AssetProcessing.h"
#include "SyncEngine/Pull/PullService.h"
#include "SyncEngine/Push/PushPlanner.h"

namespace kestrin {
namespace {

constexpr std::size_t kAssetRequests = 10;
constexpr std::size_t kPageCreationRequests = 3;
constexpr std::size_t kLibraryRequests = 2;

// What stands in only one of wanted and existing has to be created or deleted; one more request may order them.
std::size_t requestsOf(const SlotPlacement& placement) {
    std::set<std::string> wanted;
    std::set<std::string> existing;
    for (const auto& item : placement.desired) wanted.insert(item.token());
    for (const auto& one : placement.existing) existing.insert(MediaItem::remote(one.assetID).token());
    std::vector<std::string> difference;
    std::set_symmetric_difference(wanted.begin(), wanted.end(), existing.begin(), existing.end(),
                                  std::back_inserter(difference));
    return difference.size() + 1;
}

std::size_t requestsOf(const PushStep& step) {
    return std::visit(Overloaded{
                          [](const PushStep::EnsureAsset&) { return kAssetRequests; },
                          [](const PushStep::CreateCustomPage&) { return kPageCreationRequests; },
                          [](const PushStep::PlaceMedia& place) { return requestsOf(place.placement); },
                          [](const auto&) { return std::size_t{1}; },
                      },
                      step.action);
}

}  // namespace

std::vector<PushStep> PushReview::steps(const std::set<ContentKey>& selection) const {
    std::vector<Change> selected;
    for (const auto* candidates : {&changeSet.changes, &changeSet.conflicts}) {
        std::copy_if(candidates->begin(), candidates->end(), std::back_inserter(selected),
                     [&](const Change& change) { return selection.contains(change.key); });
    }
    return PushPlanner::plan(selected, remote, media ? media->hashes : PushPlanner::MediaHashes{}, refData);
}

KnownAssets PushReview::assetsAwaitingUpload() const {
    KnownAssets waiting;
    const auto look = [&](const ASCLibraryAsset& asset) {
        if (AssetProcessing::awaitsUpload(asset.state)) waiting.emplace(asset.id, asset);
    };
    for (const auto& [id, asset] : remote.assets) look(asset);
    if (!media) return waiting;
    for (const auto& [path, hash] : media->hashes) {
        if (const auto* asset = media->index.asset(hash)) look(*asset);
    }
    return waiting;
}

std::size_t PushReview::estimatedRequests(const std::set<ContentKey>& selection) const {
    std::size_t requests = PullService::estimatedRequests(remote) + (media ? kLibraryRequests : 0);
    for (const auto& step : steps(selection)) requests += requestsOf(step);
    return requests;
}

}  // namespace kestrin
