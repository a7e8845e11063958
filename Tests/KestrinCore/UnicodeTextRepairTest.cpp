#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "KestrinCore/UnicodeText.h"
#include "Tests/Support/Generators.h"

namespace kestrin {
namespace {

TEST(UnicodeText, RepairsEachMaximalPartOfAnIllFormedSequence) {
    struct Row {
        const char* when;
        std::string bytes, repaired;
    };
    const Row rows[] = {
        {"nothing", "", ""},
        {"well-formed", "aé日😀\n", "aé日😀\n"},
        {"the first and last of each length", "\x7F\u0080\u07FF\u0800\uD7FF\uE000\uFFFF\U00010000\U0010FFFF",
         "\x7F\u0080\u07FF\u0800\uD7FF\uE000\uFFFF\U00010000\U0010FFFF"},
        {"NUL", std::string("a\0b", 3), std::string("a\0b", 3)},
        {"a trail byte alone",
         "a\x80"
         "b",
         "a\uFFFDb"},
        {"a lead byte at the end", "a\xC3", "a\uFFFD"},
        {"a lead byte before ASCII",
         "\xC3"
         "a",
         "\uFFFDa"},
        {"bytes that never occur", "\xC0\xC1\xF5\xFE\xFF", "\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD"},
        {"Latin-1", "caf\xE9 cr\xE8me", "caf\uFFFD cr\uFFFDme"},
        // The examples of The Unicode Standard, section 3.9.
        {"not in the shortest form", "\xC0\xAF\xE0\x80\xBF\xF0\x81\x82\x41",
         "\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFDA"},
        {"surrogates", "\xED\xA0\x80\xED\xBF\xBF\xED\xAF\x41",
         "\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFDA"},
        {"beyond Unicode", "\xF4\x91\x92\x93\xFF\x41\x80\xBF\x42",
         "\uFFFD\uFFFD\uFFFD\uFFFD\uFFFDA\uFFFD\uFFFDB"},
        {"truncated", "\xE1\x80\xE2\xF0\x91\x92\xF1\xBF\x41", "\uFFFD\uFFFD\uFFFD\uFFFDA"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(text::repaired(row.bytes), row.repaired);
        EXPECT_EQ(text::isValidUTF8(row.bytes), row.bytes == row.repaired);
    }
}

RC_GTEST_PROP(UnicodeTextProperty, RepairedTextIsValidAndStaysAsItIs, ()) {
    const auto bytes = *arbitrary::bytes();
    const auto repaired = text::repaired(bytes);
    RC_ASSERT(text::isValidUTF8(repaired));
    RC_ASSERT(text::repaired(repaired) == repaired);
    RC_ASSERT(text::isValidUTF8(bytes) == (repaired == bytes));
}

TEST(UnicodeText, ASCIIIsBelow0x80) {
    EXPECT_TRUE(text::isASCII(""));
    EXPECT_TRUE(text::isASCII(std::string("a\0\x7F", 3)));
    EXPECT_FALSE(text::isASCII("aé"));
    EXPECT_FALSE(text::isASCII("\x80"));
}

}  // namespace
}  // namespace kestrin
