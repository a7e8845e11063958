#include "SyncEngine/Push/ProjectPusher.h"

#include <algorithm>

#include "SyncEngine/Content/ContentValue.h"
#include "SyncEngine/Content/FlatValues.h"
#include "SyncEngine/Diff/DiffEngine.h"
#include "SyncEngine/Pull/ConnectedApp.h"
#include "SyncEngine/Pull/PullService.h"
#include "SyncEngine/Push/PushError.h"
#include "SyncEngine/Push/PushPlanner.h"

namespace kestrin {
namespace {

constexpr Seconds kProcessingTimeout = std::chrono::minutes(15);
constexpr Seconds kPollInterval = std::chrono::seconds(5);

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

// Moves the base for the keys that read back as they were sent; the others are the result.
std::vector<Change> settle(const std::vector<PushStep>& completed, const FlatValues& local,
                           const FlatValues& remote, FlatValues& base) {
    std::vector<Change> mismatches;
    for (const auto& step : completed) {
        for (const auto& key : step.keys) {
            const auto& sent = FlatValue::of(key, local);
            const auto& got = FlatValue::of(key, remote);
            if (!ContentValue::areEquivalent(sent, got)) {
                mismatches.push_back({key, got, sent});
            } else if (remote.contains(key)) {
                base.insert_or_assign(key, got);
            } else {
                base.erase(key);
            }
        }
    }
    return mismatches;
}

}  // namespace

struct ProjectPusher::Outcome {
    std::vector<PushStep> completed;
    std::optional<PushFailure> failure;
};

PushReview ProjectPusher::review(const Project& project, const MediaLocator& locate) {
    const auto& appID = connectedAppID(project);
    const auto& projectID = project.manifest.projectID;

    PushReview review;
    review.remote =
        PullService(client_).fetch(appID, ProductPageSlugs(stateStore_.remoteIDs(projectID), project));
    review.base = stateStore_.base(projectID);
    review.media = resolvedMedia(project, appID, locate);
    review.changeSet =
        DiffEngine::diff(review.media ? review.media->project : project, review.remote, review.base);
    if (changesMedia(review.changeSet.changes) || changesMedia(review.changeSet.conflicts))
        review.refData = refData();
    review.rateLimit = client_.rateLimit();
    return review;
}

PushResult ProjectPusher::push(const Project& project, const PushReview& review,
                               const std::set<ContentKey>& selection, const MediaLocator& locate,
                               const PushEventHandler& onEvent) {
    const auto& appID = connectedAppID(project);
    checkBudget(review, selection);
    auto [completed, failure] = run(review.steps(selection), mediaContext(appID, review, locate), onEvent);
    auto mismatches = readBack(project, review, completed, locate);
    if (failure) throw *std::move(failure);
    return {std::move(completed), std::move(mismatches)};
}

void ProjectPusher::checkBudget(const PushReview& review, const std::set<ContentKey>& selection) const {
    const auto& rateLimit = client_.rateLimit() ? client_.rateLimit() : review.rateLimit;
    if (!rateLimit) return;
    const auto needed = review.estimatedRequests(selection);
    if (rateLimit->remaining < static_cast<std::int64_t>(needed))
        throw PushError(PushError::NotEnoughRequestsLeft{needed, rateLimit->remaining});
}

MediaPushContext ProjectPusher::mediaContext(const std::string& appID, const PushReview& review,
                                             const MediaLocator& locate) const {
    return {.libraryID = appID,
            .locate = locate ? locate : [](const std::string&) { return std::nullopt; },
            .index = review.media ? review.media->index : LibraryIndex(),
            .knownAssets = review.remote.assets,
            .refData = review.refData,
            .hashes = review.media ? review.media->hashes : PushPlanner::MediaHashes(),
            .processingTimeout = kProcessingTimeout,
            .pollInterval = kPollInterval,
            .sleep = waiting_.sleep,
            .stop = waiting_.stop,
            .waitNotes = waiting_.notes};
}

ProjectPusher::Outcome ProjectPusher::run(const std::vector<PushStep>& steps, MediaPushContext media,
                                          const PushEventHandler& onEvent) {
    try {
        return {PushExecutor{client_, std::move(media), waiting_.stop}.run(steps, onEvent), std::nullopt};
    } catch (PushFailure& failure) {
        auto completed = failure.completed;
        return {std::move(completed), std::move(failure)};
    }
}

std::vector<Change> ProjectPusher::readBack(const Project& project, const PushReview& review,
                                            const std::vector<PushStep>& completed,
                                            const MediaLocator& locate) {
    const auto& appID = connectedAppID(project);
    const auto fresh = PullService(client_).fetch(appID, ProductPageSlugs(review.remote.ids, project));
    // Media that were uploaded a moment ago are in the library now and compare as its assets.
    const auto media = resolvedMedia(project, appID, locate);
    auto base = review.base ? *review.base : review.remote.values();
    auto mismatches =
        settle(completed, ContentGraph::flatten(media ? media->project : project), fresh.values(), base);

    const auto& projectID = project.manifest.projectID;
    stateStore_.saveBase(base, projectID);
    stateStore_.saveRemoteIDs(fresh.ids, projectID);
    stateStore_.saveRemoteAssets(fresh.assets, projectID);
    return mismatches;
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
