#include "SyncEngine/Content/ContentValue.h"

#include "KestrinCore/UnicodeText.h"

namespace kestrin::ContentValue {
namespace {

std::string withLineFeeds(std::string_view value) {
    std::string result;
    result.reserve(value.size());
    for (std::size_t i = 0; i < value.size(); ++i) {
        const bool isReturn = value[i] == '\r';
        if (isReturn && value.substr(i + 1).starts_with('\n')) continue;
        result += isReturn ? '\n' : value[i];
    }
    return result;
}

}  // namespace

std::string normalized(std::string_view value) {
    auto result = withLineFeeds(value);
    result.resize(text::withoutTrailingWhitespace(result).size());
    return result;
}

bool areEquivalent(std::string_view a, std::string_view b) {
    return text::equal(a, b) || text::equal(normalized(a), normalized(b));
}

}  // namespace kestrin::ContentValue
