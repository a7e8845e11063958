// The console of a real run: the three standard streams of the process.
#pragma once

#include "KestrinCLI/Console.h"

namespace kestrin {

// SIGPIPE stays as the parent set it: by default a closed pipe ends the process as it does any other Unix tool,
// and where the parent ignores the signal OutputClosed does.
//
// On a terminal, control characters other than line feed and tab show as their pictures ("␛"): a listing that
// came from elsewhere can't move the cursor, hide text or retitle the window. Anywhere else bytes pass unchanged.
//
// No colour is ever used, so there is nothing for NO_COLOR to turn off. The status line needs a terminal that can erase
// a line, which is any but one without a name in TERM and the one named "dumb".
class StandardConsole : public Console {
 public:
    // The streams are descriptors, so that a test can hand in its own.
    explicit StandardConsole(int input = 0, int output = 1, int error = 2);
    ~StandardConsole() override;
    StandardConsole(const StandardConsole&) = delete;
    StandardConsole& operator=(const StandardConsole&) = delete;

    void write(std::string_view bytes) override;
    void writeError(std::string_view bytes) noexcept override;
    void showStatus(std::string_view line) noexcept override;
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

    void takeStatusAway() noexcept;
    // What stands on the screen now, to be told from where a status line may begin.
    void noteShown(const OutputStream& stream, std::string_view bytes) noexcept;

    int input_;
    OutputStream output_, error_;
    bool canShowStatus_;
    bool showsStatus_ = false;
    bool isAtLineStart_ = true;
    std::string unread_;  // what was read from standard input and not yet handed out
    std::size_t position_ = 0;
};

// The text with each control character but line feed and tab as its picture from the block Control Pictures; those
// of the second set (U+0080 to U+009F), which have none, as U+FFFD.
std::string withVisibleControls(std::string_view text);

// A status as it fits into a terminal of so many columns: on one line, with visible controls, and cut so that it never
// reaches the last column, from where it couldn't be taken back. What isn't ASCII counts as two columns wide.
std::string statusLine(std::string_view text, std::size_t columns);

// Puts a stand-in where the parent has closed standard input, output or error: else the next file to be opened
// would take the number, and what is printed would end up in that file. The stand-in refuses every read or write.
void keepStandardStreamsOpen();

}  // namespace kestrin
