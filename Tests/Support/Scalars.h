// Unicode scalars as UTF-8, for tests.
#pragma once

#include <string>

namespace kestrin {

inline std::string utf8(char32_t scalar) {
    const auto byte = [](char32_t bits) { return static_cast<char>(static_cast<unsigned char>(bits)); };
    const auto trail = [&](int shift) { return byte(0x80 | (scalar >> shift & 0x3F)); };
    if (scalar < 0x80) return {byte(scalar)};
    if (scalar < 0x800) return {byte(0xC0 | scalar >> 6), trail(0)};
    if (scalar < 0x10000) return {byte(0xE0 | scalar >> 12), trail(6), trail(0)};
    return {byte(0xF0 | scalar >> 18), trail(12), trail(6), trail(0)};
}

// The first scalar of well-formed text that isn't empty.
inline char32_t firstScalarOf(const std::string& text) {
    const auto lead = static_cast<unsigned char>(text[0]);
    if (lead < 0x80) return lead;
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    char32_t scalar = lead & (0x7F >> length);
    for (std::size_t i = 1; i < length; ++i)
        scalar = scalar << 6 | (static_cast<unsigned char>(text[i]) & 0x3F);
    return scalar;
}

}  // namespace kestrin
