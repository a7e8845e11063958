// Looks at a local media file.
#pragma once

#include <filesystem>
#include <set>
#include <string>

#include "AssetPipeline/MediaInfo.h"
#include "KestrinCore/Error.h"

namespace kestrin {

class MediaInspectorError : public Error {
 public:
    explicit MediaInspectorError(std::string name) : fileName(std::move(name)) {}
    std::string errorDescription() const override;  // "Couldn’t read “hero.png” as an image or a video."

    std::string fileName;  // the last component of the path, so that messages stay short
};

namespace MediaInspector {

// ".mp4", ".m4v", ".mov": files of these names, in any case, are videos; every other file is taken for an image.
extern const std::set<std::string> videoExtensions;

// Reads no more of the file than it needs. Throws MediaInspectorError for a file that can't be opened, that isn't
// what its name says, or that is a video without a video track; MediaModuleError where media can't be read at all.
MediaInfo inspect(const std::filesystem::path& file);

}  // namespace MediaInspector

}  // namespace kestrin
