// Reads from a finished build which app, version and platform it is, without unpacking it.
//
// An .ipa is a zip archive with the app's property list in it, a .pkg a xar archive whose distribution file names
// the app. Only the directory of the archive and that one member are read, so the size of the build doesn't matter: it
// takes a few reads and some megabytes at most.
#pragma once

#include <filesystem>

#include "AssetPipeline/BuildArchive/BuildArchiveError.h"
#include "AssetPipeline/BuildArchive/BuildArchiveInfo.h"

namespace kestrin::BuildArchiveInspector {

// A file of any name that doesn't end in ".pkg" (in either case) is taken for a zip archive. What the build doesn't say
// is absent. Throws BuildArchiveError, whatever the file holds, and FileError when it can't be read.
BuildArchiveInfo inspect(const std::filesystem::path& file);

}  // namespace kestrin::BuildArchiveInspector
