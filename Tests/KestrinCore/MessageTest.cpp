#include "KestrinCore/Message.h"

#include <gtest/gtest.h>
#include <libintl.h>

#include <clocale>
#include <cstdint>
#include <cstdlib>

#include "Tests/Support/TemporaryFolder.h"

namespace kestrin {
namespace {

using message::localized;

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

// A catalogue of one message in gettext's binary form.
std::string catalogue(const std::string& key, const std::string& text) {
    const auto header = std::string("Content-Type: text/plain; charset=UTF-8\n");
    const std::uint32_t strings = 28 + 2 * 16;  // behind the header and the two tables of two entries each
    const auto keyAt = strings + 1, headerAt = keyAt + static_cast<std::uint32_t>(key.size()) + 1;
    const auto textAt = headerAt + static_cast<std::uint32_t>(header.size()) + 1;
    const auto size = [](const std::string& s) { return static_cast<std::uint32_t>(s.size()); };
    const std::uint32_t words[] = {0x950412de, 0,         2,     28,           28 + 16,  0,          0,     0,
                                   strings,    size(key), keyAt, size(header), headerAt, size(text), textAt};
    std::string bytes(reinterpret_cast<const char*>(words), sizeof words);
    return bytes + '\0' + key + '\0' + header + '\0' + text + '\0';
}

// Speaks the language "xx" of a catalogue as long as it lives.
class OtherLanguage {
 public:
    OtherLanguage(const std::string& key, const std::string& text) {
        folder_.write("xx/LC_MESSAGES/kestrin.mo", catalogue(key, text));
        setenv("LANGUAGE", "xx", 1);
        setenv("LC_ALL", "C.UTF-8", 1);
        bindtextdomain("kestrin", folder_.path().c_str());
        message::useEnvironmentLanguage();
    }
    ~OtherLanguage() {
        unsetenv("LANGUAGE");
        unsetenv("LC_ALL");
        std::setlocale(LC_MESSAGES, "C");
    }

 private:
    TemporaryFolder folder_;
};

TEST(Message, IsTakenFromTheCatalogueThatHasItsKey) {
    const OtherLanguage language("fileErrorRead", "Grund: {reason}, Ort: »{path}« äöü");

    EXPECT_EQ(
        localized("fileErrorRead", "Couldn’t read “{path}”: {reason}.", {{"path", "p"}, {"reason", "r"}}),
        "Grund: r, Ort: »p« äöü");
    EXPECT_EQ(localized("fileErrorWrite", "Couldn’t write “{path}”.", {{"path", "p"}}),
              "Couldn’t write “p”.");
}

TEST(Message, TheEnvironmentsLanguageLeavesNumbersAndCharacterClassesAlone) {
    const OtherLanguage language("key", "text");

    EXPECT_STREQ(std::setlocale(LC_NUMERIC, nullptr), "C");
    EXPECT_STREQ(std::setlocale(LC_CTYPE, nullptr), "C");
    EXPECT_STREQ(std::setlocale(LC_MESSAGES, nullptr), "C.UTF-8");
}

}  // namespace
}  // namespace kestrin
