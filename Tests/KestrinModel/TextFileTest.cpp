#include "KestrinModel/TextFile.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

namespace kestrin {
namespace {

struct TextRow {
    const char* when;
    std::string_view before;
    std::string_view after;
};

TEST(TextFile, NormalizesEveryLineEndToALineFeed) {
    const TextRow rows[] = {
        {"line feeds stay", "a\nb\n", "a\nb\n"},
        {"CR LF is one line end", "a\r\nb\r\n", "a\nb\n"},
        {"a lone CR is one too", "a\rb\r", "a\nb\n"},
        {"CR CR LF is two", "a\r\r\nb", "a\n\nb"},
        {"LF CR is two", "a\n\rb", "a\n\nb"},
        {"nothing stays nothing", "", ""},
        {"other line separators are text", "a\u2028b\u0085c", "a\u2028b\u0085c"},
    };
    for (const TextRow& row : rows) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(TextFile::normalizeLineEndings(row.before), row.after);
    }
}

TEST(TextFile, DecodesWithoutOneFinalLineFeed) {
    const TextRow rows[] = {
        {"the final line feed goes", "a\nb\n", "a\nb"},
        {"only one of several", "a\n\n\n", "a\n\n"},
        {"CR LF counts as one line feed", "a\r\nb\r\n", "a\nb"},
        {"a lone CR too", "a\r", "a"},
        {"without one nothing goes", "a", "a"},
        {"other white space at the end stays", "a \n", "a "},
        {"an empty file is an empty text", "", ""},
        {"so is a single line feed", "\n", ""},
        {"a byte order mark is text", "\uFEFFa\n", "\uFEFFa"},
        {"ill-formed bytes are repaired", "a\xFFz\n", "a\uFFFDz"},
        {"a sequence cut short is repaired as one", "a\xE2\x80", "a\uFFFD"},
        {"NUL is text", std::string_view("a\0b\n", 4), std::string_view("a\0b", 3)},
    };
    for (const TextRow& row : rows) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(TextFile::decode(row.before), row.after);
    }
}

TEST(TextFile, EncodesWithOneLineFeedAfterTheText) {
    const TextRow rows[] = {
        {"one is appended", "a\nb", "a\nb\n"},
        {"also after one that is there", "a\n", "a\n\n"},
        {"line ends are normalised", "a\r\nb\rc", "a\nb\nc\n"},
        {"an empty text is one line feed", "", "\n"},
    };
    for (const TextRow& row : rows) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(TextFile::encode(row.before), row.after);
    }
}

// Texts in which line ends of all kinds are likely.
rc::Gen<std::string> anyText() {
    return rc::gen::map(rc::gen::container<std::vector<std::string>>(
                            rc::gen::element<std::string>("\r", "\n", "a", " ", "é", "😀")),
                        [](const std::vector<std::string>& pieces) {
                            std::string text;
                            for (const auto& piece : pieces) text += piece;
                            return text;
                        });
}

RC_GTEST_PROP(TextFile, WrittenAndReadIsTheSameTextWithNormalisedLineEnds, ()) {
    const auto text = *anyText();
    RC_ASSERT(TextFile::decode(TextFile::encode(text)) == TextFile::normalizeLineEndings(text));
}

RC_GTEST_PROP(TextFile, ReadAndWrittenTwiceChangesNoByte, ()) {
    const auto bytes = *rc::gen::arbitrary<std::string>();
    const auto once = TextFile::encode(TextFile::decode(bytes));
    RC_ASSERT(TextFile::encode(TextFile::decode(once)) == once);
}

}  // namespace
}  // namespace kestrin
