#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "KestrinCore/UnicodeText.h"
#include "Tests/Support/Generators.h"
#include "Tests/Support/Repeated.h"

namespace kestrin {
namespace {

TEST(UnicodeText, MapsCaseInFullAndWithoutALanguage) {
    struct Row {
        const char* when;
        std::string text, lower, upper;
    };
    const Row rows[] = {
        {"nothing", "", "", ""},
        {"ASCII", "aBc-1", "abc-1", "ABC-1"},
        {"Latin", "Äß", "äß", "ÄSS"},
        {"decomposed", "E\u0301e\u0301", "e\u0301e\u0301", "E\u0301E\u0301"},
        {"Cyrillic and Greek", "Жω", "жω", "ЖΩ"},
        {"a final sigma", "ΟΔΟΣ", "οδος", "ΟΔΟΣ"},
        {"the dotted and the dotless i", "Iİıi", "ii\u0307ıi", "IİII"},
        {"beyond the BMP", "𐐀", "𐐨", "𐐀"},
        {"no letter case", "日本1", "日本1", "日本1"},
        {"a ligature", "ﬁ", "ﬁ", "FI"},
        {"NUL", std::string("A\0B", 3), std::string("a\0b", 3), std::string("A\0B", 3)},
        {"an ill-formed byte", "A\xFF", "a\uFFFD", "A\uFFFD"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(text::lowercased(row.text), row.lower);
        EXPECT_EQ(text::uppercased(row.text), row.upper);
    }
}

TEST(UnicodeText, FoldsCaseAccentsAndWidthAway) {
    struct Row {
        const char* when;
        std::string text, folded;
    };
    const Row rows[] = {
        {"nothing", "", ""},
        {"ASCII", "Foo Bar", "foo bar"},
        {"composed accents", "Résumé", "resume"},
        {"decomposed accents", "Re\u0301sume\u0301", "resume"},
        {"several marks", "ǘ\u0323Ệ", "ue"},
        {"a dotted capital i", "İ", "i"},
        {"the Kelvin and Angstrom signs", "\u212A\u212B", "ka"},
        {"sharp s", "Straße", "strasse"},
        {"a capital sharp s", "ẞ", "ss"},
        {"a ligature", "ﬁ", "fi"},
        {"full-width letters and digits", "Ｆｏｏ１２", "foo12"},
        {"half-width kana", "ｶﾞ", "カ"},
        {"the ideographic space", "a\u3000b", "a b"},
        {"a stroke is no mark", "øł", "øł"},
        {"Greek", "Ἄλφα ΣΑΣ", "αλφα σασ"},
        {"CJK stays", "日本", "日本"},
        {"marks alone", "\u0301\u0308", ""},
        {"beyond the BMP", "𐐀😀", "𐐨😀"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(text::folded(row.text), row.folded);
    }
}

RC_GTEST_PROP(UnicodeTextProperty, EquivalentTextsFoldToEquivalentTexts, ()) {
    const auto text = *arbitrary::text();
    RC_ASSERT(text::equal(text::folded(text), text::folded(text::toNFC(text))));
    RC_ASSERT(text::equal(text::lowercased(text), text::lowercased(text::toNFC(text))));
}

TEST(UnicodeText, FoldsAMegabyteOfMarks) {
    EXPECT_EQ(text::folded("a" + repeated(250'000, "\u0301\u0323")), "a");
    EXPECT_EQ(text::lowercased(repeated(300'000, "Σ'")).size(), 900'000u);
}

}  // namespace
}  // namespace kestrin
