// The console of a real run: the three standard streams of the process.
#pragma once

#include "KestrinCLI/Console.h"

namespace kestrin {

// SIGPIPE stays as the parent set it: by default a closed pipe ends the process as it does any other Unix tool,
// and where the parent ignores the signal OutputClosed does.
//
// On a terminal, control characters other than line feed and tab show as their pictures ("␛"): a listing that
// came from elsewhere can't move the cursor, hide text or retitle the window. Anywhere else bytes pass unchanged.
class StandardConsole : public Console {
 public:
    // The streams are descriptors, so that a test can hand in its own.
    explicit StandardConsole(int input = 0, int output = 1, int error = 2);

    void write(std::string_view bytes) override;
    void writeError(std::string_view bytes) noexcept override;
    std::optional<std::string> readLine() override;
    void finish()
        override;  // closes standard output: a network file system may report a failed write only then

 private:
    struct OutputStream {
        int descriptor;
        bool isTerminal;
    };

    // The next byte of standard input; negative at its end.
    int nextByte();

    int input_;
    OutputStream output_, error_;
    std::string unread_;  // what was read from standard input and not yet handed out
    std::size_t position_ = 0;
};

// The text with each control character but line feed and tab as its picture from the block Control Pictures; those
// of the second set (U+0080 to U+009F), which have none, as U+FFFD.
std::string withVisibleControls(std::string_view text);

// Puts a stand-in where the parent has closed standard input, output or error: else the next file to be opened
// would take the number, and what is printed would end up in that file. The stand-in refuses every read or write.
void keepStandardStreamsOpen();

}  // namespace kestrin
