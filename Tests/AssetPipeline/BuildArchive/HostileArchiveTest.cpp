// Archives made to do harm: each ends in one of the four errors, or is read, in little time and memory.
#include <gtest/gtest.h>

#include <fstream>

#include "AssetPipeline/BuildArchive/BuildArchiveInspector.h"
#include "AssetPipeline/BuildArchive/ZipArchive.h"
#include "Tests/AssetPipeline/BuildArchive/ArchiveErrors.h"
#include "Tests/Support/ArchiveBytes.h"
#include "Tests/Support/PeakMemory.h"
#include "Tests/Support/Repeated.h"
#include "Tests/Support/TemporaryFolder.h"

namespace kestrin {
namespace {

using Kind = BuildArchiveError::Kind;

constexpr std::size_t kMostMemory = (std::size_t{64} << 20) * memoryFactor;
const std::string kInfo = "Payload/A.app/Info.plist";

std::string binaryList() {
    using namespace binaryPropertyList;
    return of({dictionary({1, 2, 3}, {4, 5, 6}), ascii("CFBundleIdentifier"), ascii("CFBundleVersion"),
               ascii("CFBundleSupportedPlatforms"), ascii("com.example.glowworm"), ascii("27"), array({7}),
               ascii("iPhoneOS")});
}

std::string distribution() {
    return R"(<d><bundle id="com.example.glowworm" CFBundleShortVersionString="1" CFBundleVersion="27"/></d>)";
}

// Small whole archives of every form, by the name of a file.
std::map<std::string, std::string> smallArchives() {
    return {
        {"stored.ipa", zip({storedMember(kInfo, binaryList())})},
        {"deflated.ipa", zip({deflatedMember(kInfo, binaryList())})},
        {"zip64.ipa", zip({storedMember("a", "b"), deflatedMember(kInfo, binaryList())}, {.isZip64 = true})},
        {"xml.ipa",
         zip({storedMember(kInfo, xmlPropertyList("<key>CFBundleVersion</key><string>27</string>"))})},
        {"gzip.pkg",
         xar({{"Distribution", "application/x-gzip", zlibStream(distribution()), distribution().size()}})},
        {"plain.pkg", xar({{"Distribution", "", distribution(), distribution().size()}})},
    };
}

class HostileArchiveTest : public testing::Test {
 protected:
    // Writes over the one file that a test uses, for there are many.
    std::optional<Kind> errorOf(const std::string& name, const std::string& bytes) {
        folder.write(name, bytes);
        return archiveErrorOf([&] { BuildArchiveInspector::inspect(folder / name); });
    }

    TemporaryFolder folder{TemporaryFolder::quickPlace()};
};

TEST_F(HostileArchiveTest, TruncatedAtAnyByteItIsRefused) {
    for (const auto& [name, bytes] : smallArchives()) {
        ASSERT_EQ(errorOf(name, bytes), std::nullopt) << name;
        for (std::size_t size = 0; size < bytes.size(); ++size)
            ASSERT_NE(errorOf(name, bytes.substr(0, size)), std::nullopt) << name << " cut to " << size;
    }
}

TEST_F(HostileArchiveTest, AnyNumberAtItsExtremesIsReadOrRefused) {
    constexpr std::uint64_t kExtremes[] = {0,          1,         0x7F,       0xFF,       0x7FFF,
                                           0xFFFE,     0xFFFF,    0x7FFFFFFF, 0xFFFFFFFE, 0xFFFFFFFF,
                                           ~0ULL >> 1, ~0ULL - 1, ~0ULL};
    const auto peak = peakMemoryOf([&] {
        for (const auto& [name, bytes] : smallArchives()) {
            const bool isZip = name.ends_with(".ipa");
            for (const int size : {1, 2, 4, 8}) {
                for (const auto number : kExtremes) {
                    const auto field = isZip ? littleEndian(number, size) : bigEndian(number, size);
                    for (std::size_t at = 0; at + field.size() <= bytes.size(); ++at) {
                        auto changed = bytes;
                        errorOf(name,
                                changed.replace(at, field.size(), field));  // anything else comes through
                    }
                }
            }
        }
    });
    EXPECT_LT(peak, kMostMemory);
}

TEST_F(HostileArchiveTest, AListOf2GBInOneKilobyteIsRefusedBeforeItIsMade) {
    auto member = deflatedMember(kInfo, std::string(1'000'000, '\0'));
    EXPECT_LT(member.data.size(), 1'100u);
    for (const auto size : {std::uint64_t{2} << 30, std::uint64_t{4} << 30, std::uint64_t{1} << 62}) {
        member.size = size;
        const auto bytes = zip({member}, {.isZip64 = true});
        EXPECT_LT(peakMemoryOf([&] { EXPECT_EQ(errorOf("a.ipa", bytes), Kind::malformed); }), kMostMemory);
    }
    const XarMember file{"Distribution", "application/x-gzip", member.data, std::uint64_t{2} << 30};
    EXPECT_LT(peakMemoryOf([&] { EXPECT_EQ(errorOf("a.pkg", xar({file})), Kind::malformed); }), kMostMemory);
}

// What costs the most that is let through: every reader one after another, each with as much as it takes.
TEST_F(HostileArchiveTest, TheCostliestDocumentsThatAreReadTakeLittleMemory) {
    const auto list = xmlPropertyList("<key>a</key><array>" + repeated(149'000, "<true/>") + "</array>");
    ASSERT_GT(list.size(), 1'040'000u);
    std::string attributes = "<d><bundle CFBundleShortVersionString='1'";
    for (int i = 0; attributes.size() < 1'048'000; ++i) attributes += " a" + std::to_string(i) + "=''";
    attributes += "/></d>";
    const auto ipa = zip({deflatedMember(kInfo, list)});
    const auto pkg = xar({{"Distribution", "application/x-gzip", zlibStream(attributes), attributes.size()}});
    EXPECT_LT(peakMemoryOf([&] { EXPECT_EQ(errorOf("a.ipa", ipa), std::nullopt); }), kMostMemory);
    EXPECT_LT(peakMemoryOf([&] { EXPECT_EQ(errorOf("a.pkg", pkg), std::nullopt); }), kMostMemory);
}

TEST_F(HostileArchiveTest, ATableOfContentsOf2GBIsRefusedBeforeItIsMade) {
    for (const std::size_t field : {8u, 16u}) {
        auto bytes = xar({{"Distribution", "", distribution(), distribution().size()}});
        bytes.replace(field, 8, bigEndian(std::uint64_t{2} << 30, 8));
        EXPECT_LT(peakMemoryOf([&] { EXPECT_EQ(errorOf("a.pkg", bytes), Kind::malformed); }), kMostMemory);
    }
}

// What the file really has, or what its data really expands to: no size in it is a lie.
TEST_F(HostileArchiveTest, WhatIsLargerThanAnyBuildHasItIsRefusedBeforeMemoryIsTaken) {
    constexpr std::uint64_t kSize = 200'000'000;
    const auto bomb = zlibStream(std::string(kSize, ' '));
    const auto headOf = [](std::uint64_t compressed, std::uint64_t size) {
        return "xar!" + bigEndian(28, 2) + bigEndian(1, 2) + bigEndian(compressed, 8) + bigEndian(size, 8) +
               bigEndian(0, 4);
    };
    const auto table = [](const std::string& data) {
        return "<xar><toc><file><name>Distribution</name><data>" + data + "</data></file></toc></xar>";
    };
    const auto large = std::to_string(kSize);
    const std::pair<const char*, std::string> packages[] = {
        {"a table that expands", headOf(bomb.size(), kSize) + bomb},
        {"a table that is stored so", headOf(kSize, 100)},
        {"a member that expands", xar({{"Distribution", "application/x-gzip", bomb, kSize}})},
        {"a member that is stored so", xar(table("<length>" + large + "</length><offset>0</offset>"))},
    };
    for (const auto& [what, bytes] : packages) {
        SCOPED_TRACE(what);
        folder.write("a.pkg", bytes);
        std::filesystem::resize_file(folder / "a.pkg", bytes.size() + kSize);  // takes no space
        EXPECT_LT(peakMemoryOf([&] {
                      EXPECT_EQ(archiveErrorOf([&] { BuildArchiveInspector::inspect(folder / "a.pkg"); }),
                                Kind::malformed);
                  }),
                  kMostMemory);
    }
    const auto bombWithoutHeader = bomb.substr(2);
    const auto archive = zip({{kInfo, bombWithoutHeader, kSize, ZipArchive::kDeflated}});
    EXPECT_LT(peakMemoryOf([&] { EXPECT_EQ(errorOf("a.ipa", archive), Kind::malformed); }), kMostMemory);
}

TEST_F(HostileArchiveTest, EntryCountsThatLieAreRefused) {
    auto bytes = zip({storedMember(kInfo, binaryList())}, {.isZip64 = true});
    const auto count = bytes.rfind("PK\x06\x06") + 32;
    for (const std::uint64_t lie : {std::uint64_t{2}, std::uint64_t{1} << 32, ~std::uint64_t{0}}) {
        bytes.replace(count, 8, littleEndian(lie, 8));
        EXPECT_LT(peakMemoryOf([&] { EXPECT_EQ(errorOf("a.ipa", bytes), Kind::malformed); }), kMostMemory);
    }
}

TEST_F(HostileArchiveTest, ADirectoryThatPointsAtItselfIsReadOnlyAsOftenAsItSays) {
    const auto bytes = zip({storedMember(kInfo, binaryList())});
    const auto directory = bytes.rfind("PK\x01\x02"), end = bytes.rfind("PK\x05\x06");
    // The member is its own directory header: no property list begins like that.
    auto changed = bytes;
    changed.replace(directory + 42, 4, littleEndian(directory, 4));
    EXPECT_EQ(errorOf("a.ipa", changed), Kind::malformed);
    // The directory is the end record, or the locator is its own record.
    changed = bytes;
    changed.replace(end + 16, 4, littleEndian(end, 4));
    EXPECT_EQ(errorOf("a.ipa", changed), Kind::malformed);
    changed = zip({storedMember(kInfo, binaryList())}, {.isZip64 = true});
    const auto locator = changed.rfind("PK\x06\x07");
    changed.replace(locator + 8, 8, littleEndian(locator, 8));
    EXPECT_EQ(errorOf("a.ipa", changed), Kind::malformed);
}

TEST_F(HostileArchiveTest, ADirectoryOfAMillionEntriesTakesNoMoreMemoryThanOfOne) {
    std::string directory;
    for (int i = 0; i < 1'000'000; ++i) directory += "PK\x01\x02" + std::string(42, '\0');
    const auto bytes = directory + "PK\x06\x06" + std::string(28, '\0') + littleEndian(1'000'000, 8) +
                       std::string(16, '\0') + "PK\x06\x07" + std::string(4, '\0') +
                       littleEndian(directory.size(), 8) + std::string(4, '\0') + "PK\x05\x06" +
                       std::string(4, '\0') + "\xFF\xFF\xFF\xFF" + std::string(10, '\0');
    folder.write("a.ipa", bytes);
    EXPECT_LT(peakMemoryOf([&] {
                  EXPECT_EQ(archiveErrorOf([&] { BuildArchiveInspector::inspect(folder / "a.ipa"); }),
                            Kind::noAppInside);
              }),
              kMostMemory);
}

TEST_F(HostileArchiveTest, EntityBombsAreRefusedInEveryDocument) {
    std::string bomb = "<!DOCTYPE d [<!ENTITY e0 'lol'>";
    for (int i = 1; i < 30; ++i)
        bomb +=
            "<!ENTITY e" + std::to_string(i) + " '" + repeated(10, "&e" + std::to_string(i - 1) + ";") + "'>";
    bomb += "]><d>&e29;</d>";
    const auto peak = peakMemoryOf([&] {
        EXPECT_EQ(errorOf("a.ipa", zip({storedMember(kInfo, bomb)})), Kind::malformed);
        EXPECT_EQ(errorOf("a.pkg", xar(std::string_view(bomb))), Kind::malformed);
        EXPECT_EQ(errorOf("b.pkg", xar({{"Distribution", "", bomb, bomb.size()}})), Kind::malformed);
    });
    EXPECT_LT(peak, kMostMemory);
}

// What this process has read so far, in bytes, whichever call read it.
std::uint64_t bytesReadByTheProcess() {
    std::ifstream counts("/proc/self/io");
    std::string name;
    std::uint64_t bytes = 0;
    counts >> name >> bytes;
    if (name != "rchar:") throw std::runtime_error("the kernel doesn't count what is read");
    return bytes;
}

// What inspecting the file reads.
std::uint64_t bytesReadFrom(const std::filesystem::path& file) {
    bytesReadByTheProcess();
    const auto before = bytesReadByTheProcess();
    const auto counting = bytesReadByTheProcess() - before;  // the counts are a file, too
    const auto start = bytesReadByTheProcess();
    BuildArchiveInspector::inspect(file);
    return bytesReadByTheProcess() - start - counting;
}

constexpr std::uint64_t k4GB = std::uint64_t{4} << 30;

// A file of zeros, which takes no space on the disk, with pieces in it.
void writeSparse(const std::filesystem::path& path, const std::map<std::uint64_t, std::string>& pieces) {
    std::ofstream file(path, std::ios::binary);
    for (const auto& [offset, bytes] : pieces) {
        file.seekp(static_cast<std::streamoff>(offset));
        file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    }
    ASSERT_TRUE(file.flush());
}

TEST_F(HostileArchiveTest, OfAnIPAOf4GBOnlyTheEndTheDirectoryAndTheListAreRead) {
    const TemporaryFolder disk;
    const auto list = binaryList();
    std::vector<ZipMember> members = {storedMember(kInfo, list)};
    for (int i = 0; i < 5'000; ++i) members.push_back(storedMember("Payload/A.app/" + std::to_string(i), ""));
    const auto archive = zip(members, {.isZip64 = true, .start = k4GB + 7});
    writeSparse(disk / "a.ipa", {{k4GB + 7, archive}});
    ASSERT_GT(std::filesystem::file_size(disk / "a.ipa"), k4GB);

    const auto directory = archive.size() - archive.find("PK\x01\x02");
    // A header at the border of two reads is read again.
    const std::uint64_t bordersOfReads = (directory / 65'536 + 1) * 200;
    EXPECT_LE(bytesReadFrom(disk / "a.ipa"), 65'557 + directory + bordersOfReads + 30 + list.size());
}

TEST_F(HostileArchiveTest, OfAPKGOf4GBOnlyTheHeadTheTableAndTheDistributionAreRead) {
    const TemporaryFolder disk;
    const auto content = distribution();
    const std::string table =
        "<xar><toc><file><name>Payload</name><data><length>4294967296</length><offset>0</offset></data></"
        "file>"
        "<file><name>Distribution</name><data><length>" +
        std::to_string(content.size()) +
        "</length><offset>4294967296</offset><size>0</size></data></file></toc></xar>";
    const auto head = xar(table);
    writeSparse(disk / "a.pkg", {{0, head}, {head.size() + k4GB, content}});
    ASSERT_GT(std::filesystem::file_size(disk / "a.pkg"), k4GB);

    EXPECT_LE(bytesReadFrom(disk / "a.pkg"), 4 + 4 + head.size() + content.size());
}

}  // namespace
}  // namespace kestrin
