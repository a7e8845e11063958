// Turns a project's local files into assets of the library wherever the library already has the same content, so
// that a comparison sees no difference and a push uploads nothing twice.
#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "KestrinModel/Project.h"
#include "SyncEngine/Media/LibraryIndex.h"

namespace kestrin {

// From a media path as written in the project to a readable file; nothing when there is none.
using MediaLocator = std::function<std::optional<std::filesystem::path>(const std::string&)>;

struct MediaResolution {
    Project project;  // with every file that was found in the library replaced
    std::map<std::string, std::string>
        hashes;                        // by path as written in the project, of every file that could be read
    std::vector<std::string> missing;  // paths that couldn't, ascending, each once
    LibraryIndex index;                // the one that was used
};

namespace MediaResolver {

// Whether the default product page of any platform refers to a local file. Custom pages and treatments aren't looked
// at.
bool hasLocalFiles(const Project& project);

// Only media of the default product page are resolved. Each file is read once, however many slots it stands in. A
// file that can't be read stays as it is. Never fails.
MediaResolution resolve(const Project& project, LibraryIndex index, const MediaLocator& locate);

}  // namespace MediaResolver

}  // namespace kestrin
