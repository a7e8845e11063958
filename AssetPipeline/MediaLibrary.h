// Opens the media module at its first use.
#pragma once

#include <string>

#include "AssetPipeline/MediaModule/MediaBackend.h"
#include "KestrinCore/Error.h"

namespace kestrin {

// The module or a library that it needs isn't on this machine, or doesn't start. An incomplete installation: no
// media file can be looked at, and everything else works.
class MediaModuleError : public Error {
 public:
    explicit MediaModuleError(std::string why) : reason(std::move(why)) {}
    std::string errorDescription() const override;

    std::string reason;  // the loader's own words
};

namespace MediaLibrary {

// Throws MediaModuleError, each time anew.
const KestrinMediaBackend& backend();

}  // namespace MediaLibrary

}  // namespace kestrin
