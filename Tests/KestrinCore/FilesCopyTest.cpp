#include <gtest/gtest.h>
#include <sys/stat.h>

#include "KestrinCore/Files.h"
#include "Tests/Support/TemporaryFolder.h"

namespace kestrin {
namespace {

namespace fs = std::filesystem;

FileError errorOfCopy(const fs::path& source, const fs::path& target) {
    try {
        files::copyAtomically(source, target);
    } catch (const FileError& error) {
        return error;
    }
    ADD_FAILURE() << "the copy succeeded";
    return {FileError::Operation::read, {}, {}};
}

TEST(FilesCopy, GivesAFileWithTheSameBytesAndPermissions) {
    const TemporaryFolder folder;
    const std::string bytes = std::string(300'000, 'x') + "end";  // more than one piece
    folder.write("source", bytes);
    fs::permissions(folder / "source", fs::perms{0640});

    files::copyAtomically(folder / "source", folder / "target");

    EXPECT_EQ(folder.files(), (std::map<std::string, std::string>{{"source", bytes}, {"target", bytes}}));
    EXPECT_EQ(fs::status(folder / "target").permissions(), fs::perms{0640});
}

TEST(FilesCopy, WithoutAFlushIsTheSameCopy) {
    const TemporaryFolder folder;
    folder.write("source", "bytes");

    files::copyAtomically(folder / "source", folder / "copy", files::Flush::no);
    files::writeAtomically(folder / "written", "bytes", files::Flush::no);

    EXPECT_EQ(folder.files(), (std::map<std::string, std::string>{
                                  {"source", "bytes"}, {"copy", "bytes"}, {"written", "bytes"}}));
}

TEST(FilesCopy, OfAnEmptyFileIsEmpty) {
    const TemporaryFolder folder;
    folder.write("source", "");

    files::copyAtomically(folder / "source", folder / "target");

    EXPECT_EQ(folder.read("target"), "");
}

TEST(FilesCopy, ReplacesALinkAtTheTargetAndNotWhatItPointsAt) {
    const TemporaryFolder folder;
    folder.write("source", "new");
    folder.write("elsewhere", "untouched");
    fs::create_symlink(folder / "elsewhere", folder / "target");

    files::copyAtomically(folder / "source", folder / "target");

    EXPECT_FALSE(fs::is_symlink(folder / "target"));
    EXPECT_EQ(folder.read("target"), "new");
    EXPECT_EQ(folder.read("elsewhere"), "untouched");
}

TEST(FilesCopy, FollowsALinkAtTheSource) {
    const TemporaryFolder folder;
    folder.write("original", "bytes");
    fs::create_symlink("original", folder / "source");

    files::copyAtomically(folder / "source", folder / "target");

    EXPECT_FALSE(fs::is_symlink(folder / "target"));
    EXPECT_EQ(folder.read("target"), "bytes");
}

TEST(FilesCopy, OntoItselfLosesNothing) {
    const TemporaryFolder folder;
    folder.write("same", "bytes");

    files::copyAtomically(folder / "same", folder / "same");

    EXPECT_EQ(folder.read("same"), "bytes");
}

TEST(FilesCopy, TakesATargetWhoseNameIsAsLongAsNamesCanBe) {
    const TemporaryFolder folder;
    const std::string longest(255, 'n');
    folder.write("source", "bytes");

    files::copyAtomically(folder / "source", folder / longest);
    files::writeAtomically(folder / longest, "others");

    EXPECT_EQ(folder.read(longest), "others");
}

TEST(FilesCopy, OfAnOpenFileIsAllOfItEvenOfOneThatHasBeenReplaced) {
    const TemporaryFolder folder;
    folder.write("file", "earlier");
    const auto opened = files::openRegular(folder / "file");
    EXPECT_EQ(files::readWhole(opened, "file", 100), "earlier");
    files::writeAtomically(folder / "file", "later");

    files::copyAtomically(opened, "file", folder / "file");

    EXPECT_EQ(folder.files(), (std::map<std::string, std::string>{{"file", "earlier"}}));
}

TEST(FilesDescriptor, AreOfTheSameFileByWhatIsOnTheDiskAndNotByName) {
    const TemporaryFolder folder;
    folder.write("file", "bytes");
    fs::create_hard_link(folder / "file", folder / "other-name");
    const auto opened = files::openRegular(folder / "file");
    EXPECT_TRUE(files::areSameFile(opened, opened));
    EXPECT_TRUE(files::areSameFile(opened, files::openRegular(folder / "other-name")));
    files::writeAtomically(folder / "file", "bytes");
    EXPECT_FALSE(files::areSameFile(opened, files::openRegular(folder / "file")));
    EXPECT_FALSE(files::areSameFile(opened, files::Descriptor()));
    EXPECT_FALSE(files::areSameFile(files::Descriptor(), files::Descriptor()));
}

TEST(FilesCopy, NamesTheSourceThatCannotBeRead) {
    const TemporaryFolder folder;
    fs::create_directory(folder / "directory");
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);

    for (const char* source : {"missing", "directory", "pipe"}) {
        SCOPED_TRACE(source);
        const auto error = errorOfCopy(folder / source, folder / "target");
        EXPECT_EQ(error.operation, FileError::Operation::read);
        EXPECT_EQ(error.path, folder / source);
        EXPECT_FALSE(folder.has("target"));
    }
}

TEST(FilesCopy, ThatFailsLeavesTheTargetAsItWasAndNoTemporaryFile) {
    const TemporaryFolder folder;
    folder.write("source", "new");
    folder.write("target/file", "a folder is in the way");

    const auto error = errorOfCopy(folder / "source", folder / "target");

    EXPECT_EQ(error.operation, FileError::Operation::write);
    EXPECT_EQ(error.path, folder / "target");
    EXPECT_EQ(folder.files(), (std::map<std::string, std::string>{
                                  {"source", "new"}, {"target/file", "a folder is in the way"}}));
}

}  // namespace
}  // namespace kestrin
