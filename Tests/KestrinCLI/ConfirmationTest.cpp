#include "KestrinCLI/Confirmation.h"

#include <gtest/gtest.h>

#include "KestrinCLI/Failure.h"
#include "Tests/Support/FakeConsole.h"

namespace kestrin {
namespace {

TEST(Confirmation, AsksInTheseWords) {
    struct Row {
        std::string question;
        const char* words;
    };
    const Row rows[] = {
        {Confirmation::pushQuestion(), "\nPush to App Store Connect? [y/N] "},
        {Confirmation::createVersionQuestion(StorePlatform::macOS, "2.1"),
         "Create MAC_OS version 2.1 in App Store Connect? [y/N] "},
        {Confirmation::submitVersionQuestion(), "\nSend this version to App Review? [y/N] "},
        {Confirmation::submitItemQuestion("Summer — Été"), "Send “Summer — Été” to App Review? [y/N] "},
        {Confirmation::startTestQuestion("Icons"),
         "Start the test “Icons”? People will start seeing its treatments. [y/N] "},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.words);
        EXPECT_EQ(row.question, row.words);
    }
}

TEST(Confirmation, IsALineThatBeginsWithAYOfEitherCase) {
    struct Row {
        const char* answer;
        bool isYes;
    };
    const Row rows[] = {
        {"y", true},    {"Y", true},  {"yes", true}, {"YES", true},      {"yep", true}, {"y\r", true},
        {"yé", true},   {"n", false}, {"no", false}, {"NO", false},      {"", false},   {" y", false},
        {"oui", false}, {"1", false}, {"ý", false},  {"y\u0301", false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.answer);
        FakeConsole console({row.answer});
        EXPECT_EQ(Confirmation::isGiven("Really? ", {"push", "p"}, console), row.isYes);
    }
}

TEST(Confirmation, PrintsTheQuestionAsItStandsAndReadsOneLine) {
    FakeConsole console({"y", "n"});

    Confirmation::isGiven("\nReally? [y/N] ", {"push", "p"}, console);

    EXPECT_EQ(console.output, "\nReally? [y/N] ");
    EXPECT_EQ(console.errors, "");
    EXPECT_EQ(console.answers, 1u);
}

TEST(Confirmation, TakesTheEndOfInputForANo) {
    FakeConsole console;
    EXPECT_FALSE(Confirmation::isGiven("Really? ", {"push", "p"}, console));
}

TEST(Confirmation, AsksNothingWhenTheWordsSayYes) {
    FakeConsole console({"n"});

    EXPECT_TRUE(Confirmation::isGiven("Really? ", {"push", "p", "--yes"}, console));

    EXPECT_EQ(console.terminal, "");
    EXPECT_EQ(console.answers, 0u);
}

TEST(Confirmation, OfAVersionShowsNoQuestionAtAllWithYes) {
    FakeConsole console;

    Confirmation::require(Confirmation::createVersionQuestion(StorePlatform::iOS, "1.0"),
                          Confirmation::nothingCreated, {"version", "create", "p", "1.0", "--yes"}, console);

    EXPECT_EQ(console.terminal, "");
}

TEST(Confirmation, RequiredAndRefusedEndsTheCommandWithItsRefusal) {
    for (const auto refusal :
         {Confirmation::nothingCreated, Confirmation::nothingSubmitted, Confirmation::nothingSent}) {
        FakeConsole console({"n"});
        try {
            Confirmation::require("Really? ", refusal, {"submit", "p"}, console);
            FAIL() << "went on after a no";
        } catch (const Failure& failure) {
            EXPECT_EQ(failure.errorDescription(), refusal);
        }
    }
}

TEST(Confirmation, HasARefusalPerCommand) {
    EXPECT_EQ(Confirmation::nothingPushed, "Nothing pushed.");
    EXPECT_EQ(Confirmation::nothingCreated, "nothing created");
    EXPECT_EQ(Confirmation::nothingSubmitted, "nothing submitted");
    EXPECT_EQ(Confirmation::nothingSent, "nothing sent");
}

}  // namespace
}  // namespace kestrin
