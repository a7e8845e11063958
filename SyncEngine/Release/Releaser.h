// What happens to a version of the app after its listing is pushed: a build is attached, the checklist is run, and
// it goes to App Review.
//
// Nothing here writes to the project or to the remembered state.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "ASCKit/ASCClient.h"
#include "ASCKit/ASCError.h"
#include "ASCKit/Resources/AppStoreVersions.h"
#include "ASCKit/Resources/Builds.h"
#include "ASCKit/Resources/ReviewSubmissions.h"
#include "SyncEngine/Push/PushReview.h"
#include "SyncEngine/Release/SubmissionPreflight.h"
#include "SyncEngine/State/ProjectStateStore.h"

namespace kestrin {

// The checklist, and the look at both sides from which it was made.
struct Preflight {
    std::vector<PreflightItem> items;
    PushReview review;
};

class Releaser {
 public:
    Releaser(ASCClient& ascClient, ProjectStateStore stateStore)
        : client_(ascClient), stateStore_(std::move(stateStore)) {}

    // The builds that a version could ship: the newest first, at most 50. Without a version string those of all
    // versions of the platform.
    std::vector<ASCBuild> candidateBuilds(const std::string& appID,
                                          const std::optional<std::string>& versionString,
                                          const StorePlatform& platform);

    // Makes the build the one that the version ships. Where the build has no answer yet to the export compliance
    // question, `usesNonExemptEncryption` becomes it; an answer that it has is never changed. ReleaseError for a
    // platform of which no pull has seen a version.
    void attach(const ASCBuild& build, const StorePlatform& platform, const Project& project,
                std::optional<bool> usesNonExemptEncryption);

    // Adds a version to the app, with the copyright and the release type that the project has for the platform,
    // empty ones left out. SyncError for a project that isn't connected.
    ASCAppStoreVersion createVersion(const Project& project, const StorePlatform& platform,
                                     const std::string& versionString);

    // Sets the password that App Review signs in with. It is no part of a project and of no comparison, so this is
    // the one way in which it travels. ReleaseError as for attach.
    void setDemoAccountPassword(const std::string& password, const StorePlatform& platform,
                                const Project& project);

    // Reads both sides afresh, and the build that the version has, and makes the checklist. Throws what
    // ProjectPusher::review and the client throw.
    Preflight preflight(const Project& project, const StorePlatform& platform,
                        const MediaLocator& locate = {});

    // Sends the version to App Review, together with whatever an open submission of the platform holds; without an
    // open one it makes one. `review` and `items` are those of a preflight of just before, which the user has seen.
    // The submission as it is then; nullopt where the service doesn't say.
    //
    // ReleaseError when an item has failed (manual ones hold nothing up) or there is no version; SyncError for a
    // project that isn't connected. When it fails on the way, the submission stays open and the next call takes it
    // up again, for which reason a version that is already in it is no failure. The service's words don't tell that
    // from a version that it doesn't take; they are part of the error when the submission then can't be sent.
    std::optional<ASCReviewSubmission> submit(const Project& project, const StorePlatform& platform,
                                              const PushReview& review,
                                              const std::vector<PreflightItem>& items);

 private:
    RemoteVersion knownVersion(const StorePlatform& platform, const Project& project) const;
    // Why the service didn't take it, where that may mean that it has it already; else nothing.
    std::vector<APIErrorItem> addVersion(const std::string& versionID, const std::string& submissionID);

    ASCClient& client_;
    ProjectStateStore stateStore_;
};

}  // namespace kestrin
