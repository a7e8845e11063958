// Universally unique identifiers (RFC 9562).
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace kestrin {

struct UUID {
    std::array<std::uint8_t, 16> bytes{};

    // The form 8-4-4-4-12 of hexadecimal digits of either case; nothing else.
    static std::optional<UUID> parse(std::string_view text);

    // A version 4 UUID from the system's random source.
    static UUID random();

    std::string text() const;  // upper-case

    bool operator==(const UUID&) const = default;
};

// Where new UUIDs come from; tests hand in their own.
using UUIDSource = std::function<UUID()>;

}  // namespace kestrin
