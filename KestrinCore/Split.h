// Cutting text at a separator.
#pragma once

#include <string_view>
#include <vector>

namespace kestrin {

// The pieces of `text` between its separators, empty ones too, as parts of `text`: always at least one.
// "a,,b" gives "a", "", "b".
std::vector<std::string_view> split(std::string_view text, char separator);

}  // namespace kestrin
