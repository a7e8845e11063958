// The write path of the sync engine, and the look at both sides that goes before it.
#pragma once

#include <string>

#include "ASCKit/ASCClient.h"
#include "SyncEngine/Push/PushReview.h"
#include "SyncEngine/State/ProjectStateStore.h"

namespace kestrin {

class ProjectPusher {
 public:
    ProjectPusher(ASCClient& ascClient, ProjectStateStore stateStore)
        : client_(ascClient), stateStore_(std::move(stateStore)) {}

    // Reads everything that is needed to decide, and changes nothing but the cached reference data. Those are read
    // only when media are to be written: from the cache, or anew where it is absent or damaged. Without `locate` no
    // local media are looked at.
    //
    // Throws SyncError for a project that isn't connected, and whatever the client and the state store throw.
    PushReview review(const Project& project, const MediaLocator& locate = {});

 private:
    std::optional<MediaResolution> resolvedMedia(const Project& project, const std::string& appID,
                                                 const MediaLocator& locate);
    AssetLibraryRefData refData();

    ASCClient& client_;
    ProjectStateStore stateStore_;
};

}  // namespace kestrin
