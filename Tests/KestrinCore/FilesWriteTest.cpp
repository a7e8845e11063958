#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

#include "KestrinCore/Files.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Support/Unprivileged.h"

namespace kestrin {
namespace {

namespace fs = std::filesystem;
using Content = std::map<std::string, std::string>;

FileError errorOfWrite(const fs::path& target) {
    try {
        files::writeAtomically(target, "new");
    } catch (const FileError& error) {
        return error;
    }
    ADD_FAILURE() << "the write succeeded";
    return {FileError::Operation::read, {}, {}};
}

fs::perms permissionsOf(const fs::path& path) {
    return fs::status(path).permissions();
}

TEST(FilesWrite, MakesAFileWithThePermissionsThatNewFilesGet) {
    const TemporaryFolder folder;
    for (const mode_t mask : {0022u, 0077u, 0002u}) {
        const auto name = std::to_string(mask);
        const auto before = umask(mask);
        files::writeAtomically(folder / name, "bytes");
        umask(before);
        EXPECT_EQ(folder.read(name), "bytes");
        EXPECT_EQ(permissionsOf(folder / name), fs::perms{0666 & ~mask});
    }
}

TEST(FilesWrite, ReplacesAFileAndKeepsItsPermissions) {
    const TemporaryFolder folder;
    for (const unsigned mode : {0600u, 0644u, 0755u, 0444u, 0660u}) {
        SCOPED_TRACE(mode);
        folder.write("file", "old and longer");
        fs::permissions(folder / "file", fs::perms{mode});

        files::writeAtomically(folder / "file", "new");

        EXPECT_EQ(folder.files(), (Content{{"file", "new"}}));
        EXPECT_EQ(permissionsOf(folder / "file"), fs::perms{mode});
        fs::remove(folder / "file");
    }
}

TEST(FilesWrite, TakesAnyBytes) {
    const TemporaryFolder folder;
    const std::string bytes = std::string(1 << 20, '\0') + "\xFF\r\n";
    files::writeAtomically(folder / "file", bytes, files::Flush::no);
    EXPECT_EQ(folder.read("file"), bytes);
    files::writeAtomically(folder / "file", "", files::Flush::no);
    EXPECT_EQ(folder.read("file"), "");
}

TEST(FilesWrite, TakesContentPieceByPieceAndPlacesItOnceItIsWhole) {
    const TemporaryFolder folder;
    folder.write("file", "old");
    files::writeAtomically(folder / "file", [&](const files::TakePiece& take) {
        take("ne");
        EXPECT_EQ(folder.read("file"), "old");
        take("");
        take("w");
    });
    EXPECT_EQ(folder.files(), (Content{{"file", "new"}}));
}

TEST(FilesWrite, WhoseContentCannotBeMadeLeavesTheOldFileAndNoTemporaryOne) {
    const TemporaryFolder folder;
    folder.write("file", "old");
    const auto makeHalf = [](const files::TakePiece& take) {
        take("half");
        throw std::runtime_error("no more");
    };
    EXPECT_THROW(files::writeAtomically(folder / "file", makeHalf), std::runtime_error);
    EXPECT_EQ(folder.files(), (Content{{"file", "old"}}));
}

TEST(FilesWrite, TakesAPathRelativeToTheCurrentFolder) {
    const TemporaryFolder folder;
    const auto before = fs::current_path();
    fs::current_path(folder.path());
    files::writeAtomically("file", "bytes");
    fs::current_path(before);
    EXPECT_EQ(folder.files(), (Content{{"file", "bytes"}}));
}

TEST(FilesWrite, LeavesTheOtherNamesOfAReplacedFileAlone) {
    const TemporaryFolder folder;
    folder.write("file", "old");
    fs::create_hard_link(folder / "file", folder / "other");

    files::writeAtomically(folder / "file", "new");

    EXPECT_EQ(folder.files(), (Content{{"file", "new"}, {"other", "old"}}));
}

TEST(FilesWrite, ReplacesALinkAndNeverWritesThroughIt) {
    const TemporaryFolder folder;
    folder.write("elsewhere/file", "untouched");
    fs::create_symlink("elsewhere/file", folder / "link");
    fs::create_symlink("nowhere", folder / "dangling");
    fs::create_symlink("elsewhere", folder / "toFolder");
    fs::create_symlink("loop", folder / "loop");

    for (const auto* name : {"link", "dangling", "toFolder", "loop"}) {
        SCOPED_TRACE(name);
        files::writeAtomically(folder / name, "new");
        EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(folder / name)));
        EXPECT_EQ(folder.read(name), "new");
    }
    EXPECT_EQ(folder.read("elsewhere/file"), "untouched");
    EXPECT_FALSE(folder.has("nowhere"));
}

TEST(FilesWrite, ThroughAFolderThatIsALinkIsFine) {
    const TemporaryFolder folder;
    folder.write("real/file", "old");
    fs::create_directory_symlink("real", folder / "link");

    files::writeAtomically(folder / "link/file", "new");

    EXPECT_EQ(folder.files(), (Content{{"real/file", "new"}}));
    EXPECT_TRUE(fs::is_symlink(folder / "link"));
}

TEST(FilesWrite, RefusesWhatIsInTheWayAndLeavesEverythingAsItWas) {
    const TemporaryFolder folder;
    folder.write("full/file", "x");
    folder.write("file", "x");
    fs::create_directory(folder / "empty");
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    struct Row {
        const char* when;
        const char* target;
        std::errc reason;
    };
    const Row rows[] = {
        {"a folder", "full", std::errc::is_a_directory},
        {"an empty folder", "empty", std::errc::is_a_directory},
        {"a pipe", "pipe", std::errc::invalid_argument},
        {"no such folder", "missing/file", std::errc::no_such_file_or_directory},
        {"a file for a folder", "file/file", std::errc::not_a_directory},
        {"a folder’s name", "missing/", std::errc::no_such_file_or_directory},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.when);
        const auto error = errorOfWrite(folder / row.target);
        EXPECT_EQ(error.operation, FileError::Operation::write);
        EXPECT_EQ(error.path, folder / row.target);
        EXPECT_EQ(error.reason, row.reason);
    }
    EXPECT_EQ(folder.files(), (Content{{"full/file", "x"}, {"file", "x"}}));
    EXPECT_TRUE(fs::is_fifo(folder / "pipe"));
    EXPECT_EQ(errorOfWrite("/dev/null").reason, std::errc::invalid_argument);
    EXPECT_EQ(errorOfWrite("").operation, FileError::Operation::write);
    EXPECT_EQ(errorOfWrite(folder / std::string(256, 'n')).reason, std::errc::filename_too_long);
}

TEST(FilesWrite, InAFolderThatMayNotBeWrittenFailsAndLeavesItAsItWas) {
    const TemporaryFolder folder;
    folder.write("locked/file", "old");
    fs::permissions(folder.path(), fs::perms{0755});
    fs::permissions(folder / "locked/file", fs::perms{0666});
    fs::permissions(folder / "locked", fs::perms{0555});
    {
        const Unprivileged user;
        EXPECT_EQ(errorOfWrite(folder / "locked/file").reason, std::errc::permission_denied);
        EXPECT_EQ(errorOfWrite(folder / "locked/other").reason, std::errc::permission_denied);
    }
    fs::permissions(folder / "locked", fs::perms{0755});
    EXPECT_EQ(folder.files(), (Content{{"locked/file", "old"}}));
}

// The disk is full behind so many bytes of a file.
class FileSizeLimit {
 public:
    explicit FileSizeLimit(rlim_t bytes) {
        getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit limit{bytes, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() { setrlimit(RLIMIT_FSIZE, &before_); }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

 private:
    rlimit before_{};
};

TEST(FilesWrite, ThatFindsNoRoomLeavesTheOldFileAndNoTemporaryOne) {
    const TemporaryFolder folder;
    folder.write("file", "old");
    const std::string bytes(1 << 20, 'x');
    const auto before = std::signal(SIGXFSZ, SIG_IGN);
    std::optional<FileError> error, errorOfCopy;
    folder.write("source", bytes);
    {
        const FileSizeLimit limit(100'000);
        try {
            files::writeAtomically(folder / "file", bytes);
        } catch (const FileError& thrown) {
            error = thrown;
        }
        try {
            files::copyAtomically(folder / "source", folder / "file");
        } catch (const FileError& thrown) {
            errorOfCopy = thrown;
        }
    }
    std::signal(SIGXFSZ, before);

    ASSERT_TRUE(error && errorOfCopy);
    for (const auto& each : {*error, *errorOfCopy}) {
        EXPECT_EQ(each.operation, FileError::Operation::write);
        EXPECT_EQ(each.path, folder / "file");
        EXPECT_EQ(each.reason, std::errc::file_too_large);
    }
    EXPECT_EQ(folder.files(), (Content{{"file", "old"}, {"source", bytes}}));
}

TEST(FilesWrite, SaysThatADiskIsFull) {
    const files::Descriptor full(open("/dev/full", O_WRONLY | O_CLOEXEC));
    ASSERT_TRUE(full);
    try {
        files::writeAll(full, "bytes", "base.json");
        FAIL() << "the write succeeded";
    } catch (const FileError& error) {
        EXPECT_EQ(error.errorDescription(), "Couldn’t write “base.json”: No space left on device.");
    }
}

// A child process that writes and is killed by the kernel as soon as its file grows beyond `bytes`.
void writeAndDieAt(rlim_t bytes, const fs::path& target, const std::string& content) {
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        std::signal(SIGXFSZ, SIG_DFL);
        const rlimit noCore{0, 0};
        setrlimit(RLIMIT_CORE, &noCore);
        const FileSizeLimit limit(bytes);
        files::writeAtomically(target, content);
        _exit(0);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    const bool hasDied = WIFSIGNALED(status) && WTERMSIG(status) == SIGXFSZ;
    EXPECT_EQ(hasDied, bytes < content.size());
}

TEST(FilesWrite, OfAProcessThatIsKilledLeavesTheOldContentOrTheNew) {
    const std::string content(5'000, 'n');
    for (const rlim_t bytes : {0ul, 1ul, 4095ul, 4096ul, 4999ul, 5000ul}) {
        SCOPED_TRACE(bytes);
        const TemporaryFolder folder;
        folder.write("file", "old");

        writeAndDieAt(bytes, folder / "file", content);

        EXPECT_EQ(folder.read("file"), bytes < content.size() ? "old" : content);
        files::writeAtomically(folder / "file", "next");
        EXPECT_EQ(folder.read("file"), "next");
    }
}

TEST(FilesDescriptor, ClosesWhatItHolds) {
    int number = -1;
    {
        files::Descriptor file(open("/dev/null", O_RDONLY | O_CLOEXEC));
        number = file.number();
        files::Descriptor other(std::move(file));
        EXPECT_EQ(other.number(), number);
        other = files::Descriptor();
        EXPECT_FALSE(other);
        EXPECT_EQ(fcntl(number, F_GETFD), -1) << "still open";
    }
    EXPECT_FALSE(files::Descriptor(-1));
}

}  // namespace
}  // namespace kestrin
