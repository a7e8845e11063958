// Dates in HTTP header fields (RFC 9110, section 5.6.7).
#pragma once

#include <chrono>
#include <optional>
#include <string_view>

namespace kestrin::HTTPDate {

// All three forms that a recipient must take:
//   Sun, 06 Nov 1994 08:49:37 GMT     IMF-fixdate
//   Sunday, 06-Nov-94 08:49:37 GMT    obsolete, RFC 850; of the years with these two digits it is the last one that
//                                     isn't more than 50 years ahead of `now`
//   Sun Nov  6 08:49:37 1994          obsolete, asctime
// Letter case counts. The name of the day must be one, but needn't be the right one. nullopt for anything else.
std::optional<std::chrono::sys_seconds> parse(std::string_view text,
                                              std::chrono::system_clock::time_point now);

}  // namespace kestrin::HTTPDate
