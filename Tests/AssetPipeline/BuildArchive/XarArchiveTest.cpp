#include "AssetPipeline/BuildArchive/XarArchive.h"

#include <gtest/gtest.h>

#include "Tests/AssetPipeline/BuildArchive/ArchiveErrors.h"
#include "Tests/Support/ArchiveBytes.h"
#include "Tests/Support/TemporaryFolder.h"

namespace kestrin {
namespace {

using Kind = BuildArchiveError::Kind;
using XarArchive::FileRecord;

std::optional<FileRecord> find(std::string_view path, const std::string& files) {
    return XarArchive::find(path, "<xar><toc>" + files + "</toc></xar>");
}

TEST(XarTableOfContents, GivesWhatStandsInTheFileAndItsData) {
    EXPECT_EQ(find("a",
                   "<file id='1'><name>a</name><type>file</type><data><offset>20</offset><length>3</length>"
                   "<size>7</size><encoding style='application/x-gzip'/></data></file>"),
              (FileRecord{"a", 20, 3, 7, "application/x-gzip"}));
}

TEST(XarTableOfContents, TheOrderOfElementsDoesNotMatter) {
    EXPECT_EQ(find("a", "<file><data><size>7</size><offset>20</offset></data><name>a</name></file>"),
              (FileRecord{"a", 20, 0, 7, std::nullopt}));
}

TEST(XarTableOfContents, AFileWithoutDataIsEmpty) {
    EXPECT_EQ(find("a", "<file><name>a</name></file>"), (FileRecord{.name = "a"}));
}

TEST(XarTableOfContents, APathNamesTheFoldersOnTheWay) {
    const std::string files =
        "<file><name>b.pkg</name><type>directory</type><data><offset>1</offset></data>"
        "<file><name>a</name><data><offset>2</offset></data></file>"
        "<file><name>c</name><file><name>a</name><data><offset>3</offset></data></file></file></file>"
        "<file><name>a</name><data><offset>4</offset></data></file>";
    EXPECT_EQ(find("a", files)->offset, 4u);
    EXPECT_EQ(find("b.pkg/a", files)->offset, 2u);
    EXPECT_EQ(find("b.pkg/c/a", files)->offset, 3u);
    EXPECT_EQ(find("b.pkg", files)->offset, 1u);  // what came in between belongs to others
    EXPECT_EQ(find("c", files), std::nullopt);
}

TEST(XarTableOfContents, OfFilesWithOnePathTheFirstCounts) {
    EXPECT_EQ(find("a",
                   "<file><name>a</name><data><offset>1</offset></data></file>"
                   "<file><name>a</name><data><offset>2</offset></data></file>")
                  ->offset,
              1u);
}

TEST(XarTableOfContents, TheChildrenOfAnExtendedAttributeAreItsOwn) {
    EXPECT_EQ(find("a",
                   "<file><ea id='0'><name>x</name><offset>7</offset><length>7</length><size>7</size>"
                   "<encoding style='bzip2'/><data><offset>8</offset></data><file><name>a</name></file></ea>"
                   "<data><offset>1</offset><ea><offset>9</offset></ea></data><name>a</name>"
                   "<ea id='1'><name>y</name><offset>7</offset></ea></file>"),
              (FileRecord{.name = "a", .offset = 1}));
}

TEST(XarTableOfContents, OnlyFilesInTheTableCount) {
    EXPECT_EQ(XarArchive::find("a",
                               "<xar><file><name>a</name></file><toc><x><file><name>a</name></file></x></toc>"
                               "<toc2><file><name>a</name></file></toc2></xar>"),
              std::nullopt);
}

TEST(XarTableOfContents, ANumberIsDecimalAndNotNegative) {
    for (const char* number : {"", "x", "-1", "1.0", "0x10", " 1", "1 2", "18446744073709551616", "1e3"}) {
        SCOPED_TRACE(number);
        const auto files =
            std::string("<file><name>a</name><data><offset>") + number + "</offset></data></file>";
        EXPECT_EQ(archiveErrorOf([&] { find("a", files); }), Kind::malformed);
    }
}

class XarArchiveTest : public testing::Test {
 protected:
    std::string contents(const std::string& bytes, const std::string& path = "a") {
        folder.write("a.xar", bytes);
        return XarArchive::contents(path, ByteReader(folder / "a.xar"));
    }

    std::optional<Kind> errorOf(const std::string& bytes) {
        return archiveErrorOf([&] { contents(bytes); });
    }

    TemporaryFolder folder;
};

TEST_F(XarArchiveTest, AFileIsReadByItsEncoding) {
    const auto stream = zlibStream("abcabc");
    EXPECT_EQ(contents(xar({{"b", "", "xyz", 3}, {"a", "application/x-gzip", stream, 6}})), "abcabc");
    EXPECT_EQ(contents(xar({{"a", "application/octet-stream", "abc", 3}})), "abc");
    EXPECT_EQ(contents(xar({{"a", "", "abc", 3}})), "abc");
    EXPECT_EQ(contents(xar({{"a", "application/x-bzip2", "BZh9", 100}})), "BZh9");
}

TEST_F(XarArchiveTest, TheHeapIsBehindAHeadOfAnySize) {
    auto bytes = xar({{"b", "", "xyz", 3}, {"a", "", "abc", 3}});
    bytes.insert(28, "sha512 and so on");
    bytes.replace(4, 2, bigEndian(28 + 16, 2));
    EXPECT_EQ(contents(bytes), "abc");
}

TEST_F(XarArchiveTest, WithoutItsSignatureItIsNoArchive) {
    EXPECT_EQ(errorOf("xar?" + std::string(100, '\0')), Kind::notAnArchive);
    EXPECT_EQ(errorOf("xar"), Kind::notAnArchive);
    EXPECT_EQ(errorOf("xar!"), Kind::malformed);
}

TEST_F(XarArchiveTest, AFileThatIsNotThereIsMalformed) {
    EXPECT_EQ(errorOf(xar({{"b", "", "xyz", 3}})), Kind::malformed);
}

TEST_F(XarArchiveTest, DataThatExpandsToLessIsMalformed) {
    EXPECT_EQ(errorOf(xar({{"a", "application/x-gzip", zlibStream("abc"), 4}})), Kind::malformed);
}

TEST_F(XarArchiveTest, SizesAndPlacesThatCannotBeAreMalformed) {
    for (const char* number : {"100", "9223372036854775807", "4294967296", "1048577"}) {
        for (const char* field : {"offset", "length"}) {
            SCOPED_TRACE(std::string(field) + " " + number);
            const auto data = std::string("<") + field + ">" + number + "</" + field + ">";
            const auto rest = field == std::string("offset") ? "<length>3</length>" : "";
            EXPECT_EQ(errorOf(xar(
                          "<xar><toc><file><name>a</name><data>" + data + rest + "</data></file></toc></xar>",
                          "abc")),
                      Kind::malformed);
        }
    }
    const auto two = xar({{"a", "application/x-gzip", zlibStream("abc"), std::uint64_t{2} << 30}});
    EXPECT_EQ(errorOf(two), Kind::malformed);
}

}  // namespace
}  // namespace kestrin
