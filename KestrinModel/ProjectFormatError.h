// Why a folder can't be read as a project.
#pragma once

#include <cstdint>
#include <string>
#include <variant>

#include "KestrinCore/Error.h"

namespace kestrin {

// The first fault found ends the read: there is no partial project. What the file system itself refuses is a
// FileError.
class ProjectFormatError : public Error {
 public:
    struct WrongFormat {
        std::string format;  // what the manifest says it is for
        bool operator==(const WrongFormat&) const = default;
    };
    struct NewerSchemaVersion {
        std::int64_t version;
        bool operator==(const NewerSchemaVersion&) const = default;
    };
    // A file is there but isn't what its name says: not JSON, or a member of the wrong type.
    struct CorruptFile {
        std::string path;  // relative to the package
        bool operator==(const CorruptFile&) const = default;
    };
    struct NotAPackage {  // a file, not a folder
        bool operator==(const NotAPackage&) const = default;
    };
    struct MissingManifest {
        bool operator==(const MissingManifest&) const = default;
    };
    struct CorruptManifest {
        bool operator==(const CorruptManifest&) const = default;
    };
    struct InvalidSchemaVersion {
        bool operator==(const InvalidSchemaVersion&) const = default;
    };
    using Kind = std::variant<WrongFormat, NewerSchemaVersion, CorruptFile, NotAPackage, MissingManifest,
                              CorruptManifest, InvalidSchemaVersion>;

    explicit ProjectFormatError(Kind what) : kind(std::move(what)) {}

    std::string errorDescription() const override;

    Kind kind;
};

}  // namespace kestrin
