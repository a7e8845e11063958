// Whole packages before and after a load and a save, as folders in data/.
#include <gtest/gtest.h>

#include "KestrinModel/ProjectPackageFile.h"
#include "Tests/Support/DiskSnapshot.h"
#include "Tests/Support/TemporaryFolder.h"

namespace kestrin {
namespace {

namespace fs = std::filesystem;

const fs::path kData = fs::path(KESTRIN_SOURCE_DIR) / "Tests/KestrinModel/data";

class ProjectPackagePair : public testing::TestWithParam<const char*> {};

TEST_P(ProjectPackagePair, IsAfterALoadAndASaveWhatItShouldBeAndStaysSo) {
    const TemporaryFolder folder;
    const auto package = folder / "Demo.kestrin";
    fs::copy(kData / (std::string(GetParam()) + ".in"), package, fs::copy_options::recursive);

    const auto project = ProjectPackageFile::load(package);
    ProjectPackageFile::save(project, package);
    EXPECT_EQ(filesOf(package), filesOf(kData / (std::string(GetParam()) + ".out")));
    EXPECT_EQ(ProjectPackageFile::load(package), project);

    const auto once = snapshotOf(folder.path());
    ProjectPackageFile::save(project, package);
    EXPECT_EQ(changes(once, snapshotOf(folder.path())), "");
}

TEST(ProjectPackageGolden, APackageAsASaveLeavesItIsNotTouched) {
    const TemporaryFolder folder;
    const auto package = folder / "Demo.kestrin";
    fs::copy(kData / "current.in", package, fs::copy_options::recursive);
    const auto before = snapshotOf(folder.path());
    ProjectPackageFile::save(ProjectPackageFile::load(package), package);
    EXPECT_EQ(changes(before, snapshotOf(folder.path())), "");
}

INSTANTIATE_TEST_SUITE_P(Packages, ProjectPackagePair, testing::Values("legacy", "current"),
                         [](const auto& name) { return std::string(name.param); });

}  // namespace
}  // namespace kestrin
