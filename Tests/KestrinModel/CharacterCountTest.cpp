#include "KestrinModel/CharacterCount.h"

#include <gtest/gtest.h>

#include <ostream>

#include "Tests/Support/Repeated.h"

namespace kestrin {

static void PrintTo(FieldLimitCheck check, std::ostream* out) {
    switch (check) {
        case FieldLimitCheck::ok:
            *out << "ok";
            return;
        case FieldLimitCheck::nearLimit:
            *out << "nearLimit";
            return;
        case FieldLimitCheck::overInUTF16Only:
            *out << "overInUTF16Only";
            return;
        case FieldLimitCheck::over:
            *out << "over";
            return;
    }
}

namespace {

using enum FieldLimitCheck;

TEST(CharacterCount, CountsCharactersAsPeopleSeeThemAndUTF16Units) {
    struct Row {
        const char* when;
        std::string text;
        std::size_t graphemes, utf16;
    };
    const Row rows[] = {
        {"nothing", "", 0, 0},
        {"ASCII", "Notes", 5, 5},
        {"a line feed is a character", "a\nb", 3, 3},
        {"CR LF is one character of two units", "a\r\nb", 3, 4},
        {"a composed accent", "é", 1, 1},
        {"a decomposed accent", "e\u0301", 1, 2},
        {"a scalar beyond the BMP", "😀", 1, 2},
        {"a family joined by ZWJ", "👨‍👩‍👧", 1, 8},
        {"a flag", "🇩🇪", 1, 4},
        {"CJK", "日本語", 3, 3},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(CharacterCount(row.text).graphemes, row.graphemes);
        EXPECT_EQ(CharacterCount(row.text).utf16, row.utf16);
    }
}

TEST(CharacterCount, TheFirstRuleThatAppliesSaysWhatTheCountMeans) {
    struct Row {
        const char* when;
        std::string text;
        std::optional<std::size_t> limit;
        FieldLimitCheck check;
    };
    const Row rows[] = {
        {"no limit, however long", repeated(100'000, "a"), std::nullopt, ok},
        {"no limit and nothing", "", std::nullopt, ok},
        {"26 of 30", repeated(26, "a"), 30, ok},
        {"27 of 30 is 90 percent", repeated(27, "a"), 30, nearLimit},
        {"30 of 30", repeated(30, "a"), 30, nearLimit},
        {"31 of 30", repeated(31, "a"), 30, over},
        {"30 emoji of 30 are at least 60 units", repeated(30, "😀"), 30, overInUTF16Only},
        {"16 emoji of 30 are 32 units", repeated(16, "😀"), 30, overInUTF16Only},
        {"15 emoji of 30 are 30 units", repeated(15, "😀"), 30, ok},
        {"31 emoji of 30: over goes before over in UTF-16", repeated(31, "😀"), 30, over},
        {"nearness goes by characters: 26 decomposed of 60", repeated(26, "e\u0301"), 60, ok},
        {"89 of 100", repeated(89, "a"), 100, ok},
        {"90 of 100", repeated(90, "a"), 100, nearLimit},
        {"152 of 170", repeated(152, "a"), 170, ok},
        {"153 of 170", repeated(153, "a"), 170, nearLimit},
        {"3599 of 4000", repeated(3599, "a"), 4000, ok},
        {"3600 of 4000", repeated(3600, "a"), 4000, nearLimit},
        {"4000 of 4000", repeated(4000, "a"), 4000, nearLimit},
        {"4001 of 4000", repeated(4001, "a"), 4000, over},
        {"0 of 30", "", 30, ok},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(CharacterCount(row.text).check(row.limit), row.check);
    }
}

}  // namespace
}  // namespace kestrin
