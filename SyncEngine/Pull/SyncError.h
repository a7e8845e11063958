// Why a project can't be brought together with an app.
#pragma once

#include <string>
#include <variant>

#include "KestrinCore/Error.h"

namespace kestrin {

class SyncError : public Error {
 public:
    struct AppNotFound {
        std::string bundleID;
        bool operator==(const AppNotFound&) const = default;
    };
    struct NotConnected {
        bool operator==(const NotConnected&) const = default;
    };

    using Kind = std::variant<AppNotFound, NotConnected>;

    explicit SyncError(Kind what) : kind(std::move(what)) {}
    std::string errorDescription() const override;

    Kind kind;
};

}  // namespace kestrin
