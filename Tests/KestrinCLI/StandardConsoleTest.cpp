#include "KestrinCLI/StandardConsole.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <stdexcept>
#include <thread>

#include "KestrinCore/Files.h"
#include "Tests/Support/ProcessState.h"

namespace kestrin {
namespace {

using files::Descriptor;

struct Pipe {
    Pipe() {
        std::array<int, 2> ends{};
        if (pipe2(ends.data(), O_CLOEXEC) != 0) throw std::system_error(errno, std::generic_category());
        reading = Descriptor(ends[0]);
        writing = Descriptor(ends[1]);
    }
    Descriptor reading, writing;
};

// What can be read without waiting.
std::string available(const Descriptor& from) {
    fcntl(from.number(), F_SETFL, O_NONBLOCK);
    std::array<char, 65536> bytes{};
    std::string all;
    for (ssize_t got = 0; (got = read(from.number(), bytes.data(), bytes.size())) > 0;) {
        all.append(bytes.data(), static_cast<std::size_t>(got));
    }
    return all;
}

// A console whose standard input holds `typed`.
struct Typed {
    explicit Typed(std::string_view typed) {
        files::writeAll(input.writing, typed, "the test's pipe");
        input.writing = Descriptor();
    }
    Pipe input;
    StandardConsole console{input.reading.number()};
};

// SIGPIPE ignored for the length of a test, as some parents hand it down.
class BrokenPipeIgnored {
 public:
    BrokenPipeIgnored() : before_(std::signal(SIGPIPE, SIG_IGN)) {}
    ~BrokenPipeIgnored() { std::signal(SIGPIPE, before_); }
    BrokenPipeIgnored(const BrokenPipeIgnored&) = delete;
    BrokenPipeIgnored& operator=(const BrokenPipeIgnored&) = delete;

 private:
    void (*before_)(int);
};

TEST(StandardConsole, HandsOnEachPieceAtOnce) {
    Pipe output;
    StandardConsole console(0, output.writing.number());
    console.print("first");
    EXPECT_EQ(available(output.reading), "first\n");
    console.write("Really? [y/N] ");
    EXPECT_EQ(available(output.reading), "Really? [y/N] ");
}

TEST(StandardConsole, KeepsTheOrderOfOutputAndErrorsOnOneTerminal) {
    Pipe both;
    StandardConsole console(0, both.writing.number(), both.writing.number());
    console.print("a");
    console.note("b");
    console.print("c");
    EXPECT_EQ(available(both.reading), "a\nb\nc\n");
}

TEST(StandardConsole, ReadsLineByLine) {
    Typed typed("y\n\nlast");
    EXPECT_EQ(typed.console.readLine(), "y");
    EXPECT_EQ(typed.console.readLine(), "");
    EXPECT_EQ(typed.console.readLine(), "last") << "a last line without a line feed counts";
    EXPECT_EQ(typed.console.readLine(), std::nullopt);
    EXPECT_EQ(typed.console.readLine(), std::nullopt);
}

TEST(StandardConsole, TakesAnUnreadableInputForItsEnd) {
    const Descriptor folder(open("/", O_RDONLY | O_CLOEXEC));
    EXPECT_EQ(StandardConsole(folder.number()).readLine(), std::nullopt);
    EXPECT_EQ(StandardConsole(-1).readLine(), std::nullopt);
}

TEST(StandardConsole, KeepsOnlyTheBeginningOfAnEndlessLine) {
    Pipe input;
    std::thread typing([&] {
        files::writeAll(input.writing, "y" + std::string(std::size_t{1} << 20, 'x') + "\nnext\n",
                        "the test's pipe");
        input.writing = Descriptor();
    });
    StandardConsole console(input.reading.number());

    const auto line = console.readLine();
    const auto next = console.readLine();
    typing.join();

    ASSERT_TRUE(line);
    EXPECT_LE(line->size(), 4096u);
    EXPECT_EQ(line->substr(0, 3), "yxx");
    EXPECT_EQ(next, "next");
}

TEST(StandardConsole, WaitsWhereAnotherProgramMadeTheOutputNonBlocking) {
    Pipe output;
    fcntl(output.writing.number(), F_SETFL, O_NONBLOCK);
    const std::string long_(std::size_t{1} << 20, 'x');
    std::string arrived;
    std::thread reading([&] {
        std::array<char, 4096> bytes{};
        for (ssize_t got = 0; (got = read(output.reading.number(), bytes.data(), bytes.size())) > 0;) {
            arrived.append(bytes.data(), static_cast<std::size_t>(got));
        }
    });

    StandardConsole(0, output.writing.number()).print(long_);
    output.writing = Descriptor();
    reading.join();

    EXPECT_EQ(arrived, long_ + "\n");
}

TEST(StandardConsole, TellsThatNobodyReadsWhereTheSignalIsIgnored) {
    const BrokenPipeIgnored ignored;
    Pipe output;
    output.reading = Descriptor();
    EXPECT_THROW(StandardConsole(0, output.writing.number()).print("x"), OutputClosed);
    StandardConsole(0, 1, output.writing.number()).note("nobody is left to be told");
}

TEST(StandardConsole, IsEndedByTheSignalOfAClosedPipeLikeAnyTool) {
    Pipe output;
    output.reading = Descriptor();
    EXPECT_EXIT(StandardConsole(0, output.writing.number()).print("x"), testing::KilledBySignal(SIGPIPE), "");
}

TEST(StandardConsole, FailsWhereTheDiskIsFull) {
    const Descriptor full(open("/dev/full", O_WRONLY | O_CLOEXEC));
    try {
        StandardConsole(0, full.number()).print("x");
        FAIL() << "a full disk went unseen";
    } catch (const OutputFailure& failure) {
        EXPECT_EQ(failure.errorDescription(), "standard output can't be written: No space left on device");
    }
    StandardConsole(0, 1, full.number()).note("errors have nowhere else to go");
}

TEST(StandardConsole, ClosesTheOutputWhenItIsFinished) {
    Pipe output;
    StandardConsole console(0, dup(output.writing.number()));
    console.print("all");
    console.finish();
    EXPECT_THROW(console.print("more"), OutputFailure);
    EXPECT_EQ(available(output.reading), "all\n");
}

// A pseudo terminal: what is written to its line arrives on its screen.
struct Terminal {
    explicit Terminal(const char* name = "xterm", unsigned short columns = 80) : term("TERM", name) {
        if (grantpt(screen.number()) != 0 || unlockpt(screen.number()) != 0)
            throw std::runtime_error("no terminal");
        line = Descriptor(open(ptsname(screen.number()), O_RDWR | O_NOCTTY));
        winsize size{};
        size.ws_col = columns;
        ioctl(line.number(), TIOCSWINSZ, &size);
    }
    EnvironmentVariable term;
    Descriptor screen{posix_openpt(O_RDWR | O_NOCTTY)};
    Descriptor line;

    std::string shown() const { return available(screen); }
};

TEST(StandardConsole, ShowsControlCharactersOnATerminalAsPictures) {
    const Terminal terminal;
    StandardConsole console(0, terminal.line.number(), terminal.line.number());
    console.print("name: \x1b[2J");
    console.note("note: \x07");
    EXPECT_EQ(terminal.shown(), "name: ␛[2J\r\nnote: ␇\r\n") << "the carriage returns are the terminal's own";
}

TEST(StatusLineOfAConsole, StandsInOnePlaceAndMakesWayForWhatIsWritten) {
    const Terminal terminal;
    StandardConsole console(0, terminal.line.number(), terminal.line.number());
    console.showStatus("one");
    console.showStatus("two");
    EXPECT_EQ(terminal.shown(), "\rone\x1b[K\rtwo\x1b[K");
    console.print("a");
    EXPECT_EQ(terminal.shown(), "\r\x1b[Ka\r\n");
    console.print("b");
    EXPECT_EQ(terminal.shown(), "b\r\n") << "there is nothing left to take away";
    console.showStatus("three");
    console.note("c");
    EXPECT_EQ(terminal.shown(), "\rthree\x1b[K\r\x1b[Kc\r\n");
}

TEST(StatusLineOfAConsole, VanishesWhenItIsEmptyAndWithTheConsole) {
    const Terminal terminal;
    {
        StandardConsole console(0, 1, terminal.line.number());
        console.showStatus("one");
        console.showStatus("");
        EXPECT_EQ(terminal.shown(), "\rone\x1b[K\r\x1b[K");
        console.showStatus("");
        EXPECT_EQ(terminal.shown(), "");
        console.showStatus("two");
    }
    EXPECT_EQ(terminal.shown(), "\rtwo\x1b[K\r\x1b[K");
}

TEST(StatusLineOfAConsole, IsOnlyOnTheTerminalOfStandardError) {
    Pipe output;
    const Terminal terminal;
    StandardConsole console(0, output.writing.number(), terminal.line.number());
    console.showStatus("one");
    console.print("result");
    EXPECT_EQ(available(output.reading), "result\n");
    EXPECT_EQ(terminal.shown(), "\rone\x1b[K\r\x1b[K");
}

TEST(StatusLineOfAConsole, IsNotInAPipe) {
    Pipe output, errors;
    const Terminal terminal;
    {
        StandardConsole console(0, terminal.line.number(), errors.writing.number());
        console.showStatus("one");
        console.print("result");
        console.note("note");
    }
    EXPECT_EQ(available(errors.reading), "note\n");
    EXPECT_EQ(terminal.shown(), "result\r\n");
}

TEST(StatusLineOfAConsole, IsNotOnATerminalThatCannotEraseALine) {
    for (const char* name : {"dumb", "", static_cast<const char*>(nullptr)}) {
        const Terminal terminal(name);
        {
            StandardConsole console(0, 1, terminal.line.number());
            console.showStatus("one");
            console.note("note");
        }
        EXPECT_EQ(terminal.shown(), "note\r\n");
    }
}

TEST(StatusLineOfAConsole, DoesNotTakeAQuestionAway) {
    const Terminal terminal;
    Typed typed("y\n");
    StandardConsole console(typed.input.reading.number(), terminal.line.number(), terminal.line.number());
    console.write("Really? [y/N] ");
    console.readLine();
    console.showStatus("one");
    EXPECT_EQ(terminal.shown(), "Really? [y/N] ")
        << "the answer came through a pipe, so the line still stands";
    console.print("");
    console.showStatus("two");
    EXPECT_EQ(terminal.shown(), "\r\n\rtwo\x1b[K");
}

TEST(StatusLineOfAConsole, BeginsBelowAnAnswerThatWasTyped) {
    const Terminal terminal;
    StandardConsole console(terminal.line.number(), terminal.line.number(), terminal.line.number());
    console.write("Really? ");
    files::writeAll(terminal.screen, "y\n", "the test's terminal");
    EXPECT_EQ(console.readLine(), "y");
    console.showStatus("one");
    EXPECT_EQ(terminal.shown(), "Really? y\r\n\rone\x1b[K");
}

TEST(StatusLineOfAConsole, FitsTheTerminal) {
    const Terminal terminal("xterm", 10);
    StandardConsole(0, 1, terminal.line.number()).showStatus("a line that is longer");
    EXPECT_EQ(terminal.shown(), "\ra line th\x1b[K\r\x1b[K");
}

TEST(StatusLine, IsCutBeforeTheLastColumnAndHoldsNoControls) {
    struct Row {
        const char* text;
        std::size_t columns;
        const char* line;
    };
    const Row rows[] = {
        {"12345", 6, "12345"},
        {"12345", 5, "1234"},
        {"日本語", 7, "日本語"},
        {"日本語", 6, "日本"},
        {"a\nb\tc", 80, "a b c"},
        {"a\x1b[2J", 80, "a␛[2J"},
        {"", 80, ""},
        {"a", 1, ""},
        {"a", 0, ""},
    };
    for (const Row& row : rows) EXPECT_EQ(statusLine(row.text, row.columns), row.line) << row.text;
}

TEST(StandardConsole, HandsOnControlCharactersUnchangedAnywhereElse) {
    Pipe output;
    StandardConsole(0, output.writing.number()).print("\x1b[2J");
    EXPECT_EQ(available(output.reading), "\x1b[2J\n");
}

TEST(VisibleControls, AreAllButLineFeedAndTab) {
    struct Row {
        const char* text;
        const char* visible;
    };
    const Row rows[] = {
        {"a\tb\nc", "a\tb\nc"},
        {"\r", "␍"},
        {"\x01\x1f\x7f", "␁␟␡"},
        {"\xC2\x9B", "�"},  // the one-character form of ESC [
        {"\xC2\x80\xC2\xA0", "�\u00A0"},
        {"Grüße ⏎ 日本 ✓", "Grüße ⏎ 日本 ✓"},
        {"\xC2", "\xC2"},
        {"\xC2x", "\xC2x"},
        {"", ""},
    };
    for (const Row& row : rows) EXPECT_EQ(withVisibleControls(row.text), row.visible);
    EXPECT_EQ(withVisibleControls(std::string_view("\0", 1)), "␀");
}

TEST(StandardStreams, ClosedByTheParentAreNotTakenByTheNextFile) {
    const auto check = [] {
        for (const int descriptor : {0, 1, 2}) close(descriptor);
        keepStandardStreamsOpen();
        const int next = open("/dev/null", O_RDWR);
        const bool refuse = read(0, nullptr, 0) < 0 && ::write(1, "x", 1) < 0 && ::write(2, "x", 1) < 0;
        _exit(next > 2 && refuse ? 0 : 1);
    };
    EXPECT_EXIT(check(), testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace kestrin
