// What a text must look like to be taken for a date, an address or a locale.
#pragma once

#include <string_view>

namespace kestrin::sandbox {

// An absolute URI (RFC 3986): a scheme, a colon, and something behind it; ASCII without blanks.
bool isURI(std::string_view text);

// A date and time (RFC 3339), with or without a fraction.
bool isDate(std::string_view text);

// A language, then perhaps a script, then perhaps a region: "de-DE", "zh-Hans", "ja". Letter case counts.
bool isLocale(std::string_view text);

}  // namespace kestrin::sandbox
