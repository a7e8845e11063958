#include "KestrinCLI/Dispatch.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "KestrinCLI/Usage.h"
#include "Tests/Support/FakeConsole.h"

namespace kestrin {
namespace {

struct Ended {
    int status;
    std::string output, errors;
    bool operator==(const Ended&) const = default;
};

void PrintTo(const Ended& ended, std::ostream* out) {
    *out << "status " << ended.status << "\noutput: " << ended.output << "\nerrors: " << ended.errors;
}

Ended runOf(const Arguments& args, FakeConsole&& console = FakeConsole()) {
    std::vector<const char*> words{"kestrin"};
    for (const auto& arg : args) words.push_back(arg.c_str());
    const int status = Dispatch::runProcess(words, console);
    return {status, console.output, console.errors};
}

const Command* commandFor(const Arguments& args) {
    for (const auto& command : Dispatch::commands()) {
        if (command.matches(args)) return &command;
    }
    return nullptr;
}

// The command that the words name, and the message with which it refuses them: "pages: usage: …", or only
// "pages" when it takes them. "" when they name none.
std::string taken(const Arguments& args) {
    const auto* command = commandFor(args);
    if (command == nullptr) return "";
    std::string words(command->word);
    if (!command->secondWord.empty()) words.append(" ").append(command->secondWord);
    return command->needs.areMet(args) ? words : words.append(": ").append(command->message);
}

TEST(Dispatch, ComparesCommandsInThisOrder) {
    std::string words;
    for (const auto& command : Dispatch::commands()) {
        words.append(command.word).append(command.secondWord.empty() ? "" : " ").append(command.secondWord);
        words += '\n';
    }
    EXPECT_EQ(
        words,
        "pull\ndiff\nverify\npush\nbuild upload\nbuild list\nbuild attach\nversion create\nsubmit\npages\n"
        "page submit\ntest submit\ntest start\ncheck\nimport fastlane\nexport fastlane\ninspect\napps\n"
        "refdata dump\napi\nversion\nhelp\n--help\n-h\n");
}

TEST(Dispatch, TakesOrRefusesTheWordsOfEveryCommand) {
    struct Row {
        Arguments args;
        const char* taken;
    };
    const Row rows[] = {
        {{"pull"}, "pull: pull needs a project path"},
        {{"pull", "p", "--bundle-id", "a.b", "--take-remote"}, "pull"},
        {{"diff"}, "diff: diff needs exactly one project path"},
        {{"diff", "p", "--extra"}, "diff: diff needs exactly one project path"},
        {{"verify"}, "verify: verify needs exactly one project path"},
        {{"verify", "p", "q"}, "verify: verify needs exactly one project path"},
        {{"push"}, "push: push needs a project path"},
        {{"push", "p"}, "push"},
        {{"push", "p", "--extra"}, "push"},
        {{"build", "upload", "p"},
         "build upload: usage: kestrin build upload <project.kestrin> <file.ipa|.pkg>"},
        {{"build", "upload", "p", "a.ipa"}, "build upload"},
        {{"build", "list"}, "build list: usage: kestrin build list <project.kestrin>"},
        {{"build", "list", "p"}, "build list"},
        {{"build", "attach", "p"},
         "build attach: usage: kestrin build attach <project.kestrin> <build number>"},
        {{"build", "attach", "p", "42"}, "build attach"},
        {{"version", "create", "p"},
         "version create: usage: kestrin version create <project.kestrin> <version>"},
        {{"version", "create", "p", "1.0"}, "version create"},
        {{"submit"}, "submit: usage: kestrin submit <project.kestrin>"},
        {{"submit", "p"}, "submit"},
        {{"pages"}, "pages: usage: kestrin pages <project.kestrin>"},
        {{"pages", "p"}, "pages"},
        {{"pages", "p", "q"}, "pages: usage: kestrin pages <project.kestrin>"},
        {{"page", "submit", "p"}, "page submit: usage: kestrin page submit <project.kestrin> <slug>"},
        {{"page", "submit", "p", "summer"}, "page submit"},
        {{"test", "submit", "p"}, "test submit: usage: kestrin test submit <project.kestrin> <slug>"},
        {{"test", "submit", "p", "icons"}, "test submit"},
        {{"test", "start", "p"}, "test start: usage: kestrin test start <project.kestrin> <slug>"},
        {{"test", "start", "p", "icons"}, "test start"},
        {{"check"}, "check: check needs exactly one project path"},
        {{"check", "p"}, "check"},
        {{"check", "p", "q"}, "check: check needs exactly one project path"},
        {{"import", "fastlane"},
         "import fastlane: usage: kestrin import fastlane <dir> --into <project.kestrin>"},
        {{"import", "fastlane", "d"},
         "import fastlane: usage: kestrin import fastlane <dir> --into <project.kestrin>"},
        {{"import", "fastlane", "d", "--into"},
         "import fastlane: usage: kestrin import fastlane <dir> --into <project.kestrin>"},
        {{"import", "fastlane", "d", "--into", "p"}, "import fastlane"},
        {{"import", "fastlane", "--into", "p"}, "import fastlane"},
        {{"export", "fastlane"},
         "export fastlane: usage: kestrin export fastlane <project.kestrin> --to <dir>"},
        {{"export", "fastlane", "p", "--into", "d"},
         "export fastlane: usage: kestrin export fastlane <project.kestrin> --to <dir>"},
        {{"export", "fastlane", "p", "--to"},
         "export fastlane: usage: kestrin export fastlane <project.kestrin> --to <dir>"},
        {{"export", "fastlane", "p", "--to", "d"}, "export fastlane"},
        {{"inspect"}, "inspect: inspect needs exactly one project path"},
        {{"inspect", "p"}, "inspect"},
        {{"inspect", "p", "q"}, "inspect: inspect needs exactly one project path"},
        {{"apps", "anything"}, "apps"},
        {{"refdata", "dump", "anything"}, "refdata dump"},
        {{"api"}, "api: usage: kestrin api GET /v1/…"},
        {{"api", "GET"}, "api: usage: kestrin api GET /v1/…"},
        {{"api", "GET", "v1/apps"}, "api: usage: kestrin api GET /v1/…"},
        {{"api", "POST", "/v1/apps"}, "api: usage: kestrin api GET /v1/…"},
        {{"api", "get", "/v1/apps"}, "api: usage: kestrin api GET /v1/…"},
        {{"api", "GET", "/v1/apps", "more"}, "api: usage: kestrin api GET /v1/…"},
        {{"api", "GET", ""}, "api: usage: kestrin api GET /v1/…"},
        {{"api", "GET", "/v1/apps?limit=1"}, "api"},
        {{"version"}, "version"},
        {{"version", "foo"}, "version"},
        {{"version", "foo", "create"}, "version"},
        {{"help"}, "help"},
        {{"help", "pull"}, "help"},
        {{"--help"}, "--help"},
        {{"-h"}, "-h"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.args));
        EXPECT_EQ(taken(row.args), row.taken);
    }
}

TEST(Dispatch, FindsNoCommandInASecondWordThatIsMissingOrUnknown) {
    const Arguments rows[] = {
        {"build"},      {"build", "download", "p", "x"},
        {"page"},       {"page", "list", "p", "s"},
        {"test"},       {"test", "stop", "p", "s"},
        {"import"},     {"import", "csv"},
        {"export"},     {"export", "csv"},
        {"refdata"},    {"refdata", "load"},
        {"frobnicate"}, {"Pull", "p"},
        {""},           {"pull p"},
        {"p", "pull"},  {"--version"},
    };
    for (const auto& args : rows) {
        SCOPED_TRACE(testing::PrintToString(args));
        EXPECT_EQ(taken(args), "");
        EXPECT_EQ(runOf(args), (Ended{2, std::string(usageText), ""}));
    }
}

TEST(Dispatch, ShowsTheUsageWhenAskedAndWithoutWords) {
    for (const Arguments& args : {Arguments{}, {"help"}, {"--help"}, {"-h"}, {"help", "pull"}}) {
        SCOPED_TRACE(testing::PrintToString(args));
        EXPECT_EQ(runOf(args), (Ended{0, std::string(usageText), ""}));
    }
}

TEST(Dispatch, WritesARefusalBehindTheNameOfTheProgram) {
    EXPECT_EQ(runOf({"diff", "a.kestrin", "--extra"}),
              (Ended{1, "", "kestrin: diff needs exactly one project path\n"}));
    EXPECT_EQ(runOf({"api", "POST", "/v1/apps"}), (Ended{1, "", "kestrin: usage: kestrin api GET /v1/…\n"}));
}

TEST(Dispatch, RefusesAWordThatIsNotUTF8BeforeAnythingElse) {
    EXPECT_EQ(runOf({"help", "\xFF"}), (Ended{1, "", "kestrin: the argument “�” isn't UTF-8 text\n"}));
}

TEST(Dispatch, EndsQuietlyWhenNobodyReadsTheOutput) {
    FakeConsole console;
    console.errorOfOutput = EPIPE;
    EXPECT_EQ(runOf({"help"}, std::move(console)), (Ended{1, "", ""}));
}

TEST(Dispatch, ReportsAnOutputThatCannotBeWritten) {
    FakeConsole console;
    console.errorOfOutput = ENOSPC;
    EXPECT_EQ(runOf({"help"}, std::move(console)),
              (Ended{1, "", "kestrin: standard output can't be written: No space left on device\n"}));
}

TEST(Dispatch, ReportsAnOutputThatFailsOnlyAtTheEnd) {
    FakeConsole console;
    console.errorOfFinish = EIO;
    EXPECT_EQ(runOf({"help"}, std::move(console)),
              (Ended{1, std::string(usageText),
                     "kestrin: standard output can't be written: Input/output error\n"}));
}

RC_GTEST_PROP(Dispatch, ReadsNoWordThatIsNotThere, ()) {
    const auto word = rc::gen::element<std::string>("pull", "diff", "push", "build", "upload", "list",
                                                    "attach", "version", "create", "page", "test", "submit",
                                                    "start", "import", "export", "fastlane", "refdata",
                                                    "dump", "api", "GET", "/v1", "", "--into", "--to", "p");
    const auto args = *rc::gen::container<Arguments>(word);

    const auto* command = commandFor(args);

    if (command == nullptr) {
        FakeConsole console;
        RC_ASSERT(Dispatch::run(args, console) == (args.empty() ? 0 : 2));
    } else if (command->needs.areMet(args)) {
        RC_ASSERT(args.size() >= command->needs.least);
        RC_ASSERT(args.size() <= command->needs.most);
    }
}

}  // namespace
}  // namespace kestrin
