// An opaque copy of an image, for slots that take no transparency.
#pragma once

#include <filesystem>
#include <string>

#include "KestrinCore/Error.h"

namespace kestrin {

class FlattenError : public Error {
 public:
    enum class Kind { unreadable, unencodable };

    explicit FlattenError(Kind what) : kind(what) {}
    std::string errorDescription() const override;

    Kind kind;
};

namespace AlphaFlattener {

// The bytes of a PNG of the same size in 8-bit sRGB, the image laid over opaque black (and not white: what was
// transparent comes out black). Held in memory whole. Throws FlattenError, or MediaModuleError.
std::string flattenedPNG(const std::filesystem::path& file);

}  // namespace AlphaFlattener

}  // namespace kestrin
