#include "SyncEngine/Content/ContentValue.h"

#include "KestrinCore/UnicodeText.h"
#include "KestrinModel/TextFile.h"

namespace kestrin::ContentValue {

std::string normalized(std::string_view value) {
    auto result = TextFile::normalizeLineEndings(value);
    result.resize(text::withoutTrailingWhitespace(result).size());
    return result;
}

bool areEquivalent(std::string_view a, std::string_view b) {
    return text::equal(a, b) || text::equal(normalized(a), normalized(b));
}

}  // namespace kestrin::ContentValue
