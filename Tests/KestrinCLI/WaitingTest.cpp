// Of the two ways to wait, the one that the sandbox's executable links.
#include "KestrinCLI/Waiting.h"

#include <gtest/gtest.h>

#include "Tests/Support/ProcessState.h"

namespace kestrin {
namespace {

constexpr Seconds kTooLongForATest{3600};

TEST(SandboxWaiting, IsSkippedWhenTheEnvironmentSaysSo) {
    const EnvironmentVariable waits("KESTRIN_SANDBOX_WAITS", "skip");
    commandSleep()(kTooLongForATest, {});
}

TEST(SandboxWaiting, CountsAsTimeThoughItWasSkipped) {
    const EnvironmentVariable waits("KESTRIN_SANDBOX_WAITS", "skip");
    const auto clock = commandClock();
    const auto before = clock();
    commandSleep()(kTooLongForATest, {});
    EXPECT_GE(clock() - before, kTooLongForATest);
}

TEST(SandboxWaiting, StillEndsWithAStop) {
    const EnvironmentVariable waits("KESTRIN_SANDBOX_WAITS", "skip");
    std::stop_source source;
    source.request_stop();
    EXPECT_THROW(commandSleep()(kTooLongForATest, source.get_token()), Cancelled);
}

TEST(SandboxWaiting, IsARealWaitOtherwise) {
    for (const char* value : {static_cast<const char*>(nullptr), "", "no"}) {
        const EnvironmentVariable waits("KESTRIN_SANDBOX_WAITS", value);
        const auto sleep = commandSleep();
        const auto* function = sleep.target<void (*)(Seconds, const std::stop_token&)>();
        ASSERT_NE(function, nullptr);
        EXPECT_EQ(*function, &sleepOnSteadyClock);
    }
}

}  // namespace
}  // namespace kestrin
