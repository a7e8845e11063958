#include "Sandbox/TextRules.h"

#include <algorithm>

namespace kestrin::sandbox {
namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}
bool isLower(char c) {
    return c >= 'a' && c <= 'z';
}
bool isUpper(char c) {
    return c >= 'A' && c <= 'Z';
}

bool all(std::string_view text, bool (*is)(char)) {
    return std::all_of(text.begin(), text.end(), is);
}

// "0" in the picture stands for a digit, anything else for itself.
bool hasPicture(std::string_view text, std::string_view picture) {
    return std::equal(text.begin(), text.end(), picture.begin(), picture.end(),
                      [](char c, char wanted) { return wanted == '0' ? isDigit(c) : c == wanted; });
}

bool isOffset(std::string_view text) {
    return text == "Z" || hasPicture(text, "+00:00") || hasPicture(text, "-00:00");
}

bool isScript(std::string_view subtag) {
    return subtag.size() == 4 && isUpper(subtag[0]) && all(subtag.substr(1), isLower);
}

bool isRegion(std::string_view subtag) {
    return (subtag.size() == 2 && all(subtag, isUpper)) || (subtag.size() == 3 && all(subtag, isDigit));
}

}  // namespace

bool isURI(std::string_view text) {
    constexpr std::string_view kForbidden = "<>\"{}|\\^`";
    const auto colon = text.find(':');
    if (colon == 0 || colon == std::string_view::npos || colon + 1 == text.size()) return false;
    const auto inScheme = [](char c) {
        return isLower(c) || isUpper(c) || isDigit(c) || c == '+' || c == '-' || c == '.';
    };
    const auto scheme = text.substr(0, colon);
    if (isDigit(scheme[0]) || !std::all_of(scheme.begin(), scheme.end(), inScheme)) return false;
    return std::all_of(text.begin(), text.end(), [&](char c) {
        return c > ' ' && c < 0x7f && kForbidden.find(c) == std::string_view::npos;
    });
}

bool isDate(std::string_view text) {
    constexpr std::size_t kWholeSeconds = 19;
    if (text.size() <= kWholeSeconds) return false;
    if (!hasPicture(text.substr(0, kWholeSeconds), "0000-00-00T00:00:00")) return false;
    auto rest = text.substr(kWholeSeconds);
    if (rest[0] == '.') {
        const auto end = std::find_if_not(rest.begin() + 1, rest.end(), isDigit);
        if (end == rest.begin() + 1) return false;
        rest.remove_prefix(static_cast<std::size_t>(end - rest.begin()));
    }
    return isOffset(rest);
}

bool isLocale(std::string_view text) {
    const auto language = text.substr(0, text.find('-'));
    if (language.size() < 2 || language.size() > 3 || !all(language, isLower)) return false;
    auto rest = text.substr(language.size());
    if (rest.size() >= 5 && isScript(rest.substr(1, 4))) rest.remove_prefix(5);
    return rest.empty() || (rest[0] == '-' && isRegion(rest.substr(1)));
}

}  // namespace kestrin::sandbox
