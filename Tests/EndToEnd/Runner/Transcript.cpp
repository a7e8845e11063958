#include "Tests/EndToEnd/Runner/Transcript.h"

#include <algorithm>
#include <optional>
#include <regex>

namespace kestrin::endtoend {
namespace {

using Lines = std::vector<std::string>;

Lines linesOf(std::string_view text) {
    Lines lines;
    while (!text.empty()) {
        const auto end = std::min(text.find('\n'), text.size());
        lines.emplace_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return lines;
}

bool isBetweenCommands(const std::string& line) {
    return line.empty() || line.front() == '#';
}

// "> text" or, for an empty text, ">".
bool hasMark(const std::string& line, std::string_view marks) {
    return !line.empty() && marks.find(line.front()) != std::string_view::npos &&
           (line.size() == 1 || line[1] == ' ');
}

std::string withoutMark(const std::string& line) {
    return line.size() > 2 ? line.substr(2) : "";
}

std::string typedBytes(const std::string& line) {
    auto text = withoutMark(line);
    if (!text.ends_with(kNoLineFeed)) return text + '\n';
    return text.substr(0, text.size() - kNoLineFeed.size());
}

class Parser {
 public:
    Transcript parse(const Lines& lines) {
        if (lines.empty() || !lines[0].starts_with("# ")) fail("the first line isn't the promise (“# …”)");
        transcript_.promise = lines[0].substr(2);
        for (const auto& line : lines) {
            ++lineNumber_;
            take(line);
        }
        endExchange();
        transcript_.tail = std::move(between_);
        if (std::all_of(transcript_.exchanges.begin(), transcript_.exchanges.end(),
                        [](const Exchange& exchange) { return exchange.setsTheStage; })) {
            fail("nothing is promised without a command (“$ …”)");
        }
        return std::move(transcript_);
    }

 private:
    [[noreturn]] void fail(const std::string& why) const {
        throw TranscriptError("line " + std::to_string(std::max<std::size_t>(lineNumber_, 1)) + ": " + why);
    }

    void take(const std::string& line) {
        if (isBetweenCommands(line)) {
            endExchange();
            between_.push_back(line);
        } else if (hasMark(line, "$%")) {
            takeCommand(line);
        } else if (hasMark(line, "<>!?")) {
            if (!current_) fail("no command above this line");
            takeDialogue(line);
        } else {
            fail("a line begins with one of # $ % < > ! ? and a blank");
        }
    }

    void takeCommand(const std::string& line) {
        const bool setsTheStage = line.front() == '%';
        const bool goesOn = setsTheStage && current_ && current_->setsTheStage && current_->shown.empty() &&
                            current_->typed.empty();
        if (!goesOn) {
            endExchange();
            current_.emplace();
            current_->head = std::move(between_);
            current_->setsTheStage = setsTheStage;
            between_.clear();
        }
        current_->head.push_back(line);
        current_->script += withoutMark(line) + '\n';
    }

    void takeDialogue(const std::string& line) {
        if (line.front() == '<') {
            if (!current_->shown.empty()) fail("typed lines stand before shown ones");
            current_->head.push_back(line);
            current_->typed += typedBytes(line);
        } else if (line != "? 0") {
            current_->shown.push_back(line);
        }
    }

    void endExchange() {
        if (current_) transcript_.exchanges.push_back(std::move(*current_));
        current_.reset();
    }

    Transcript transcript_;
    std::optional<Exchange> current_;
    Lines between_;
    std::size_t lineNumber_ = 0;
};

// Neighbours of one stream as one piece: how a program cuts its writes isn't seen on a terminal.
std::vector<Piece> joined(const std::vector<Piece>& pieces) {
    std::vector<Piece> result;
    for (const auto& piece : pieces) {
        if (piece.bytes.empty()) continue;
        if (!result.empty() && result.back().mark == piece.mark) {
            result.back().bytes += piece.bytes;
        } else {
            result.push_back(piece);
        }
    }
    return result;
}

std::string escaped(std::string_view literal) {
    std::string result;
    for (const char c : literal) {
        if (std::string_view(R"(^$\.*+?()[]{}|/)").find(c) != std::string_view::npos) result += '\\';
        result += c;
    }
    return result;
}

std::regex patternOf(std::string_view line) {
    std::string pattern;
    for (;;) {
        const auto open = line.find("{{");
        auto close = open == std::string_view::npos ? open : line.find("}}", open + 2);
        if (close == std::string_view::npos) return std::regex(pattern + escaped(line));
        while (line.substr(close + 2).starts_with('}')) ++close;  // of a count at the end: {{\d{3}}}
        pattern += escaped(line.substr(0, open)) + "(?:";
        pattern.append(line.substr(open + 2, close - open - 2)) += ')';
        line.remove_prefix(close + 2);
    }
}

bool withoutNoLineFeed(std::string_view& line) {
    if (!line.ends_with(kNoLineFeed)) return false;
    line.remove_suffix(kNoLineFeed.size());
    return true;
}

// Which lines of both sides belong together: the longest common subsequence, as lengths from [i][j] to the end.
class CommonLines {
 public:
    CommonLines(const Lines& expected, const Lines& actual)
        : width_(actual.size() + 1), lengths_((expected.size() + 1) * width_) {
        for (std::size_t i = expected.size(); i-- > 0;) {
            for (std::size_t j = actual.size(); j-- > 0;) {
                at(i, j) = lineMatches(expected[i], actual[j]) ? 1 + at(i + 1, j + 1)
                                                               : std::max(at(i + 1, j), at(i, j + 1));
            }
        }
    }
    std::size_t& at(std::size_t i, std::size_t j) { return lengths_[i * width_ + j]; }

 private:
    std::size_t width_;
    std::vector<std::size_t> lengths_;
};

// Beyond this many lines a diff isn't read by anyone; both sides are shown one after the other.
constexpr std::size_t kLongest = 2000;

}  // namespace

Transcript parseTranscript(std::string_view text) {
    return Parser().parse(linesOf(text));
}

Lines shownLines(const std::vector<Piece>& pieces, int status) {
    Lines shown;
    for (const auto& [mark, bytes] : joined(pieces)) {
        for (const auto& line : linesOf(bytes)) {
            shown.push_back(line.empty() ? std::string{mark} : std::string{mark, ' '} + line);
        }
        if (bytes.back() != '\n') shown.back() += kNoLineFeed;
    }
    if (status != 0) shown.push_back("? " + std::to_string(status));
    return shown;
}

bool lineMatches(const std::string& expected, const std::string& actual) {
    if (expected == actual) return true;
    std::string_view wanted = expected, got = actual;
    if (withoutNoLineFeed(wanted) != withoutNoLineFeed(got)) return false;
    if (wanted.find("{{") == std::string_view::npos) return wanted == got;
    return std::regex_match(got.begin(), got.end(), patternOf(wanted));
}

Comparison compare(const Exchange& exchange, const Lines& actual) {
    Comparison result{true, "", {}};
    const auto add = [&](char mark, const std::string& line) { result.diff += mark + line + '\n'; };
    for (const auto& line : exchange.head) add(' ', line);

    const auto& expected = exchange.shown;
    const bool isReadable = expected.size() <= kLongest && actual.size() <= kLongest;
    CommonLines common(isReadable ? expected : Lines(), isReadable ? actual : Lines());
    std::size_t i = 0, j = 0;
    while (i < expected.size() || j < actual.size()) {
        const bool bothLeft = i < expected.size() && j < actual.size();
        if (bothLeft && lineMatches(expected[i], actual[j])) {
            add(' ', expected[i]);
            result.updated.push_back(expected[i]);
            ++i, ++j;
            continue;
        }
        result.isEqual = false;
        if (i < expected.size() && (!bothLeft || !isReadable || common.at(i + 1, j) >= common.at(i, j + 1))) {
            add('-', expected[i++]);
        } else {
            add('+', actual[j]);
            result.updated.push_back(actual[j++]);
        }
    }
    return result;
}

}  // namespace kestrin::endtoend
