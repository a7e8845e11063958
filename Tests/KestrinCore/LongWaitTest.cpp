#include "KestrinCore/LongWait.h"

#include <gtest/gtest.h>

#include "Tests/Support/FakeTime.h"
#include "Tests/Support/ToldWaits.h"

namespace kestrin {
namespace {

using namespace std::chrono_literals;
using Lines = std::vector<std::string>;
using Slept = std::vector<Seconds>;

// A wait on a test's clock, and what it told.
struct World {
    FakeTime time;
    ToldWaits told;
    LongWait wait{time.sleep(), told.notes(time)};

    void sleep(Seconds length, const std::string& what = "it") { wait.sleep(length, what, {}); }
};

TEST(LongWait, TellsNothingBeforeAMinuteIsOver) {
    World world;
    world.sleep(59s);
    EXPECT_EQ(world.told.lines, Lines{});
    EXPECT_EQ(world.time.slept, Slept{59s});
}

TEST(LongWait, TellsWhenAMinuteIsOverAndEachMinuteAfter) {
    World world;
    world.sleep(200s);
    EXPECT_EQ(world.told.lines, (Lines{"it 1", "it 2", "it 3"}));
    EXPECT_EQ(world.time.slept, (Slept{60s, 60s, 60s, 20s}));
}

TEST(LongWait, ManySleepsAreOneWait) {
    World world;
    for (int poll = 0; poll < 30; ++poll) world.sleep(5s);
    EXPECT_EQ(world.told.lines, (Lines{"it 1", "it 2"}));
}

TEST(LongWait, WhatHappensBetweenTwoSleepsIsPartOfIt) {
    World world;
    world.sleep(5s);
    world.time.advance(150s);  // a request that took its time
    world.sleep(5s);
    EXPECT_EQ(world.told.lines, Lines{"it 2"}) << "one line, although two minutes are over";
    world.sleep(20s);
    EXPECT_EQ(world.told.lines, (Lines{"it 2", "it 3"}));
}

TEST(LongWait, TellsWhatIsWaitedForNow) {
    World world;
    world.sleep(50s, "the first");
    world.sleep(50s, "the second");
    EXPECT_EQ(world.told.lines, Lines{"the second 1"});
}

TEST(LongWait, WhatLiesBeforeTheFirstSleepIsntPartOfIt) {
    World world;
    world.time.advance(1h);
    world.sleep(59s);
    EXPECT_EQ(world.told.lines, Lines{});
}

TEST(LongWait, WithoutAListenerItSleepsInOnePiece) {
    FakeTime time;
    LongWait(time.sleep(), {}).sleep(300s, "it", {});
    EXPECT_EQ(time.slept, Slept{300s});
}

TEST(LongWait, AStopEndsItWithinAMinute) {
    World world;
    std::stop_source source;
    source.request_stop();
    EXPECT_THROW(world.wait.sleep(300s, "it", source.get_token()), Cancelled);
    EXPECT_EQ(world.told.lines, Lines{});
}

TEST(LongWait, ASleepOfNothingIsASleep) {
    World world;
    world.sleep(0s);
    EXPECT_EQ(world.time.slept, Slept{0s});
}

}  // namespace
}  // namespace kestrin
