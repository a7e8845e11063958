// A name that can't stand for a file or folder in a project package.
#pragma once

#include <string>
#include <variant>

#include "KestrinCore/Error.h"

namespace kestrin {

class PackageNameError : public Error {
 public:
    // Not one plain component of a path: empty, "." or "..", with a "/" or a NUL, or too long for a file system.
    struct NotAName {
        std::string name;
        bool operator==(const NotAName&) const = default;
    };
    // The folder of a platform would be one that the package keeps for itself.
    struct ReservedName {
        std::string name;
        bool operator==(const ReservedName&) const = default;
    };
    // Two platforms would share one folder.
    struct SharedFolder {
        std::string name;
        bool operator==(const SharedFolder&) const = default;
    };
    // A path of a file to be added that doesn't stay in the package.
    struct NotAPath {
        std::string path;
        bool operator==(const NotAPath&) const = default;
    };
    // A name on disk that isn't UTF-8 or names nothing, in a place where it would name a locale, a platform, a page
    // or a test.
    struct UnusableOnDisk {
        std::string path;  // relative to the package, as it is on disk
        bool operator==(const UnusableOnDisk&) const = default;
    };
    using Kind = std::variant<NotAName, ReservedName, SharedFolder, NotAPath, UnusableOnDisk>;

    explicit PackageNameError(Kind what) : kind(std::move(what)) {}

    std::string errorDescription() const override;

    Kind kind;
};

}  // namespace kestrin
