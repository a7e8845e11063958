// Why a media file didn't get onto a page.
#pragma once

#include <string>
#include <variant>

#include "KestrinCore/Error.h"

namespace kestrin {

class MediaPushError : public Error {
 public:
    struct MissingFile {
        std::string path;  // as written in the project
        bool operator==(const MissingFile&) const = default;
    };
    struct NoUploadOperations {
        std::string fileName;
        bool operator==(const NoUploadOperations&) const = default;
    };
    struct ProcessingFailed {
        std::string fileName;
        std::string state;
        bool operator==(const ProcessingFailed&) const = default;
    };
    struct StillProcessing {
        std::string fileName;
        bool operator==(const StillProcessing&) const = default;
    };
    struct MissingLocalization {
        std::string locale;
        bool operator==(const MissingLocalization&) const = default;
    };
    // A media step was run without anything to run it with. Nothing that a user does leads here, so it has no sentence
    // of its own.
    struct NoMediaContext {
        bool operator==(const NoMediaContext&) const = default;
    };

    using Kind = std::variant<MissingFile, NoUploadOperations, ProcessingFailed, StillProcessing,
                              MissingLocalization, NoMediaContext>;

    explicit MediaPushError(Kind what) : kind(std::move(what)) {}
    std::string errorDescription() const override;

    Kind kind;
};

}  // namespace kestrin
