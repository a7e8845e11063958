#include "KestrinCore/DecimalInteger.h"

#include <charconv>

namespace kestrin {

std::optional<std::int64_t> decimalInteger(std::string_view text) {
    // from_chars takes a minus but no plus.
    if (text.starts_with('+')) {
        text.remove_prefix(1);
        if (text.starts_with('-')) return std::nullopt;
    }
    std::int64_t number = 0;
    const auto* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number);
    if (result.ec != std::errc() || result.ptr != end) return std::nullopt;
    return number;
}

}  // namespace kestrin
