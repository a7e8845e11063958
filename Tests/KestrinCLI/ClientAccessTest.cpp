#include "KestrinCLI/ClientAccess.h"

#include <gtest/gtest.h>

#include "Tests/Support/FakeConsole.h"

namespace kestrin {
namespace {

TEST(ClientAccess, ALongWaitIsANoteAndLeavesStandardOutputAlone) {
    FakeConsole console;
    waitNotes(console).tell("App Store Connect is still processing shot.png", std::chrono::minutes(2));
    EXPECT_EQ(console.errors, "App Store Connect is still processing shot.png (2 min so far)\n");
    EXPECT_EQ(console.output, "");
}

}  // namespace
}  // namespace kestrin
