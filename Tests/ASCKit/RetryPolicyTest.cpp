#include "ASCKit/Transport/RetryPolicy.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

namespace kestrin {
namespace {

using namespace std::chrono;
using namespace std::chrono_literals;

constexpr sys_seconds kNow = sys_days(2026y / March / 10) + 12h;

RetryPolicy withoutJitter() {
    RetryPolicy policy;
    policy.jitter = [](Seconds delay) { return delay; };
    return policy;
}

TEST(RetryPolicy, HasItsDefaults) {
    const RetryPolicy policy;
    EXPECT_EQ(policy.maxAttempts, 6);
    EXPECT_EQ(policy.baseDelay, 1s);
    EXPECT_EQ(policy.maxDelay, 60s);
    EXPECT_EQ(policy.maxRetryAfter, 300s);
}

TEST(RetryPolicy, BackoffDoublesUpToItsCeiling) {
    const auto policy = withoutJitter();
    const Seconds ceilings[] = {1s, 2s, 4s, 8s, 16s, 32s, 60s, 60s};
    for (int next = 1; next <= 8; ++next) EXPECT_EQ(policy.backoff(next), ceilings[next - 1]) << next;
}

TEST(RetryPolicy, BackoffStopsDoublingAfterSixteenTimes) {
    auto policy = withoutJitter();
    policy.maxDelay = 1'000'000s;
    EXPECT_EQ(policy.backoff(17), 65'536s);
    EXPECT_EQ(policy.backoff(18), 65'536s);
    EXPECT_EQ(policy.backoff(1'000'000), 65'536s);
    EXPECT_EQ(policy.backoff(0), 1s);
    EXPECT_EQ(policy.backoff(-3), 1s);
}

TEST(RetryPolicy, JitterIsAppliedToTheCeiling) {
    RetryPolicy policy;
    policy.jitter = [](Seconds delay) { return delay / 4; };
    EXPECT_EQ(policy.backoff(3), 1s);
    EXPECT_EQ(policy.backoff(20), 15s);
}

TEST(RetryPolicy, FullJitterLiesBetweenNothingAndTheDelay) {
    bool differs = false;
    for (int i = 0; i < 1000; ++i) {
        const auto delay = RetryPolicy::fullJitter(8s);
        ASSERT_GE(delay, 0s);
        ASSERT_LE(delay, 8s);
        differs = differs || delay != RetryPolicy::fullJitter(8s);
    }
    EXPECT_TRUE(differs);
    EXPECT_EQ(RetryPolicy::fullJitter(0s), 0s);
}

TEST(RetryPolicy, RetryAfterIsSecondsOrADate) {
    struct Row {
        const char* when;
        std::optional<std::string_view> field;
        std::optional<Seconds> wait;
    };
    const Row rows[] = {
        {"absent", std::nullopt, std::nullopt},
        {"empty", "", std::nullopt},
        {"only blanks", " \t ", std::nullopt},
        {"seconds", "300", 300s},
        {"with blanks around", "  7\t", 7s},
        {"zero", "0", 0s},
        {"a negative number counts as 0", "-5", 0s},
        {"a plus sign", "+5", 5s},
        {"two signs", "+-5", std::nullopt},
        {"a fraction is no integer", "1.5", std::nullopt},
        {"a unit is no integer", "5s", std::nullopt},
        {"as many seconds as fit", "9223372036854775807", Seconds(9223372036854775807.0)},
        {"more than that is no integer", "9223372036854775808", std::nullopt},
        {"a date ahead", "Tue, 10 Mar 2026 12:01:30 GMT", 90s},
        {"a date that is now", "Tue, 10 Mar 2026 12:00:00 GMT", 0s},
        {"a date in the past", "Tue, 10 Mar 2026 11:00:00 GMT", 0s},
        {"an RFC 850 date", "Tuesday, 10-Mar-26 12:00:10 GMT", 10s},
        {"an asctime date", "Tue Mar 10 12:00:10 2026", 10s},
        {"the last date there is", "Fri, 31 Dec 9999 23:59:59 GMT",
         Seconds(sys_seconds(sys_days(9999y / December / 31) + 24h - 1s) - kNow)},
        {"neither", "soon", std::nullopt},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(RetryPolicy::retryAfter(row.field, kNow), row.wait);
    }
}

TEST(RetryPolicy, ADateIsCountedFromTheFractionOfTheSecondThatItIs) {
    EXPECT_EQ(RetryPolicy::retryAfter("Tue, 10 Mar 2026 12:00:01 GMT", kNow + 250ms), 750ms);
}

}  // namespace
}  // namespace kestrin
