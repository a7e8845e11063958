#include <cstdlib>
#include <string_view>

#include "KestrinCLI/Waiting.h"

namespace kestrin {

Sleep commandSleep() {
    const char* waits = std::getenv("KESTRIN_SANDBOX_WAITS");
    if (!waits || std::string_view(waits) != "skip") return sleepOnSteadyClock;
    return [](Seconds, const std::stop_token& stop) { throwIfStopped(stop); };
}

}  // namespace kestrin
