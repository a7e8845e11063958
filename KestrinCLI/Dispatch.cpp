#include "KestrinCLI/Dispatch.h"

#include <exception>
#include <new>
#include <string>

#include "KestrinCLI/APICommands.h"
#include "KestrinCLI/BuildCommands.h"
#include "KestrinCLI/Failure.h"
#include "KestrinCLI/FastlaneCommands.h"
#include "KestrinCLI/LocalCommands.h"
#include "KestrinCLI/ReleaseCommands.h"
#include "KestrinCLI/SyncCommands.h"
#include "KestrinCLI/Usage.h"
#include "KestrinCore/UnicodeText.h"

namespace kestrin {
namespace {

constexpr int kFailed = 1;
constexpr int kUnknownCommand = 2;

constexpr ArgumentNeeds atLeast(std::size_t words, ArgumentNeeds::Test further = nullptr) {
    return {.least = words, .further = further};
}

constexpr ArgumentNeeds exactly(std::size_t words, ArgumentNeeds::Test further = nullptr) {
    return {.least = words, .most = words, .further = further};
}

bool saysInto(const Arguments& args) {
    return option("--into", args).has_value();
}

bool saysTo(const Arguments& args) {
    return option("--to", args).has_value();
}

bool getsAPath(const Arguments& args) {
    return args[1] == "GET" && args[2].starts_with('/');
}

int help(const Arguments&, Console& console) {
    printUsage(console);
    return 0;
}

// clang-format off
constexpr Command kCommands[] = {
    // words                needs                  message if not                                                   runs
    {"pull",    "",         atLeast(2),            "pull needs a project path",                                     SyncCommands::pull},
    {"diff",    "",         exactly(2),            "diff needs exactly one project path",                           SyncCommands::diff},
    {"verify",  "",         exactly(2),            "verify needs exactly one project path",                         SyncCommands::verify},
    {"push",    "",         atLeast(2),            "push needs a project path",                                     SyncCommands::push},
    {"build",   "upload",   atLeast(4),            "usage: kestrin build upload <project.kestrin> <file.ipa|.pkg>", BuildCommands::upload},
    {"build",   "list",     atLeast(3),            "usage: kestrin build list <project.kestrin>",                   BuildCommands::list},
    {"build",   "attach",   atLeast(4),            "usage: kestrin build attach <project.kestrin> <build number>",  BuildCommands::attach},
    {"version", "create",   atLeast(4),            "usage: kestrin version create <project.kestrin> <version>",     ReleaseCommands::createVersion},
    {"submit",  "",         atLeast(2),            "usage: kestrin submit <project.kestrin>",                       ReleaseCommands::submit},
    {"pages",   "",         exactly(2),            "usage: kestrin pages <project.kestrin>",                        ReleaseCommands::pages},
    {"page",    "submit",   atLeast(4),            "usage: kestrin page submit <project.kestrin> <slug>",           ReleaseCommands::submitPage},
    {"test",    "submit",   atLeast(4),            "usage: kestrin test submit <project.kestrin> <slug>",           ReleaseCommands::submitTest},
    {"test",    "start",    atLeast(4),            "usage: kestrin test start <project.kestrin> <slug>",            ReleaseCommands::startTest},
    {"check",   "",         exactly(2),            "check needs exactly one project path",                          LocalCommands::check},
    {"import",  "fastlane", atLeast(3, saysInto),  "usage: kestrin import fastlane <dir> --into <project.kestrin>", FastlaneCommands::importFastlane},
    {"export",  "fastlane", atLeast(3, saysTo),    "usage: kestrin export fastlane <project.kestrin> --to <dir>",   FastlaneCommands::exportFastlane},
    {"inspect", "",         exactly(2),            "inspect needs exactly one project path",                        LocalCommands::inspect},
    {"apps",    "",         {},                    "",                                                              APICommands::apps},
    {"refdata", "dump",     {},                    "",                                                              APICommands::dumpRefData},
    {"api",     "",         exactly(3, getsAPath), "usage: kestrin api GET /v1/…",                                  APICommands::get},
    {"version", "",         {},                    "",                                                              LocalCommands::version},
    {"help",    "",         {},                    "",                                                              help},
    {"--help",  "",         {},                    "",                                                              help},
    {"-h",      "",         {},                    "",                                                              help},
};
// clang-format on

int runCommand(const Command& command, const Arguments& args, Console& console) {
    if (!command.needs.areMet(args)) fail(std::string(command.message));
    return command.run(args, console);
}

}  // namespace

bool ArgumentNeeds::areMet(const Arguments& args) const {
    return args.size() >= least && args.size() <= most && (further == nullptr || further(args));
}

bool Command::matches(const Arguments& args) const {
    if (args.empty() || args[0] != word) return false;
    return secondWord.empty() || (args.size() > 1 && args[1] == secondWord);
}

std::span<const Command> Dispatch::commands() {
    return kCommands;
}

int Dispatch::run(const Arguments& args, Console& console) {
    if (args.empty()) return help(args, console);
    for (const auto& command : commands()) {
        if (command.matches(args)) return runCommand(command, args, console);
    }
    printUsage(console);
    return kUnknownCommand;
}

int Dispatch::runProcess(std::span<const char* const> words, Console& console) noexcept {
    try {
        try {
            const int status = run(argumentsOfProcess(words), console);
            console.finish();
            return status;
        } catch (const OutputClosed&) {
            return kFailed;
        } catch (const Error& error) {
            console.writeError("kestrin: " + error.errorDescription() + "\n");
        } catch (const std::bad_alloc&) {
            throw;
        } catch (const std::exception& error) {
            console.writeError("kestrin: " + text::repaired(error.what()) + "\n");
        }
    } catch (...) {  // not even memory for the message
        console.writeError("kestrin: out of memory\n");
    }
    return kFailed;
}

}  // namespace kestrin
