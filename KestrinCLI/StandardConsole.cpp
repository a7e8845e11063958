#include "KestrinCLI/StandardConsole.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <exception>
#include <utility>

#include "KestrinCore/UnicodeText.h"

namespace kestrin {
namespace {

// Enough for any answer; the rest of a longer line is read and forgotten.
constexpr std::size_t kLongestLine = 4096;

// A descriptor shared with another program may be non-blocking without our doing.
bool waited(int descriptor, short event) {
    if (errno == EINTR) return true;
    if (errno != EAGAIN && errno != EWOULDBLOCK) return false;
    pollfd ready{descriptor, event, 0};
    return poll(&ready, 1, -1) >= 0 || errno == EINTR;
}

// 0, or the number of the error.
int writeAll(int descriptor, std::string_view bytes) noexcept {
    while (!bytes.empty()) {
        const auto written = ::write(descriptor, bytes.data(), bytes.size());
        if (written >= 0) {
            bytes.remove_prefix(static_cast<std::size_t>(written));
        } else if (!waited(descriptor, POLLOUT)) {
            return errno;
        }
    }
    return 0;
}

void check(int errorNumber) {
    if (errorNumber == EPIPE) throw OutputClosed{};
    if (errorNumber != 0) throw OutputFailure(errorNumber);
}

bool isControl(unsigned char byte) {
    return (byte < 0x20 && byte != '\n' && byte != '\t') || byte == 0x7f;
}

std::string pictureOf(unsigned char control) {
    constexpr unsigned char kDelete = 0x7f;
    const auto offset = control == kDelete ? 0x21 : control;  // U+2421 is the picture of U+007F
    return {'\xE2', '\x90', static_cast<char>(0x80 + offset)};
}

// Whether a control character of the second set stands at `i`; they are C2 80 to C2 9F.
bool isSecondSetControl(std::string_view text, std::size_t i) {
    if (text[i] != '\xC2' || i + 1 == text.size()) return false;
    const auto second = static_cast<unsigned char>(text[i + 1]);
    return second >= 0x80 && second < 0xA0;
}

bool canEraseALine() {
    const char* terminal = std::getenv("TERM");
    return terminal && *terminal != '\0' && std::string_view(terminal) != "dumb";
}

std::size_t columnsOf(int terminal) {
    constexpr std::size_t kUsual = 80;
    winsize size{};
    return ioctl(terminal, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : kUsual;
}

std::string onOneLine(std::string_view text) {
    std::string line = withVisibleControls(text);
    for (char& c : line) {
        if (c == '\n' || c == '\t') c = ' ';
    }
    return line;
}

constexpr std::string_view kEraseToEndOfLine = "\x1b[K";

}  // namespace

std::string statusLine(std::string_view text, std::size_t columns) {
    const auto line = onOneLine(text);
    std::string fitting;
    std::size_t width = 0;
    for (const auto& character : text::graphemes(line)) {
        width += text::isASCII(character) ? 1 : 2;
        if (width >= columns) break;
        fitting += character;
    }
    return fitting;
}

std::string withVisibleControls(std::string_view text) {
    std::string visible;
    visible.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (isSecondSetControl(text, i)) {
            visible += "\xEF\xBF\xBD";
            ++i;
        } else if (isControl(static_cast<unsigned char>(text[i]))) {
            visible += pictureOf(static_cast<unsigned char>(text[i]));
        } else {
            visible += text[i];
        }
    }
    return visible;
}

StandardConsole::StandardConsole(int input, int output, int error)
    : input_(input),
      output_{output, isatty(output) == 1},
      error_{error, isatty(error) == 1},
      canShowStatus_(error_.isTerminal && canEraseALine()) {}

StandardConsole::~StandardConsole() {
    takeStatusAway();
}

void StandardConsole::write(std::string_view bytes) {
    takeStatusAway();
    noteShown(output_, bytes);
    check(output_.isTerminal ? writeAll(output_.descriptor, withVisibleControls(bytes))
                             : writeAll(output_.descriptor, bytes));
}

void StandardConsole::writeError(std::string_view bytes) noexcept {
    takeStatusAway();
    noteShown(error_, bytes);
    try {
        if (!error_.isTerminal) {
            writeAll(error_.descriptor, bytes);
        } else {
            writeAll(error_.descriptor, withVisibleControls(bytes));
        }
    } catch (const std::bad_alloc&) {  // no memory left for pictures
    }
}

void StandardConsole::showStatus(std::string_view line) noexcept {
    if (line.empty()) return takeStatusAway();
    // Behind a question that nobody has typed an answer to, a status would take the question away.
    if (!canShowStatus_ || !isAtLineStart_) return;
    try {
        std::string bytes("\r");
        bytes.append(statusLine(line, columnsOf(error_.descriptor))).append(kEraseToEndOfLine);
        writeAll(error_.descriptor, bytes);
        showsStatus_ = true;
    } catch (const std::exception&) {  // no memory for what nobody needs
    }
}

void StandardConsole::takeStatusAway() noexcept {
    if (!std::exchange(showsStatus_, false)) return;
    writeAll(error_.descriptor, "\r");
    writeAll(error_.descriptor, kEraseToEndOfLine);
}

void StandardConsole::noteShown(const OutputStream& stream, std::string_view bytes) noexcept {
    if (stream.isTerminal && !bytes.empty()) isAtLineStart_ = bytes.back() == '\n';
}

int StandardConsole::nextByte() {
    if (position_ == unread_.size()) {
        unread_.resize(kLongestLine);
        ssize_t got = 0;
        do {
            got = ::read(input_, unread_.data(), unread_.size());
        } while (got < 0 && waited(input_, POLLIN));
        unread_.resize(got > 0 ? static_cast<std::size_t>(got) : 0);
        position_ = 0;
        if (got <= 0) return -1;
    }
    return static_cast<unsigned char>(unread_[position_++]);
}

std::optional<std::string> StandardConsole::readLine() {
    takeStatusAway();
    int byte = nextByte();
    if (byte < 0) return std::nullopt;
    if (isatty(input_) == 1) isAtLineStart_ = true;  // the line feed that was typed shows there, too
    std::string line;
    for (; byte >= 0 && byte != '\n'; byte = nextByte()) {
        if (line.size() < kLongestLine) line += static_cast<char>(byte);
    }
    return line;
}

void StandardConsole::finish() {
    takeStatusAway();
    if (close(output_.descriptor) != 0) check(errno);
}

void keepStandardStreamsOpen() {
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(descriptor, F_GETFD) != -1) continue;
        // The lowest free number is this one. Opened the wrong way round, so that its use fails as it would have.
        if (open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY) < 0) return;
    }
}

}  // namespace kestrin
