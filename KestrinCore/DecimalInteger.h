// Whole numbers in text from outside.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace kestrin {

// Decimal digits with an optional sign and nothing around them; nullopt for anything else, a number that doesn't
// fit 64 bits included.
std::optional<std::int64_t> decimalInteger(std::string_view text);

}  // namespace kestrin
