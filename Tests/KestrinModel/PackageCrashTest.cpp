// A save that ends anywhere, by a kill or by a failure of the file system, leaves the package wholly old or wholly
// new, and the next save clears what was left beside it.
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <functional>

#include "KestrinCore/FileError.h"
#include "KestrinModel/ProjectPackageFile.h"
#include "Tests/Support/DiskSnapshot.h"
#include "Tests/Support/SupervisedProcess.h"
#include "Tests/Support/TemporaryFolder.h"

namespace kestrin {
namespace {

namespace fs = std::filesystem;

Project oldProject() {
    Project project;
    project.manifest.app.bundleID = "old";
    project.setValue("Old", ListingField::description, {"en-US"}, StorePlatform::iOS);
    project.setValue("Old", ListingField::description, {"de-DE"}, StorePlatform::iOS);
    project.platforms[StorePlatform::macOS].locales[{"de-DE"}] =
        LocalizedFields({{ListingField::whatsNew, "Stays"}});
    project.pages[{"old-page"}].promotionalText[{"en-US"}] = "Old";
    return project;
}

Project newProject() {
    auto project = oldProject();
    project.manifest.app.bundleID = "new";
    project.setValue("New", ListingField::description, {"de-DE"}, StorePlatform::iOS);
    project.pages.clear();
    project.pages[{"new-page"}].promotionalText[{"fr-FR"}] = "New";
    return project;
}

using Judge = std::function<Verdict(std::size_t, const std::string&)>;

Judge killedAt(std::size_t point) {
    return [point](std::size_t index, const std::string&) {
        return index == point ? Verdict::kill() : Verdict::proceed();
    };
}

bool isRename(const std::string& call) {
    return call == "renameat2" || call == "rename";
}

class PackageCrash : public testing::Test {
 protected:
    const TemporaryFolder folder{TemporaryFolder::quickPlace()};
    const fs::path package = folder / "Demo.kestrin";

    void startFrom(const Project& project) {
        fs::remove_all(package);
        ProjectPackageFile::save(project, package);
        folder.write("Demo.kestrin/Media/a.png", "unknown");
        old = contentOf(package);
    }

    SupervisedOutcome saveNew(const Judge& judge) {
        return supervise([this] { ProjectPackageFile::save(newProject(), package); }, judge);
    }

    // The package as a whole save of the new project leaves it.
    DiskSnapshot wholeNew() {
        startFrom(oldProject());
        ProjectPackageFile::save(newProject(), package);
        return contentOf(package);
    }

    std::size_t entriesBeside() const {
        return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder.path()), {})) -
               (fs::exists(package) ? 1 : 0);
    }

    DiskSnapshot old;
};

TEST_F(PackageCrash, AKillAtAnyPointLeavesThePackageOldOrNewAndTheNextSaveClearsTheRest) {
    const auto whole = wholeNew();
    std::size_t olds = 0;
    std::size_t news = 0;
    std::size_t leftovers = 0;
    for (std::size_t point = 0;; ++point) {
        SCOPED_TRACE("killed before change " + std::to_string(point));
        startFrom(oldProject());
        const auto outcome = saveNew(killedAt(point));
        EXPECT_EQ(outcome.error, "");
        const auto found = contentOf(package);
        if (found == old) {
            ++olds;
            EXPECT_EQ(ProjectPackageFile::load(package), oldProject());
            EXPECT_EQ(news, 0u) << "what was new once must not be old later";
        } else {
            ++news;
            EXPECT_EQ(changes(whole, found), "");
        }
        leftovers += entriesBeside();

        // The next save changes nothing, and clears all the same.
        ProjectPackageFile::save(ProjectPackageFile::load(package), package);
        EXPECT_EQ(entriesBeside(), 0u);
        EXPECT_EQ(changes(found, contentOf(package)), "");
        if (!outcome.wasKilled) break;
    }
    EXPECT_GT(olds, 20u);
    EXPECT_GT(news, 10u);
    EXPECT_GT(leftovers, 20u);
}

TEST_F(PackageCrash, AKillAtAnyPointOfAFirstSaveLeavesNoPackageOrAWholeOne) {
    std::size_t point = 0;
    for (;; ++point) {
        SCOPED_TRACE("killed before change " + std::to_string(point));
        fs::remove_all(package);
        const auto outcome = saveNew(killedAt(point));
        if (fs::exists(package)) {
            EXPECT_EQ(ProjectPackageFile::load(package), newProject());
        }
        ProjectPackageFile::save(newProject(), package);
        EXPECT_EQ(entriesBeside(), 0u);
        EXPECT_EQ(ProjectPackageFile::load(package), newProject());
        if (!outcome.wasKilled) break;
    }
    EXPECT_GT(point, 20u);
}

TEST_F(PackageCrash, WithoutAnExchangeOfFoldersAKillMayHideThePackageButNotLoseIt) {
    const auto whole = wholeNew();
    std::size_t hidden = 0;
    for (std::size_t point = 0;; ++point) {
        SCOPED_TRACE("killed before change " + std::to_string(point));
        startFrom(oldProject());
        const auto outcome = saveNew([&](std::size_t index, const std::string& call) {
            if (index == point) return Verdict::kill();
            return call == "renameat2" ? Verdict::fail(EINVAL) : Verdict::proceed();
        });
        EXPECT_EQ(outcome.error, "");
        if (!fs::exists(package)) ++hidden;
        const auto project = ProjectPackageFile::load(package);
        EXPECT_TRUE(project == oldProject() || project == newProject());
        EXPECT_EQ(changes(project == oldProject() ? old : whole, contentOf(package)), "");

        ProjectPackageFile::save(project, package);
        EXPECT_EQ(entriesBeside(), 0u);
        if (!outcome.wasKilled) break;
    }
    EXPECT_EQ(hidden, 1u);
}

TEST_F(PackageCrash, AHiddenPackageComesBackForASaveToo) {
    startFrom(oldProject());
    supervise([this] { ProjectPackageFile::save(newProject(), package); },
              [renames = 0](std::size_t, const std::string& call) mutable {
                  if (call == "renameat2") return Verdict::fail(ENOSYS);
                  return call == "rename" && ++renames == 2 ? Verdict::kill() : Verdict::proceed();
              });
    ASSERT_FALSE(fs::exists(package));
    ProjectPackageFile::save(newProject(), package);
    EXPECT_EQ(ProjectPackageFile::load(package), newProject());
    EXPECT_EQ(folder.read("Demo.kestrin/Media/a.png"), "unknown");
    EXPECT_EQ(entriesBeside(), 0u);
}

TEST_F(PackageCrash, AFailureAtAnyPointLeavesThePackageOldOrNew) {
    const auto whole = wholeNew();
    for (const int error : {ENOSPC, EIO, EACCES, EDQUOT, EROFS}) {
        std::size_t failures = 0;
        for (std::size_t point = 0;; ++point) {
            SCOPED_TRACE("change " + std::to_string(point) + " fails: " + std::strerror(error));
            startFrom(oldProject());
            bool failed = false;
            const auto outcome = saveNew([&](std::size_t index, const std::string&) {
                if (index != point) return Verdict::proceed();
                failed = true;
                return Verdict::fail(error);
            });
            if (!failed) break;
            if (!outcome.error.empty()) {
                ++failures;
                EXPECT_EQ(changes(old, contentOf(package)), "") << outcome.error;
                EXPECT_EQ(entriesBeside(), 0u) << outcome.error;
                EXPECT_TRUE(outcome.error.starts_with("Couldn’t write “")) << outcome.error;
                EXPECT_TRUE(outcome.error.ends_with(std::string("”: ") + std::strerror(error) + "."))
                    << outcome.error;
            } else {
                EXPECT_EQ(ProjectPackageFile::load(package), newProject());
            }
            ProjectPackageFile::save(newProject(), package);
            EXPECT_EQ(entriesBeside(), 0u);
            EXPECT_EQ(changes(whole, contentOf(package)), "");
        }
        EXPECT_GT(failures, 20u);
    }
}

TEST_F(PackageCrash, WhenAllChangesFailFromSomePointOnThePackageStaysOldOrNew) {
    // The disk that is full stays full, the cable that is pulled stays pulled: the clearing up fails too.
    const auto whole = wholeNew();
    for (std::size_t point = 0;; ++point) {
        SCOPED_TRACE("all fail from change " + std::to_string(point));
        startFrom(oldProject());
        bool failed = false;
        const auto outcome = saveNew([&](std::size_t index, const std::string&) {
            if (index < point) return Verdict::proceed();
            failed = true;
            return Verdict::fail(EIO);
        });
        if (!failed) break;
        EXPECT_EQ(changes(outcome.error.empty() ? whole : old, contentOf(package)), "");
        ProjectPackageFile::save(newProject(), package);
        EXPECT_EQ(entriesBeside(), 0u);
        EXPECT_EQ(changes(whole, contentOf(package)), "");
    }
}

// The order that makes this hold on a disk, too

TEST_F(PackageCrash, TheStageIsFlushedOnceAfterTheLastChangeAndBeforeTheExchange) {
    startFrom(oldProject());
    const auto calls = saveNew([](std::size_t, const std::string&) { return Verdict::proceed(); }).calls;
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "syncfs"), 1);
    const auto flush = std::find(calls.begin(), calls.end(), "syncfs");
    ASSERT_NE(flush, calls.end());
    ASSERT_GE(std::distance(flush, calls.end()), 3);
    EXPECT_EQ(flush[1], "renameat2") << "nothing changes between the flush and the exchange";
    EXPECT_EQ(flush[2], "fsync") << "the folder around the package, for the exchange";
    EXPECT_EQ(std::count_if(calls.begin(), calls.end(), isRename), 1);
    EXPECT_TRUE(std::all_of(flush + 3, calls.end(), [](const auto& call) { return call == "unlink"; }));
}

TEST_F(PackageCrash, WithoutAFlushOfAllEachNewFileIsFlushed) {
    startFrom(oldProject());
    const auto outcome = saveNew([](std::size_t, const std::string& call) {
        return call == "syncfs" ? Verdict::fail(ENOSYS) : Verdict::proceed();
    });
    EXPECT_EQ(outcome.error, "");
    const auto exchange = std::find_if(outcome.calls.begin(), outcome.calls.end(), isRename);
    const auto written = std::count(outcome.calls.begin(), exchange, "open");
    EXPECT_EQ(written, 4) << "manifest, description, page and promotional text";
    EXPECT_EQ(std::count(outcome.calls.begin(), exchange, "fsync"), written + 1);
    EXPECT_EQ(ProjectPackageFile::load(package), newProject());
}

TEST_F(PackageCrash, ASaveThatChangesNothingMakesNoChangeAtAll) {
    startFrom(oldProject());
    const auto outcome = supervise([this] { ProjectPackageFile::save(oldProject(), package); });
    EXPECT_EQ(outcome.error, "");
    EXPECT_EQ(outcome.calls, std::vector<std::string>());
}

TEST_F(PackageCrash, ALoadMakesNoChangeAtAll) {
    startFrom(oldProject());
    EXPECT_EQ(supervise([this] { ProjectPackageFile::load(package); }).calls, std::vector<std::string>());
    EXPECT_EQ(supervise([this] {
                  try {
                      ProjectPackageFile::load(folder / "Missing.kestrin");
                  } catch (const FileError&) {
                  }
              }).calls,
              std::vector<std::string>());
}

}  // namespace
}  // namespace kestrin
