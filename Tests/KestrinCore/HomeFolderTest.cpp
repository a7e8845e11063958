#include "KestrinCore/HomeFolder.h"

#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

#include "Tests/Support/ProcessState.h"

namespace kestrin {
namespace {

std::filesystem::path accountsFolder() {
    const passwd* account = getpwuid(getuid());
    return account ? account->pw_dir : "";
}

TEST(HomeFolder, IsWhatTheEnvironmentSays) {
    const EnvironmentVariable home("HOME", "/home/of the test");
    EXPECT_EQ(homeFolder(), "/home/of the test");
}

TEST(HomeFolder, IsThatOfTheAccountWhereTheEnvironmentNamesNone) {
    for (const char* value : {static_cast<const char*>(nullptr), ""}) {
        const EnvironmentVariable home("HOME", value);
        EXPECT_EQ(homeFolder(), accountsFolder());
    }
}

TEST(HomeFolder, OfTheAccountIsTheSameWhateverTheEnvironmentSays) {
    const EnvironmentVariable home("HOME", "/home/of the test");
    EXPECT_EQ(homeOfAccount(), accountsFolder());
}

TEST(HomeFolder, OfAUserIsInTheUsersRecord) {
    EXPECT_EQ(homeFolder(std::string("root")), getpwnam("root")->pw_dir);
    EXPECT_EQ(homeFolder(std::string("no such user")), std::nullopt);
}

TEST(ExpandingTilde, ReplacesALeadingOneAsAShellDoes) {
    const EnvironmentVariable home("HOME", "/home/me");
    const std::string root = getpwnam("root")->pw_dir;
    struct Row {
        const char* path;
        std::string expanded;
    };
    const Row rows[] = {
        {"~", "/home/me"},  {"~/", "/home/me/"},      {"~/a/b", "/home/me/a/b"},
        {"~root", root},    {"~root/a", root + "/a"}, {"~no such user/a", "~no such user/a"},
        {"a/~/b", "a/~/b"}, {"./~", "./~"},           {"/a", "/a"},
        {"", ""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.path);
        EXPECT_EQ(expandingTilde(row.path).native(), row.expanded);
    }
}

}  // namespace
}  // namespace kestrin
