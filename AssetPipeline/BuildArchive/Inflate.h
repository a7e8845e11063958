// Decodes deflate data (RFC 1951) of known size, in one piece.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kestrin::Inflate {

// The first `expectedSize` bytes of what the data expands to; "" when that is 0. BuildArchiveError::malformed for data
// that expands to less or isn't deflate data. Data that can't expand that far, which it does at most 1032 times, is
// refused before memory is taken.
std::string raw(std::string_view data, std::uint64_t expectedSize);

// The same for data in a zlib stream (RFC 1950). Its two bytes of header and its checksum aren't looked at.
std::string zlib(std::string_view data, std::uint64_t expectedSize);

}  // namespace kestrin::Inflate
