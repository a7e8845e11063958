// Packages on disk: ProjectPackageFile::load and ::save.
#include "KestrinModel/ProjectPackageFile.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <functional>

#include "KestrinModel/PackageNameError.h"
#include "KestrinModel/ProjectFormatError.h"
#include "KestrinModel/ProjectPackageCodec.h"
#include "Tests/Support/DiskSnapshot.h"
#include "Tests/Support/PackageTrees.h"
#include "Tests/Support/TemporaryFolder.h"

namespace kestrin {
namespace {

using ProjectPackageFile::load;
using ProjectPackageFile::save;
using namespace std::string_literals;
namespace fs = std::filesystem;

Project demo() {
    Project project;
    project.manifest.projectID = *UUID::parse("0F9C1B2A-3D4E-4F50-8A6B-7C8D9E0F1A2B");
    project.manifest.app.bundleID = "com.example.demo";
    project.setValue("Demo", ListingField::name, {"en-US"}, StorePlatform::iOS);
    project.setValue("A demo.", ListingField::description, {"en-US"}, StorePlatform::iOS);
    project.setValue("Eine Demo.", ListingField::description, {"de-DE"}, StorePlatform::iOS);
    project.pages[{"summer"}].name = "Summer";
    return project;
}

std::string sentenceOf(const std::function<void()>& act) {
    try {
        act();
    } catch (const Error& error) {
        return error.errorDescription();
    }
    ADD_FAILURE() << "nothing was refused";
    return {};
}

std::vector<std::string> namesIn(const fs::path& folder) {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder)) names.push_back(entry.path().filename());
    std::sort(names.begin(), names.end());
    return names;
}
using Names = std::vector<std::string>;

// A package in a folder of its own.
class ProjectPackageFileTest : public testing::Test {
 protected:
    const TemporaryFolder folder;
    const fs::path package = folder / "Demo.kestrin";
};

// Loading

TEST_F(ProjectPackageFileTest, WhatIsntThereCantBeRead) {
    EXPECT_EQ(sentenceOf([&] { load(package); }),
              "Couldn’t read “" + package.string() + "”: No such file or directory.");
    folder.write("file", "");
    const auto behindAFile = folder / "file/Demo.kestrin";
    EXPECT_EQ(sentenceOf([&] { load(behindAFile); }),
              "Couldn’t read “" + behindAFile.string() + "”: Not a directory.");
}

TEST_F(ProjectPackageFileTest, AFileIsNoPackage) {
    folder.write("Demo.kestrin", manifestText());
    EXPECT_EQ(sentenceOf([&] { load(package); }), "This file isn’t a Kestrin project package.");
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    EXPECT_EQ(sentenceOf([&] { load(folder / "pipe"); }), "This file isn’t a Kestrin project package.");
}

TEST_F(ProjectPackageFileTest, AnEmptyFolderHasNoManifest) {
    fs::create_directory(package);
    EXPECT_EQ(sentenceOf([&] { load(package); }), "This project is missing its Kestrin.json manifest.");
}

TEST_F(ProjectPackageFileTest, APackageOfANewerVersionIsLeftUntouched) {
    auto manifest = manifestText();
    manifest.replace(manifest.find("\"schemaVersion\" : 1"), 19, "\"schemaVersion\" : 2");
    folder.write("Demo.kestrin/Kestrin.json", manifest);
    const auto before = snapshotOf(folder.path());
    EXPECT_EQ(sentenceOf([&] { load(package); }),
              "This project was saved by a newer version of Kestrin. Update Kestrin to open it.");
    EXPECT_EQ(changes(before, snapshotOf(folder.path())), "");
}

TEST_F(ProjectPackageFileTest, AnEnormousFileIsAClearError) {
    save(demo(), package);
    fs::resize_file(package / "iOS/Locales/de-DE/description.txt", std::uintmax_t{1} << 30);
    EXPECT_EQ(sentenceOf([&] { load(package); }),
              "“iOS/Locales/de-DE/description.txt” is too large: at most 16777216 bytes are read.");
}

TEST_F(ProjectPackageFileTest, ManyLargeFilesAreAClearErrorToReadAndToWrite) {
    auto project = demo();
    const std::string large(std::size_t{15} << 20, 'x');
    for (const char* locale : {"a", "b"})
        project.setValue(large, ListingField::description, {locale}, StorePlatform::iOS);
    save(project, package);
    for (const auto& entry : snapshotOf(package)) {
        if (entry.first.ends_with("description.txt") && entry.second.content.size() > 100)
            fs::resize_file(package / entry.first, PackageFolder::kMaximumFileSize);
    }
    const auto sentence = "This project is too large: its files may have 33554432 bytes together.";
    EXPECT_EQ(sentenceOf([&] { load(package); }), sentence);

    const auto before = namesIn(folder.path());
    project.setValue(large, ListingField::description, {"c"}, StorePlatform::iOS);
    EXPECT_EQ(sentenceOf([&] { save(project, package); }), sentence);
    EXPECT_EQ(namesIn(folder.path()), before);
    EXPECT_FALSE(fs::exists(package / "iOS/Locales/c"));
}

TEST_F(ProjectPackageFileTest, OpensNeitherMediaNorUnknownFiles) {
    save(demo(), package);
    folder.write("Demo.kestrin/Media/huge.mov", "");
    fs::resize_file(package / "Media/huge.mov", std::uintmax_t{1} << 40);
    ASSERT_EQ(mkfifo((package / "iOS/Locales/de-DE/pipe").c_str(), 0600), 0);
    EXPECT_EQ(load(package), demo());
}

TEST_F(ProjectPackageFileTest, LinksInAPackageAreNotFollowed) {
    save(demo(), package);
    folder.write("outside/description.txt", "secret");
    folder.write("outside/version.json", "{}");
    folder.write("outside/Locales/fr/description.txt", "secret");
    fs::create_directory_symlink("../outside", package / "tvOS");
    fs::create_directory_symlink("../../../outside", package / "iOS/Locales/it");
    fs::create_directory(package / "iOS/Locales/fr");
    fs::create_symlink("../../../../outside/description.txt", package / "iOS/Locales/fr/description.txt");
    EXPECT_EQ(load(package), demo());
}

TEST_F(ProjectPackageFileTest, ALinkIsNoManifestAndNoOlderOneIsLookedForBehindIt) {
    folder.write("outside/Kestrin.json", manifestText());
    folder.write("Demo.kestrin/Marquel.json", manifestText());
    fs::create_symlink("../outside/Kestrin.json", package / "Kestrin.json");
    const auto before = snapshotOf(folder.path());
    EXPECT_EQ(sentenceOf([&] { load(package); }), "This project is missing its Kestrin.json manifest.");
    EXPECT_EQ(changes(before, snapshotOf(folder.path())), "");
}

// Saving a new package

TEST_F(ProjectPackageFileTest, ANewPackageIsAllThatIsMade) {
    save(demo(), package);
    EXPECT_EQ(load(package), demo());
    EXPECT_EQ(namesIn(folder.path()), (Names{"Demo.kestrin"}));
    const PackageFolder onDisk(std::make_unique<DiskFolder>(package));
    EXPECT_EQ(listingOf(onDisk), listingOf(ProjectPackageCodec::write(demo())));
}

TEST_F(ProjectPackageFileTest, ANewPackageHasTheUsualPermissions) {
    const auto mask = umask(027);
    save(demo(), package);
    umask(mask);
    for (const auto& [path, entry] : snapshotOf(package)) {
        EXPECT_EQ(entry.mode, entry.kind == 'd' ? 0750u : 0640u) << path;
    }
}

TEST_F(ProjectPackageFileTest, APathMayEndInSlashesOrBeRelative) {
    save(demo(), package.string() + "//");
    EXPECT_EQ(load(package), demo());
    const auto here = fs::current_path();
    fs::current_path(folder.path());
    save(Project(), "Other.kestrin");
    save(demo(), "./Other.kestrin/");
    EXPECT_EQ(load("Other.kestrin"), demo());
    fs::current_path(package);
    save(Project(), ".");
    fs::current_path(here);
    EXPECT_EQ(load(package), Project());
    EXPECT_EQ(namesIn(folder.path()), (Names{"Demo.kestrin", "Other.kestrin"}));
}

TEST_F(ProjectPackageFileTest, TheFolderAroundItMustBeThere) {
    const auto missing = folder / "missing/Demo.kestrin";
    EXPECT_EQ(sentenceOf([&] { save(demo(), missing); }),
              "Couldn’t write “" + missing.string() + "”: No such file or directory.");
    EXPECT_EQ(namesIn(folder.path()), Names());
}

TEST_F(ProjectPackageFileTest, AFileInTheWayIsNeverReplaced) {
    folder.write("Demo.kestrin", "mine");
    EXPECT_EQ(sentenceOf([&] { save(demo(), package); }),
              "Couldn’t write “" + package.string() + "”: Not a directory.");
    EXPECT_EQ(folder.read("Demo.kestrin"), "mine");

    fs::remove(package);
    fs::create_symlink("nowhere", package);
    EXPECT_EQ(sentenceOf([&] { save(demo(), package); }),
              "Couldn’t write “" + package.string() + "”: No such file or directory.");
    EXPECT_TRUE(fs::is_symlink(package));
    EXPECT_EQ(namesIn(folder.path()), (Names{"Demo.kestrin"}));
}

TEST_F(ProjectPackageFileTest, AnEmptyFolderBecomesThePackage) {
    fs::create_directory(package);
    fs::permissions(package, fs::perms::owner_all);
    save(demo(), package);
    EXPECT_EQ(load(package), demo());
    EXPECT_EQ(fs::status(package).permissions(), fs::perms::owner_all);
}

TEST_F(ProjectPackageFileTest, APackageMayHaveTheLongestName) {
    const auto longest = folder / (std::string(247, 'x') + ".kestrin");
    save(demo(), longest);
    auto changed = demo();
    changed.pages.clear();
    save(changed, longest);
    EXPECT_EQ(load(longest), changed);
    EXPECT_EQ(namesIn(folder.path()).size(), 1u);
}

// Saving over a package

TEST_F(ProjectPackageFileTest, ASaveThatChangesNothingTouchesNothing) {
    save(demo(), package);
    folder.write("Demo.kestrin/notes.md", "mine");
    fs::create_symlink("notes.md", package / "link");
    const auto before = snapshotOf(folder.path());
    save(demo(), package);
    save(load(package), package);
    EXPECT_EQ(changes(before, snapshotOf(folder.path())), "");
}

TEST_F(ProjectPackageFileTest, FilesThatDontChangeKeepTheirIdentity) {
    save(demo(), package);
    folder.write("Demo.kestrin/Media/a.png", "A");
    const auto before = snapshotOf(package);

    auto changed = demo();
    changed.setValue("Changed.", ListingField::description, {"de-DE"}, StorePlatform::iOS);
    save(changed, package);

    const std::string edited = "iOS/Locales/de-DE/description.txt";
    const auto after = snapshotOf(package);
    ASSERT_EQ(after.size(), before.size());
    for (const auto& [path, entry] : after) {
        SCOPED_TRACE(path);
        const auto& old = before.at(path);
        EXPECT_EQ(entry.mode, old.mode);
        if (path == edited) {
            EXPECT_EQ(entry.content, "Changed.\n");
            EXPECT_NE(entry.inode, old.inode);
        } else if (entry.kind == 'f') {
            EXPECT_EQ(entry, old);
        } else if (path != "iOS/Locales/de-DE") {
            EXPECT_EQ(entry.changedAt, old.changedAt) << "a folder none of whose own entries changed";
        }
    }
}

TEST(ProjectPackageFile, TenThousandLocalesAreJustMany) {
    const TemporaryFolder memory(TemporaryFolder::quickPlace());
    const auto large = memory / "Large.kestrin";
    Project project;
    for (int i = 0; i < 10'000; ++i) {
        const StoreLocale locale{"locale-" + std::to_string(i)};
        project.setValue("Foo", ListingField::name, locale, StorePlatform::iOS);
        project.setValue("Foo", ListingField::description, locale, StorePlatform::iOS);
    }
    save(project, large);
    EXPECT_EQ(load(large), project);
    project.setValue("Bar", ListingField::description, {"locale-7"}, StorePlatform::iOS);
    save(project, large);
    EXPECT_EQ(load(large), project);
}

TEST_F(ProjectPackageFileTest, ALinkToAPackageKeepsBeingOne) {
    fs::create_directories(folder / "real");
    const auto real = folder / "real/Demo.kestrin";
    save(demo(), real);
    fs::create_directory_symlink("real/Demo.kestrin", package);
    save(Project(), package);
    EXPECT_TRUE(fs::is_symlink(package));
    EXPECT_EQ(load(real), Project());
    EXPECT_EQ(namesIn(folder.path()), (Names{"Demo.kestrin", "real"}));
    EXPECT_EQ(namesIn(folder / "real"), (Names{"Demo.kestrin"}));
}

TEST_F(ProjectPackageFileTest, NoLinkInAPackageIsWrittenThrough) {
    folder.write("outside/description.txt", "untouched");
    folder.write("outside/fr/listing.json", "untouched");
    save(demo(), package);
    fs::remove(package / "iOS/Locales/de-DE/description.txt");
    fs::create_symlink("../../../../outside/description.txt", package / "iOS/Locales/de-DE/description.txt");
    fs::remove_all(package / "Pages/summer");
    fs::create_directory_symlink("../../outside", package / "Pages/summer");
    fs::create_directory_symlink("../../../outside/fr", package / "iOS/Locales/fr");
    const auto outside = snapshotOf(folder / "outside");

    auto changed = demo();
    changed.setValue("Un.", ListingField::description, {"fr"}, StorePlatform::iOS);
    save(changed, package);
    EXPECT_EQ(load(package), changed);
    EXPECT_EQ(changes(outside, snapshotOf(folder / "outside")), "");
}

TEST_F(ProjectPackageFileTest, NamesThatLeadOutOfThePackageAreRefusedBeforeAnythingIsWritten) {
    save(demo(), package);
    const auto before = snapshotOf(folder.path());
    for (const std::string& name : {""s, "."s, ".."s, "../outside"s, "/etc"s, "a/b"s, "a\0b"s, "\xff"s}) {
        auto changed = demo();
        changed.manifest.app.bundleID = "changed";
        changed.pages[{name}];
        EXPECT_THROW(save(changed, package), PackageNameError) << name;
        EXPECT_THROW(save(changed, folder / "New.kestrin"), PackageNameError) << name;
    }
    EXPECT_EQ(changes(before, snapshotOf(folder.path())), "");
}

TEST_F(ProjectPackageFileTest, ADamagedFileThatIsReplacedNeedNotBeRead) {
    save(demo(), package);
    folder.write("Demo.kestrin/App/info.json", "{ damaged");
    save(demo(), package);
    EXPECT_EQ(load(package), demo());
}

}  // namespace
}  // namespace kestrin
