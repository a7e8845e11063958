// Paths that lead to no package, and folders that look like one at first sight.
#include <gtest/gtest.h>

#include "KestrinCore/FileError.h"
#include "KestrinModel/ProjectFormatError.h"
#include "KestrinModel/ProjectPackageFile.h"
#include "Tests/Support/DiskSnapshot.h"
#include "Tests/Support/PackageTrees.h"
#include "Tests/Support/TemporaryFolder.h"

namespace kestrin {
namespace {

namespace fs = std::filesystem;

template <class Failure>
auto failureOfLoad(const fs::path& package) -> std::optional<Failure> {
    try {
        ProjectPackageFile::load(package);
    } catch (const Failure& failure) {
        return failure;
    }
    return std::nullopt;
}

TEST(ProjectPackageRefusal, TakesALinkForNoManifestAndLooksForNoOlderOneBehindIt) {
    const TemporaryFolder folder;
    folder.write("elsewhere.json", manifestText());
    folder.write("P.kestrin/Marquel.json", manifestText());
    fs::create_symlink(folder / "elsewhere.json", folder / "P.kestrin/Kestrin.json");
    const auto before = snapshotOf(folder.path());

    const auto error = failureOfLoad<ProjectFormatError>(folder / "P.kestrin");

    ASSERT_TRUE(error);
    EXPECT_EQ(error->kind, ProjectFormatError::Kind(ProjectFormatError::MissingManifest{}));
    EXPECT_EQ(snapshotOf(folder.path()), before);
}

TEST(ProjectPackageRefusal, CallsAFileNoPackage) {
    const TemporaryFolder folder;
    folder.write("P.kestrin", manifestText());

    const auto error = failureOfLoad<ProjectFormatError>(folder / "P.kestrin");

    ASSERT_TRUE(error);
    EXPECT_EQ(error->kind, ProjectFormatError::Kind(ProjectFormatError::NotAPackage{}));
}

TEST(ProjectPackageRefusal, SaysOfAPathThatIsNotThereWhatTheFileSystemSays) {
    const TemporaryFolder folder;
    folder.write("file", "");

    const auto missing = failureOfLoad<FileError>(folder / "P.kestrin");
    ASSERT_TRUE(missing);
    EXPECT_EQ(missing->reason, std::errc::no_such_file_or_directory);
    const auto behindAFile = failureOfLoad<FileError>(folder / "file/P.kestrin");
    ASSERT_TRUE(behindAFile);
    EXPECT_EQ(behindAFile->reason, std::errc::not_a_directory);
}

}  // namespace
}  // namespace kestrin
