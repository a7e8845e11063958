#include "ASCKit/Transport/HTTPDate.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <ctime>

namespace kestrin {
namespace {

using namespace std::chrono;
using namespace std::chrono_literals;

constexpr sys_seconds kNow = sys_days(2026y / March / 10) + 12h;

// 6 November 1994, 08:49:37 UTC: the date of RFC 9110's examples.
constexpr sys_seconds kExample = sys_days(1994y / November / 6) + 8h + 49min + 37s;

TEST(HTTPDate, TakesAllThreeForms) {
    for (const char* text : {
             "Sun, 06 Nov 1994 08:49:37 GMT",
             "Sunday, 06-Nov-94 08:49:37 GMT",
             "Sun Nov  6 08:49:37 1994",
         }) {
        SCOPED_TRACE(text);
        EXPECT_EQ(HTTPDate::parse(text, kNow), kExample);
    }
    EXPECT_EQ(HTTPDate::parse("Tue Nov 16 08:49:37 1999", kNow),
              sys_seconds(sys_days(1999y / November / 16) + 8h + 49min + 37s));
}

TEST(HTTPDate, AYearOfTwoDigitsIsAtMostFiftyYearsAhead) {
    const auto yearOf = [](const char* text, sys_seconds now) {
        return static_cast<int>(year_month_day(floor<days>(HTTPDate::parse(text, now).value())).year());
    };
    EXPECT_EQ(yearOf("Sunday, 06-Nov-26 08:49:37 GMT", kNow), 2026);
    EXPECT_EQ(yearOf("Sunday, 06-Nov-76 08:49:37 GMT", kNow), 2076);
    EXPECT_EQ(yearOf("Sunday, 06-Nov-77 08:49:37 GMT", kNow), 1977);
    EXPECT_EQ(yearOf("Sunday, 06-Nov-99 08:49:37 GMT", kNow), 1999);
    EXPECT_EQ(yearOf("Sunday, 06-Nov-05 08:49:37 GMT", sys_days(2098y / January / 1)), 2105);
}

TEST(HTTPDate, TheNameOfTheDayNeedNotBeTheRightOne) {
    EXPECT_EQ(HTTPDate::parse("Mon, 06 Nov 1994 08:49:37 GMT", kNow), kExample);
}

TEST(HTTPDate, ALeapSecondIsTheFirstOfTheNextMinute) {
    EXPECT_EQ(HTTPDate::parse("Sat, 31 Dec 2016 23:59:60 GMT", kNow),
              sys_seconds(sys_days(2017y / January / 1)));
}

TEST(HTTPDate, RefusesEverythingElse) {
    for (const char* text : {
             "",
             "tomorrow",
             "1994-11-06T08:49:37Z",
             "Sun, 6 Nov 1994 08:49:37 GMT",
             "Sun, 06 Nov 1994 08:49:37",
             "Sun, 06 Nov 1994 08:49:37 UTC",
             "Sun, 06 Nov 1994 08:49:37 GMT ",
             " Sun, 06 Nov 1994 08:49:37 GMT",
             "sun, 06 nov 1994 08:49:37 gmt",
             "Xxx, 06 Nov 1994 08:49:37 GMT",
             "Sun, 06 Nix 1994 08:49:37 GMT",
             "Sun, 31 Feb 1994 08:49:37 GMT",
             "Sun, 00 Nov 1994 08:49:37 GMT",
             "Sun, 06 Nov 1994 24:00:00 GMT",
             "Sun, 06 Nov 1994 08:60:37 GMT",
             "Sun, 06 Nov 1994 08:49:61 GMT",
             "Sun, 06 Nov 94 08:49:37 GMT",
             "Sun, 06-Nov-94 08:49:37 GMT",
             "Sunday, 06 Nov 1994 08:49:37 GMT",
             "Sun Nov 06 08:49:37 94",
             "Sun Nov 6 08:49:37 1994",
             "Sun, -6 Nov 1994 08:49:37 GMT",
         }) {
        SCOPED_TRACE(text);
        EXPECT_FALSE(HTTPDate::parse(text, kNow));
    }
}

RC_GTEST_PROP(HTTPDate, ReadsWhatTheCLibraryWrites, ()) {
    const auto time = *rc::gen::inRange<std::time_t>(0, 253402300799);  // 1970 to 9999
    std::tm fields{};
    gmtime_r(&time, &fields);
    char fixdate[64], asctime[64];
    std::strftime(fixdate, sizeof fixdate, "%a, %d %b %Y %H:%M:%S GMT", &fields);
    std::strftime(asctime, sizeof asctime, "%a %b %e %H:%M:%S %Y", &fields);

    RC_ASSERT(HTTPDate::parse(fixdate, kNow) == sys_seconds(seconds(time)));
    RC_ASSERT(HTTPDate::parse(asctime, kNow) == sys_seconds(seconds(time)));
}

RC_GTEST_PROP(HTTPDate, TakesAnyBytesWithoutHarm, (const std::string& bytes)) {
    HTTPDate::parse(bytes, kNow);
    HTTPDate::parse("Sun, " + bytes, kNow);
}

}  // namespace
}  // namespace kestrin
