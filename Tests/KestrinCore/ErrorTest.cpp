#include "KestrinCore/Error.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <stdexcept>

#include "KestrinCore/FileError.h"

namespace kestrin {
namespace {

struct Refused : Error {
    std::string errorDescription() const override { return "“x” is refused."; }
};

struct Speechless : Error {
    std::string errorDescription() const override { throw std::runtime_error("no words"); }
};

TEST(Error, SaysTheSameToThoseWhoKnowOnlyStdException) {
    try {
        throw Refused();
    } catch (const std::exception& error) {
        EXPECT_STREQ(error.what(), "“x” is refused.");
    }
}

TEST(Error, WithoutADescriptionIsStillAnError) {
    EXPECT_STREQ(Speechless().what(), "an error without a description");
}

std::string describe(FileError::Operation operation, int reason) {
    errno = reason;
    return FileError::fromErrno(operation, "App/info.json").errorDescription();
}

TEST(FileError, SaysWhichPathAndWhy) {
    using enum FileError::Operation;
    struct Row {
        FileError::Operation operation;
        int reason;
        const char* description;
    };
    const Row rows[] = {
        {read, EACCES, "Couldn’t read “App/info.json”: Permission denied."},
        {write, ENOSPC, "Couldn’t write “App/info.json”: No space left on device."},
        {create, EROFS, "Couldn’t create “App/info.json”: Read-only file system."},
        {remove, ENOTEMPTY, "Couldn’t remove “App/info.json”: Directory not empty."},
        {list, ENOENT, "Couldn’t list the folder “App/info.json”: No such file or directory."},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(describe(row.operation, row.reason), row.description);
    }
}

TEST(FileError, KeepsItsCaseForWhoeverDecidesByIt) {
    errno = ENOENT;
    const auto error = FileError::fromErrno(FileError::Operation::read, "a/b");
    EXPECT_EQ(error.operation, FileError::Operation::read);
    EXPECT_EQ(error.path, "a/b");
    EXPECT_EQ(error.reason, std::errc::no_such_file_or_directory);
}

TEST(FileError, ShowsANameThatIsNotUTF8Repaired) {
    const FileError error(FileError::Operation::read, "a\xFF/b", std::make_error_code(std::errc::io_error));
    EXPECT_EQ(error.errorDescription(), "Couldn’t read “a\uFFFD/b”: Input/output error.");
}

TEST(FileError, ANameWithBracesIsShownAsItStands) {
    const FileError error(FileError::Operation::read, "{reason}", std::make_error_code(std::errc::io_error));
    EXPECT_EQ(error.errorDescription(), "Couldn’t read “{reason}”: Input/output error.");
}

TEST(FileTooLargeError, NamesTheLimit) {
    EXPECT_EQ(FileTooLargeError("a\xFF", 1024).errorDescription(),
              "“a\uFFFD” is too large: at most 1024 bytes are read.");
}

}  // namespace
}  // namespace kestrin
