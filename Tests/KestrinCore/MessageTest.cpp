#include "KestrinCore/Message.h"

#include <gtest/gtest.h>

#include <clocale>

#include "Tests/Support/OtherLanguage.h"

namespace kestrin {
namespace {

using message::localized;
using Catalogue = std::map<std::string, std::string>;

TEST(Message, WithoutACatalogueIsTheEnglishText) {
    EXPECT_EQ(localized("noSuchKey", "This file isn’t a Kestrin project package."),
              "This file isn’t a Kestrin project package.");
    EXPECT_EQ(localized("noSuchKey", ""), "");
}

TEST(Message, SetsArgumentsInByName) {
    struct Row {
        const char* when;
        const char* text;
        const char* message;
    };
    const Row rows[] = {
        {"one", "“{path}” is damaged.", "“a/b” is damaged."},
        {"several in any order", "{reason} at {path}", "no {path} at a/b"},
        {"the same one twice", "{path}{path}", "a/ba/b"},
        {"one without text", "[{empty}]", "[]"},
        {"a name without an argument stays", "{other} {path}", "{other} a/b"},
        {"so do empty braces", "{} {path}", "{} a/b"},
        {"braces within braces", "{{path}} {x{path}", "{a/b} {xa/b"},
        {"an open brace at the end", "{path} {", "a/b {"},
        {"an unfinished name", "{path} {path", "a/b {path"},
        {"a closing brace alone", "} {path} }", "} a/b }"},
        {"names are exact", "{Path} { path}", "{Path} { path}"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(localized("noSuchKey", row.text, {{"path", "a/b"}, {"reason", "no {path}"}, {"empty", ""}}),
                  row.message);
    }
}

TEST(Message, IsTakenFromTheCatalogueThatHasItsKey) {
    const Catalogue german{{"fileErrorRead", "Grund: {reason}, Ort: »{path}« äöü"}};
    const OtherLanguage language(german);

    EXPECT_EQ(
        localized("fileErrorRead", "Couldn’t read “{path}”: {reason}.", {{"path", "p"}, {"reason", "r"}}),
        "Grund: r, Ort: »p« äöü");
    EXPECT_EQ(localized("fileErrorWrite", "Couldn’t write “{path}”.", {{"path", "p"}}),
              "Couldn’t write “p”.");
}

TEST(Message, TheEnvironmentsLanguageLeavesNumbersAndCharacterClassesAlone) {
    const OtherLanguage language(Catalogue{});

    EXPECT_STREQ(std::setlocale(LC_NUMERIC, nullptr), "C");
    EXPECT_STREQ(std::setlocale(LC_CTYPE, nullptr), "C");
    EXPECT_STREQ(std::setlocale(LC_MESSAGES, nullptr), "C.UTF-8");
}

}  // namespace
}  // namespace kestrin
