// How a package is replaced: what is handed on where, and what becomes of stages that are left over.
#include "KestrinModel/PackageStage.h"

#include <fcntl.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/file.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <system_error>

#include "KestrinModel/ProjectPackageFile.h"
#include "Tests/Support/DiskSnapshot.h"
#include "Tests/Support/SupervisedProcess.h"
#include "Tests/Support/TemporaryFolder.h"

namespace kestrin {
namespace {

namespace fs = std::filesystem;
using Names = std::vector<std::string>;

const char* const kUUID = "0F9C1B2A-3D4E-4F50-8A6B-7C8D9E0F1A2B";

Project project(const std::string& text = "Text") {
    Project made;
    made.setValue(text, ListingField::description, {"de-DE"}, StorePlatform::iOS);
    return made;
}

class PackageStageTest : public testing::Test {
 protected:
    PackageStageTest() { ProjectPackageFile::save(project(), package); }

    void saveUnchanged() const { ProjectPackageFile::save(ProjectPackageFile::load(package), package); }
    void saveChanged() const { ProjectPackageFile::save(project("Changed"), package); }

    // The same where the file system refuses a kind of change.
    SupervisedOutcome saveWithout(const std::string& call, int error) const {
        return supervise([this] { saveChanged(); },
                         [&](std::size_t, const std::string& name) {
                             return name == call ? Verdict::fail(error) : Verdict::proceed();
                         });
    }

    Names beside() const {
        Names names;
        for (const auto& entry : fs::directory_iterator(folder.path())) {
            if (entry.path() != package) names.push_back(entry.path().filename());
        }
        std::sort(names.begin(), names.end());
        return names;
    }

    std::string stageName(const std::string& id = kUUID) const { return ".Demo.kestrin.kestrin-stage-" + id; }

    const TemporaryFolder folder;
    const fs::path package = folder / "Demo.kestrin";
};

// Where files can't be linked

TEST_F(PackageStageTest, WhatCantBeLinkedIsCopiedWithAllThatIsKnownOfIt) {
    folder.write("Demo.kestrin/Media/large.mov", std::string(700'000, 'x') + "end");
    folder.write("Demo.kestrin/script", "#!/bin/sh\n");
    ASSERT_EQ(chmod((package / "script").c_str(), 0751), 0);
    fs::create_symlink("../nowhere/at all", package / "link");
    ASSERT_EQ(mkfifo((package / "pipe").c_str(), 0640), 0);
    const std::array<timespec, 2> longAgo = {timespec{1'000'000, 5}, timespec{2'000'000, 7}};
    for (const char* name : {"script", "link", "Media/large.mov"}) {
        ASSERT_EQ(utimensat(AT_FDCWD, (package / name).c_str(), longAgo.data(), AT_SYMLINK_NOFOLLOW), 0);
    }
    const bool hasAttributes = setxattr((package / "script").c_str(), "user.origin", "here", 4, 0) == 0;

    for (const int error : {EPERM, EXDEV, EMLINK, EOPNOTSUPP}) {
        SCOPED_TRACE(std::strerror(error));
        const auto before = snapshotOf(package);
        EXPECT_EQ(saveWithout("link", error).error, "");
        const auto now = snapshotOf(package);
        ASSERT_EQ(now.size(), before.size());
        for (const auto& [path, old] : before) {
            if (path == "iOS/Locales/de-DE/description.txt" || old.kind == 'd') continue;
            const auto& entry = now.at(path);
            EXPECT_NE(entry.inode, old.inode) << path;
            EXPECT_EQ(entry.kind, old.kind) << path;
            EXPECT_EQ(entry.content, old.content) << path;
            EXPECT_EQ(entry.mode, old.mode) << path;
            if (old.kind != 'o') {
                EXPECT_EQ(entry.changedAt, old.changedAt) << path;
            }
        }
        std::array<char, 8> value{};
        EXPECT_EQ(getxattr((package / "script").c_str(), "user.origin", value.data(), value.size()),
                  hasAttributes ? 4 : -1);
        for (const char* name : {"link", "Media/large.mov"}) {
            EXPECT_EQ(now.at(name).changedAt, 2'000'000'000'000'007) << name;
        }
        ProjectPackageFile::save(project(), package);
    }
}

TEST_F(PackageStageTest, ACopyThatFindsNoRoomNamesItsFileAndLeavesThePackage) {
    folder.write("Demo.kestrin/Media/large.mov", std::string(700'000, 'x'));
    const auto before = snapshotOf(package);
    std::size_t writes = 0;
    const auto outcome =
        supervise([this] { saveChanged(); },
                  [&](std::size_t, const std::string& name) {
                      if (name == "link") return Verdict::fail(EXDEV);
                      // The files of the project before it are small: one write each.
                      return name == "write" && ++writes == 6 ? Verdict::fail(ENOSPC) : Verdict::proceed();
                  });
    EXPECT_EQ(outcome.error, "Couldn’t write “Media/large.mov”: No space left on device.");
    EXPECT_EQ(changes(before, snapshotOf(package)), "");
    EXPECT_EQ(beside(), Names());
}

TEST_F(PackageStageTest, OtherRefusalsToLinkAreErrors) {
    const auto before = snapshotOf(package);
    EXPECT_EQ(saveWithout("link", ENOSPC).error, "Couldn’t write “.gitattributes”: No space left on device.");
    EXPECT_EQ(changes(before, snapshotOf(package)), "");
    EXPECT_EQ(beside(), Names());
}

TEST_F(PackageStageTest, AttributesOfFoldersAndOfReplacedFilesAreHandedOn) {
    const auto text = package / "iOS/Locales/de-DE/description.txt";
    const bool hasAttributes = setxattr(text.c_str(), "user.origin", "file", 4, 0) == 0 &&
                               setxattr((package / "iOS").c_str(), "user.origin", "dir", 3, 0) == 0;
    ASSERT_EQ(chmod(text.c_str(), 0640), 0);
    saveChanged();
    std::array<char, 8> value{};
    EXPECT_EQ(getxattr(text.c_str(), "user.origin", value.data(), value.size()), hasAttributes ? 4 : -1);
    EXPECT_EQ(getxattr((package / "iOS").c_str(), "user.origin", value.data(), value.size()),
              hasAttributes ? 3 : -1);
    EXPECT_EQ(snapshotOf(package).at("iOS/Locales/de-DE/description.txt").mode, 0640u);
}

// Stages of runs that were killed

TEST_F(PackageStageTest, AStageThatNobodyHoldsIsSweptByASaveThatChangesNothing) {
    folder.write(stageName() + "/App/info.json", "{}");
    folder.write(".Demo.kestrin.kestrin-old-" + std::string(kUUID) + "/Kestrin.json", "{}");
    const auto before = snapshotOf(package);
    saveUnchanged();
    EXPECT_EQ(beside(), Names());
    EXPECT_EQ(changes(before, snapshotOf(package)), "");
}

TEST_F(PackageStageTest, AStageOfARunningSaveIsLeftAlone) {
    folder.write(stageName() + "/App/info.json", "{}");
    const files::Descriptor stage(open((folder / stageName()).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    ASSERT_EQ(flock(stage.number(), LOCK_EX | LOCK_NB), 0);
    saveChanged();
    EXPECT_EQ(beside(), (Names{stageName()}));
    ASSERT_EQ(flock(stage.number(), LOCK_UN), 0);
    saveUnchanged();
    EXPECT_EQ(beside(), Names());
}

TEST_F(PackageStageTest, ARunningSaveHoldsItsStage) {
    std::size_t held = 0;
    supervise([this] { saveChanged(); },
              [&](std::size_t, const std::string& call) {
                  if (call != "link") return Verdict::proceed();
                  const auto names = beside();
                  const auto path = folder / names.at(0);
                  const files::Descriptor stage(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
                  if (flock(stage.number(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) ++held;
                  return Verdict::proceed();
              });
    EXPECT_GT(held, 3u);
    EXPECT_EQ(beside(), Names());
}

TEST_F(PackageStageTest, OnlyFoldersOfExactlyThatNameAreSwept) {
    const std::string own[] = {
        stageName("not-a-uuid"),
        stageName("0f9c1b2a-3d4e-4f50-8a6b-7c8d9e0f1a2b"),  // lower case: not a name of ours
        stageName() + "x",
        "x" + stageName(),
        ".Other.kestrin.kestrin-stage-" + std::string(kUUID),
        ".Demo.kestrin.kestrin-stages-" + std::string(kUUID),
        "Demo.kestrin.kestrin-stage-" + std::string(kUUID),
    };
    for (const auto& name : own) folder.write(name + "/x", "mine");
    folder.write(stageName("11111111-1111-4111-8111-111111111111"), "a file");
    folder.write("mine/x", "mine");
    fs::create_directory_symlink("mine", folder / stageName("22222222-2222-4222-8222-222222222222"));
    const auto before = snapshotOf(folder.path());
    saveUnchanged();
    EXPECT_EQ(changes(before, snapshotOf(folder.path())), "");
}

TEST_F(PackageStageTest, ASweepTakesLinksAwayButNotWhatTheyLeadTo) {
    folder.write("mine/x", "mine");
    folder.write(stageName() + "/a/b", "");
    fs::create_directory_symlink(folder / "mine", folder / (stageName() + "/a/link"));
    fs::create_symlink(folder / "mine/x", folder / (stageName() + "/x"));
    saveUnchanged();
    EXPECT_EQ(beside(), (Names{"mine"}));
    EXPECT_EQ(folder.read("mine/x"), "mine");
}

TEST_F(PackageStageTest, AFirstSaveSweepsToo) {
    fs::remove_all(package);
    folder.write(stageName() + "/x", "");
    saveChanged();
    EXPECT_EQ(beside(), Names());
}

// Without privileges

// Root may do anything; what follows is about those who may not.
void giveUpPrivileges() {
    if (geteuid() != 0) return;
    const gid_t nobody = 65534;
    if (setgroups(0, nullptr) != 0 || setegid(nobody) != 0 || seteuid(nobody) != 0) {
        throw std::system_error(errno, std::generic_category(), "giving up privileges");
    }
}

std::string saveWithoutPrivileges(const fs::path& package) {
    return errorInOwnProcess([&] {
        giveUpPrivileges();
        ProjectPackageFile::save(project("Changed"), package);
    });
}

class PackageOfSomebody : public PackageStageTest {
 protected:
    // Everything is the unprivileged user's.
    PackageOfSomebody() {
        if (geteuid() != 0) return;
        for (const auto& entry : fs::recursive_directory_iterator(folder.path())) give(entry.path());
        give(folder.path());
    }
    static void give(const fs::path& path) {
        if (lchown(path.c_str(), 65534, 65534) != 0)
            throw std::system_error(errno, std::generic_category(), path);
    }
    void setMode(const fs::path& path, mode_t mode) const { ASSERT_EQ(chmod(path.c_str(), mode), 0); }

    void expectRefused(const std::string& sentence) const {
        const auto before = snapshotOf(folder.path());
        EXPECT_EQ(saveWithoutPrivileges(package), sentence);
        auto after = snapshotOf(folder.path());
        after["."].changedAt = before.at(".").changedAt;  // a stage may have come and gone
        EXPECT_EQ(changes(before, after), "");
    }
};

TEST_F(PackageOfSomebody, IsTheirsToSave) {
    EXPECT_EQ(saveWithoutPrivileges(package), "");
    EXPECT_EQ(ProjectPackageFile::load(package), project("Changed"));
    EXPECT_EQ(beside(), Names());
}

TEST_F(PackageOfSomebody, AFolderAroundItThatCantBeWrittenToIsAClearError) {
    setMode(folder.path(), 0555);
    expectRefused("Couldn’t write “" + package.string() + "”: Permission denied.");
    setMode(folder.path(), 0755);
}

TEST_F(PackageOfSomebody, AFolderInItThatCantBeWrittenToIsNotChanged) {
    setMode(package / "iOS/Locales/de-DE", 0555);
    expectRefused("Couldn’t write “iOS/Locales/de-DE”: Permission denied.");
    setMode(package / "iOS/Locales/de-DE", 0755);
}

TEST_F(PackageOfSomebody, FoldersWithoutWritePermissionMayStandWhereNothingChanges) {
    setMode(package, 0555);
    setMode(package / "App", 0555);
    setMode(package / "App/Locales", 0555);
    EXPECT_EQ(saveWithoutPrivileges(package), "");
    EXPECT_EQ(ProjectPackageFile::load(package), project("Changed"));
    EXPECT_EQ(snapshotOf(package).at("App").mode, 0555u);
    EXPECT_EQ(snapshotOf(package).at(".").mode, 0555u);
    EXPECT_EQ(beside(), Names()) << "the old tree is gone for all its permissions";
    for (const char* path : {".", "App", "App/Locales"}) setMode(package / path, 0755);
}

TEST_F(PackageOfSomebody, AnUnknownFolderThatCantBeReadIsAClearError) {
    folder.write("Demo.kestrin/private/x", "");
    give(package / "private");
    setMode(package / "private", 0000);
    expectRefused("Couldn’t list the folder “private”: Permission denied.");
    setMode(package / "private", 0700);
}

TEST_F(PackageOfSomebody, AnUnknownFileThatCantBeReadSurvives) {
    folder.write("Demo.kestrin/private.txt", "secret");
    give(package / "private.txt");
    setMode(package / "private.txt", 0000);
    EXPECT_EQ(saveWithoutPrivileges(package), "");
    EXPECT_EQ(snapshotOf(package).at("private.txt").mode, 0u);
    setMode(package / "private.txt", 0600);
    EXPECT_EQ(folder.read("Demo.kestrin/private.txt"), "secret");
}

TEST_F(PackageOfSomebody, AKnownFileThatCantBeReadIsAClearError) {
    setMode(package / "App/info.json", 0000);
    const auto error = errorInOwnProcess([&] {
        giveUpPrivileges();
        ProjectPackageFile::load(package);
    });
    EXPECT_EQ(error, "Couldn’t read “App/info.json”: Permission denied.");
    expectRefused("Couldn’t read “App/info.json”: Permission denied.");
}

// Full disks

TEST_F(PackageStageTest, AFileThatMayNotGrowIsAClearError) {
    const auto before = snapshotOf(package);
    const auto error = errorInOwnProcess([&] {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{100, 100};
        setrlimit(RLIMIT_FSIZE, &limit);
        ProjectPackageFile::save(project(std::string(1000, 'x')), package);
    });
    EXPECT_EQ(error, "Couldn’t write “iOS/Locales/de-DE/description.txt”: File too large.");
    EXPECT_EQ(changes(before, snapshotOf(package)), "");
    EXPECT_EQ(beside(), Names());
}

// Saves on a file system of 256 KB, until one fails. "" when this user may not mount one here.
std::string errorOnAFullDisk(const fs::path& place) {
    return errorInOwnProcess([&] {
        if (unshare(CLONE_NEWNS) != 0 || mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
            mount("tmpfs", place.c_str(), "tmpfs", 0, "size=256k") != 0) {
            return;
        }
        const auto package = place / "Demo.kestrin";
        ProjectPackageFile::save(project(), package);
        const auto before = snapshotOf(package);
        try {
            ProjectPackageFile::save(project(std::string(300'000, 'x')), package);
        } catch (const FileError& error) {
            const auto difference = changes(before, snapshotOf(package));
            if (!difference.empty()) throw std::runtime_error("The package changed: " + difference);
            if (std::distance(fs::directory_iterator(place), {}) != 1)
                throw std::runtime_error("A stage is left.");
            ProjectPackageFile::save(project("Small"), package);
            if (ProjectPackageFile::load(package) != project("Small")) throw std::runtime_error("No way on.");
            throw;
        }
        throw std::runtime_error("The disk was large enough.");
    });
}

TEST_F(PackageStageTest, AFullDiskIsAClearErrorAndLeavesThePackage) {
    fs::create_directory(folder / "disk");
    auto error = errorOnAFullDisk(folder / "disk");
    if (error.empty()) {  // without the right to mount one, the disk is full by decree
        const auto before = snapshotOf(package);
        error = saveWithout("write", ENOSPC).error;
        EXPECT_EQ(changes(before, snapshotOf(package)), "");
    }
    EXPECT_EQ(error, "Couldn’t write “iOS/Locales/de-DE/description.txt”: No space left on device.");
}

}  // namespace
}  // namespace kestrin
