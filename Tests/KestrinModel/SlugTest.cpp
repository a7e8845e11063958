#include "KestrinModel/Slug.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "Tests/Support/Generators.h"
#include "Tests/Support/Repeated.h"

namespace kestrin {
namespace {

std::string made(std::string_view name, const std::set<Slug>& avoiding = {}) {
    return Slug::make(name, avoiding).rawValue;
}

TEST(Slug, IsMadeOfLowerCaseLettersDigitsAndSingleHyphens) {
    struct Row {
        const char* when;
        const char* name;
        const char* slug;
    };
    const Row rows[] = {
        {"accents, case and symbols are folded away", "Résumé — Été 2024!", "resume-ete-2024"},
        {"decomposed accents too", "Re\u0301sume\u0301", "resume"},
        {"what is left is left", "summer-2024", "summer-2024"},
        {"leading separators leave no hyphen", "  -- Foo", "foo"},
        {"trailing separators leave no hyphen", "Foo !!", "foo"},
        {"runs of separators are one hyphen", "a - _ / . b", "a-b"},
        {"full-width forms are their usual ones", "Ｆｏｏ１２", "foo12"},
        {"the ideographic space is a separator", "foo\u3000bar", "foo-bar"},
        {"case folding may give two letters", "Straße", "strasse"},
        {"so may a ligature", "Oﬃce", "office"},
        {"a dotted capital i is an i", "İstanbul", "istanbul"},
        {"a dotless i is none", "Kızıl", "k-z-l"},
        {"a letter with a stroke is none", "Bjørn", "bj-rn"},
        {"the Kelvin sign is a k", "0 \u212A", "0-k"},
        {"other scripts are separators", "日本 Foo 語 Bar", "foo-bar"},
        {"their digits too", "٣ Foo", "foo"},
        {"emoji are separators", "Foo👨‍👩‍👧Bar", "foo-bar"},
        {"a path is one name", "../../etc/passwd", "etc-passwd"},
        {"nothing to keep gives page", "★☆", "page"},
        {"an empty name gives page", "", "page"},
        {"hyphens alone give page", "---", "page"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(made(row.name), row.slug);
    }
}

TEST(Slug, TakesTheFirstFreeNumberFromTwoOn) {
    EXPECT_EQ(made("Foo", {{"foo"}}), "foo-2");
    EXPECT_EQ(made("Foo", {{"foo"}, {"foo-2"}}), "foo-3");
    EXPECT_EQ(made("Foo", {{"foo"}, {"foo-3"}}), "foo-2");
    EXPECT_EQ(made("Foo", {{"foo-2"}}), "foo");
    EXPECT_EQ(made("Foo 2", {{"foo-2"}}), "foo-2-2");
    EXPECT_EQ(made("★", {{"page"}}), "page-2");
    EXPECT_EQ(made("Foo", {{"FOO"}}), "foo");
}

RC_GTEST_PROP(SlugProperty, IsSafeAndStaysWhatItIs, ()) {
    const auto slug = made(*arbitrary::text());
    RC_ASSERT(slug.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789-") == std::string::npos);
    RC_ASSERT(!slug.empty() && slug.front() != '-' && slug.back() != '-');
    RC_ASSERT(slug.find("--") == std::string::npos);
    RC_ASSERT(made(slug) == slug);
}

RC_GTEST_PROP(SlugProperty, IsTheSameForEquivalentNames, ()) {
    const auto name = *arbitrary::text();
    RC_ASSERT(made(name) == made(text::toNFC(name)));
}

RC_GTEST_PROP(SlugProperty, IsNeverOneToAvoid, ()) {
    std::set<Slug> taken;
    for (const auto& name : *rc::gen::container<std::vector<std::string>>(arbitrary::text())) {
        RC_ASSERT(taken.insert(Slug::make(name, taken)).second);
    }
}

TEST(Slug, OfAMegabyteOfMarksIsMade) {
    EXPECT_EQ(made("a" + repeated(250'000, "\u0301\u0323") + "b"), "ab");
    EXPECT_EQ(made(repeated(300'000, "日 ")), "page");
}

}  // namespace
}  // namespace kestrin
