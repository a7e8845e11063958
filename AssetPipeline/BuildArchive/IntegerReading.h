// Whole numbers in the bytes of a file format.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kestrin {

enum class ByteOrder { littleEndian, bigEndian };

// The number in all of `bytes`, eight at most.
inline std::uint64_t integerOf(std::string_view bytes, ByteOrder order) {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const auto place = order == ByteOrder::bigEndian ? i : bytes.size() - 1 - i;
        value = value << 8 | static_cast<unsigned char>(bytes[place]);
    }
    return value;
}

}  // namespace kestrin
