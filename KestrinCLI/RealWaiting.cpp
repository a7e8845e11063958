#include "KestrinCLI/Waiting.h"

namespace kestrin {

Sleep commandSleep() {
    return sleepOnSteadyClock;
}

Clock commandClock() {
    return steadyNow;
}

}  // namespace kestrin
