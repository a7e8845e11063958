// The files of a package come to more than is read of one.
#pragma once

#include <cstdint>

#include "KestrinCore/Error.h"

namespace kestrin {

class PackageTooLargeError : public Error {
 public:
    explicit PackageTooLargeError(std::uintmax_t atMost) : limit(atMost) {}
    std::string errorDescription() const override;

    std::uintmax_t limit;  // of all files together, in bytes
};

}  // namespace kestrin
