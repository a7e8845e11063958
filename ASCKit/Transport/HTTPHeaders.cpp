#include "ASCKit/Transport/HTTPHeaders.h"

#include <algorithm>

namespace kestrin {

bool HTTPHeaderNameLess::operator()(std::string_view a, std::string_view b) const {
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(),
                                        [&](char x, char y) { return lower(x) < lower(y); });
}

bool isHTTPToken(std::string_view text) {
    constexpr std::string_view kSymbols = "!#$%&'*+-.^_`|~";
    return !text.empty() && std::all_of(text.begin(), text.end(), [&](char c) {
        return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') ||
               kSymbols.find(c) != kSymbols.npos;
    });
}

bool isHTTPFieldValue(std::string_view text) {
    return std::none_of(text.begin(), text.end(),
                        [](unsigned char c) { return (c < 0x20 && c != '\t') || c == 0x7F; });
}

std::string_view withoutSurroundingWhitespace(std::string_view text) {
    constexpr std::string_view kWhitespace = " \t\r\n\v\f";
    const auto first = text.find_first_not_of(kWhitespace);
    if (first == text.npos) return {};
    return text.substr(first, text.find_last_not_of(kWhitespace) - first + 1);
}

}  // namespace kestrin
