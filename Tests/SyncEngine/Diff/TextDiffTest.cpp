#include "SyncEngine/Diff/TextDiff.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "KestrinCore/UnicodeText.h"
#include "Tests/Support/Generators.h"
#include "Tests/Support/Repeated.h"

namespace kestrin {
namespace {

using TextDiff::Segment;
using Kind = TextDiff::Segment::Kind;

constexpr Kind unchanged = Kind::unchanged, removed = Kind::removed, added = Kind::added;

// Each token as its word and its space, with a bar between and brackets around: "[Hello|][,| ]".
std::string outline(const std::vector<TextDiff::Token>& tokens) {
    std::string line;
    for (const auto& token : tokens)
        line.append("[").append(token.word).append("|").append(token.space).append("]");
    return line;
}

// Removed pieces in [-…-], added ones in {+…+}.
std::string outline(const std::vector<Segment>& segments) {
    std::string line;
    for (const auto& segment : segments) {
        if (segment.kind == unchanged) line += segment.text;
        if (segment.kind == removed) line += "[-" + segment.text + "-]";
        if (segment.kind == added) line += "{+" + segment.text + "+}";
    }
    return line;
}

std::string diff(std::string_view from, std::string_view to) {
    return outline(TextDiff::words(from, to));
}

std::string joined(const std::vector<Segment>& segments, Kind own) {
    std::string text;
    for (const auto& segment : segments) {
        if (segment.kind == own || segment.kind == unchanged) text += segment.text;
    }
    return text;
}

TEST(TextDiffTokens, AreWordsWithTheWhiteSpaceBehindThem) {
    struct Row {
        const char *when, *text, *tokens;
    };
    const Row rows[] = {
        {"an empty text has none", "", ""},
        {"a sentence", "Hello, big world!", "[Hello|][,| ][big| ][world|][!|]"},
        {"only white space is one without a word", " \t\n", "[| \t\n]"},
        {"white space at the start has a token of its own", "  a b", "[|  ][a| ][b|]"},
        {"white space at the end stays with the last word", "a \n", "[a| \n]"},
        {"digits and letters are one word", "iOS 17b", "[iOS| ][17b|]"},
        {"a run of punctuation falls apart", "a...b", "[a|][.|][.|][.|][b|]"},
        {"an apostrophe is punctuation", "it’s", "[it|][’|][s|]"},
        {"an underscore is punctuation", "a_b", "[a|][_|][b|]"},
        {"symbols stand alone", "1+1=2€", "[1|][+|][1|][=|][2|][€|]"},
        {"an emoji stands alone, however it is composed", "hi👨‍👩‍👧👍🏽",
         "[hi|][👨‍👩‍👧|][👍🏽|]"},
        {"a flag stands alone", "🇩🇪🇫🇷x", "[🇩🇪|][🇫🇷|][x|]"},
        {"a keycap is a digit", "a1️⃣b", "[a1️⃣b|]"},
        {"ideographs stand alone", "日本 語x", "[日|][本| ][語|][x|]"},
        {"the ideographic number zero is one", "二〇", "[二|][〇|]"},
        {"hiragana and katakana stand alone", "のアプー", "[の|][ア|][プ|][ー|]"},
        {"a kana with its own voice mark is one", "か\u3099き", "[か\u3099|][き|]"},
        {"the characters around kana are what they are", "\u303F\u3105\u3131", "[\u303F|][\u3105\u3131|]"},
        {"the first and the last of the kana", "a\u3040b\u30FFc", "[a|][\u3040|][b|][\u30FF|][c|]"},
        {"what comes behind the kana is no kana", "a\u3100b", "[a\u3100b|]"},
        {"half-width kana are letters", "ｱﾌﾟﾘ", "[ｱﾌﾟﾘ|]"},
        {"Hangul are letters", "한글 앱", "[한글| ][앱|]"},
        {"Thai has no blanks between words", "สวัสดี", "[สวัสดี|]"},
        {"Devanagari with its signs is one word", "नमस्ते जी।", "[नमस्ते| ][जी|][।|]"},
        {"Arabic letters with marks are one word", "مُرَحَّب، أ", "[مُرَحَّب|][،| ][أ|]"},
        {"CR LF is white space", "a\r\nb", "[a|\r\n][b|]"},
        {"a no-break space and an ideographic one are white space", "a\u00A0\u3000b", "[a|\u00A0\u3000][b|]"},
        {"a zero width space is none", "a\u200Bb", "[a\u200Bb|]"},
        {"a mark on a blank belongs to the blank", "a \u0301b", "[a| \u0301][b|]"},
        {"a lone mark is part of a word", "\u0301a", "[\u0301a|]"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(outline(TextDiff::tokens(row.text)), row.tokens);
    }
}

TEST(TextDiff, ShowsWhatWentAndWhatCame) {
    struct Row {
        const char *when, *from, *to, *segments;
    };
    const Row rows[] = {
        {"two empty texts have no segments", "", "", ""},
        {"equal texts are one segment", "a b, c", "a b, c", "a b, c"},
        {"everything came", "", "a b", "{+a b+}"},
        {"everything went", "a b", "", "[-a b-]"},
        {"old shows before new", "the old app", "the new app", "the [-old -]{+new +}app"},
        {"a replaced stretch shows whole", "x a b y", "x c d y", "x [-a b -]{+c d +}y"},
        {"only white space differs", "a b", "a  b", "a[- -]{+  +}b"},
        {"white space came behind the last word", "a", "a ", "a{+ +}"},
        {"white space went from behind the last word", "a\n", "a", "a[-\n-]"},
        {"a full stop is a word of its own", "cat.", "cats.", "[-cat-]{+cats+}."},
        {"blanks at the start of both are compared as white space", "  a", "    a", "[-  -]{+    +}a"},
        {"blanks at the start of one are a token", " a", "a", "[- -]a"},
        {"texts of white space alone", " ", "\n", "[- -]{+\n+}"},
        {"CJK character by character", "私は猫が好き", "私は犬が好き", "私は[-猫-]{+犬+}が好き"},
        {"an emoji is never taken apart", "👩🏽‍🤝‍👨🏿!", "👩🏽‍🤝‍👨🏻!",
         "[-👩🏽‍🤝‍👨🏿-]{+👩🏽‍🤝‍👨🏻+}!"},
        {"another spelling of a word is no change, and the new one shows", "cafe\u0301 x", "caf\u00E9 x",
         "caf\u00E9 x"},
        {"another spelling of white space is no change", "a\u2000b", "a\u2002b", "a\u2002b"},
        {"upper and lower case differ", "App", "app", "[-App-]{+app+}"},
        {"moved words went here and came there", "a b c", "c a b", "{+c +}a b[- c-]"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(diff(row.from, row.to), row.segments);
    }
}

TEST(TextDiff, AWhitespaceChangeIsFourSegments) {
    EXPECT_EQ(TextDiff::words("a b", "a  b"),
              (std::vector<Segment>{{"a", unchanged}, {" ", removed}, {"  ", added}, {"b", unchanged}}));
}

TEST(TextDiff, TakesLongTextsWithAFewDifferences) {
    const auto words = repeated(20'000, "word, ");
    EXPECT_EQ(TextDiff::words(words + "end", "start " + words + "end"),
              (std::vector<Segment>{{"start ", added}, {words + "end", unchanged}}));
}

TEST(TextDiff, KeepsBytesThatAreNoText) {
    EXPECT_EQ(diff("a \xFF b", "a \xFF c"), "a \xFF [-b-]{+c+}");
}

// Texts that have much in common: pieces of a text, some of them left out or put elsewhere.
std::pair<std::string, std::string> relatedTexts() {
    std::string from, to;
    for (const auto& piece : *rc::gen::container<std::vector<std::string>>(arbitrary::text())) {
        const auto fate = *rc::gen::weightedElement<int>({{6, 0}, {1, 1}, {1, 2}, {1, 3}});
        if (fate != 1) from += piece;
        if (fate != 2) to += piece;
        if (fate == 3) to += " " + piece;
    }
    return {from, to};
}

void checkLaws(const std::string& from, const std::string& to) {
    const auto segments = TextDiff::words(from, to);
    RC_ASSERT(text::equal(joined(segments, removed), from));
    RC_ASSERT(joined(segments, added) == to);
    for (std::size_t i = 0; i < segments.size(); ++i) {
        RC_ASSERT(!segments[i].text.empty());
        // Not within the macro, which takes the condition apart and then looks at both of its sides.
        const bool differsFromTheLast = i == 0 || segments[i].kind != segments[i - 1].kind;
        RC_ASSERT(differsFromTheLast);
    }
}

RC_GTEST_PROP(TextDiff, TheSegmentsOfAnyTwoTextsGiveBothBack, ()) {
    const auto from = *arbitrary::text();
    const auto to = *arbitrary::text();
    checkLaws(from, to);
}

RC_GTEST_PROP(TextDiff, TheSegmentsOfRelatedTextsGiveBothBack, ()) {
    const auto [from, to] = relatedTexts();
    checkLaws(from, to);
}

RC_GTEST_PROP(TextDiff, ATextInNFCIsTheSameText, ()) {
    const auto text = *arbitrary::nonEmptyText();
    const auto composed = text::toNFC(text);
    RC_ASSERT(TextDiff::words(text, composed) == (std::vector<Segment>{{composed, unchanged}}));
}

RC_GTEST_PROP(TextDiff, TheTokensOfATextGiveItBack, ()) {
    const auto text = *arbitrary::text();
    std::string joined;
    const auto tokens = TextDiff::tokens(text);
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        RC_ASSERT(i == 0 || !tokens[i].word.empty());
        joined.append(tokens[i].word).append(tokens[i].space);
    }
    RC_ASSERT(joined == text);
}

}  // namespace
}  // namespace kestrin
