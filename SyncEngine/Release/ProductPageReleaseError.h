// Why a custom product page or a test can't be sent to App Review, or a test not be started.
#pragma once

#include <string>
#include <variant>

#include "KestrinCore/Error.h"

namespace kestrin {

class ProductPageReleaseError : public Error {
 public:
    struct NotSubmittable {
        std::string state;
        bool operator==(const NotSubmittable&) const = default;
    };
    struct NotStartable {
        std::string state;
        bool operator==(const NotStartable&) const = default;
    };
    struct NotPushed {
        bool operator==(const NotPushed&) const = default;
    };
    struct UnpushedChanges {
        bool operator==(const UnpushedChanges&) const = default;
    };
    struct SubmissionInProgress {
        bool operator==(const SubmissionInProgress&) const = default;
    };

    using Kind = std::variant<NotSubmittable, NotStartable, NotPushed, UnpushedChanges, SubmissionInProgress>;

    explicit ProductPageReleaseError(Kind what) : kind(std::move(what)) {}
    std::string errorDescription() const override;

    Kind kind;
};

}  // namespace kestrin
