// Films made of boxes alone: enough to be measured, not to be played.
#pragma once

#include <cstdint>
#include <string>

namespace kestrin::sandbox {

struct TestFilm {
    int width = 886, height = 1920;
    bool isTurned = false;  // its track's matrix turns it by 90 degrees
    int seconds = 20;
    int framesPerSecond = 30;
    bool hasAudio = true;

    std::string bytes() const {
        return box("ftyp", "isom") + box("mdat", std::string(100, 'x')) +
               box("moov", box("mvhd", std::string(100, '\0')) + track("vide", framesPerSecond) +
                               (hasAudio ? track("soun", 50) : ""));
    }

 private:
    static std::string number(std::uint32_t value) {
        std::string bytes;
        for (int shift = 24; shift >= 0; shift -= 8) bytes += static_cast<char>(value >> shift & 0xff);
        return bytes;
    }
    static std::string box(const std::string& type, const std::string& content) {
        return number(static_cast<std::uint32_t>(content.size() + 8)) + type + content;
    }
    std::string track(const std::string& handler, int rate) const {
        const auto one = number(0x10000), zero = number(0);
        const auto matrix = isTurned ? zero + one + zero + number(0xffff0000) + zero + zero
                                     : one + zero + zero + zero + one + zero;
        const auto header = std::string(40, '\0') + matrix + zero + zero + number(0x40000000) +
                            number(static_cast<std::uint32_t>(width) << 16) +
                            number(static_cast<std::uint32_t>(height) << 16);
        const auto media =
            std::string(12, '\0') + number(600) + number(static_cast<std::uint32_t>(600 * seconds)) + zero;
        const auto times = zero + number(2) + number(static_cast<std::uint32_t>(rate * seconds - 1)) +
                           number(20) + number(1) + number(20);
        return box(
            "trak",
            box("tkhd", header) +
                box("mdia", box("mdhd", media) + box("hdlr", zero + zero + handler + std::string(12, '\0')) +
                                box("minf", box("hdlr", zero + zero + "url " + std::string(12, '\0')) +
                                                box("stbl", box("stts", times)))));
    }
};

}  // namespace kestrin::sandbox
