#include "KestrinCore/Clock.h"

#include <gtest/gtest.h>

#include <thread>

namespace kestrin {
namespace {

using namespace std::chrono_literals;

TEST(Clock, AWaitOfNothingReturnsAtOnce) {
    EXPECT_NO_THROW(sleepOnSteadyClock(Seconds(0), {}));
    EXPECT_NO_THROW(sleepOnSteadyClock(Seconds(-5), {}));
}

TEST(Clock, AStopBeforeTheWaitEndsItWithCancelled) {
    std::stop_source source;
    source.request_stop();

    EXPECT_THROW(sleepOnSteadyClock(1h, source.get_token()), Cancelled);
    EXPECT_THROW(sleepOnSteadyClock(Seconds(0), source.get_token()), Cancelled);
}

TEST(Clock, AStopDuringTheWaitEndsItWithCancelled) {
    std::stop_source source;
    const std::jthread stopper([&] { source.request_stop(); });

    EXPECT_THROW(sleepOnSteadyClock(1h, source.get_token()), Cancelled);
}

TEST(Clock, AWaitThatTheClockCannotCountToIsStillAWait) {
    std::stop_source source;
    const std::jthread stopper([&] { source.request_stop(); });

    EXPECT_THROW(sleepOnSteadyClock(Seconds(1e30), source.get_token()), Cancelled);
}

TEST(Clock, ThrowIfStoppedThrowsOnlyWhenStopped) {
    std::stop_source source;
    EXPECT_NO_THROW(throwIfStopped(source.get_token()));
    EXPECT_NO_THROW(throwIfStopped({}));
    source.request_stop();
    EXPECT_THROW(throwIfStopped(source.get_token()), Cancelled);
}

TEST(Clock, CancelledSaysSo) {
    EXPECT_EQ(Cancelled().errorDescription(), "Cancelled.");
}

}  // namespace
}  // namespace kestrin
