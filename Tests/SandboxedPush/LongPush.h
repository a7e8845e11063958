// A project with about everything changed that a push can send.
#pragma once

#include "Tests/SandboxedPush/PushStage.h"

namespace kestrin::LongPush {

// Pulled from the everyday sandbox, with a macOS version in preparation that has no App Review details yet, and then
// edited: texts of several locales and platforms, a field that is cleared, a new locale with text and media,
// categories, review details new and changed; a custom page changed and one that is new, each with texts, media, deep
// link and visibility, and a page localization for media alone; a test changed and one that is new, with treatments,
// icons and media; screenshots uploaded, replaced, reordered, removed and emptied, one file in several slots, one with
// alpha, one in several parts, and a slot so full that it is emptied before it is filled. Reference data aren't cached.
StartingPoint start();

// The media files that are uploaded on the way.
inline constexpr std::size_t kUploads = 4;

}  // namespace kestrin::LongPush
