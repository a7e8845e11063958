// PNG files (ISO/IEC 15948) made pixel by pixel, so that a test knows every sample it puts in.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace kestrin {

struct PNGImage {
    enum class Colour : char { grey = 0, rgb = 2, palette = 3, greyAlpha = 4, rgba = 6 };

    std::uint32_t width = 1;
    std::uint32_t height = 1;
    Colour colour = Colour::rgb;
    int bitDepth = 8;
    std::string samples;  // row after row, each filled up to a whole byte
    std::vector<std::pair<std::string, std::string>>
        chunks;  // type and content, ahead of the pixels: PLTE, tRNS, …

    std::string bytes() const;
};

// An image of one colour, each sample a byte.
PNGImage plainPNG(PNGImage::Colour colour, std::string pixel, std::uint32_t width = 1,
                  std::uint32_t height = 1);

// The content of an iCCP chunk.
std::string pngProfile(const std::string& icc);

}  // namespace kestrin
