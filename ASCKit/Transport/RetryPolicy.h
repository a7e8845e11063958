// How often a request is tried and how long is waited in between.
#pragma once

#include <functional>
#include <optional>
#include <string_view>

#include "KestrinCore/Clock.h"

namespace kestrin {

struct RetryPolicy {
    int maxAttempts = 6;         // tries in all, the first included
    Seconds baseDelay{1};        // before the first retry; doubles with each further one
    Seconds maxDelay{60};        // what the doubling ends at
    Seconds maxRetryAfter{300};  // a longer wait isn't waited for: the failure is reported at once
    std::function<Seconds(Seconds)> jitter = fullJitter;  // applied to the computed delay

    // The wait before try number `next`, the first try being number 0.
    Seconds backoff(int next) const;

    // The delay times a uniformly random number from 0 to 1, so that clients that failed together don't come back
    // together.
    static Seconds fullJitter(Seconds delay);

    // What a Retry-After field asks for: whole seconds (a negative number counts as 0) or the time from `now` to an
    // HTTP date (0 when it has passed). nullopt when the field is absent, empty or neither.
    static std::optional<Seconds> retryAfter(std::optional<std::string_view> field,
                                             std::chrono::system_clock::time_point now);
};

}  // namespace kestrin
