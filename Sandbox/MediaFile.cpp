#include "Sandbox/MediaFile.h"

#include <zlib.h>

#include <cmath>
#include <cstdint>
#include <functional>
#include <stdexcept>

namespace kestrin::sandbox::MediaFile {
namespace {

constexpr std::string_view kPNG{"\x89PNG\r\n\x1a\n", 8};

std::uint64_t bigEndian(std::string_view bytes, std::size_t offset, std::size_t size) {
    if (offset + size > bytes.size()) return 0;
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < size; ++i) value = value << 8 | static_cast<unsigned char>(bytes[offset + i]);
    return value;
}

int integer(std::string_view bytes, std::size_t offset, std::size_t size) {
    return static_cast<int>(bigEndian(bytes, offset, size) & 0x7fffffff);
}

std::optional<Catalogue::Picture> png(std::string_view bytes) {
    constexpr std::size_t kColourType = 25;
    if (bytes.size() <= kColourType || bytes.substr(12, 4) != "IHDR") return std::nullopt;
    Catalogue::Picture picture{integer(bytes, 16, 4), integer(bytes, 20, 4), (bytes[kColourType] & 4) != 0};
    for (std::size_t chunk = kPNG.size(); chunk + 8 <= bytes.size();) {
        const auto type = bytes.substr(chunk + 4, 4);
        if (type == "tRNS") picture.hasAlpha = true;
        if (type == "IDAT" || type == "IEND") break;
        chunk += 12 + bigEndian(bytes, chunk, 4);
    }
    return picture;
}

// A frame header has a marker from C0 to CF, less those that mean something else.
bool isFrameHeader(int marker) {
    return marker >= 0xc0 && marker <= 0xcf && marker != 0xc4 && marker != 0xc8 && marker != 0xcc;
}

std::optional<Catalogue::Picture> jpeg(std::string_view bytes) {
    for (std::size_t at = 2; at + 9 < bytes.size();) {
        if (integer(bytes, at, 1) != 0xff) return std::nullopt;
        const int marker = integer(bytes, at + 1, 1);
        if (isFrameHeader(marker)) {
            return Catalogue::Picture{integer(bytes, at + 7, 2), integer(bytes, at + 5, 2), false};
        }
        at += 2 + bigEndian(bytes, at + 2, 2);
    }
    return std::nullopt;
}

// Calls `visit` with the type and the content of each box in `bytes`.
void forEachBox(std::string_view bytes,
                const std::function<void(std::string_view, std::string_view)>& visit) {
    while (bytes.size() >= 8) {
        std::uint64_t size = bigEndian(bytes, 0, 4);
        std::size_t header = 8;
        if (size == 1) {
            size = bigEndian(bytes, 8, 8);
            header = 16;
        }
        if (size == 0) size = bytes.size();
        if (size < header || size > bytes.size()) return;
        visit(bytes.substr(4, 4), bytes.substr(header, size - header));
        bytes.remove_prefix(size);
    }
}

struct Track {
    std::string handler;
    int width = 0, height = 0;
    bool isTurned = false;
    double seconds = 0;
    double samples = 0;
};

// The matrix turns by 90 or 270 degrees when its first entry is 0 and its second isn't.
void readTrackHeader(std::string_view box, Track& track) {
    const std::size_t matrix = bigEndian(box, 0, 1) == 1 ? 52 : 40;
    track.isTurned = bigEndian(box, matrix, 4) == 0 && bigEndian(box, matrix + 4, 4) != 0;
    track.width = integer(box, matrix + 36, 2);
    track.height = integer(box, matrix + 40, 2);
}

void readMediaHeader(std::string_view box, Track& track) {
    const bool isLong = bigEndian(box, 0, 1) == 1;
    const auto scale = static_cast<double>(isLong ? bigEndian(box, 20, 4) : bigEndian(box, 12, 4));
    const auto duration = static_cast<double>(isLong ? bigEndian(box, 24, 8) : bigEndian(box, 16, 4));
    track.seconds = scale > 0 ? duration / scale : 0;
}

void readSampleTimes(std::string_view box, Track& track) {
    const auto count = bigEndian(box, 4, 4);
    for (std::uint64_t i = 0; i < count && 8 + 8 * i + 8 <= box.size(); ++i) {
        track.samples += static_cast<double>(bigEndian(box, 8 + 8 * i, 4));
    }
}

void readTrack(std::string_view content, Track& track) {
    forEachBox(content, [&](std::string_view type, std::string_view box) {
        if (type == "mdia" || type == "minf" || type == "stbl") readTrack(box, track);
        if (type == "tkhd") readTrackHeader(box, track);
        if (type == "mdhd") readMediaHeader(box, track);
        // QuickTime films have a second handler, of the data reference, in "minf".
        if (type == "hdlr" && track.handler.empty())
            track.handler = box.substr(std::min<std::size_t>(8, box.size()), 4);
        if (type == "stts") readSampleTimes(box, track);
    });
}

void append(std::string& target, std::uint32_t number) {
    for (int shift = 24; shift >= 0; shift -= 8) target += static_cast<char>(number >> shift & 0xff);
}

void appendChunk(std::string& png, const std::string& type, const std::string& content) {
    const auto typed = type + content;
    append(png, static_cast<std::uint32_t>(content.size()));
    png += typed;
    append(png, static_cast<std::uint32_t>(::crc32(0, reinterpret_cast<const Bytef*>(typed.data()),
                                                   static_cast<uInt>(typed.size()))));
}

std::string deflated(const std::string& raw) {
    auto size = ::compressBound(raw.size());
    std::string packed(size, '\0');
    if (::compress2(reinterpret_cast<Bytef*>(packed.data()), &size,
                    reinterpret_cast<const Bytef*>(raw.data()), raw.size(), Z_BEST_SPEED) != Z_OK) {
        throw std::runtime_error("couldn't compress a picture");
    }
    packed.resize(size);
    return packed;
}

}  // namespace

std::optional<Catalogue::Picture> picture(std::string_view bytes) {
    if (bytes.starts_with(kPNG)) return png(bytes);
    if (bytes.starts_with("\xff\xd8")) return jpeg(bytes);
    return std::nullopt;
}

std::optional<Catalogue::Film> film(std::string_view bytes) {
    std::optional<Catalogue::Film> film;
    bool hasAudio = false;
    forEachBox(bytes, [&](std::string_view type, std::string_view movie) {
        if (type != "moov") return;
        forEachBox(movie, [&](std::string_view inner, std::string_view content) {
            if (inner != "trak") return;
            Track track;
            readTrack(content, track);
            hasAudio = hasAudio || track.handler == "soun";
            if (track.handler != "vide" || film) return;
            if (track.isTurned) std::swap(track.width, track.height);
            film = Catalogue::Film{track.width, track.height, track.seconds,
                                   track.seconds > 0 ? track.samples / track.seconds : 0, false};
        });
    });
    if (film) film->hasAudio = hasAudio;
    return film;
}

std::string mimeType(std::string_view bytes) {
    if (bytes.starts_with(kPNG)) return "image/png";
    if (bytes.starts_with("\xff\xd8")) return "image/jpeg";
    if (bytes.size() >= 8 && bytes.substr(4, 4) == "ftyp") return "video/mp4";
    return "application/octet-stream";
}

std::string seascape(int width, int height, std::string_view name) {
    const auto seed = std::hash<std::string_view>{}(name);
    const auto waterLine = height / 4 + static_cast<int>(seed % static_cast<std::size_t>(height / 2 + 1));
    const auto shade = [&](int shift) { return static_cast<char>(64 + (seed >> shift & 0x7f)); };
    const std::string palette{shade(7), shade(14), '\xff', '\x10', shade(21), shade(28)};

    std::string raw;  // one bit a pixel, each row behind the number of its filter
    const auto rowSize = static_cast<std::size_t>(width + 7) / 8;
    for (int row = 0; row < height; ++row)
        raw += '\0' + std::string(rowSize, row < waterLine ? '\0' : '\xff');

    std::string header;
    append(header, static_cast<std::uint32_t>(width));
    append(header, static_cast<std::uint32_t>(height));
    header += {1, 3, 0, 0, 0};  // depth 1, a palette, and the only methods there are
    std::string bytes(kPNG);
    appendChunk(bytes, "IHDR", header);
    appendChunk(bytes, "PLTE", palette);
    appendChunk(bytes, "IDAT", deflated(raw));
    appendChunk(bytes, "IEND", {});
    return bytes;
}

}  // namespace kestrin::sandbox::MediaFile
