#include "ASCKit/Transport/RetryPolicy.h"

#include <algorithm>
#include <cmath>
#include <random>

#include "ASCKit/Transport/HTTPDate.h"
#include "ASCKit/Transport/HTTPHeaders.h"
#include "KestrinCore/DecimalInteger.h"

namespace kestrin {
Seconds RetryPolicy::backoff(int next) const {
    const int doublings = std::clamp(next - 1, 0, 16);
    return jitter(std::min(maxDelay, baseDelay * std::exp2(doublings)));
}

Seconds RetryPolicy::fullJitter(Seconds delay) {
    thread_local std::mt19937 generator{std::random_device{}()};
    return delay * std::uniform_real_distribution(0.0, 1.0)(generator);
}

std::optional<Seconds> RetryPolicy::retryAfter(std::optional<std::string_view> field,
                                               std::chrono::system_clock::time_point now) {
    if (!field) return std::nullopt;
    const auto value = withoutSurroundingWhitespace(*field);
    if (const auto seconds = decimalInteger(value)) {
        return Seconds(static_cast<double>(std::max<std::int64_t>(*seconds, 0)));
    }
    const auto date = HTTPDate::parse(value, now);
    if (!date) return std::nullopt;
    // Whole seconds first: the year 9999 is beyond what the system clock's own unit can count to.
    const auto thisSecond = std::chrono::floor<std::chrono::seconds>(now);
    const auto wait = Seconds(*date - thisSecond) - Seconds(now - thisSecond);
    return std::max(wait, Seconds(0));
}

}  // namespace kestrin
