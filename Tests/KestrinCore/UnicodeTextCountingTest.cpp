#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "KestrinCore/UnicodeText.h"
#include "Tests/Support/Generators.h"
#include "Tests/Support/Repeated.h"

namespace kestrin {
namespace {

TEST(UnicodeText, CountsCharactersAsPeopleSeeThem) {
    struct Row {
        const char* when;
        std::string text;
        std::size_t graphemes;
    };
    const Row rows[] = {
        {"nothing", "", 0},
        {"ASCII", "Hello", 5},
        {"line feeds", "\n\n", 2},
        {"CR LF is one", "a\r\nb", 3},
        {"LF CR is two", "\n\r", 2},
        {"CR CR LF is two", "\r\r\n", 2},
        {"CR LF LF is two", "\r\n\n", 2},
        {"NUL", std::string("a\0b", 3), 3},
        {"a composed accent", "é", 1},
        {"a decomposed accent", "e\u0301", 1},
        {"several marks", "e\u0323\u0301\u0308", 1},
        {"a mark alone", "\u0301", 1},
        {"a mark after a line feed stands alone", "\n\u0301", 2},
        {"a mark on a blank", " \u0301", 1},
        {"a soft hyphen stands alone", "a\u00ADb", 3},
        {"CJK", "日本語", 3},
        {"kana with a voice mark", "か\u3099", 1},
        {"half-width kana with a voice mark", "ｶﾞ", 1},
        {"a Hangul syllable", "한", 1},
        {"one in parts", "\u1112\u1161\u11AB", 1},
        {"one and a part", "하\u11AB", 1},
        {"a whole one and a part that doesn’t join", "한\u1161", 2},
        {"two of them", "한글", 2},
        {"an emoji", "😀", 1},
        {"with a skin tone", "👍🏽", 1},
        {"a family", "👨‍👩‍👧‍👦", 1},
        {"a family with skin tones", "👩🏽‍🤝‍👨🏿", 1},
        {"a rainbow flag", "🏳️‍🌈", 1},
        {"a keycap", "1️⃣", 1},
        {"a heart with its selector", "❤️", 1},
        {"a joiner between letters joins nothing", "a\u200Db", 2},
        {"a joiner at the end", "😀\u200D", 1},
        {"one flag", "🇩🇪", 1},
        {"two flags", "🇩🇪🇫🇷", 2},
        {"two flags and a half", "🇩🇪🇫🇷🇮", 3},
        {"flags with a letter between", "🇩🇪a🇫🇷", 3},
        {"a flag of tags", "\U0001F3F4\U000E0067\U000E0062\U000E0065\U000E006E\U000E0067\U000E007F", 1},
        {"Devanagari with a vowel sign", "कि", 1},
        {"a Devanagari conjunct", "क्ष", 1},
        {"one with a vowel sign", "क्षि", 1},
        {"one with a joiner", "क्\u200Dष", 1},
        {"one of three", "न्त्र", 1},
        {"a word", "नमस्ते", 3},
        {"a Bengali conjunct", "ক্ষ", 1},
        {"a Telugu conjunct", "క్క", 1},
        {"Tamil makes none", "க்ஷ", 2},
        {"a virama at the end", "क्", 1},
        {"Thai with a vowel above", "กี", 1},
        {"Thai sara am", "กำ", 1},
        {"Arabic with a vowel mark", "مَ", 1},
        {"Hebrew with points", "שָׁ", 1},
        {"a number sign before Arabic digits", "\u0600١", 1},
        {"an ill-formed sequence is one character",
         "a\xFF"
         "b",
         3},
        {"so is each maximal part of one", "\xF0\x9F\x98\xE2\x82", 2},
        {"a mark joins it", "\xFF\u0301", 1},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(text::graphemeCount(row.text), row.graphemes);
    }
}

// A mark alone on its line sends the whole text through segmentation and can't join what follows the line feed.
RC_GTEST_PROP(UnicodeTextProperty, TheQuickCountAgreesWithSegmentation, ()) {
    const auto text = *rc::gen::oneOf(arbitrary::text(), arbitrary::bytes());
    RC_ASSERT(text::graphemeCount("\u0301\n" + text) == 2 + text::graphemeCount(text));
}

RC_GTEST_PROP(UnicodeTextProperty, NoCountExceedsTheUTF16Length, ()) {
    const auto text = *rc::gen::oneOf(arbitrary::text(), arbitrary::bytes());
    RC_ASSERT(text::graphemeCount(text) <= text::utf16Length(text));
    RC_ASSERT(text::utf16Length(text) <= text.size());
}

RC_GTEST_PROP(UnicodeTextProperty, TheNFCHasAsManyCharacters, ()) {
    const auto text = *arbitrary::text();
    RC_ASSERT(text::graphemeCount(text::toNFC(text)) == text::graphemeCount(text));
}

TEST(UnicodeText, CountsUTF16Units) {
    struct Row {
        const char* when;
        std::string text;
        std::size_t units;
    };
    const Row rows[] = {
        {"nothing", "", 0},
        {"ASCII", "Hello", 5},
        {"two bytes", "é", 1},
        {"three bytes", "日", 1},
        {"the last of the BMP", "\uFFFF", 1},
        {"the first beyond it", "\U00010000", 2},
        {"an emoji", "😀", 2},
        {"a decomposed accent", "e\u0301", 2},
        {"an ill-formed byte is U+FFFD", "\xFF", 1},
        {"a surrogate in UTF-8 is three of them", "\xED\xA0\x80", 3},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(text::utf16Length(row.text), row.units);
    }
}

TEST(UnicodeText, KnowsTheClassOfAScalar) {
    struct Row {
        const char* when;
        char32_t scalar;
        bool punctuation, symbol, ideographic;
    };
    const Row rows[] = {
        {"a letter", U'a', false, false, false},
        {"a digit", U'7', false, false, false},
        {"a full stop", U'.', true, false, false},
        {"an underscore", U'_', true, false, false},
        {"a closing quotation mark", U'”', true, false, false},
        {"an ideographic full stop", U'。', true, false, false},
        {"a plus sign", U'+', false, true, false},
        {"a currency sign", U'€', false, true, false},
        {"a modifier symbol", U'^', false, true, false},
        {"an emoji", U'😀', false, true, false},
        {"the replacement character", U'\uFFFD', false, true, false},
        {"a Han character", U'日', false, false, true},
        {"one beyond the BMP", U'\U00020000', false, false, true},
        {"the ideographic zero", U'〇', false, false, true},
        {"hiragana", U'の', false, false, false},
        {"Hangul", U'한', false, false, false},
        {"a mark", U'\u0301', false, false, false},
        {"a blank", U' ', false, false, false},
        {"an unassigned scalar", U'\U0003FFFF', false, false, false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(text::isPunctuation(row.scalar), row.punctuation);
        EXPECT_EQ(text::isSymbol(row.scalar), row.symbol);
        EXPECT_EQ(text::isIdeographic(row.scalar), row.ideographic);
    }
}

TEST(UnicodeText, TheFirstScalarIsThatOfItsFirstBytes) {
    EXPECT_EQ(text::firstScalar(""), U'\0');
    EXPECT_EQ(text::firstScalar("ab"), U'a');
    EXPECT_EQ(text::firstScalar("e\u0301"), U'e');
    EXPECT_EQ(text::firstScalar("😀"), U'😀');
    EXPECT_EQ(text::firstScalar("\xFF"), U'\uFFFD');
}

TEST(UnicodeText, GivesItsCharactersAsPieces) {
    using Pieces = std::vector<std::string_view>;
    EXPECT_EQ(text::graphemes(""), Pieces{});
    EXPECT_EQ(text::graphemes("a\r\nb\n\n\rc"), (Pieces{"a", "\r\n", "b", "\n", "\n", "\r", "c"}));
    EXPECT_EQ(text::graphemes("日本\ne\u0301👍🏽x\n\u0301"),
              (Pieces{"日", "本", "\n", "e\u0301", "👍🏽", "x", "\n", "\u0301"}));
    EXPECT_EQ(text::graphemes("a\xFF\xC3"), (Pieces{"a", "\xFF", "\xC3"}));
}

RC_GTEST_PROP(UnicodeText, ThePiecesOfATextAreAsManyAsItsCharactersAndJoinedTheText, ()) {
    const auto text = *arbitrary::text();
    const auto pieces = text::graphemes(text);
    RC_ASSERT(pieces.size() == text::graphemeCount(text));
    std::string joined;
    for (const auto piece : pieces) joined += piece;
    RC_ASSERT(joined == text);
}

TEST(UnicodeText, CountsAMegabyteOfMarksAndFlags) {
    EXPECT_EQ(text::graphemeCount("a" + repeated(500'000, "\u0301")), 1u);
    EXPECT_EQ(text::graphemeCount(repeated(125'000, "🇩🇪")), 125'000u);
    EXPECT_EQ(text::graphemeCount(repeated(125'000, "👩\u200D")), 1u);
    EXPECT_EQ(text::graphemeCount(repeated(150'000, "क्")), 1u);
    EXPECT_EQ(text::graphemeCount(repeated(500'000, "\u0600")), 1u);
}

}  // namespace
}  // namespace kestrin
