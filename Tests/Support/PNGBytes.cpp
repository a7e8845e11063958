#include "Tests/Support/PNGBytes.h"

#include <zlib.h>

#include <stdexcept>

#include "Tests/Support/Repeated.h"

namespace kestrin {
namespace {

std::string bigEndian(std::uint32_t number) {
    std::string bytes;
    for (int shift = 24; shift >= 0; shift -= 8) bytes += static_cast<char>(number >> shift & 0xFF);
    return bytes;
}

std::string chunk(const std::string& type, const std::string& content) {
    const auto checked = type + content;
    const auto sum =
        crc32(0, reinterpret_cast<const Bytef*>(checked.data()), static_cast<uInt>(checked.size()));
    return bigEndian(static_cast<std::uint32_t>(content.size())) + checked +
           bigEndian(static_cast<std::uint32_t>(sum));
}

std::string deflated(const std::string& bytes) {
    auto size = compressBound(static_cast<uLong>(bytes.size()));
    std::string out(size, '\0');
    if (compress(reinterpret_cast<Bytef*>(out.data()), &size, reinterpret_cast<const Bytef*>(bytes.data()),
                 static_cast<uLong>(bytes.size())) != Z_OK) {
        throw std::runtime_error("zlib doesn't compress");
    }
    out.resize(size);
    return out;
}

// Each row begins with its filter, here always none.
std::string scanlines(const std::string& samples, std::uint32_t height) {
    const auto rowSize = samples.size() / height;
    std::string lines;
    for (std::size_t at = 0; at < samples.size(); at += rowSize) lines += '\0' + samples.substr(at, rowSize);
    return lines;
}

}  // namespace

std::string PNGImage::bytes() const {
    auto header = bigEndian(width) + bigEndian(height);
    header += {static_cast<char>(bitDepth), static_cast<char>(colour), 0, 0, 0};
    auto file = "\x89PNG\r\n\x1A\n" + chunk("IHDR", header);
    for (const auto& [type, content] : chunks) file += chunk(type, content);
    return file + chunk("IDAT", deflated(scanlines(samples, height))) + chunk("IEND", "");
}

PNGImage plainPNG(PNGImage::Colour colour, std::string pixel, std::uint32_t width, std::uint32_t height) {
    PNGImage image{.width = width, .height = height, .colour = colour, .samples = {}, .chunks = {}};
    image.samples = repeated(std::size_t{width} * height, pixel);
    return image;
}

std::string pngProfile(const std::string& icc) {
    using namespace std::string_literals;
    return "profile\0\0"s + deflated(icc);
}

}  // namespace kestrin
