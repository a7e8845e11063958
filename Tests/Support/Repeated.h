// Long texts for tests.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kestrin {

inline std::string repeated(std::size_t count, std::string_view piece) {
    std::string text;
    text.reserve(count * piece.size());
    for (std::size_t i = 0; i < count; ++i) text += piece;
    return text;
}

}  // namespace kestrin
