// Requests of the last 60 minutes against the hourly limit of a key.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>

namespace kestrin::sandbox {

class RateLimit {
 public:
    explicit RateLimit(std::size_t requestsPerHour) : limit_(requestsPerHour) {}

    // Counts one request at that second; false, and not counted, when the hour is full.
    bool take(std::int64_t now);

    // The value of X-Rate-Limit: "user-hour-lim:3600;user-hour-rem:3598;".
    std::string header() const;

    std::size_t remaining() const { return limit_ > taken_.size() ? limit_ - taken_.size() : 0; }
    void setLimit(std::size_t requestsPerHour) { limit_ = requestsPerHour; }
    // As if that many requests had come at that second, and none before.
    void setMade(std::size_t requests, std::int64_t now) { taken_.assign(requests, now); }

 private:
    std::size_t limit_;
    std::deque<std::int64_t> taken_;  // when, oldest first
};

}  // namespace kestrin::sandbox
