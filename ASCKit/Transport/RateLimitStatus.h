// How many requests the key has left this hour, as the service last said.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace kestrin {

struct RateLimitStatus {
    std::int64_t limit = 0;
    std::int64_t remaining = 0;

    // From an X-Rate-Limit field: "user-hour-lim:3600;user-hour-rem:3598;". nullopt unless both are there with a
    // number; other names are passed over, and of a name that comes twice the last counts.
    static std::optional<RateLimitStatus> parse(std::optional<std::string_view> field);

    bool operator==(const RateLimitStatus&) const = default;
};

}  // namespace kestrin
