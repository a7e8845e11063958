#include "Tests/EndToEnd/Runner/Stage.h"

#include <gtest/gtest.h>

#include <csignal>

namespace kestrin::endtoend {
namespace {

using Lines = std::vector<std::string>;

Stage::Props props() {
    return {{{"listed", "/bin/echo"}}, "/no/tools", "/the/fixtures"};
}

Lines played(Stage& stage, const std::string& script, const std::string& typed = "") {
    Exchange exchange;
    exchange.script = script;
    exchange.typed = typed;
    return stage.play(exchange);
}

Lines played(const std::string& script, const std::string& typed = "") {
    Stage stage(props());
    return played(stage, script, typed);
}

TEST(Stage, ShowsBothStreamsInTheirTrueOrderAndTheStatus) {
    const auto shown = played("for i in 1 2 3; do echo out $i; echo error $i >&2; done; exit 4");
    EXPECT_EQ(shown, (Lines{"> out 1", "! error 1", "> out 2", "! error 2", "> out 3", "! error 3", "? 4"}));
}

TEST(Stage, ShowsADeathBySignalAsTheShellDoes) {
    EXPECT_EQ(played("kill -SEGV $$"), Lines{"? 139"});
    EXPECT_EQ(played("kill -PIPE $$"), Lines{"? 141"}) << "the signal has its usual meaning";
}

TEST(Stage, TypesWhatTheTranscriptTypesThenEnds) {
    EXPECT_EQ(played("cat; read more || echo end", "a\nb"), (Lines{"> a", "> bend"}));
    EXPECT_EQ(played("cat"), Lines{});
}

TEST(Stage, HasAHomeOfItsOwnAndNothingOfTheOutside) {
    setenv("KESTRIN_TEST_OUTSIDE", "seen", 1);
    const auto shown =
        played("echo \"[$KESTRIN_TEST_OUTSIDE]\" $LC_ALL $TZ $FIXTURES; ls -A ~; ls -A; ls -A $TMPDIR");
    unsetenv("KESTRIN_TEST_OUTSIDE");
    EXPECT_EQ(shown, Lines{"> [] C.UTF-8 UTC /the/fixtures"}) << "home and both other folders are empty";
}

TEST(Stage, KeepsFilesFromOneCommandToTheNext) {
    Stage stage(props());
    played(stage, "echo content > file");
    EXPECT_EQ(played(stage, "cat file"), Lines{"> content"});
}

TEST(Stage, ReadsTheProfileThatATranscriptWrites) {
    Stage stage(props());
    played(stage, "echo 'export NAME=value' > ~/.profile");
    EXPECT_EQ(played(stage, "echo $NAME"), Lines{"> value"});
}

TEST(Stage, FindsTheProgramsUnderTheirNames) {
    EXPECT_EQ(played("listed here"), Lines{"> here"});
}

TEST(Stage, StopsAStageScriptAtItsFirstFailure) {
    Stage stage(props());
    Exchange exchange;
    exchange.setsTheStage = true;
    exchange.script = "false\necho went on\n";
    EXPECT_EQ(stage.play(exchange), Lines{"? 1"});
}

TEST(Stage, LeavesNobodyThePowersOfRoot) {
    EXPECT_EQ(played("mkdir d; chmod 500 d; echo x 2>/dev/null > d/file"), Lines{"? 2"});
}

TEST(Stage, EndsWhatATranscriptLeftRunning) {
    std::string shown;
    {
        Stage stage(props());
        shown = played(stage, "sleep 1000 >/dev/null 2>&1 & echo $!").at(0);
        ASSERT_EQ(kill(std::stoi(shown.substr(2)), 0), 0) << "it outlives its command";
    }
    EXPECT_EQ(kill(std::stoi(shown.substr(2)), 0), -1) << "and is gone with the stage";
}

}  // namespace
}  // namespace kestrin::endtoend
