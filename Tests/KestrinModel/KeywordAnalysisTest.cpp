#include "KestrinModel/KeywordAnalysis.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kestrin {
namespace {

using Keywords = std::vector<std::string>;

TEST(KeywordAnalysis, KeywordsAreThePiecesBetweenCommasWithoutBlanksAndTabsAround) {
    struct Row {
        const char* when;
        const char* text;
        Keywords keywords;
    };
    const Row rows[] = {
        {"nothing", "", {}},
        {"one", "notes", {"notes"}},
        {"order is kept", "b,a,c", {"b", "a", "c"}},
        {"empty pieces are dropped", "a,,b", {"a", "b"}},
        {"commas only", ",,,", {}},
        {"blanks and tabs around are trimmed", " \ta \t, b", {"a", "b"}},
        {"pieces of blanks and tabs are dropped", "a, \t ,b", {"a", "b"}},
        {"blanks within stay", "to do,x", {"to do", "x"}},
        {"line breaks are not trimmed", "a\n,\nb", {"a\n", "\nb"}},
        {"a piece of a line break is a keyword", "a,\n", {"a", "\n"}},
        {"blanks beyond a line break stay", " \n a", {"\n a"}},
        {"no other white space is trimmed", "\u00A0a\u3000", {"\u00A0a\u3000"}},
        {"other commas are no separators", "a，b、c", {"a，b、c"}},
        {"the same keyword twice is listed twice", "a, a", {"a", "a"}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(KeywordAnalysis(row.text).keywords, row.keywords);
    }
}

TEST(KeywordAnalysis, ADuplicateIsListedOnceAsItsSecondOccurrenceIsWritten) {
    struct Row {
        const char* when;
        const char* text;
        Keywords duplicates;
    };
    const Row rows[] = {
        {"none", "a,b", {}},
        {"the same", "a, a", {"a"}},
        {"letter case makes no difference", "Foo, foo, FOO", {"foo"}},
        {"the second occurrence gives the spelling", "foo,FOO,Foo", {"FOO"}},
        {"several, in the order of their second occurrence", "a,b,B,A,a,b", {"B", "A"}},
        {"composed and decomposed are the same text", "Caf\u00E9,cafe\u0301", {"cafe\u0301"}},
        {"accents make a difference", "cafe,café", {}},
        {"letter case beyond ASCII", "ÄPFEL,äpfel", {"äpfel"}},
        {"lower-casing is not folding", "straße,STRASSE", {}},
        {"empty pieces are no duplicates", ",, ,", {}},
        {"blanks within make a difference", "to do,todo", {}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(KeywordAnalysis(row.text).duplicates, row.duplicates);
    }
}

TEST(KeywordAnalysis, WasteIsThePlainSpacesAroundEachPiece) {
    struct Row {
        const char* when;
        const char* text;
        std::size_t wastedSpaces;
    };
    const Row rows[] = {
        {"nothing", "", 0},
        {"empty pieces waste nothing", "a,,b", 0},
        {"on both sides", " a , b", 3},
        {"a piece of three blanks counts from either end", "   ", 6},
        {"each piece of blanks counts twice", "a, ,  ,b", 6},
        {"blanks within are no waste", "to do,x y z", 0},
        {"only the plain space counts", "\ta\u00A0,\u3000b\n", 0},
        {"a tab ends the count", " \t a \t ", 2},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(KeywordAnalysis(row.text).wastedSpaces, row.wastedSpaces);
    }
}

}  // namespace
}  // namespace kestrin
