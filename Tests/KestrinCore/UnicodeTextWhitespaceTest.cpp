#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <set>

#include "KestrinCore/UnicodeText.h"
#include "Tests/Support/Generators.h"
#include "Tests/Support/Repeated.h"
#include "Tests/Support/Scalars.h"

namespace kestrin {
namespace {

using text::withoutTrailingWhitespace;

TEST(UnicodeText, WhiteSpaceIsTheUnicodeProperty) {
    const std::set<char32_t> whiteSpace = {0x09,   0x0A,   0x0B,   0x0C,   0x0D,   0x20,   0x85,
                                           0xA0,   0x1680, 0x2000, 0x2001, 0x2002, 0x2003, 0x2004,
                                           0x2005, 0x2006, 0x2007, 0x2008, 0x2009, 0x200A, 0x2028,
                                           0x2029, 0x202F, 0x205F, 0x3000};
    for (char32_t scalar = 0; scalar < 0x110000; ++scalar) {
        ASSERT_EQ(text::isWhitespace(scalar), whiteSpace.contains(scalar))
            << std::hex << std::uint32_t{scalar};
    }
}

TEST(UnicodeText, DropsTrailingCharactersThatBeginWithWhiteSpace) {
    struct Row {
        const char* when;
        std::string text, without;
    };
    const Row rows[] = {
        {"nothing", "", ""},
        {"none at the end", " a", " a"},
        {"a blank", "a ", "a"},
        {"line ends of every kind", "a\n\r\n\r", "a"},
        {"tabs, feeds and blanks", "a \t\v\f ", "a"},
        {"within it stays", "a b  ", "a b"},
        {"all of it", " \t\r\n", ""},
        {"no-break space and next line", "a\u00A0\u0085", "a"},
        {"the ideographic space", "日本\u3000", "日本"},
        {"line and paragraph separators", "a\u2028\u2029", "a"},
        {"the zero-width space is none", "a\u200B", "a\u200B"},
        {"behind a letter beyond ASCII", "é ", "é"},
        {"behind a decomposed letter", "e\u0301 \n", "e\u0301"},
        {"behind an emoji", "👨‍👩‍👧 ", "👨‍👩‍👧"},
        {"a blank under a mark is one character of white space", "a \u0301", "a"},
        {"several of them", "a \u0301\u3000\u0301\u200D ", "a"},
        {"a mark after a line feed is a character of its own", "a\n\u0301", "a\n\u0301"},
        {"white space behind such a mark", "a\n\u0301 ", "a\n\u0301"},
        {"a blank after a prepended sign belongs to the sign", "a\u0600 ", "a\u0600 "},
        {"a line feed after one doesn’t", "a\u0600\n", "a\u0600"},
        {"a blank behind that blank does not", "a\u0600  ", "a\u0600 "},
        {"NUL is none", std::string("a \0 ", 4), std::string("a \0", 3)},
        {"behind an ill-formed byte", "a \xFF ", "a \xFF"},
        {"an ill-formed end", "a \xE3\x80", "a \xE3\x80"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(withoutTrailingWhitespace(row.text), row.without);
    }
}

// The rule itself, one character after the other; slow.
std::string bySteps(std::string text) {
    while (!text.empty()) {
        // The last character begins at the last place such that the text before it has one character less.
        auto start = text.size() - 1;
        const auto isInside = [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; };
        const auto count = text::graphemeCount(text);
        while (isInside(text[start]) || text::graphemeCount(text.substr(0, start)) == count) --start;
        if (!text::isWhitespace(firstScalarOf(text.substr(start)))) break;
        text.resize(start);
    }
    return text;
}

RC_GTEST_PROP(UnicodeTextProperty, TrailingWhiteSpaceGoesCharacterByCharacter, ()) {
    const auto tail = *rc::gen::container<std::vector<std::string>>(
        rc::gen::element<std::string>(" ", "\n", "\r", "\t", "\u00A0", "\u0085", "\u2028", "\u3000", "\u0301",
                                      "\u0600", "\u200D", "é", "a"));
    auto text = *arbitrary::text();
    for (const auto& piece : tail) text += piece;
    RC_CLASSIFY(withoutTrailingWhitespace(text).size() < text.size());
    RC_ASSERT(withoutTrailingWhitespace(text) == bySteps(text));
}

RC_GTEST_PROP(UnicodeTextProperty, WithoutTrailingWhiteSpaceThereIsNoneLeft, ()) {
    const auto text = *rc::gen::oneOf(arbitrary::text(), arbitrary::bytes());
    const std::string once(withoutTrailingWhitespace(text));
    RC_ASSERT(text.starts_with(once));
    RC_ASSERT(withoutTrailingWhitespace(once) == once);
    RC_ASSERT(text::graphemeCount(once) <= text::graphemeCount(text));
}

// A time that grows with the square of the length would not end here within the test's limit.
TEST(UnicodeText, DropsMegabytesOfTrailingWhiteSpace) {
    struct Row {
        const char* when;
        std::string text;
        std::size_t length;
    };
    const Row rows[] = {
        {"marks", "a" + repeated(500'000, "\u0301"), 1'000'001},
        {"blanks behind a letter beyond ASCII", "é" + repeated(1'000'000, " "), 2},
        {"é and a blank", repeated(330'000, "é "), 989'999},
        {"blanks under marks", "é" + repeated(330'000, " \u0301"), 2},
        {"one blank under many marks", "é " + repeated(500'000, "\u0301"), 2},
        {"blanks of many bytes", repeated(330'000, "\u3000"), 0},
        {"blanks of many kinds", repeated(330'000, "\n\u00A0"), 0},
        {"line ends", repeated(500'000, "\r\n"), 0},
        {"flags and a blank", repeated(125'000, "🇩🇪") + "\u00A0", 1'000'000},
        {"signs before a blank", repeated(500'000, "\u0600") + " ", 1'000'001},
        {"conjuncts and a blank", repeated(160'000, "क्") + "\u3000", 960'000},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(withoutTrailingWhitespace(row.text).size(), row.length);
    }
}

}  // namespace
}  // namespace kestrin
