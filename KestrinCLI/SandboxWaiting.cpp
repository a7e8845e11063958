#include <atomic>
#include <cstdlib>
#include <string_view>

#include "KestrinCLI/Waiting.h"

namespace kestrin {
namespace {

using Ticks = std::chrono::system_clock::duration;

// By which the clock of a run that skips its waits is ahead.
std::atomic<Ticks::rep> skipped{0};

}  // namespace

Sleep commandSleep() {
    const char* waits = std::getenv("KESTRIN_SANDBOX_WAITS");
    if (!waits || std::string_view(waits) != "skip") return sleepOnSteadyClock;
    return [](Seconds wait, const std::stop_token& stop) {
        throwIfStopped(stop);
        skipped += std::chrono::ceil<Ticks>(wait).count();
    };
}

Clock commandClock() {
    return [] { return steadyNow() + Ticks(skipped); };
}

}  // namespace kestrin
