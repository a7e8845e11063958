// When two values of a ContentKey count as the same value.
#pragma once

#include <string>
#include <string_view>

namespace kestrin::ContentValue {

// The value with every line ending (CR LF, CR) as LF and without trailing white space. Leading and inner white
// space and letter case are content.
std::string normalized(std::string_view value);

// Equal as text, or equal once normalized: App Store Connect and editors trim ends and change line endings, and
// neither is a difference that anyone made.
bool areEquivalent(std::string_view a, std::string_view b);

}  // namespace kestrin::ContentValue
