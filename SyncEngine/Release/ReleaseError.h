// Why a version can't be worked on or sent to App Review.
#pragma once

#include <string>
#include <variant>

#include "KestrinCore/Error.h"
#include "KestrinModel/StorePlatform.h"

namespace kestrin {

class ReleaseError : public Error {
 public:
    struct NoVersion {  // App Store Connect has none for the platform, or none that a pull has seen
        StorePlatform platform;
        bool operator==(const NoVersion&) const = default;
    };
    struct BuildNotFound {
        std::string number;
        bool operator==(const BuildNotFound&) const = default;
    };
    struct PreflightFailed {
        bool operator==(const PreflightFailed&) const = default;
    };

    using Kind = std::variant<NoVersion, BuildNotFound, PreflightFailed>;

    explicit ReleaseError(Kind what) : kind(std::move(what)) {}
    std::string errorDescription() const override;

    Kind kind;
};

}  // namespace kestrin
