// The app that a project belongs to.
#pragma once

#include <string>

#include "KestrinModel/Project.h"
#include "SyncEngine/Pull/SyncError.h"

namespace kestrin {

// The App Store Connect ID of the app that a pull has connected the project to. SyncError without one.
inline const std::string& connectedAppID(const Project& project) {
    const auto& appID = project.manifest.app.ascAppID;
    if (!appID) throw SyncError(SyncError::NotConnected{});
    return *appID;
}

}  // namespace kestrin
