// Why a step can't be taken yet.
#pragma once

#include <string>
#include <variant>

#include "KestrinCore/Error.h"

namespace kestrin {

class PushStepError : public Error {
 public:
    // What has to be there first is neither at App Store Connect nor made by this run.
    struct MissingParent {
        std::string name;  // "page summer", "test icons", "treatment icons/blue"
        bool operator==(const MissingParent&) const = default;
    };
    using Kind = std::variant<MissingParent>;

    explicit PushStepError(Kind what) : kind(std::move(what)) {}
    std::string errorDescription() const override;

    Kind kind;
};

}  // namespace kestrin
