#include "KestrinCore/Clock.h"

#include <algorithm>
#include <condition_variable>
#include <mutex>

#include "KestrinCore/Message.h"

namespace kestrin {

std::string Cancelled::errorDescription() const {
    return message::localized("cancelled", "Cancelled.");
}

void throwIfStopped(const std::stop_token& stop) {
    if (stop.stop_requested()) throw Cancelled();
}

std::chrono::system_clock::time_point systemNow() {
    return std::chrono::system_clock::now();
}

std::chrono::system_clock::time_point steadyNow() {
    const auto sinceStart = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::system_clock::time_point(
        std::chrono::duration_cast<std::chrono::system_clock::duration>(sinceStart));
}

void sleepOnSteadyClock(Seconds wait, const std::stop_token& stop) {
    // Beyond a century the sum with the present time would overflow the clock.
    constexpr Seconds kCentury = std::chrono::years(100);
    const auto end = std::chrono::steady_clock::now() +
                     std::chrono::duration_cast<std::chrono::nanoseconds>(std::min(wait, kCentury));
    std::mutex mutex;
    std::condition_variable_any woken;
    std::unique_lock lock(mutex);
    woken.wait_until(lock, stop, end, [] { return false; });
    throwIfStopped(stop);
}

}  // namespace kestrin
