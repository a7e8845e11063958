#include "KestrinCLI/CommandLine.h"

#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

#include "KestrinCLI/Failure.h"
#include "Tests/Support/ProcessState.h"
#include "Tests/Support/TemporaryFolder.h"

namespace kestrin {
namespace {

using Absent = std::nullopt_t;
constexpr Absent absent = std::nullopt;

std::string failureOf(const std::vector<const char*>& words) {
    try {
        argumentsOfProcess(words);
        return "";
    } catch (const Failure& failure) {
        return failure.errorDescription();
    }
}

TEST(ArgumentsOfProcess, LeaveOutTheNameOfTheProgram) {
    EXPECT_EQ(argumentsOfProcess(std::vector<const char*>{"kestrin", "check", ""}), (Arguments{"check", ""}));
    EXPECT_EQ(argumentsOfProcess(std::vector<const char*>{"kestrin"}), Arguments{});
}

TEST(ArgumentsOfProcess, MayBeMissingAltogether) {
    EXPECT_EQ(argumentsOfProcess(std::vector<const char*>{}), Arguments{});
}

TEST(ArgumentsOfProcess, RefuseAWordThatIsNotUTF8) {
    EXPECT_EQ(failureOf({"kestrin", "check", "Gr\xFC\xDF.kestrin"}),
              "the argument “Gr��.kestrin” isn't UTF-8 text");
    EXPECT_EQ(failureOf({"kestrin", "\xED\xA0\x80"}), "the argument “���” isn't UTF-8 text") << "a surrogate";
    EXPECT_EQ(failureOf({"kestrin", "\xC0\xAF"}), "the argument “��” isn't UTF-8 text") << "an overlong form";
    EXPECT_EQ(failureOf({"\xFF", "Grüße.kestrin"}), "") << "the program's own name isn't looked at";
}

TEST(Option, IsTheWordAfterItsFirstOccurrence) {
    struct Row {
        const char* when;
        Arguments args;
        std::optional<std::string> value;
    };
    const Row rows[] = {
        {"the option isn't there", {"push", "p"}, absent},
        {"it has a value", {"push", "p", "--platform", "MAC_OS"}, "MAC_OS"},
        {"it stands before the positional words", {"--platform", "MAC_OS", "push"}, "MAC_OS"},
        {"it is the last word", {"push", "p", "--platform"}, absent},
        {"another option follows and is the value", {"push", "--platform", "--yes"}, "--yes"},
        {"an empty word follows", {"push", "--platform", ""}, ""},
        {"it occurs twice: the first counts", {"--platform", "IOS", "--platform", "TV_OS"}, "IOS"},
        {"the first occurrence is the last word but one of two", {"--platform", "--platform"}, "--platform"},
        {"the form with an equals sign is another word", {"push", "--platform=IOS", "x"}, absent},
        {"no words at all", {}, absent},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(option("--platform", row.args), row.value);
    }
}

TEST(Flag, IsSetByTheWordAnywhere) {
    EXPECT_TRUE(hasFlag("--yes", {"push", "p", "--yes"}));
    EXPECT_TRUE(hasFlag("--yes", {"--yes", "push"}));
    EXPECT_TRUE(hasFlag("--yes", {"push", "--platform", "--yes"})) << "also where it is an option's value";
    EXPECT_FALSE(hasFlag("--yes", {"push", "--Yes", "-y", "--yess"}));
    EXPECT_FALSE(hasFlag("--yes", {}));
}

TEST(PlatformOption, IsIOSUnlessGiven) {
    EXPECT_EQ(platformOption({"submit", "p"}).rawValue, "IOS");
    EXPECT_EQ(platformOption({"submit", "p", "--platform"}).rawValue, "IOS");
    EXPECT_EQ(platformOption({"submit", "p", "--platform", "VISION_OS"}).rawValue, "VISION_OS");
}

TEST(PlatformOption, IsTakenAsTypedCaseIncluded) {
    EXPECT_EQ(platformOption({"submit", "p", "--platform", "ios"}).rawValue, "ios");
    EXPECT_NE(platformOption({"submit", "p", "--platform", "ios"}), StorePlatform::iOS);
    EXPECT_EQ(platformOption({"submit", "p", "--platform", "no such thing"}).rawValue, "no such thing");
}

TEST(LocalesOption, IsASetOfThePiecesBetweenTheCommas) {
    using Locales = std::optional<std::set<StoreLocale>>;
    struct Row {
        const char* when;
        Arguments args;
        Locales locales;
    };
    const Row rows[] = {
        {"absent: no filter", {"push", "p"}, absent},
        {"last word: as if absent", {"push", "p", "--locales"}, absent},
        {"one", {"--locales", "de-DE"}, Locales{{{"de-DE"}}}},
        {"two", {"--locales", "fr-FR,de-DE"}, Locales{{{"de-DE"}, {"fr-FR"}}}},
        {"empty pieces are dropped", {"--locales", ",de-DE,,fr-FR,"}, Locales{{{"de-DE"}, {"fr-FR"}}}},
        {"only commas: a filter that nothing passes", {"--locales", ",,"}, Locales{std::in_place}},
        {"an empty word: the same", {"--locales", ""}, Locales{std::in_place}},
        {"pieces are taken exactly as typed", {"--locales", " de-DE"}, Locales{{{" de-DE"}}}},
        {"a repeated piece is one", {"--locales", "ja,ja"}, Locales{{{"ja"}}}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(localesOption(row.args), row.locales);
    }
}

TEST(FileURL, ExpandsALeadingTilde) {
    const EnvironmentVariable home("HOME", "/home/of the test");
    EXPECT_EQ(fileURL("~"), "/home/of the test");
    EXPECT_EQ(fileURL("~/a/b.kestrin"), "/home/of the test/a/b.kestrin");
    EXPECT_EQ(fileURL("a/~/b"), "a/~/b") << "only a leading one";
    EXPECT_EQ(fileURL("./~"), "./~");
}

TEST(FileURL, ExpandsTheTildeOfAUserByTheUsersRecord) {
    const EnvironmentVariable home("HOME", "/home/of the test");
    const passwd* user = getpwuid(getuid());
    ASSERT_NE(user, nullptr);
    const std::string name = user->pw_name, folder = user->pw_dir;
    EXPECT_EQ(fileURL("~" + name), folder);
    EXPECT_EQ(fileURL("~" + name + "/p.kestrin"), folder + "/p.kestrin");
}

TEST(FileURL, LeavesTheTildeOfAnUnknownUserAlone) {
    EXPECT_EQ(fileURL("~no such user/p.kestrin"), "~no such user/p.kestrin");
}

TEST(FileURL, AsksTheUsersRecordWhereHOMEIsMissing) {
    const passwd* user = getpwuid(getuid());
    ASSERT_NE(user, nullptr);
    for (const char* value : {static_cast<const char*>(nullptr), ""}) {
        const EnvironmentVariable home("HOME", value);
        EXPECT_EQ(fileURL("~/p"), std::string(user->pw_dir) + "/p");
    }
}

TEST(FileURL, TakesAnyOtherPathAsItStandsWithoutLookingThere) {
    for (const char* path : {"p.kestrin", "/no/such/p.kestrin/", "../p.kestrin", "a//b", "."}) {
        EXPECT_EQ(fileURL(path), path);
    }
}

TEST(FileURL, RefusesAnEmptyWord) {
    EXPECT_THROW(fileURL(""), Failure);
}

TEST(LastPathComponent, IsTheNameThatThePathEndsIn) {
    struct Row {
        const char* path;
        const char* name;
    };
    const Row rows[] = {
        {"p.kestrin", "p.kestrin"},
        {"p.kestrin/", "p.kestrin"},
        {"p.kestrin//", "p.kestrin"},
        {"/a/b/p.kestrin", "p.kestrin"},
        {"a/p.kestrin/", "p.kestrin"},
        {"../Grüße.kestrin", "Grüße.kestrin"},
        {"/", "/"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.path);
        EXPECT_EQ(lastPathComponent(row.path), row.name);
    }
}

TEST(LastPathComponent, OfAPathWithoutANameIsThatOfTheFolderThere) {
    const TemporaryFolder folder;
    std::filesystem::create_directories(folder / "p.kestrin/App");
    const CurrentFolder current(folder / "p.kestrin");
    EXPECT_EQ(lastPathComponent("."), "p.kestrin");
    EXPECT_EQ(lastPathComponent("./"), "p.kestrin");
    EXPECT_EQ(lastPathComponent("App/.."), "p.kestrin");
    EXPECT_EQ(lastPathComponent("App/."), "App");
    EXPECT_EQ(lastPathComponent("../../.."),
              folder.path().parent_path().parent_path().filename().empty()
                  ? "/"
                  : folder.path().parent_path().parent_path().filename().native());
}

TEST(LastPathComponent, OfALinkIsTheNameOfTheLink) {
    const TemporaryFolder folder;
    std::filesystem::create_directories(folder / "Real.kestrin");
    std::filesystem::create_directory_symlink("Real.kestrin", folder / "link.kestrin");
    EXPECT_EQ(lastPathComponent(folder / "link.kestrin"), "link.kestrin");
}

TEST(LastPathComponent, IsTextAlsoWhereTheNameIsNot) {
    EXPECT_EQ(lastPathComponent("Gr\xFC.kestrin"), "Gr�.kestrin");
}

}  // namespace
}  // namespace kestrin
