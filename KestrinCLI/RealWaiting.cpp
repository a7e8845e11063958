#include "KestrinCLI/Waiting.h"

namespace kestrin {

Sleep commandSleep() {
    return sleepOnSteadyClock;
}

}  // namespace kestrin
