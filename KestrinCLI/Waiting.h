// How a command waits: for a Retry-After, before another try, for an asset or a build in processing.
#pragma once

#include "KestrinCore/Clock.h"

namespace kestrin {

// Every wait of a command goes through this. Which it is depends on the executable: `kestrin` links KestrinRealTime
// and waits; one that speaks to the sandbox links KestrinSandboxTime, where the environment may say
// KESTRIN_SANDBOX_WAITS=skip, so that a transcript of an hour of tries takes a second.
Sleep commandSleep();

// How long waits last, which counts those that were skipped.
Clock commandClock();

}  // namespace kestrin
