#include "AssetPipeline/BuildArchive/ZipArchive.h"

#include <gtest/gtest.h>

#include "Tests/AssetPipeline/BuildArchive/ArchiveErrors.h"
#include "Tests/Support/ArchiveBytes.h"
#include "Tests/Support/Repeated.h"
#include "Tests/Support/TemporaryFolder.h"

namespace kestrin {
namespace {

using Kind = BuildArchiveError::Kind;
using Entry = ZipArchive::Entry;

constexpr std::uint64_t kLimit = 1'000;

class ZipArchiveTest : public testing::Test {
 protected:
    std::optional<Entry> entry(const std::string& bytes, const std::string& name) {
        folder.write("a.zip", bytes);
        const ByteReader reader(folder / "a.zip");
        return ZipArchive(reader).first([&](const std::string& other) { return other == name; });
    }

    std::string contents(const std::string& bytes, const std::string& name = "a") {
        const auto found = entry(bytes, name);
        if (!found) throw std::logic_error("the archive has no “" + name + "”");
        const ByteReader reader(folder / "a.zip");
        return ZipArchive(reader).contents(*found, kLimit);
    }

    std::optional<Kind> errorOf(const std::string& bytes) {
        return archiveErrorOf([&] { contents(bytes); });
    }

    TemporaryFolder folder;
};

// The bytes with the number at `offset` from the end replaced.
std::string withNumber(std::string bytes, std::size_t fromEnd, std::uint64_t number, int size) {
    return bytes.replace(bytes.size() - fromEnd, static_cast<std::size_t>(size), littleEndian(number, size));
}

std::string zip64Extra(const std::vector<std::uint64_t>& values) {
    auto extra = littleEndian(1, 2) + littleEndian(8 * values.size(), 2);
    for (const auto value : values) extra += littleEndian(value, 8);
    return extra;
}

TEST_F(ZipArchiveTest, AnEntryHasWhatTheDirectorySays) {
    const auto bytes = zip({storedMember("b", "xyz"), deflatedMember("a", "abcabcabcabc")});
    const auto data = deflated("abcabcabcabc");
    EXPECT_EQ(entry(bytes, "a"), (Entry{"a", 8, data.size(), 12, 30 + 1 + 3}));
    EXPECT_EQ(entry(bytes, "c"), std::nullopt);
}

TEST_F(ZipArchiveTest, OfEntriesWithOneNameTheFirstCounts) {
    EXPECT_EQ(contents(zip({storedMember("a", "first"), storedMember("a", "second")})), "first");
}

TEST_F(ZipArchiveTest, AStoredMemberIsReadAsItIs) {
    auto member = storedMember("a", "abc");
    member.size = 1'000'000;  // nobody's concern
    EXPECT_EQ(contents(zip({member})), "abc");
}

TEST_F(ZipArchiveTest, ADeflatedMemberIsInflated) {
    EXPECT_EQ(contents(zip({deflatedMember("a", "abcabcabcabc")})), "abcabcabcabc");
}

TEST_F(ZipArchiveTest, ADeflatedMemberThatExpandsToLessIsMalformed) {
    auto member = deflatedMember("a", "abc");
    member.size = 4;
    EXPECT_EQ(errorOf(zip({member})), Kind::malformed);
}

TEST_F(ZipArchiveTest, AnyOtherMethodIsUnsupported) {
    for (const int method : {1, 9, 12, 14, 93, 99, 65'535}) {
        SCOPED_TRACE(method);
        auto member = storedMember("a", "abc");
        member.method = static_cast<std::uint16_t>(method);
        EXPECT_EQ(errorOf(zip({member})), Kind::unsupportedCompression);
    }
}

TEST_F(ZipArchiveTest, AMemberAboveTheLimitIsMalformed) {
    EXPECT_EQ(contents(zip({storedMember("a", std::string(kLimit, 'a'))})).size(), kLimit);
    EXPECT_EQ(errorOf(zip({storedMember("a", std::string(kLimit + 1, 'a'))})), Kind::malformed);
    EXPECT_EQ(errorOf(zip({deflatedMember("a", std::string(kLimit + 1, 'a'))})), Kind::malformed);
}

TEST_F(ZipArchiveTest, TheLengthsInFrontOfTheDataAreThoseOfTheLocalHeader) {
    auto member = storedMember("a", "abc");
    member.localExtra = std::string(13, '?');
    member.directoryExtra = std::string(2, '?');
    EXPECT_EQ(contents(zip({storedMember("b", "xyz"), member})), "abc");
}

TEST_F(ZipArchiveTest, AnEntryMayHaveAComment) {
    auto first = storedMember("b", "xyz");
    first.comment = "what it is for";
    EXPECT_EQ(contents(zip({first, storedMember("a", "abc")})), "abc");
}

TEST_F(ZipArchiveTest, ANameIsRepairedToUTF8) {
    EXPECT_EQ(contents(zip({storedMember("a\xFFz", "abc")}), "a\uFFFDz"), "abc");
    EXPECT_EQ(contents(zip({storedMember("ü", "abc")}), "ü"), "abc");
}

TEST_F(ZipArchiveTest, AShorterFileThanTheEndRecordIsNoArchive) {
    EXPECT_EQ(errorOf(""), Kind::notAnArchive);
    EXPECT_EQ(errorOf("PK\x05\x06" + std::string(17, '\0')), Kind::notAnArchive);
    EXPECT_EQ(archiveErrorOf([&] { entry("PK\x05\x06" + std::string(18, '\0'), "a"); }), std::nullopt);
}

TEST_F(ZipArchiveTest, TheEndRecordIsFoundInFrontOfTheLongestComment) {
    const auto archive = [](std::size_t length) {
        return zip({storedMember("a", "abc")}, {.comment = std::string(length, 'c')});
    };
    EXPECT_EQ(contents(archive(0)), "abc");
    EXPECT_EQ(contents(archive(65'535)), "abc");
    EXPECT_EQ(errorOf(archive(65'536)), Kind::notAnArchive);
}

TEST_F(ZipArchiveTest, TheLastEndRecordCounts) {
    const auto inner = zip({storedMember("a", "inner")});
    EXPECT_EQ(contents(zip({storedMember("b", inner), storedMember("a", "outer")})), "outer");
}

TEST_F(ZipArchiveTest, Zip64FormsAreReadAsTheOthers) {
    const auto bytes =
        zip({storedMember("b", "xyz"), deflatedMember("a", "abcabcabcabc")}, {.isZip64 = true});
    EXPECT_EQ(contents(bytes), "abcabcabcabc");
    EXPECT_EQ(entry(bytes, "a")->localHeaderOffset, 34u);
}

TEST_F(ZipArchiveTest, ManyEntriesOrALargeOffsetAloneMeanZip64) {
    const auto zip64 = zip({storedMember("a", "abc")}, {.isZip64 = true});
    EXPECT_EQ(contents(withNumber(zip64, 12, 1, 2)), "abc");  // a count that would fit
    EXPECT_EQ(contents(withNumber(zip64, 6, 0, 4)), "abc");   // an offset that would fit
    EXPECT_NE(errorOf(withNumber(withNumber(zip64, 12, 1, 2), 6, 0xFFFFFFFE, 4)), std::nullopt);
    const auto small = zip({storedMember("a", "abc")});
    EXPECT_EQ(errorOf(withNumber(small, 12, 65'535, 2)), Kind::malformed);  // no locator
    EXPECT_EQ(errorOf(withNumber(small, 6, 0xFFFFFFFF, 4)), Kind::malformed);
}

TEST_F(ZipArchiveTest, WithoutTheirSignaturesZip64RecordsAreMalformed) {
    const auto whole = zip({storedMember("a", "abc")}, {.isZip64 = true});
    for (const std::string signature : {"PK\x06\x06", "PK\x06\x07"}) {
        SCOPED_TRACE(signature);
        auto bytes = whole;
        bytes[bytes.rfind(signature)] = '?';
        EXPECT_EQ(errorOf(bytes), Kind::malformed);
    }
}

TEST_F(ZipArchiveTest, AZip64ExtraHasOnlyWhatTheHeaderLeavesToIt) {
    struct Row {
        const char* when;
        std::uint64_t size;  // in the header
        std::string extra;
        std::uint64_t result;
    };
    constexpr std::uint64_t kElsewhere = 0xFFFFFFFF;
    const Row rows[] = {
        {"nothing is left to it", 3, zip64Extra({7, 8, 9}), 3},
        {"the size is", kElsewhere, zip64Extra({3}), 3},
        {"another record stands in front of it", kElsewhere,
         "XX" + littleEndian(2, 2) + "zz" + zip64Extra({3}), 3},
        {"it is too short", kElsewhere, littleEndian(1, 2) + littleEndian(4, 2) + "\3\0\0\0", kElsewhere},
        {"its length goes beyond the field", kElsewhere, littleEndian(1, 2) + littleEndian(9, 2) + "12345678",
         kElsewhere},
        {"padding follows", kElsewhere, zip64Extra({3}) + std::string(3, '\0'), 3},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.when);
        auto member = storedMember("a", "abc");
        member.size = row.size;
        member.directoryExtra = row.extra;
        EXPECT_EQ(entry(zip({member}), "a")->uncompressedSize, row.result);
    }
}

// The size, the length as stored and the place of the only member, any of which the header may leave to the extra
// field; there they stand in this order whichever they are.
TEST_F(ZipArchiveTest, AZip64ExtraHasTheSizeTheLengthAndThePlaceInThisOrder) {
    constexpr std::uint64_t kElsewhere = 0xFFFFFFFF;
    constexpr std::size_t kLengthInHeader = 20, kSizeInHeader = 24, kPlaceInHeader = 42;
    for (const unsigned left : {0b000u, 0b001u, 0b010u, 0b011u, 0b100u, 0b101u, 0b110u, 0b111u}) {
        SCOPED_TRACE(left);
        const auto isLeft = [&](unsigned bit) { return (left >> bit & 1) != 0; };
        auto member = storedMember("a", "abc");
        std::vector<std::uint64_t> extra;
        if (isLeft(0)) extra.push_back(std::uint64_t{1} << 40);
        if (isLeft(1)) extra.push_back(std::uint64_t{1} << 41);
        if (isLeft(2)) extra.push_back(std::uint64_t{1} << 42);
        member.directoryExtra = zip64Extra(extra);
        auto bytes = zip({member});
        const auto header = bytes.rfind("PK\x01\x02");
        bytes.replace(header + kSizeInHeader, 4, littleEndian(isLeft(0) ? kElsewhere : 7, 4));
        bytes.replace(header + kLengthInHeader, 4, littleEndian(isLeft(1) ? kElsewhere : 8, 4));
        bytes.replace(header + kPlaceInHeader, 4, littleEndian(isLeft(2) ? kElsewhere : 9, 4));

        EXPECT_EQ(entry(bytes, "a"),
                  (Entry{"a", 0, isLeft(1) ? std::uint64_t{1} << 41 : 8,
                         isLeft(0) ? std::uint64_t{1} << 40 : 7, isLeft(2) ? std::uint64_t{1} << 42 : 9}));
    }
}

TEST_F(ZipArchiveTest, ADirectoryThatIsNotWholeIsMalformedAlsoBehindTheEntry) {
    auto bytes = zip({storedMember("a", "abc"), storedMember("b", "xyz")});
    EXPECT_EQ(errorOf(withNumber(bytes, 12, 3, 2)), Kind::malformed);  // three entries, it says
    bytes[bytes.rfind("PK\x01\x02")] = '?';
    EXPECT_EQ(errorOf(bytes), Kind::malformed);
}

TEST_F(ZipArchiveTest, FewerEntriesThanThereAreAreEnough) {
    EXPECT_EQ(contents(withNumber(zip({storedMember("a", "abc"), storedMember("b", "xyz")}), 12, 1, 2)),
              "abc");
}

}  // namespace
}  // namespace kestrin
