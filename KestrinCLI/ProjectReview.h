// A project and App Store Connect side by side: how every command begins that compares the two or sends something.
#pragma once

#include <string_view>

#include "ASCKit/ASCClient.h"
#include "KestrinCLI/Console.h"
#include "KestrinModel/Project.h"
#include "SyncEngine/Media/MediaResolver.h"
#include "SyncEngine/Push/PushReview.h"

namespace kestrin {

struct ProjectReview {
    Project project;
    MediaLocator locate;  // of the project's package
    ASCClient client;     // the one that read the review, for what is to be sent
    PushReview review;
};

// Loads the project at the path that `word` means, connects, and reads what there is to know of both sides; nothing
// is written but the cached reference data. Notes the media that App Store Connect has no bytes of. Throws what loadProject, makeClient and ProjectPusher::review throw.
ProjectReview reviewProject(std::string_view word, Console& console);

}  // namespace kestrin
