#include "AssetPipeline/MediaHash.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <fstream>

#include "KestrinCore/FileError.h"
#include "Tests/Support/TemporaryFolder.h"

namespace kestrin {
namespace {

std::string md5Of(const std::string& content) {
    const TemporaryFolder folder;
    const auto file = folder.path() / "file";
    std::ofstream(file, std::ios::binary) << content;
    return MediaHash::md5(file);
}

TEST(MediaHash, AgreesWithTheVectorsOfRFC1321) {
    EXPECT_EQ(md5Of(""), "d41d8cd98f00b204e9800998ecf8427e");
    EXPECT_EQ(md5Of("a"), "0cc175b9c0f1b6a831c399e269772661");
    EXPECT_EQ(md5Of("message digest"), "f96b697d7cb7938d525a2f31aaf161d0");
    EXPECT_EQ(md5Of("12345678901234567890123456789012345678901234567890123456789012345678901234567890"),
              "57edf4a22be3c955ac49da2e2107b67a");
}

TEST(MediaHash, CoversAFileOfMoreThanOnePiece) {
    EXPECT_EQ(md5Of(std::string(3'000'000, 'a')), "99ddc9a3a46ea62c95652bdf937a1fb8");
}

TEST(MediaHash, RethrowsTheFileErrorOfAFileThatCantBeRead) {
    const TemporaryFolder folder;
    EXPECT_THROW(MediaHash::md5(folder.path() / "none"), FileError);
    EXPECT_THROW(MediaHash::md5(folder.path()), FileError);
}

TEST(MediaHash, IsNotHeldUpByANamedPipe) {
    const TemporaryFolder folder;
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    EXPECT_THROW(MediaHash::md5(folder / "pipe"), FileError);
}

}  // namespace
}  // namespace kestrin
