// Writes down what long waits tell.
#pragma once

#include <string>
#include <vector>

#include "KestrinCore/LongWait.h"
#include "Tests/Support/FakeTime.h"

namespace kestrin {

// The notes it hands out refer to it and to the time.
struct ToldWaits {
    std::vector<std::string> lines;  // what is waited for and how many minutes already: "it 2"

    WaitNotes notes(FakeTime& time) {
        return {[this](const std::string& what, std::chrono::minutes soFar) {
                    lines.push_back(what + " " + std::to_string(soFar.count()));
                },
                time.clock()};
    }
};

}  // namespace kestrin
