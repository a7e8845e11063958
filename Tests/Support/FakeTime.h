// A clock that only a test moves, and a sleep that moves it.
#pragma once

#include <chrono>
#include <vector>

#include "KestrinCore/Clock.h"

namespace kestrin {

// The functions it hands out refer to it: keep it alive as long as whoever uses them.
struct FakeTime {
    std::chrono::system_clock::time_point now = std::chrono::sys_seconds(std::chrono::seconds(1'800'000'000));
    std::vector<Seconds> slept;  // every wait, in order

    FakeTime() = default;
    FakeTime(const FakeTime&) = delete;
    FakeTime& operator=(const FakeTime&) = delete;

    void advance(Seconds wait) {
        now += std::chrono::duration_cast<std::chrono::system_clock::duration>(wait);
    }

    Clock clock() {
        return [this] { return now; };
    }
    Sleep sleep() {
        return [this](Seconds wait, const std::stop_token& stop) {
            throwIfStopped(stop);
            slept.push_back(wait);
            advance(wait);
        };
    }
};

}  // namespace kestrin
