// Why a push isn't begun.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <variant>

#include "KestrinCore/Error.h"

namespace kestrin {

class PushError : public Error {
 public:
    struct NotEnoughRequestsLeft {
        std::size_t needed;      // about
        std::int64_t remaining;  // of this hour
        bool operator==(const NotEnoughRequestsLeft&) const = default;
    };
    using Kind = std::variant<NotEnoughRequestsLeft>;

    explicit PushError(Kind what) : kind(std::move(what)) {}
    std::string errorDescription() const override;

    Kind kind;
};

}  // namespace kestrin
