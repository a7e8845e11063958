// A console in memory: hands out the lines it was given, and keeps what was shown.
#pragma once

#include <cerrno>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "KestrinCLI/Console.h"

namespace kestrin {

class FakeConsole : public Console {
 public:
    explicit FakeConsole(std::deque<std::string> typed = {}) : typed_(std::move(typed)) {}

    std::string output;                 // what went to standard output
    std::string errors;                 // what went to standard error
    std::vector<std::string> statuses;  // each that was shown, "" for one that was taken away
    std::string terminal;               // both, as they interleave on a terminal
    int errorOfOutput = 0;              // when set, standard output fails with this error from now on
    int errorOfFinish = 0;              // when set, finish() does
    int finished = 0;                   // calls of finish()
    std::size_t answers = 0;            // lines that were read

    void write(std::string_view bytes) override {
        failWith(errorOfOutput);
        output += bytes;
        terminal += bytes;
    }
    void writeError(std::string_view bytes) noexcept override {
        errors += bytes;
        terminal += bytes;
    }
    void showStatus(std::string_view line) noexcept override { statuses.emplace_back(line); }
    std::optional<std::string> readLine() override {
        if (typed_.empty()) return std::nullopt;
        ++answers;
        auto line = std::move(typed_.front());
        typed_.pop_front();
        return line;
    }
    void finish() override {
        ++finished;
        failWith(errorOfFinish);
    }

 private:
    static void failWith(int errorNumber) {
        if (errorNumber == EPIPE) throw OutputClosed{};
        if (errorNumber != 0) throw OutputFailure(errorNumber);
    }

    std::deque<std::string> typed_;
};

}  // namespace kestrin
