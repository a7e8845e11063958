#include "Sandbox/RateLimit.h"

#include <fmt/format.h>

namespace kestrin::sandbox {

constexpr std::int64_t kHour = 3600;

bool RateLimit::take(std::int64_t now) {
    while (!taken_.empty() && taken_.front() <= now - kHour) taken_.pop_front();
    if (taken_.size() >= limit_) return false;
    taken_.push_back(now);
    return true;
}

std::string RateLimit::header() const {
    return fmt::format("user-hour-lim:{};user-hour-rem:{};", limit_, remaining());
}

}  // namespace kestrin::sandbox
