// A whole pull, from the app to the remembered state. Saving the package is the caller's: the returned project must
// be saved, or the package and the snapshot part ways.
#pragma once

#include <string>

#include "ASCKit/ASCClient.h"
#include "SyncEngine/Media/MediaResolver.h"
#include "SyncEngine/Pull/PullMerger.h"
#include "SyncEngine/State/ProjectStateStore.h"

namespace kestrin {

class ProjectPuller {
 public:
    ProjectPuller(ASCClient& ascClient, ProjectStateStore stateStore)
        : client_(ascClient), stateStore_(std::move(stateStore)) {}

    // `locate` finds local media, so that a file whose content the library has compares as its asset; without it no
    // local media are looked at. What was resolved so doesn't leak into the project that comes back.
    //
    // Throws SyncError for an app that can't be found, PackageNameError when a name from the service can't stand in a
    // package, and whatever the client and the state store throw. Until all has been read and merged nothing is
    // written; then the state is, snapshot first.
    PullResult pull(Project project, const MediaLocator& locate = {});

 private:
    std::string resolveAppID(const std::string& bundleID);
    PullResult mergeWithMedia(Project project, const RemoteListing& remote,
                              const std::optional<FlatValues>& base, const MediaLocator& locate);

    ASCClient& client_;
    ProjectStateStore stateStore_;
};

}  // namespace kestrin
