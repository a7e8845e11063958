// How a command reaches a project package and the media files in it.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "KestrinModel/Project.h"
#include "SyncEngine/Media/MediaResolver.h"

namespace kestrin {

// The project at the path that `word` means (as fileURL reads it). Throws what reading throws: FileError,
// ProjectFormatError and their like.
Project loadProject(std::string_view word);

// The project at `path`, if anything stands there; `bundleID` then has no effect. Otherwise a new project in memory
// for the app of that bundle ID, which the command saves when all else has worked: a fresh project ID, the platform
// iOS, the primary locale en-US and nothing more. Failure when there is nothing and no bundle ID either.
Project loadOrCreate(const std::filesystem::path& path, const std::optional<std::string>& bundleID);

// From the path of a media file, relative to its package, to where it lies; nothing when no file is there that
// could be read. Only regular files are media.
//
// A package may come from anyone, so a path that leaves it is the path of a file that isn't there: an absolute one,
// one with ".." beyond the package, and one through a symbolic link whose target lies outside. Links within the
// package are followed.
MediaLocator mediaLocator(const std::filesystem::path& package);

}  // namespace kestrin
