// What survives a save of a package, rule by rule. ProjectPackageRandomTreesTest holds the writer against the same
// rules on trees that nobody thought of, ProjectPackageWriterTest says what goes.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "KestrinModel/ProjectPackageFile.h"
#include "Tests/Support/DiskSnapshot.h"
#include "Tests/Support/PackageTrees.h"
#include "Tests/Support/TemporaryFolder.h"

namespace kestrin {
namespace {

namespace fs = std::filesystem;

// A package with one of everything, in the bytes that a save gives.
class PackageSurvivalTest : public testing::Test {
 protected:
    PackageSurvivalTest() { ProjectPackageFile::save(everything(), package); }

    static Project everything() {
        Project project;
        project.manifest.unknownFields = {{"new", JSONArray{1, "two"}}};
        project.manifest.app.unknownFields = {{"new", 1}};
        project.app.info.unknownFields = {{"new", nullptr}};
        project.app.locales[{"de"}] = LocalizedFields({}, {{"new", 1}});
        auto& listing = project.platforms[StorePlatform::iOS];
        listing.version.unknownFields = {{"new", 0.5}};
        listing.review.unknownFields = {{"new", JSONObject{{"b", 1}, {"a", 2}}}};
        listing.locales[{"de"}] =
            LocalizedFields({{ListingField::description, "Hi"}}, {{"description", "kept"}});
        auto& page = project.pages[{"summer"}];
        page.locales = {{"fr"}, {"de"}};
        page.unknownFields = {{"new", true}};
        auto& experiment = project.experiments[{"icons"}];
        experiment.unknownFields = {{"new", "x"}};
        auto& treatment = experiment.treatments[{"blue"}];
        treatment.locales = {{"de"}};
        treatment.unknownFields = {{"new", "x"}};
        return project;
    }

    void loadAndSave() const { ProjectPackageFile::save(ProjectPackageFile::load(package), package); }

    // A save that changes something, so that the whole tree is made anew.
    void loadChangeAndSave() const {
        auto project = ProjectPackageFile::load(package);
        project.manifest.app.bundleID += "x";
        ProjectPackageFile::save(project, package);
    }

    const TemporaryFolder folder;
    const fs::path package = folder / "Demo.kestrin";
};

TEST_F(PackageSurvivalTest, UnknownMembersOfEveryRecordSurvive) {
    const auto project = ProjectPackageFile::load(package);
    EXPECT_EQ(project, everything());
    loadChangeAndSave();
    auto again = ProjectPackageFile::load(package);
    again.manifest.app.bundleID.clear();
    EXPECT_EQ(again, everything());
}

TEST_F(PackageSurvivalTest, UnknownFilesAndFoldersSurvive) {
    const std::string unknown[] = {
        "notes.md",
        "Docs/deep/er/notes.md",
        "Docs/Locales",
        "Media/a.png",
        ".git/HEAD",
        "version.json",
        "App/notes.md",
        "App/folder/x",
        "App/Locales/notes.md",
        "App/Locales/de.json.orig",
        "App/Locales/folder/x",
        "iOS/notes.md",
        "iOS/folder/x",
        "iOS/Locales/notes.md",
        "iOS/Locales/de/notes.md",
        "iOS/Locales/de/folder/x",
        "Pages/notes.md",
        "Pages/draft/Locales/de/promotional-text.txt",
        "Pages/summer/notes.md",
        "Pages/summer/Locales/notes.md",
        "Pages/summer/Locales/de/notes.md",
        "Experiments/notes.md",
        "Experiments/draft/Treatments/x/treatment.json",
        "Experiments/icons/notes.md",
        "Experiments/icons/Treatments/notes.md",
        "Experiments/icons/Treatments/draft/x",
        "Experiments/icons/Treatments/blue/notes.md",
        "Experiments/icons/Treatments/blue/Locales/notes.md",
        "Experiments/icons/Treatments/blue/Locales/de/notes.md",
        "not UTF-8: \xff\xfe",
        "\xff folder/\xff",
        "Pages/\xff/x",
        "iOS/Locales/de/\xff.txt",
    };
    for (const auto& path : unknown) folder.write("Demo.kestrin/" + path, "kept: " + path);
    fs::create_directories(package / "empty/folder");
    const auto before = snapshotOf(folder.path());

    loadAndSave();
    EXPECT_EQ(changes(before, snapshotOf(folder.path())), "");

    loadChangeAndSave();
    const auto now = snapshotOf(package);
    for (const auto& path : unknown) {
        ASSERT_TRUE(now.contains(path)) << path;
        EXPECT_EQ(now.at(path), before.at("Demo.kestrin/" + path)) << path;
    }
    EXPECT_TRUE(fs::is_directory(package / "empty/folder"));
}

TEST_F(PackageSurvivalTest, LinksAndSpecialFilesSurvive) {
    folder.write("outside/file", "outside");
    fs::create_symlink("/etc/passwd", package / "absolute");
    fs::create_directory_symlink("../outside", package / "folder");
    fs::create_symlink("nowhere", package / "dangling");
    fs::create_symlink("loop", package / "loop");
    fs::create_symlink("../../outside/file", package / "App/Locales/fr.json");
    fs::create_directory_symlink("../../../outside", package / "iOS/Locales/fr");
    fs::create_symlink("../../../../outside/file", package / "iOS/Locales/de/placements.json");
    fs::create_symlink("../outside/file", package / "iOS/review.json.link");
    fs::create_directory_symlink("../../outside", package / "Pages/fall");
    fs::create_directory_symlink("../outside", package / "macOS");
    fs::create_symlink("outside/file", package / "Marquel.json");
    ASSERT_EQ(mkfifo((package / "pipe").c_str(), 0640), 0);
    const auto before = snapshotOf(folder.path());

    loadAndSave();
    EXPECT_EQ(changes(before, snapshotOf(folder.path())), "");

    loadChangeAndSave();
    const auto now = snapshotOf(folder.path());
    for (const auto& [path, entry] : before) {
        if (entry.kind == 'l' || entry.kind == 'o' || path.starts_with("outside")) {
            ASSERT_TRUE(now.contains(path)) << path;
            EXPECT_EQ(now.at(path), entry) << path;
        }
    }
}

TEST_F(PackageSurvivalTest, ALinkInPlaceOfGitAttributesIsTheUsersToo) {
    fs::remove(package / ".gitattributes");
    fs::create_symlink("../shared-attributes", package / ".gitattributes");
    const auto before = snapshotOf(folder.path());
    loadAndSave();
    EXPECT_EQ(changes(before, snapshotOf(folder.path())), "");
}

TEST_F(PackageSurvivalTest, PermissionsAndHardLinksSurviveASaveThatChangesSomething) {
    folder.write("Demo.kestrin/script", "#!/bin/sh\n");
    ASSERT_EQ(chmod((package / "script").c_str(), 0751), 0);
    ASSERT_EQ(chmod((package / "Kestrin.json").c_str(), 0600), 0);
    ASSERT_EQ(chmod((package / "iOS").c_str(), 0710), 0);
    ASSERT_EQ(chmod((package / "Pages").c_str(), 02775), 0);
    ASSERT_EQ(chmod(package.c_str(), 0700), 0);
    fs::create_hard_link(package / "script", package / "App/script");
    const auto before = contentOf(package);

    loadChangeAndSave();
    auto now = contentOf(package);
    EXPECT_NE(now.at("Kestrin.json").content, before.at("Kestrin.json").content);
    now["Kestrin.json"].content = before.at("Kestrin.json").content;
    EXPECT_EQ(changes(before, now), "");
    EXPECT_TRUE(fs::equivalent(package / "script", package / "App/script"));
}

TEST_F(PackageSurvivalTest, TheOtherSpellingOfANameSurvivesUntilItsNameGoes) {
    const std::string composed = "\u00E9t\u00E9";
    const std::string decomposed = "e\u0301te\u0301";
    folder.write("Demo.kestrin/Pages/" + composed + "/page.json",
                 "{\n  \"locales\" : [\n\n  ],\n  \"name\" : \"C\"\n}\n");
    folder.write("Demo.kestrin/Pages/" + decomposed + "/page.json", "{\"name\": \"D\", \"odd\": \"layout\"}");
    const auto before = snapshotOf(folder.path());
    EXPECT_EQ(ProjectPackageFile::load(package).pages.at({decomposed}).name, "C");
    loadAndSave();
    EXPECT_EQ(changes(before, snapshotOf(folder.path())), "");
    loadChangeAndSave();
    EXPECT_EQ(folder.read("Demo.kestrin/Pages/" + decomposed + "/page.json"),
              "{\"name\": \"D\", \"odd\": \"layout\"}");

    auto project = ProjectPackageFile::load(package);
    project.pages.erase({composed});
    ProjectPackageFile::save(project, package);
    EXPECT_EQ(ProjectPackageFile::load(package), project) << "no other page comes up in its place";
}

TEST_F(PackageSurvivalTest, AnEmptyTextFileGoesAtTheNextSave) {
    folder.write("Demo.kestrin/iOS/Locales/de/whats-new.txt", "");
    loadAndSave();
    EXPECT_FALSE(folder.has("Demo.kestrin/iOS/Locales/de/whats-new.txt"));
}

TEST_F(PackageSurvivalTest, WindowsLineEndsBecomeLineFeeds) {
    folder.write("Demo.kestrin/iOS/Locales/de/description.txt", "One\r\nTwo\r\n");
    loadAndSave();
    EXPECT_EQ(folder.read("Demo.kestrin/iOS/Locales/de/description.txt"), "One\nTwo\n");
}

TEST_F(PackageSurvivalTest, ADescriptionInTheListingStaysUnknownAndTheTextFileWins) {
    EXPECT_EQ(ProjectPackageFile::load(package).value(ListingField::description, {"de"}, StorePlatform::iOS),
              "Hi");
    loadChangeAndSave();
    EXPECT_EQ(folder.read("Demo.kestrin/iOS/Locales/de/listing.json"),
              "{\n  \"description\" : \"kept\"\n}\n");
    EXPECT_EQ(folder.read("Demo.kestrin/iOS/Locales/de/description.txt"), "Hi\n");
}

TEST_F(PackageSurvivalTest, AnUnknownFolderTooDeepToBeCopiedIsRefusedAndNothingIsLeft) {
    auto deep = package / "deep";
    for (int i = 0; i < 300; ++i) deep /= "d";
    fs::create_directories(deep);
    loadAndSave();
    const auto before = snapshotOf(package);
    EXPECT_THROW(loadChangeAndSave(), FileError);
    EXPECT_EQ(changes(before, snapshotOf(package)), "");
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), {}), 1);
}

}  // namespace
}  // namespace kestrin
