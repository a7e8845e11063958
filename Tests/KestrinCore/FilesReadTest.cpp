#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "KestrinCore/Files.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Support/Unprivileged.h"

namespace kestrin {
namespace {

namespace fs = std::filesystem;
using files::readWhole;

FileError errorOfRead(const fs::path& path) {
    try {
        readWhole(path, 1000);
    } catch (const FileError& error) {
        return error;
    }
    ADD_FAILURE() << "the read succeeded";
    return {FileError::Operation::write, {}, {}};
}

TEST(FilesRead, GivesTheWholeContent) {
    const TemporaryFolder folder;
    const std::string big = std::string(1 << 20, 'x') + '\0' + "\xFF\r\n";
    folder.write("big", big);
    folder.write("empty", "");
    fs::create_symlink("big", folder / "link");

    EXPECT_EQ(readWhole(folder / "big", big.size()), big);
    EXPECT_EQ(readWhole(folder / "link", big.size()), big);
    EXPECT_EQ(readWhole(folder / "empty", 0), "");
}

TEST(FilesRead, RefusesAFileAboveTheLimitBeforeItIsRead) {
    const TemporaryFolder folder;
    folder.write("file", "12345");
    EXPECT_EQ(readWhole(folder / "file", 5), "12345");
    EXPECT_THROW(readWhole(folder / "file", 4), FileTooLargeError);

    // As large as a file can be, and without a block on the disk.
    folder.write("sparse", "");
    fs::resize_file(folder / "sparse", std::uintmax_t{1} << 42);
    EXPECT_THROW(readWhole(folder / "sparse", std::uintmax_t{1} << 30), FileTooLargeError);
}

TEST(FilesRead, FollowsAFileThatIsLongerThanItSays) {
    // Files of the kernel say 0 and have content all the same.
    const auto version = readWhole("/proc/version", 10'000);
    EXPECT_TRUE(version.starts_with("Linux version"));
    EXPECT_THROW(readWhole("/proc/version", 5), FileTooLargeError);
}

TEST(FilesRead, RefusesWhatIsNoFileWithoutWaitingForIt) {
    const TemporaryFolder folder;
    folder.write("file", "x");
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    fs::create_symlink("nowhere", folder / "dangling");
    fs::create_symlink("loop", folder / "loop");
    struct Row {
        const char* when;
        fs::path path;
        std::errc reason;
    };
    const Row rows[] = {
        {"a folder", folder.path(), std::errc::is_a_directory},
        {"a pipe that nobody writes", folder / "pipe", std::errc::invalid_argument},
        {"a device without an end", "/dev/zero", std::errc::invalid_argument},
        {"nothing", folder / "missing", std::errc::no_such_file_or_directory},
        {"a link to nothing", folder / "dangling", std::errc::no_such_file_or_directory},
        {"a link to itself", folder / "loop", std::errc::too_many_symbolic_link_levels},
        {"a file for a folder", folder / "file/x", std::errc::not_a_directory},
        {"no path", "", std::errc::no_such_file_or_directory},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.when);
        const auto error = errorOfRead(row.path);
        EXPECT_EQ(error.operation, FileError::Operation::read);
        EXPECT_EQ(error.path, row.path);
        EXPECT_EQ(error.reason, row.reason);
    }
}

TEST(FilesRead, WhatCanBeOpenedIsReadable) {
    const TemporaryFolder folder;
    folder.write("file", "x");
    fs::create_symlink("file", folder / "link");
    fs::create_symlink("nowhere", folder / "dangling");

    EXPECT_TRUE(files::isReadable(folder / "file"));
    EXPECT_TRUE(files::isReadable(folder / "link"));
    EXPECT_FALSE(files::isReadable(folder / "dangling"));
    EXPECT_FALSE(files::isReadable(folder / "missing"));
    EXPECT_FALSE(files::isReadable(folder / "file/x"));
}

TEST(FilesRead, OfAFileThatMayNotBeReadFails) {
    const TemporaryFolder folder;
    folder.write("file", "secret");
    fs::permissions(folder.path(), fs::perms{0755});
    fs::permissions(folder / "file", fs::perms{0000});
    const Unprivileged user;

    EXPECT_EQ(errorOfRead(folder / "file").reason, std::errc::permission_denied);
    EXPECT_FALSE(files::isReadable(folder / "file"));
}

TEST(FilesRead, OfAnOpenFileNamesThePathThatItIsGiven) {
    const TemporaryFolder folder;
    folder.write("file", "bytes");
    const files::Descriptor file(open((folder / "file").c_str(), O_RDONLY | O_CLOEXEC));
    EXPECT_EQ(readWhole(file, "App/info.json", 10), "bytes");

    const files::Descriptor directory(open(folder.path().c_str(), O_RDONLY | O_CLOEXEC));
    try {
        readWhole(directory, "App/info.json", 10);
        FAIL() << "the read succeeded";
    } catch (const FileError& error) {
        EXPECT_EQ(error.errorDescription(), "Couldn’t read “App/info.json”: Is a directory.");
    }
}

}  // namespace
}  // namespace kestrin
