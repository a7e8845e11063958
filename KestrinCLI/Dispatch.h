// From words to commands: the table of all commands, and the run of one of them.
#pragma once

#include <cstddef>
#include <limits>
#include <span>
#include <string_view>

#include "KestrinCLI/CommandLine.h"
#include "KestrinCLI/Console.h"

namespace kestrin {

// What a command asks of the words before anything else happens; all else about them is looked at later, and
// words beyond those needed are ignored unless the count is exact.
struct ArgumentNeeds {
    using Test = bool (*)(const Arguments&);

    std::size_t least = 0;  // words, the command's own included
    std::size_t most = std::numeric_limits<std::size_t>::max();
    Test further = nullptr;  // asked only when the count is right

    bool areMet(const Arguments& args) const;
};

// Does the work and gives the exit status, or ends in an Error.
using CommandHandler = int (*)(const Arguments& args, Console& console);

struct Command {
    std::string_view word,
        secondWord;  // without a second word, whatever stands there is the command's business
    ArgumentNeeds needs;
    std::string_view message;  // the failure when the needs aren't met
    CommandHandler run;

    bool matches(const Arguments& args) const;
};

namespace Dispatch {

// In the order in which they are compared; the first that matches runs. So `version create` comes before `version`.
std::span<const Command> commands();

// Runs the command that the words name, and gives its exit status: 0, or 1 when it was refused, failed, or found
// something out of sync. No words, and `help`: the usage, 0. Words that name no command: the usage and nothing
// else, 2. Throws what the command throws.
int run(const Arguments& args, Console& console);

// One run of the program, argv to exit status: what `run` throws is on standard error as "kestrin: {message}".
// Throws nothing.
int runProcess(std::span<const char* const> words, Console& console) noexcept;

}  // namespace Dispatch
}  // namespace kestrin
