// How much a binary property list expands to. In one of a few hundred bytes an array may refer a hundred times to one
// array, that one a hundred times to the next, and so on; whoever reads it as a tree never ends.
#pragma once

#include <cstdint>
#include <string_view>

namespace kestrin::BinaryPropertyListCost {

// The memory in bytes, roughly, that the list takes as a tree in which every reference is a copy of its own; the largest
// number there is when it would be infinite or nested deeper than 512 levels. BuildArchiveError::malformed for what
// isn't such a list as far as that needs to be known: references and lengths within the file.
std::uint64_t of(std::string_view bytes);

}  // namespace kestrin::BinaryPropertyListCost
