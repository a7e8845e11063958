// A golden transcript: what a user types at the terminal and what is seen there, command under command.
//
//     # A path that isn't a project is refused.          the promise, in words: the first line
//     % mkdir Empty.kestrin                              the stage is set; lines in a row are one script
//     $ kestrin inspect Empty.kestrin                    what the user types, a line for /bin/sh
//     < y                                                a line that is typed while the command runs
//     > …                                                a line on standard output
//     ! kestrin: This project is missing its …           a line on standard error
//     ? 1                                                the exit status; none stands for 0
//
// What a command shows is compared whole, in the order in which it appeared, both streams together. A stage script
// is a command like any other but that it stops at its first failure (`sh -e`); its output is compared too, which
// is how a transcript looks at files (`% cat …`). Comments and empty lines may stand anywhere between commands.
//
// In an expected line `{{…}}` is a regular expression (ECMAScript) for a part that isn't the point, and
// `{{no line feed}}` at the end of a line, typed or shown, stands for a piece that ends without one.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace kestrin::endtoend {

inline constexpr std::string_view kNoLineFeed = "{{no line feed}}";

// A command and what it shows.
struct Exchange {
    std::vector<std::string>
        head;  // the lines of the file up to what is shown: comments, command, typed lines
    bool setsTheStage = false;
    std::string script;              // for /bin/sh
    std::string typed;               // the bytes of its standard input
    std::vector<std::string> shown;  // lines with their marks: "> …", "! …", and "? 1" last if it isn't 0
};

struct Transcript {
    std::string promise;
    std::vector<Exchange> exchanges;
    std::vector<std::string> tail;  // comments and empty lines after the last exchange
};

struct TranscriptError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// Throws TranscriptError, naming the line, for what isn't a transcript; one without any `$` line promises nothing
// and isn't one either.
Transcript parseTranscript(std::string_view text);

// A piece of output, as one write delivered it.
struct Piece {
    char mark;  // '>' or '!'
    std::string bytes;
};

// What pieces and exit status look like in a transcript.
std::vector<std::string> shownLines(const std::vector<Piece>& pieces, int status);

// Whether a shown line is what a line of a transcript, patterns included, expects.
bool lineMatches(const std::string& expected, const std::string& actual);

// The exchange as it stands in the file against what was really shown.
struct Comparison {
    bool isEqual;
    std::string diff;  // the whole exchange, its lines marked ' ', '-' (expected) and '+' (actual)
    std::vector<std::string> updated;  // what was shown, but with the expected line wherever that matched
};
Comparison compare(const Exchange& exchange, const std::vector<std::string>& actual);

}  // namespace kestrin::endtoend
