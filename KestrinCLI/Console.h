// What the user sees and types: the one door to the standard streams.
//
// Results, lists, questions and progress go to standard output, which shows every piece as soon as it is printed;
// warnings, notes and the reason of a failure go to standard error. Nothing is held back in between, so the two
// interleave on one terminal as they were written.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "KestrinCore/Error.h"

namespace kestrin {

class Console {
 public:
    virtual ~Console() = default;

    // The line and a line feed, to standard output.
    void print(std::string_view line);

    // The message and a line feed, to standard error. Standard output isn't touched.
    void note(std::string_view message);

    // Bytes to standard output as they are: a question, or the raw reply of a server. OutputClosed or
    // OutputFailure when they don't get there.
    virtual void write(std::string_view bytes) = 0;

    // Bytes to standard error. Never fails: nobody is left to be told.
    virtual void writeError(std::string_view bytes) noexcept = 0;

    // One line that shows, where standard error is a terminal that can erase a line, how far long work has come; in the
    // place of the one shown before. It makes way for whatever is written next, and "" takes it away. Anywhere else
    // nothing happens, and by default.
    virtual void showStatus(std::string_view /*line*/) noexcept {}

    // The next line of standard input without its line feed; the last line counts without one too. nullopt at the
    // end of input, and when standard input can't be read. Of an endless line only the beginning is kept.
    virtual std::optional<std::string> readLine() = 0;

    // Called once when a command is done: throws OutputFailure when the system tells only now that something
    // printed before hasn't arrived.
    virtual void finish() = 0;
};

// Nobody reads standard output any more, as after `kestrin check p.kestrin | head -1`. That isn't worth a word:
// the program ends, and its status isn't 0.
struct OutputClosed {};

// Standard output couldn't be written for any other reason (a full disk, a closed descriptor).
class OutputFailure : public Error {
 public:
    explicit OutputFailure(int errorNumber) : errorNumber_(errorNumber) {}
    std::string errorDescription() const override;  // "standard output can't be written: {reason}"

 private:
    int errorNumber_;
};

}  // namespace kestrin
