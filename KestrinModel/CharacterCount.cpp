#include "KestrinModel/CharacterCount.h"

#include "KestrinCore/UnicodeText.h"

namespace kestrin {

CharacterCount::CharacterCount(std::string_view text)
    : graphemes(text::graphemeCount(text)), utf16(text::utf16Length(text)) {}

FieldLimitCheck CharacterCount::check(std::optional<std::size_t> limit) const {
    constexpr double kNear = 0.9;
    if (!limit) return FieldLimitCheck::ok;
    if (graphemes > *limit) return FieldLimitCheck::over;
    if (utf16 > *limit) return FieldLimitCheck::overInUTF16Only;
    if (static_cast<double>(graphemes) >= static_cast<double>(*limit) * kNear)
        return FieldLimitCheck::nearLimit;
    return FieldLimitCheck::ok;
}

}  // namespace kestrin
