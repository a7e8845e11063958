#include "KestrinCore/UUID.h"

#include <sys/random.h>

#include <cerrno>
#include <system_error>

namespace kestrin {
namespace {

constexpr std::size_t kTextLength = 36;

bool isHyphenPlace(std::size_t i) {
    return i == 8 || i == 13 || i == 18 || i == 23;
}

int hexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

}  // namespace

std::optional<UUID> UUID::parse(std::string_view text) {
    if (text.size() != kTextLength) return std::nullopt;
    UUID uuid;
    std::size_t digits = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (isHyphenPlace(i)) {
            if (text[i] != '-') return std::nullopt;
            continue;
        }
        const int digit = hexDigit(text[i]);
        if (digit < 0) return std::nullopt;
        auto& byte = uuid.bytes[digits / 2];
        byte = static_cast<std::uint8_t>(byte << 4 | digit);
        ++digits;
    }
    return uuid;
}

UUID UUID::random() {
    UUID uuid;
    while (getrandom(uuid.bytes.data(), uuid.bytes.size(), 0) != static_cast<ssize_t>(uuid.bytes.size())) {
        if (errno != EINTR) throw std::system_error(errno, std::generic_category(), "random bytes");
    }
    uuid.bytes[6] = static_cast<std::uint8_t>((uuid.bytes[6] & 0x0f) | 0x40);  // version 4
    uuid.bytes[8] = static_cast<std::uint8_t>((uuid.bytes[8] & 0x3f) | 0x80);  // the RFC's variant
    return uuid;
}

std::string UUID::text() const {
    constexpr std::string_view kHex = "0123456789ABCDEF";
    std::string text;
    for (const auto byte : bytes) {
        if (isHyphenPlace(text.size())) text += '-';
        text += kHex[byte >> 4];
        text += kHex[byte & 0xf];
    }
    return text;
}

}  // namespace kestrin
