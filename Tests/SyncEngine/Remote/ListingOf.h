// A project's content as if it had been read from App Store Connect.
#pragma once

#include "KestrinModel/Project.h"
#include "SyncEngine/Remote/RemoteListing.h"

namespace kestrin {

// Without ids, states or assets.
inline RemoteListing listingOf(const Project& project) {
    RemoteListing listing;
    listing.app = project.app;
    listing.platforms = project.platforms;
    listing.pages = project.pages;
    listing.experiments = project.experiments;
    return listing;
}

}  // namespace kestrin
