// Why a file can't be taken for a build. What the file system itself refuses is a FileError.
#pragma once

#include "KestrinCore/Error.h"

namespace kestrin {

class BuildArchiveError : public Error {
 public:
    enum class Kind {
        notAnArchive,            // neither a zip nor a xar archive
        malformed,               // one that contradicts itself, ends too early, or claims what no build has
        unsupportedCompression,  // the app's property list is neither stored nor deflated
        noAppInside,             // a whole archive, but of something else
    };

    explicit BuildArchiveError(Kind what) : kind(what) {}
    std::string errorDescription() const override;

    Kind kind;
};

// Throws the error of Kind::malformed.
[[noreturn]] void failMalformed();

}  // namespace kestrin
