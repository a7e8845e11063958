// Time as a parameter: whoever reads the clock or waits takes these, so that a test runs an hour in no time.
#pragma once

#include <chrono>
#include <functional>
#include <stop_token>

#include "KestrinCore/Error.h"

namespace kestrin {

// A length of time with its fraction. Whole seconds convert to it without loss.
using Seconds = std::chrono::duration<double>;

// Gives the present time.
using Clock = std::function<std::chrono::system_clock::time_point()>;

// Waits. Throws Cancelled as soon as a stop is requested, also when it was before the call.
using Sleep = std::function<void(Seconds, const std::stop_token&)>;

// The run was told to end: by the user (control-C) or by another worker's failure. Never retried.
class Cancelled : public Error {
 public:
    std::string errorDescription() const override;  // "Cancelled."
};

// Throws Cancelled when a stop was requested.
void throwIfStopped(const std::stop_token& stop);

// The defaults: the system's clock, and a wait on the monotonic one.
std::chrono::system_clock::time_point systemNow();
void sleepOnSteadyClock(Seconds wait, const std::stop_token& stop);

// A time that nobody sets, for measuring how long something lasts. It isn't the time of day.
std::chrono::system_clock::time_point steadyNow();

}  // namespace kestrin
