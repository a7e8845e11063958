#include "KestrinModel/PlainName.h"

#include <gtest/gtest.h>

namespace kestrin {
namespace {

TEST(PlainName, IsOneComponentOfAPathThatLeadsNowhereElse) {
    struct Row {
        std::string_view name;
        bool isPlain;
    };
    const Row rows[] = {
        {"en-US", true},  {"zh-Hans", true},    {"...", true},      {".hidden", true}, {"two words", true},
        {"日本語", true}, {"a\\b", true},       {"..a", true},      {"", false},       {".", false},
        {"..", false},    {"/", false},         {"a/b", false},     {"../x", false},   {"/etc", false},
        {"a/", false},    {{"a\0b", 3}, false}, {{"\0", 1}, false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(isPlainPathComponent(row.name), row.isPlain);
    }
}

}  // namespace
}  // namespace kestrin
