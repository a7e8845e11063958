#include "KestrinModel/PackageNames.h"

#include <gtest/gtest.h>

#include <functional>

#include "KestrinModel/PackageNameError.h"

namespace kestrin {
namespace {

using E = PackageNameError;
using namespace std::string_literals;

const std::string kNotNames[] = {"",    ".", "..", "a/b", "/", "/etc", "../x", "a\0b"s, std::string(256, 'x'),
                                 "\xff"};

E::Kind refusalOf(const std::function<void()>& act) {
    try {
        act();
    } catch (const E& error) {
        return error.kind;
    }
    ADD_FAILURE() << "nothing was refused";
    return E::NotAName{"?"};
}

E::Kind refusalOf(const Project& project) {
    return refusalOf([&] { PackageNames::check(project); });
}

TEST(PackageNames, OnePlainComponentOfAPathIsAName) {
    for (const std::string& name : {"en-US"s, "..."s, ".hidden"s, "a b"s, "日本"s, "Re\u0301sume\u0301"s,
                                    "a\nb"s, "x.json"s, std::string(255, 'x')}) {
        EXPECT_TRUE(PackageNames::isPlain(name)) << name;
    }
    for (const auto& name : kNotNames) EXPECT_FALSE(PackageNames::isPlain(name)) << name;
}

TEST(PackageNames, RefusesEveryPlaceOfAProjectThatMakesAFolder) {
    const struct {
        const char* where;
        std::function<void(Project&, const std::string& name)> put;
    } rows[] = {
        {"an app locale", [](Project& p, const std::string& name) { p.app.locales[{name}]; }},
        {"a platform", [](Project& p, const std::string& name) { p.platforms[{name}]; }},
        {"a platform's texts",
         [](Project& p, const std::string& name) { p.platforms[StorePlatform::iOS].locales[{name}]; }},
        {"a platform's media",
         [](Project& p, const std::string& name) { p.platforms[StorePlatform::iOS].media[{name}]; }},
        {"a page", [](Project& p, const std::string& name) { p.pages[{name}]; }},
        {"a page's locales", [](Project& p, const std::string& name) { p.pages[{"a"}].locales = {{name}}; }},
        {"a page's texts",
         [](Project& p, const std::string& name) { p.pages[{"a"}].promotionalText[{name}]; }},
        {"a page's media", [](Project& p, const std::string& name) { p.pages[{"a"}].media[{name}]; }},
        {"a test", [](Project& p, const std::string& name) { p.experiments[{name}]; }},
        {"a treatment", [](Project& p, const std::string& name) { p.experiments[{"a"}].treatments[{name}]; }},
        {"a treatment's locales",
         [](Project& p, const std::string& name) {
             p.experiments[{"a"}].treatments[{"b"}].locales = {{name}};
         }},
        {"a treatment's media",
         [](Project& p, const std::string& name) { p.experiments[{"a"}].treatments[{"b"}].media[{name}]; }},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.where);
        for (const auto& name : kNotNames) {
            Project project;
            row.put(project, name);
            EXPECT_EQ(refusalOf(project), E::Kind(E::NotAName{name}));
        }
        Project project;
        row.put(project, "plain");
        EXPECT_NO_THROW(PackageNames::check(project));
    }
}

TEST(PackageNames, AnAppLocaleNeedsRoomForTheEndOfItsFileName) {
    Project project;
    project.app.locales[{std::string(250, 'x')}];
    EXPECT_NO_THROW(PackageNames::check(project));
    project.app.locales[{std::string(251, 'x')}];
    EXPECT_EQ(refusalOf(project), E::Kind(E::NotAName{std::string(251, 'x') + ".json"}));
}

TEST(PackageNames, TheManifestsListsMayHoldAnything) {
    Project project;
    project.manifest.locales = {{"../x"}};
    project.manifest.platforms = {{"App"}, {"a/b"}};
    project.manifest.primaryLocale = {{""}};
    EXPECT_NO_THROW(PackageNames::check(project));
}

TEST(PackageNames, APlatformMayNotTakeTheProjectsOwnNames) {
    for (const char* name :
         {"App", "Pages", "Experiments", "Kestrin.json", "Marquel.json", ".gitattributes"}) {
        Project project;
        project.platforms[{name}];
        EXPECT_EQ(refusalOf(project), E::Kind(E::ReservedName{name}));
    }
}

TEST(PackageNames, TwoPlatformsMayNotShareAFolder) {
    Project project;
    project.platforms[StorePlatform::iOS];
    EXPECT_NO_THROW(PackageNames::check(project));
    project.platforms[{"iOS"}];
    EXPECT_EQ(refusalOf(project), E::Kind(E::SharedFolder{"iOS"}));
}

TEST(PackageNames, ThePiecesOfAPathAreWhatStandsBetweenSlashes) {
    using Pieces = std::vector<std::string>;
    EXPECT_EQ(PackageNames::pieces("Media/a.png"), (Pieces{"Media", "a.png"}));
    EXPECT_EQ(PackageNames::pieces("//Media///x/"), (Pieces{"Media", "x"}));
    EXPECT_EQ(PackageNames::pieces("x"), (Pieces{"x"}));
}

TEST(PackageNames, APathThatDoesntStayInThePackageIsRefused) {
    for (const std::string& path :
         {""s, "/"s, ".."s, "../x"s, "a/../b"s, "./a"s, "a/."s, "a/b\0c"s, "a/\xff"s}) {
        EXPECT_EQ(refusalOf([&] { PackageNames::pieces(path); }), E::Kind(E::NotAPath{path})) << path;
    }
}

TEST(PackageNameError, SaysEachCaseInOneSentence) {
    const struct {
        E::Kind kind;
        const char* sentence;
    } rows[] = {
        {E::NotAName{".."}, "“..” can’t be the name of a file or folder."},
        {E::NotAName{"a\0b"s}, "“a\uFFFDb” can’t be the name of a file or folder."},
        {E::ReservedName{"App"}, "A platform can’t be named “App”: the project needs that name for itself."},
        {E::SharedFolder{"iOS"}, "Two platforms of this project would share the folder “iOS”."},
        {E::NotAPath{"../x"}, "“../x” isn’t the path of a file inside the project."},
        {E::UnusableOnDisk{"Pages/\xff"},
         "The name of “Pages/\uFFFD” in this project can’t be used. Rename it."},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.sentence);
        EXPECT_EQ(E(row.kind).errorDescription(), row.sentence);
    }
}

}  // namespace
}  // namespace kestrin
