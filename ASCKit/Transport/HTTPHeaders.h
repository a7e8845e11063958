// Header fields by name, the name's letter case aside, and what names and values may be (RFC 9110, section 5).
#pragma once

#include <map>
#include <string>
#include <string_view>

namespace kestrin {

// Order by name as HTTP compares names: ASCII letters regardless of case.
struct HTTPHeaderNameLess {
    using is_transparent = void;
    bool operator()(std::string_view a, std::string_view b) const;
};

using HTTPHeaders = std::map<std::string, std::string, HTTPHeaderNameLess>;

// Whether the text can be the name of a field, or a method.
bool isHTTPToken(std::string_view text);

// Whether the text stays within its field: no line end, no other control character.
bool isHTTPFieldValue(std::string_view text);

// White space here is that of ASCII, and so is all of a header.
std::string_view withoutSurroundingWhitespace(std::string_view text);

}  // namespace kestrin
