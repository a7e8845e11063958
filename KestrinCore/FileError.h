// A file system operation that failed, as the user reads it: which path, and why.
#pragma once

#include <cstdint>
#include <filesystem>
#include <system_error>

#include "KestrinCore/Error.h"

namespace kestrin {

class FileError : public Error {
 public:
    enum class Operation { read, write, create, remove, list };

    FileError(Operation failed, std::filesystem::path where, std::error_code why)
        : operation(failed), path(std::move(where)), reason(why) {}

    // For `reason` = errno.
    static FileError fromErrno(Operation failed, std::filesystem::path where);

    // "Couldn’t read “App/info.json”: Permission denied."
    std::string errorDescription() const override;

    Operation operation;
    std::filesystem::path path;
    std::error_code reason;
};

// A file that is larger than anything this program has reason to read whole. Refused before it is read, so that
// no file in a folder from elsewhere can exhaust the memory.
class FileTooLargeError : public Error {
 public:
    FileTooLargeError(std::filesystem::path where, std::uintmax_t atMost)
        : path(std::move(where)), limit(atMost) {}
    std::string errorDescription() const override;

    std::filesystem::path path;
    std::uintmax_t limit;  // in bytes
};

}  // namespace kestrin
