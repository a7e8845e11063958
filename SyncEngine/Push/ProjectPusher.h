// The write path of the sync engine: a look at both sides, then the writes and the proof that they arrived.
#pragma once

#include <optional>
#include <set>
#include <stop_token>
#include <string>
#include <vector>

#include "ASCKit/ASCClient.h"
#include "SyncEngine/Push/PushExecutor.h"
#include "SyncEngine/Push/PushReview.h"
#include "SyncEngine/State/ProjectStateStore.h"

namespace kestrin {

struct PushResult {
    std::vector<PushStep> completed;
    std::vector<Change> mismatches;  // what reads back differently: `remote` is what the service holds now

    bool isVerified() const { return mismatches.empty(); }
};

class ProjectPusher {
 public:
    // Of the waits for assets in processing; `push` itself never waits.
    struct Waiting {
        Sleep sleep = sleepOnSteadyClock;
        WaitNotes notes = {};
        std::stop_token stop = {};  // asked between steps too
    };

    ProjectPusher(ASCClient& ascClient, ProjectStateStore stateStore)
        : ProjectPusher(ascClient, std::move(stateStore), Waiting{}) {}
    ProjectPusher(ASCClient& ascClient, ProjectStateStore stateStore, Waiting waiting)
        : client_(ascClient), stateStore_(std::move(stateStore)), waiting_(std::move(waiting)) {}

    // Reads everything that is needed to decide, and changes nothing but the cached reference data. Those are read
    // only when media are to be written: from the cache, or anew where it is absent or damaged. Without `locate` no
    // local media are looked at.
    //
    // Throws SyncError for a project that isn't connected, and whatever the client and the state store throw.
    PushReview review(const Project& project, const MediaLocator& locate = {});

    // Writes what is selected of the review, reads everything back, and remembers what both sides now agree on: the
    // base moves for the keys of completed steps that read back as they were sent, and only for them. The ids and
    // assets that are remembered are those that the read-back saw. An empty selection writes nothing and is read back
    // all the same.
    //
    // PushError, before anything is written, when the key has too few requests left; SyncError for a project that
    // isn't connected. A step that fails is a PushFailure, thrown after the read-back and after all is remembered, so
    // that the next push plans only what is left. What the read-back or the state store throws takes its place, and
    // what stops the run otherwise (a stop between two steps, what the listener throws) passes at once: then nothing
    // is remembered, which costs nothing but the knowledge, since every run compares anew.
    PushResult push(const Project& project, const PushReview& review, const std::set<ContentKey>& selection,
                    const MediaLocator& locate, const PushEventHandler& onEvent);

 private:
    struct Outcome;

    void checkBudget(const PushReview& review, const std::set<ContentKey>& selection) const;
    MediaPushContext mediaContext(const std::string& appID, const PushReview& review,
                                  const MediaLocator& locate) const;
    Outcome run(const std::vector<PushStep>& steps, MediaPushContext media, const PushEventHandler& onEvent);
    std::vector<Change> readBack(const Project& project, const PushReview& review,
                                 const std::vector<PushStep>& completed, const MediaLocator& locate);
    std::optional<MediaResolution> resolvedMedia(const Project& project, const std::string& appID,
                                                 const MediaLocator& locate);
    AssetLibraryRefData refData();

    ASCClient& client_;
    ProjectStateStore stateStore_;
    Waiting waiting_;
};

}  // namespace kestrin
