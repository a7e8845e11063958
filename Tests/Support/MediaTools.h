// Media files made by the tools that everybody makes them with, and pixels read by one that shares no code with ours.
#pragma once

#include <filesystem>
#include <string>

#include "Tests/Support/TemporaryFolder.h"

namespace kestrin {

// A folder for the files of one test. A tool that fails throws with what it said.
class MediaTools {
 public:
    // Runs ImageMagick's "convert" with these words, as /bin/sh splits them, in the folder.
    void convert(const std::string& words) const;
    // The same with ffmpeg.
    void ffmpeg(const std::string& words) const;

    // A clip of a second and a half, 64 by 48, of ffmpeg's test picture; `words` stand ahead of the name.
    std::filesystem::path clip(const std::string& name, const std::string& words = "") const;

    // The pixels of an image's first frame in sRGB over black, three bytes each, as ImageMagick sees them. `profile`
    // is a file with the profile to convert to, needed where the image has one of its own.
    std::string pixelsOf(const std::filesystem::path& image, const std::filesystem::path& profile = {}) const;

    TemporaryFolder folder;

 private:
    void run(const std::string& program, const std::string& words) const;
};

// The greatest difference between two pixels' samples; -1 for images of different sizes.
int greatestDifference(const std::string& a, const std::string& b);

}  // namespace kestrin
