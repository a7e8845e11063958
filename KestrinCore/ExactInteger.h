// Whole numbers in floating point.
#pragma once

#include <cstdint>
#include <optional>

namespace kestrin {

inline constexpr double kTwoTo63 = 9223372036854775808.0;

// The integer that `number` is, if it is one of 64 bits. 2^63 itself isn't, hence "<".
inline std::optional<std::int64_t> exactInteger(double number) {
    if (!(number >= -kTwoTo63 && number < kTwoTo63)) return std::nullopt;
    const auto integer = static_cast<std::int64_t>(number);
    if (static_cast<double>(integer) != number) return std::nullopt;
    return integer;
}

}  // namespace kestrin
