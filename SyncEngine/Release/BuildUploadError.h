// Why a build didn't become one of App Store Connect's.
#pragma once

#include <string>
#include <variant>
#include <vector>

#include "KestrinCore/Error.h"

namespace kestrin {

class BuildUploadError : public Error {
 public:
    struct Rejected {
        std::vector<std::string> errors;  // the service's sentences; there may be none
        bool operator==(const Rejected&) const = default;
    };
    // The upload itself has worked. The build may well appear later.
    struct StillProcessing {
        std::string uploadID;
        bool operator==(const StillProcessing&) const = default;
    };
    struct MissingVersions {
        bool operator==(const MissingVersions&) const = default;
    };
    struct NoUploadOperations {
        bool operator==(const NoUploadOperations&) const = default;
    };
    // Another program wrote to it or put another one in its place, so that what was sent belongs to no one file.
    struct FileChanged {
        std::string fileName;
        bool operator==(const FileChanged&) const = default;
    };

    using Kind = std::variant<Rejected, StillProcessing, MissingVersions, NoUploadOperations, FileChanged>;

    explicit BuildUploadError(Kind what) : kind(std::move(what)) {}
    std::string errorDescription() const override;

    Kind kind;
};

}  // namespace kestrin
