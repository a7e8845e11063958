// A wait that says how long it has lasted already, so that nobody is left staring at a silent terminal and no
// continuous-delivery service takes a waiting job for a dead one.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "KestrinCore/Clock.h"

namespace kestrin {

// How a wait is told about.
struct WaitNotes {
    // After the first minute and each further one: what is waited for, as a sentence without its full stop. When
    // absent, waits are silent.
    std::function<void(const std::string& what, std::chrono::minutes soFar)> tell = {};
    Clock now = steadyNow;
};

// One wait, made of as many sleeps as it takes. It begins with its first sleep, and what happens between two sleeps
// is part of it.
class LongWait {
 public:
    LongWait(Sleep sleep, WaitNotes notes) : sleep_(std::move(sleep)), notes_(std::move(notes)) {}

    // Sleeps this long. `what` is what is waited for now. Throws what the sleep throws.
    void sleep(Seconds wait, const std::string& what, const std::stop_token& stop);

 private:
    void tellIfDue(const std::string& what);
    Seconds soFar() const { return notes_.now() - *began_; }

    Sleep sleep_;
    WaitNotes notes_;
    std::optional<std::chrono::system_clock::time_point> began_;
    std::chrono::minutes told_{0};
};

}  // namespace kestrin
