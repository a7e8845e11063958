#include "ASCKit/Transport/RateLimitStatus.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

namespace kestrin {
namespace {

TEST(RateLimitStatus, IsReadFromItsField) {
    struct Row {
        const char* when;
        std::optional<std::string_view> field;
        std::optional<RateLimitStatus> status;
    };
    const RateLimitStatus usual{3600, 3598};
    const Row rows[] = {
        {"absent", std::nullopt, std::nullopt},
        {"empty", "", std::nullopt},
        {"as the service sends it", "user-hour-lim:3600;user-hour-rem:3598;", usual},
        {"in the other order", "user-hour-rem:3598;user-hour-lim:3600", usual},
        {"a blank before name and value", " user-hour-lim: 3600; user-hour-rem: 3598;", usual},
        {"one blank only", "user-hour-lim:  3600;user-hour-rem:3598;", std::nullopt},
        {"a blank behind a value", "user-hour-lim:3600 ;user-hour-rem:3598;", std::nullopt},
        {"empty pieces are nothing", ";;user-hour-lim:3600;;user-hour-rem:3598;;", usual},
        {"other names are passed over", "a:1;user-hour-lim:3600;b;user-hour-rem:3598;c:d", usual},
        {"of two the last counts", "user-hour-lim:1;user-hour-lim:3600;user-hour-rem:3598", usual},
        {"an unreadable second leaves the first", "user-hour-lim:3600;user-hour-lim:x;user-hour-rem:3598",
         usual},
        {"the limit alone is no reading", "user-hour-lim:10;", std::nullopt},
        {"the rest alone is no reading", "user-hour-rem:10;", std::nullopt},
        {"no number", "user-hour-lim:many;user-hour-rem:3598;", std::nullopt},
        {"no value", "user-hour-lim:;user-hour-rem:3598;", std::nullopt},
        {"a second colon belongs to the value", "user-hour-lim:3600:1;user-hour-rem:3598;", std::nullopt},
        {"a colon before the name", ":user-hour-lim:3600;user-hour-rem:3598;", std::nullopt},
        {"names are spelled exactly", "User-Hour-Lim:3600;user-hour-rem:3598;", std::nullopt},
        {"signs", "user-hour-lim:+3600;user-hour-rem:-2", RateLimitStatus{3600, -2}},
        {"a number that is too large", "user-hour-lim:99999999999999999999;user-hour-rem:3598;",
         std::nullopt},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(RateLimitStatus::parse(row.field), row.status);
    }
}

RC_GTEST_PROP(RateLimitStatus, TakesAnyBytesWithoutHarm, (const std::string& bytes)) {
    RateLimitStatus::parse(bytes);
    const auto status = RateLimitStatus::parse(bytes + ";user-hour-lim:2;user-hour-rem:1;");
    RC_ASSERT(status == (RateLimitStatus{2, 1}));
}

}  // namespace
}  // namespace kestrin
