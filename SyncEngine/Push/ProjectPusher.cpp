#include "SyncEngine/Push/ProjectPusher.h"

#include <algorithm>

#include "SyncEngine/Diff/DiffEngine.h"
#include "SyncEngine/Pull/PullService.h"
#include "SyncEngine/Pull/SyncError.h"

namespace kestrin {
namespace {

bool changesMedia(const std::vector<Change>& changes) {
    return std::any_of(changes.begin(), changes.end(),
                       [](const Change& change) { return change.key.isMedia(); });
}

std::optional<AssetLibraryRefData> cachedRefData(const ProjectStateStore& store) {
    try {
        return store.refData();
    } catch (const Error&) {  // a cache: whatever is wrong with it, the service has the document
        return std::nullopt;
    }
}

}  // namespace

PushReview ProjectPusher::review(const Project& project, const MediaLocator& locate) {
    const auto& appID = project.manifest.app.ascAppID;
    if (!appID) throw SyncError(SyncError::NotConnected{});
    const auto& projectID = project.manifest.projectID;

    PushReview review;
    review.remote =
        PullService(client_).fetch(*appID, ProductPageSlugs(stateStore_.remoteIDs(projectID), project));
    review.base = stateStore_.base(projectID);
    review.media = resolvedMedia(project, *appID, locate);
    review.changeSet =
        DiffEngine::diff(review.media ? review.media->project : project, review.remote, review.base);
    if (changesMedia(review.changeSet.changes) || changesMedia(review.changeSet.conflicts))
        review.refData = refData();
    review.rateLimit = client_.rateLimit();
    return review;
}

std::optional<MediaResolution> ProjectPusher::resolvedMedia(const Project& project, const std::string& appID,
                                                            const MediaLocator& locate) {
    if (!locate || !MediaResolver::hasLocalFiles(project)) return std::nullopt;
    return MediaResolver::resolve(project, LibraryIndex::fetch(client_, appID), locate);
}

AssetLibraryRefData ProjectPusher::refData() {
    if (auto cached = cachedRefData(stateStore_)) return *std::move(cached);
    auto fetched = ASC::assetLibraryRefData(client_);
    try {
        stateStore_.saveRefData(fetched);
    } catch (const Error&) {  // the next run asks again
    }
    return fetched;
}

}  // namespace kestrin
