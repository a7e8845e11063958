#include "KestrinModel/PackageFolder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "KestrinCore/FileError.h"
#include "KestrinModel/PackageTooLargeError.h"
#include "Tests/Support/PackageTrees.h"
#include "Tests/Support/TemporaryFolder.h"

namespace kestrin {
namespace {

using Names = std::vector<std::string>;

constexpr const char* kComposed = "caf\u00E9";
constexpr const char* kDecomposed = "cafe\u0301";
constexpr const char* kNotUTF8 = "caf\xE9";

PackageFolder on(const TemporaryFolder& folder) {
    return PackageFolder(std::make_unique<DiskFolder>(folder.path()));
}

// In memory

TEST(PackageFolder, SettingTheBytesThatAreThereChangesNothing) {
    const TemporaryFolder disk;
    disk.write("a.txt", "a");
    auto folder = on(disk);
    folder.setFile("a.txt", "a");
    EXPECT_FALSE(folder.isChanged());
    folder.setFile("a.txt", "b");
    EXPECT_TRUE(folder.isChanged());
    EXPECT_EQ(folder.contents("a.txt"), "b");
    EXPECT_EQ(disk.read("a.txt"), "a") << "changes stay in memory";
}

TEST(PackageFolder, BytesOfTheSameLengthAreComparedToTheLast) {
    const TemporaryFolder disk;
    disk.write("a.txt", std::string(70000, 'x') + "a");
    auto folder = on(disk);
    folder.setFile("a.txt", std::string(70000, 'x') + "b");
    EXPECT_TRUE(folder.isChanged());
}

TEST(PackageFolder, AFileTakesThePlaceOfWhateverHasItsName) {
    auto folder = treeOf({{"a/b", "x"}});
    folder.setFile("a", "y");
    EXPECT_EQ(listingOf(folder), (Listing{{"a", "y"}}));
}

TEST(PackageFolder, AFolderTakesThePlaceOfAFileButNotOfAFolder) {
    auto folder = treeOf({{"a", "x"}, {"b/c", "y"}});
    folder.directory("a").setFile("new", "z");
    folder.directory("b");
    EXPECT_EQ(listingOf(folder), (Listing{{"a/new", "z"}, {"b/c", "y"}}));
}

TEST(PackageFolder, RemovingWhatIsntThereChangesNothing) {
    const TemporaryFolder disk;
    auto folder = on(disk);
    folder.remove("a");
    folder.removeAll([](const std::string&) { return true; });
    EXPECT_FALSE(folder.isChanged());
}

TEST(PackageFolder, AChangeAnywhereBelowIsAChange) {
    const TemporaryFolder disk;
    disk.write("a/b/c.txt", "x");
    auto folder = on(disk);
    folder.folder("a")->folder("b")->setFile("c.txt", "y");
    EXPECT_TRUE(folder.isChanged());
    EXPECT_FALSE(folder.hasChangedEntries());
    EXPECT_FALSE(folder.folder("a")->hasChangedEntries());
    EXPECT_TRUE(folder.folder("a")->folder("b")->hasChangedEntries());
}

TEST(PackageFolder, PathsAreRelativeToThePackage) {
    auto folder = treeOf({{"a/b/c", ""}});
    EXPECT_EQ(folder.pathOf("a"), "a");
    EXPECT_EQ(folder.folder("a")->folder("b")->pathOf("c"), "a/b/c");
    EXPECT_EQ(folder.directory("x").directory("y").pathOf("z"), "x/y/z");
}

// Names

TEST(PackageFolder, FindsANameInEitherSpelling) {
    const TemporaryFolder disk;
    disk.write(std::string(kDecomposed) + "/x", "1");
    auto folder = on(disk);
    ASSERT_NE(folder.folder(kComposed), nullptr);
    EXPECT_EQ(folder.folder(kComposed)->contents("x"), "1");
    EXPECT_EQ(&folder.directory(kComposed), folder.folder(kDecomposed));
    EXPECT_FALSE(folder.isChanged());
}

TEST(PackageFolder, WhatIsReplacedKeepsItsSpellingOnDisk) {
    const TemporaryFolder disk;
    disk.write(kDecomposed, "1");
    auto folder = on(disk);
    folder.setFile(kComposed, "2");
    EXPECT_EQ(listingOf(folder), (Listing{{kDecomposed, "2"}}));
}

TEST(PackageFolder, OfTwoSpellingsTheComposedOneIsMeant) {
    const TemporaryFolder disk;
    disk.write(kDecomposed, "decomposed");
    disk.write(kComposed, "composed");
    auto folder = on(disk);
    EXPECT_EQ(folder.fileNames(), (Names{kComposed}));
    EXPECT_EQ(folder.contents(kDecomposed), "composed");
    EXPECT_EQ(folder.children().size(), 2u) << "the other is still there";
    folder.setFile(kDecomposed, "new");
    EXPECT_TRUE(std::holds_alternative<PackageFolder::OnDisk>(folder.children().at(kDecomposed)));
}

TEST(PackageFolder, OfTwoUnusualSpellingsTheFirstInByteOrderIsMeant) {
    // U+1E69 is s with dot below and dot above; both of these are other ways to write it.
    const std::string first = "s\u0307\u0323";
    const std::string second = "\u1E61\u0323";
    ASSERT_LT(first, second);
    const TemporaryFolder disk;
    disk.write(second, "second");
    disk.write(first, "first");
    EXPECT_EQ(on(disk).fileNames(), (Names{first}));
    EXPECT_EQ(on(disk).contents("\u1E69"), "first");
}

TEST(PackageFolder, TakingAKindAwayTakesEverySpelling) {
    const TemporaryFolder disk;
    disk.write(std::string(kDecomposed) + "/x", "");
    disk.write(std::string(kComposed) + "/x", "");
    disk.write("stays/x", "");
    auto folder = on(disk);
    folder.removeFolders([](const std::string& name, const PackageFolder&) { return name != "stays"; });
    EXPECT_EQ(listingOf(folder), (Listing{{"stays/x", ""}}));
}

TEST(PackageFolder, ANameThatIsntUTF8IsFoundOnlyUnderItsBytes) {
    const TemporaryFolder disk;
    disk.write(kNotUTF8, "raw");
    auto folder = on(disk);
    EXPECT_FALSE(folder.contains("caf\uFFFD"));
    EXPECT_EQ(folder.contents(kNotUTF8), "raw");
    EXPECT_EQ(folder.fileNames(), (Names{kNotUTF8}));
    folder.setFile("caf\uFFFD", "repaired");
    EXPECT_EQ(folder.contents(kNotUTF8), "raw");
    EXPECT_EQ(folder.contents("caf\uFFFD"), "repaired");
}

TEST(PackageFolder, NamesAreInTheOrderOfText) {
    auto folder = treeOf({{"b", ""}, {"é", ""}, {"e\u0301a", ""}, {"f", ""}, {"B", ""}, {"folder/", ""}});
    EXPECT_EQ(folder.fileNames(), (Names{"B", "b", "f", "é", "e\u0301a"}));
    EXPECT_EQ(folder.folderNames(), (Names{"folder"}));
}

// Links and special files

TEST(PackageFolder, ALinkIsNeitherAFileNorAFolder) {
    const TemporaryFolder disk;
    disk.write("outside/secret.txt", "secret");
    disk.write("package/x", "");
    std::filesystem::create_symlink("../outside/secret.txt", disk / "package/file");
    std::filesystem::create_symlink("../outside", disk / "package/folder");
    PackageFolder folder(std::make_unique<DiskFolder>(disk / "package"));

    for (const char* name : {"file", "folder"}) {
        SCOPED_TRACE(name);
        EXPECT_FALSE(folder.contains(name));
        EXPECT_FALSE(folder.hasFile(name));
        EXPECT_TRUE(folder.containsAny(name));
        EXPECT_EQ(folder.contents(name), std::nullopt);
        EXPECT_EQ(folder.folder(name), nullptr);
        folder.remove(name);
    }
    folder.removeAll([](const std::string& name) { return name != "x"; });
    EXPECT_FALSE(folder.isChanged()) << "no removal takes a link away";
    EXPECT_EQ(folder.fileNames(), (Names{"x"}));
    EXPECT_EQ(folder.folderNames(), Names());
}

TEST(PackageFolder, ALinkMakesWayForAFileOrFolderOfItsName) {
    const TemporaryFolder disk;
    disk.write("outside/a.txt", "untouched");
    std::filesystem::create_directory(disk / "package");
    std::filesystem::create_symlink("../outside/a.txt", disk / "package/a");
    std::filesystem::create_symlink("../outside", disk / "package/b");
    PackageFolder folder(std::make_unique<DiskFolder>(disk / "package"));
    folder.setFile("a", "untouched");
    folder.directory("b").setFile("a.txt", "new");
    EXPECT_EQ(listingOf(folder), (Listing{{"a", "untouched"}, {"b/a.txt", "new"}}));
    EXPECT_TRUE(folder.hasChangedEntries()) << "the link's target isn't what is compared";
}

TEST(PackageFolder, ANamedPipeIsNotOpened) {
    const TemporaryFolder disk;
    ASSERT_EQ(mkfifo((disk / "pipe").c_str(), 0600), 0);
    const auto folder = on(disk);
    EXPECT_EQ(folder.contents("pipe"), std::nullopt);
    EXPECT_FALSE(folder.contains("pipe"));
}

// Reading no more than asked

TEST(PackageFolder, ListsAFolderOnlyWhenItIsLookedInto) {
    const TemporaryFolder disk;
    disk.write("media/x", "");
    const auto folder = on(disk);
    EXPECT_EQ(folder.folderNames(), (Names{"media"}));
    disk.write("media/y", "");
    EXPECT_EQ(folder.folder("media")->fileNames(), (Names{"x", "y"}));
}

TEST(PackageFolder, KeepsOneRoadOpenHoweverManyFoldersThereAre) {
    const TemporaryFolder disk;
    for (int i = 0; i < 200; ++i) disk.write("folder" + std::to_string(i) + "/deep/x", "x");
    const auto folder = on(disk);
    const auto openFiles = [] {
        const std::filesystem::directory_iterator all("/proc/self/fd");
        return std::distance(all, {});
    };
    const auto before = openFiles();
    for (const auto& name : folder.folderNames()) {
        ASSERT_EQ(folder.folder(name)->folder("deep")->contents("x"), "x");
        ASSERT_LE(openFiles(), before + 2);
    }
    for (const auto& name : folder.folderNames()) {
        ASSERT_EQ(folder.folder(name)->folder("deep")->contents("x"), "x") << "again, after it was closed";
    }
}

TEST(PackageFolder, RefusesAFileAboveTheLimitByItsPathInThePackage) {
    const TemporaryFolder disk;
    disk.write("a/huge.txt", "");
    std::filesystem::resize_file(disk / "a/huge.txt", std::uintmax_t{1} << 30);
    disk.write("a/largest.txt", "");
    std::filesystem::resize_file(disk / "a/largest.txt", PackageFolder::kMaximumFileSize);
    const auto folder = on(disk);
    EXPECT_EQ(folder.folder("a")->contents("largest.txt")->size(), PackageFolder::kMaximumFileSize);
    try {
        folder.folder("a")->contents("huge.txt");
        FAIL() << "read";
    } catch (const FileTooLargeError& error) {
        EXPECT_EQ(error.errorDescription(), "“a/huge.txt” is too large: at most 16777216 bytes are read.");
    }
}

TEST(PackageFolder, WritesNothingThatCouldntBeReadAgain) {
    PackageFolder largest;
    largest.setFile("x", std::string(PackageFolder::kMaximumFileSize, 'x'));
    EXPECT_TRUE(largest.hasFile("x"));

    PackageFolder folder;
    EXPECT_THROW(folder.setFile("x", std::string(PackageFolder::kMaximumFileSize + 1, 'x')),
                 FileTooLargeError);
    EXPECT_TRUE(folder.isEmpty());
}

TEST(PackageFolder, RefusesMoreThanTheLimitOfAllFilesTogether) {
    const TemporaryFolder disk;
    for (int i = 0; i < 3; ++i) {
        const auto name = "folder" + std::to_string(i) + "/x";
        disk.write(name, "");
        std::filesystem::resize_file(disk / name, PackageFolder::kMaximumFileSize);
    }
    const auto folder = on(disk);
    for (const char* name : {"folder0", "folder1"}) EXPECT_TRUE(folder.folder(name)->contents("x"));
    try {
        folder.folder("folder2")->contents("x");
        FAIL() << "read";
    } catch (const PackageTooLargeError& error) {
        EXPECT_EQ(error.errorDescription(),
                  "This project is too large: its files may have 33554432 bytes together.");
    }
    EXPECT_TRUE(on(disk).folder("folder2")->contents("x")) << "each opening of a package counts for itself";
}

TEST(PackageFolder, WritesNoMoreTogetherThanCouldBeReadAgain) {
    PackageFolder folder;
    const std::string largest(PackageFolder::kMaximumFileSize, 'x');
    folder.directory("a").setFile("x", largest);
    folder.setFile("x", largest);
    EXPECT_THROW(folder.directory("b").setFile("x", "x"), PackageTooLargeError);
}

TEST(PackageFolder, FilesThatNobodyAsksForMayHoldMore) {
    const TemporaryFolder disk;
    disk.write("media.mov", "");
    std::filesystem::resize_file(disk / "media.mov", std::uintmax_t{1} << 40);
    auto folder = on(disk);
    folder.addFile("other.mov", disk / "media.mov");
    EXPECT_TRUE(folder.hasFile("other.mov"));
}

TEST(PackageFolder, AHugeFileOfAnotherSizeIsReplacedWithoutBeingRead) {
    const TemporaryFolder disk;
    disk.write("huge.txt", "");
    std::filesystem::resize_file(disk / "huge.txt", std::uintmax_t{1} << 40);
    auto folder = on(disk);
    folder.setFile("huge.txt", "small");
    EXPECT_EQ(folder.contents("huge.txt"), "small");
}

// Files from elsewhere

TEST(PackageFolder, AnAddedFileIsTheSourcesContent) {
    const TemporaryFolder disk;
    disk.write("source.png", "new");
    PackageFolder folder;
    folder.addFile("a.png", disk / "source.png");
    EXPECT_EQ(folder.contents("a.png"), "new");
}

TEST(PackageFolder, AFileOfTheSameSizeIsLeftAlone) {
    const TemporaryFolder disk;
    disk.write("source.png", "new");
    disk.write("package/same.png", "old");
    disk.write("package/other.png", "older");
    disk.write("package/folder.png/x", "old");
    PackageFolder folder(std::make_unique<DiskFolder>(disk / "package"));
    folder.addFile("same.png", disk / "source.png");
    EXPECT_FALSE(folder.isChanged());
    folder.addFile("other.png", disk / "source.png");
    folder.addFile("folder.png", disk / "source.png");
    EXPECT_EQ(listingOf(folder), (Listing{{"same.png", "old"}, {"other.png", "new"}, {"folder.png", "new"}}));
}

TEST(PackageFolder, ASourceThatCantBeReadIsRefused) {
    const TemporaryFolder disk;
    PackageFolder folder;
    EXPECT_THROW(folder.addFile("x", disk / "missing"), FileError);
    EXPECT_THROW(folder.addFile("x", disk.path()), FileError);
    ASSERT_EQ(mkfifo((disk / "pipe").c_str(), 0600), 0);
    EXPECT_THROW(folder.addFile("x", disk / "pipe"), FileError);
    EXPECT_TRUE(folder.isEmpty());
}

}  // namespace
}  // namespace kestrin
