// What a keywords text holds, and what it wastes of its hundred characters.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kestrin {

struct KeywordAnalysis {
    // The pieces between commas without blanks and tabs around them, in order; none is empty. Line breaks and
    // other white space stay: they are part of what would be sent.
    std::vector<std::string> keywords;

    // Keywords that came before, in whatever letter case: each once, spelled as in its second place.
    // "Foo, foo, FOO" has the one duplicate "foo".
    std::vector<std::string> duplicates;

    // Blanks (U+0020 only) before and after each piece. A piece of nothing but n blanks counts 2n: they are
    // counted from either end.
    std::size_t wastedSpaces = 0;

    explicit KeywordAnalysis(std::string_view text);

    bool operator==(const KeywordAnalysis&) const = default;
};

}  // namespace kestrin
