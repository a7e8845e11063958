// Sizes as people read them.
#pragma once

#include <cstdint>
#include <string>

namespace kestrin {

// "Zero kB", "1 byte", "999 bytes", "12 kB", "1.2 MB", "3 GB": steps of a thousand, from MB on with at most one
// decimal place. Of less than nothing, nothing.
std::string byteCount(std::int64_t bytes);

}  // namespace kestrin
