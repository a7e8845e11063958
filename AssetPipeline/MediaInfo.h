// What a local media file is.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace kestrin {

struct MediaInfo {
    enum class Kind { image, video };

    Kind kind = Kind::image;
    std::int64_t width = 0;  // in pixels, as displayed: a clip that was filmed upright is higher than wide
    std::int64_t height = 0;
    bool hasAlpha = false;
    std::int64_t fileSize = 0;        // in bytes
    std::string fileExtension;        // in lower case with its dot: ".png"; "." for a name without one
    std::optional<double> duration;   // of a video, in seconds
    std::optional<double> frameRate;  // of a video, in frames per second

    bool operator==(const MediaInfo&) const = default;
};

}  // namespace kestrin
