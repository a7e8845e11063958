// How long a text is in the two ways that matter to App Store Connect's limits.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace kestrin {

// What a count means for a limit, in the order in which the cases are tried.
enum class FieldLimitCheck {
    ok,
    nearLimit,        // within the limit, at 90 percent of it or above
    overInUTF16Only,  // few enough characters, too many UTF-16 units
    over,
};

struct CharacterCount {
    std::size_t graphemes = 0;  // user-perceived characters
    std::size_t utf16 = 0;      // UTF-16 code units

    CharacterCount() = default;
    explicit CharacterCount(std::string_view text);

    // Limits are in characters, but App Store Connect's own count may go by UTF-16 units: a text over the limit in
    // those only is one to verify, not a proven failure. Without a limit everything is ok.
    FieldLimitCheck check(std::optional<std::size_t> limit) const;

    bool operator==(const CharacterCount&) const = default;
};

}  // namespace kestrin
