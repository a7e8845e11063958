#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "KestrinCore/UnicodeText.h"
#include "Tests/Support/Generators.h"
#include "Tests/Support/Repeated.h"

namespace kestrin {
namespace {

TEST(UnicodeText, IsEqualWhenItIsCanonicallyEquivalent) {
    struct Row {
        const char* when;
        std::string a, b;
        bool areEqual;
    };
    const Row rows[] = {
        {"nothing", "", "", true},
        {"the same ASCII", "en-US", "en-US", true},
        {"letter case", "en-US", "en-us", false},
        {"composed and decomposed", "caf\u00E9", "cafe\u0301", true},
        {"with and without an accent", "cafe", "café", false},
        {"marks of different classes in any order", "a\u0323\u0301", "a\u0301\u0323", true},
        {"marks of one class in their order", "a\u0301\u0308", "a\u0308\u0301", false},
        {"a singleton", "\u212B", "\u00C5", true},
        {"ohm and omega", "\u2126", "\u03A9", true},
        {"a compatibility ideograph", "\uF900", "\u8C48", true},
        {"one beyond the BMP", "\U0002F800", "\u4E3D", true},
        {"Hangul in parts", "\u1112\u1161\u11AB", "한", true},
        {"Hangul in two parts", "\uD558\u11AB", "한", true},
        {"kana with a voice mark", "か\u3099", "が", true},
        {"full-width is only compatible", "ａ", "a", false},
        {"a ligature is only compatible", "ﬁ", "fi", false},
        {"a composition exclusion", "\u0958", "\u0915\u093C", true},
        {"a joiner makes a difference", "a\u200Db", "ab", false},
        {"NUL is a character", std::string("a\0b", 3), std::string("a\0c", 3), false},
        {"ill-formed sequences are U+FFFD", "\x80", "\xBF", true},
        {"and so many of them", "\xF0\x9F\x98", "\uFFFD", true},
        {"cut off behind an accent", "é\xC3", "e\u0301\uFFFD", true},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(text::equal(row.a, row.b), row.areEqual);
        EXPECT_EQ(text::equal(row.b, row.a), row.areEqual);
        EXPECT_EQ(text::compare(row.a, row.b) == 0, row.areEqual);
        EXPECT_EQ(text::toNFC(row.a) == text::toNFC(row.b), row.areEqual);
    }
}

TEST(UnicodeText, IsOrderedByTheScalarsOfItsNFC) {
    struct Row {
        const char* when;
        const char *lesser, *greater;
    };
    const Row rows[] = {
        {"nothing before all", "", "a"},
        {"ASCII by bytes", "IOS", "MAC_OS"},
        {"capitals before small letters", "Z", "a"},
        {"a beginning before the whole", "en", "en-US"},
        {"z before é", "z", "\u00E9"},
        {"z before a decomposed é", "z", "e\u0301"},
        {"f before a decomposed é, though e is before f", "f", "e\u0301"},
        {"a decomposed é before ê", "e\u0301", "ê"},
        {"é before a decomposed ê", "é", "e\u0302"},
        {"a decomposed é before ě, by scalars", "e\u0301", "ě"},
        {"the BMP’s end before what is beyond it", "\uFFFD", "😀"},
        {"private use before what is beyond the BMP", "\uE000", "𠮷"},
        {"composed Hangul after jamo", "\u1112", "\u1112\u1161"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.when);
        EXPECT_TRUE(text::compare(row.lesser, row.greater) < 0);
        EXPECT_TRUE(text::compare(row.greater, row.lesser) > 0);
    }
}

TEST(UnicodeText, MapsFindATextInEveryForm) {
    text::TextMap<int> numbers{{"cafe\u0301", 1}};
    EXPECT_EQ(numbers.at("caf\u00E9"), 1);
    EXPECT_FALSE(numbers.emplace("caf\u00E9", 2).second);
    EXPECT_EQ(numbers.find(std::string_view("cafe")), numbers.end());
    EXPECT_TRUE(text::TextSet{"\u212B"}.contains("A\u030A"));
}

std::weak_ordering byNFC(const std::string& a, const std::string& b) {
    return text::toNFC(a) <=> text::toNFC(b);
}

RC_GTEST_PROP(UnicodeTextProperty, QuickComparisonsAgreeWithTheNFC, ()) {
    const auto a = *arbitrary::text();
    const auto b = *rc::gen::oneOf(arbitrary::text(), rc::gen::just(text::toNFC(a)));
    RC_CLASSIFY(text::equal(a, b));
    RC_ASSERT(text::compare(a, b) == byNFC(a, b));
    RC_ASSERT(text::equal(a, b) == (byNFC(a, b) == 0));
}

RC_GTEST_PROP(UnicodeTextProperty, AnyBytesCompareAsTheirRepairedText, ()) {
    const auto a = *arbitrary::bytes(), b = *arbitrary::bytes();
    RC_ASSERT(text::compare(a, b) == text::compare(text::repaired(a), text::repaired(b)));
    RC_ASSERT(text::equal(a, b) == text::equal(text::repaired(a), text::repaired(b)));
    RC_ASSERT(text::toNFC(a) == text::toNFC(text::repaired(a)));
    RC_ASSERT(text::isValidUTF8(text::toNFC(a)));
}

RC_GTEST_PROP(UnicodeTextProperty, NFCIsItsOwnNFC, ()) {
    const auto nfc = text::toNFC(*arbitrary::text());
    RC_ASSERT(text::toNFC(nfc) == nfc);
}

// Marks in long runs take another road than those in short ones; a run of one class of marks is its own NFC.
RC_GTEST_PROP(UnicodeTextProperty, LongRunsOfMarksAreOrderedAsShortOnesAre, ()) {
    const auto marks = *rc::gen::container<std::vector<std::string>>(rc::gen::element<std::string>(
        "\u0301", "\u0323", "\u0327", "\u0345", "\u0344", "\u0F73", "\u093C", "\u3099"));
    std::string text = "e", doubled = "e";
    for (const auto& mark : marks) text += mark;
    doubled += text.substr(1) +
               repeated(100, "\u0334");  // class 1: before all the others, and composes with nothing

    const auto nfc = text::toNFC(text + text.substr(1));
    const auto longer = text::toNFC(doubled + text.substr(1));

    const auto withoutOverlay = [](std::string s) {
        for (std::size_t at = 0; (at = s.find("\u0334")) != std::string::npos;) s.erase(at, 2);
        return s;
    };
    RC_ASSERT(text::toNFC(withoutOverlay(longer)) == nfc);
}

// A time that grows with the square of the length would not end here within the test's limit.
TEST(UnicodeText, ComparesMegabytesOfMarksInAnyOrder) {
    const auto mixed = "a" + repeated(250'000, "\u0301\u0323");
    const auto ordered = "a" + repeated(250'000, "\u0323") + repeated(250'000, "\u0301");
    const auto tibetan = repeated(100'000, "\u0F73\u0F75");

    EXPECT_TRUE(text::equal(mixed, ordered));
    EXPECT_EQ(text::toNFC(mixed), "ạ" + repeated(249'999, "\u0323") + repeated(250'000, "\u0301"));
    EXPECT_EQ(text::toNFC(tibetan),
              repeated(200'000, "\u0F71") + repeated(100'000, "\u0F72") + repeated(100'000, "\u0F74"));
}

}  // namespace
}  // namespace kestrin
