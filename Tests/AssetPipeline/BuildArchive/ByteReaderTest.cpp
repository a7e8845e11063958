#include "AssetPipeline/BuildArchive/ByteReader.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <limits>

#include "AssetPipeline/BuildArchive/BuildArchiveError.h"
#include "Tests/Support/TemporaryFolder.h"

namespace kestrin {
namespace {

constexpr auto kLargest = std::numeric_limits<std::uint64_t>::max();

TEST(ByteReader, ReadsExactlyWhatIsAskedFor) {
    const TemporaryFolder folder;
    folder.write("file", "abcdef");
    const ByteReader reader(folder / "file");

    EXPECT_EQ(reader.size(), 6u);
    EXPECT_EQ(reader.read(0, 6), "abcdef");
    EXPECT_EQ(reader.read(4, 2), "ef");
    EXPECT_EQ(reader.read(6, 0), "");
}

TEST(ByteReader, RefusesWhatLiesBeyondTheEndBeforeItTakesMemory) {
    const TemporaryFolder folder;
    folder.write("file", "abcdef");
    const ByteReader reader(folder / "file");

    for (const auto& [offset, count] : std::vector<std::pair<std::uint64_t, std::uint64_t>>{
             {0, 7}, {6, 1}, {7, 0}, {0, kLargest}, {kLargest, 1}, {kLargest, kLargest}, {3, kLargest - 2}}) {
        SCOPED_TRACE(offset);
        EXPECT_THROW(reader.read(offset, count), BuildArchiveError);
    }
}

TEST(ByteReader, RefusesAFileThatHasBecomeShorter) {
    const TemporaryFolder folder;
    folder.write("file", "abcdef");
    const ByteReader reader(folder / "file");
    std::filesystem::resize_file(folder / "file", 3);
    EXPECT_THROW(reader.read(0, 6), BuildArchiveError);
}

TEST(ByteReader, TakesOnlyRegularFiles) {
    const TemporaryFolder folder;
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    EXPECT_THROW(ByteReader(folder / "none"), FileError);
    EXPECT_THROW(ByteReader{folder.path()}, FileError);
    EXPECT_THROW(ByteReader(folder / "pipe"), FileError);
    EXPECT_THROW(ByteReader("/dev/zero"), FileError);
}

TEST(BufferedByteReader, GivesTheSameBytesAsTheReader) {
    const TemporaryFolder folder;
    std::string content;
    for (int i = 0; i < 200'000; ++i) content += static_cast<char>('a' + i % 26);
    folder.write("file", content);
    const ByteReader reader(folder / "file");
    BufferedByteReader buffered(reader, 150'000);

    for (const auto& [offset, count] : std::vector<std::pair<std::uint64_t, std::uint64_t>>{{0, 10},
                                                                                            {10, 65'526},
                                                                                            {65'530, 10},
                                                                                            {70'000, 100'000},
                                                                                            {199'990, 10},
                                                                                            {149'999, 2},
                                                                                            {5, 0},
                                                                                            {7, 3}}) {
        SCOPED_TRACE(offset);
        EXPECT_EQ(buffered.read(offset, count), content.substr(offset, count));
    }
    EXPECT_THROW(buffered.read(199'990, 11), BuildArchiveError);
    EXPECT_THROW(buffered.read(kLargest, 1), BuildArchiveError);
}

}  // namespace
}  // namespace kestrin
