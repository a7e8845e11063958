#include "AssetPipeline/BuildArchive/BuildArchiveInspector.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "KestrinCore/FileError.h"
#include "Tests/AssetPipeline/BuildArchive/ArchiveErrors.h"
#include "Tests/Support/ArchiveBytes.h"
#include "Tests/Support/TemporaryFolder.h"

namespace kestrin {
namespace {

using Kind = BuildArchiveError::Kind;

const std::string kInfo = "Payload/A.app/Info.plist";
const std::string kBundleID = "<key>CFBundleIdentifier</key><string>com.example.glowworm</string>";

std::string propertyList(const std::string& more = "") {
    return xmlPropertyList(kBundleID + more);
}

class BuildArchiveInspectorTest : public testing::Test {
 protected:
    BuildArchiveInfo inspect(const std::string& bytes, const std::string& name = "A.ipa") {
        folder.write(name, bytes);
        return BuildArchiveInspector::inspect(folder / name);
    }

    // The kind of what inspecting throws; nullopt when it throws nothing.
    std::optional<Kind> errorOf(const std::string& bytes, const std::string& name = "A.ipa") {
        return archiveErrorOf([&] { inspect(bytes, name); });
    }

    BuildArchiveInfo inspectList(const std::string& more) {
        return inspect(zip({storedMember(kInfo, propertyList(more))}));
    }

    TemporaryFolder folder;
};

// What one of these tools makes, as "kind bundle short build platform encryption" or the kind of error.
std::string outcomeOf(const std::filesystem::path& file) {
    try {
        const auto info = BuildArchiveInspector::inspect(file);
        const std::string encryption = !info.usesNonExemptEncryption   ? ""
                                       : *info.usesNonExemptEncryption ? " encrypts"
                                                                       : " exempt";
        EXPECT_EQ(info.fileSize, static_cast<std::int64_t>(std::filesystem::file_size(file)));
        return (info.kind == BuildArchiveInfo::Kind::ipa ? "ipa " : "pkg ") + info.bundleID.value_or("?") +
               " " + info.shortVersion.value_or("?") + " " + info.buildVersion.value_or("?") + " " +
               info.platform + encryption;
    } catch (const BuildArchiveError& error) {
        return error.errorDescription();
    }
}

TEST(BuildArchiveInspector, ReadsTheArchivesOfEveryTool) {
    const TemporaryFolder folder;
    const auto command = std::string(KESTRIN_TEST_PYTHON) + " '" KESTRIN_TEST_MAKE_ARCHIVES "' '" +
                         folder.path().string() + "' '" KESTRIN_TEST_ZIP "' '" KESTRIN_TEST_BSDTAR "'";
    ASSERT_EQ(std::system(command.c_str()), 0) << command;

    const std::string phone = "ipa com.example.glowworm 1.4 27 IOS exempt";
    const std::string mac = "pkg com.example.glowworm 1.4 27 MAC_OS";
    const auto sentence = [](Kind kind) { return BuildArchiveError(kind).errorDescription(); };
    const std::map<std::string, std::string> outcomes = {
        {"infozip-deflated-binary.ipa", phone},
        {"infozip-deflated-xml.ipa", phone},
        {"infozip-stored-binary.ipa", phone},
        {"infozip-stored-xml.ipa", phone},
        {"infozip-streamed.ipa", phone},
        {"infozip-zip64.ipa", phone},
        {"libarchive-deflated.ipa", phone},
        {"libarchive-stored.ipa", phone},
        {"libarchive-streamed.ipa", phone},
        {"libarchive-zip64.ipa", phone},
        {"libarchive-gzip.pkg", mac},
        {"libarchive-none.pkg", mac},
        // Still compressed, so no XML.
        {"libarchive-bzip2.pkg", sentence(Kind::malformed)},
        {"libarchive-xz.pkg", sentence(Kind::malformed)},
        {"python-deflated.ipa", phone},
        {"python-deflated-xml.ipa", phone},
        {"python-stored.ipa", phone},
        {"python-streamed.ipa", phone},
        {"python-70000-entries.ipa", phone},
        {"python-longest-comment.ipa", phone},
        {"python-comment-too-long.ipa", sentence(Kind::notAnArchive)},
        {"python-bzip2.ipa", sentence(Kind::unsupportedCompression)},
        {"python-lzma.ipa", sentence(Kind::unsupportedCompression)},
        {"python-tv.ipa", "ipa com.example.glowworm 1.4 27 TV_OS exempt"},
        {"python-vision.ipa", "ipa com.example.glowworm 1.4 27 VISION_OS exempt"},
    };
    std::map<std::string, std::string> made;
    for (const auto& file : std::filesystem::directory_iterator(folder.path()))
        made[file.path().filename()] = outcomeOf(file.path());
    EXPECT_EQ(made, outcomes);
}

TEST_F(BuildArchiveInspectorTest, TakesTheAppAtTheTopAndNotAnExtensionInIt) {
    const auto other = xmlPropertyList("<key>CFBundleIdentifier</key><string>other</string>");
    const auto info = inspect(zip({
        storedMember("Payload/A.app/PlugIns/B.appex/Info.plist", other),
        storedMember("Payload/A.app/PlugIns/B.app/Info.plist", other),
        storedMember("Payload/A.app/Info.plist/", other),
        storedMember("payload/A.app/Info.plist", other),
        storedMember("x/Payload/A.app/Info.plist", other),
        storedMember("Payload/.app/Info.plist", other),
        storedMember("Payload/A.bundle/Info.plist", other),
        storedMember("Payload/A.app/Info.plist", propertyList()),
        storedMember("Payload/B.app/Info.plist", other),
    }));
    EXPECT_EQ(info.bundleID, "com.example.glowworm");
}

TEST_F(BuildArchiveInspectorTest, TheAppMayHaveAnyName) {
    for (const std::string name : {"Glühwürmchen", "a.app", " ", "\xFF", "line\nfeed"}) {
        SCOPED_TRACE(name);
        EXPECT_EQ(
            inspect(zip({storedMember("Payload/" + name + ".app/Info.plist", propertyList())})).bundleID,
            "com.example.glowworm");
    }
}

TEST_F(BuildArchiveInspectorTest, TheExtensionOfTheFileSaysWhichArchiveItIs) {
    const auto ipa = zip({storedMember(kInfo, propertyList())});
    const std::string distribution = R"(<d><bundle id="a" CFBundleShortVersionString="1"/></d>)";
    const auto pkg = xar({{"Distribution", "", distribution, distribution.size()}});

    EXPECT_EQ(inspect(ipa, "A.IPA").kind, BuildArchiveInfo::Kind::ipa);
    EXPECT_EQ(inspect(ipa, "A").kind, BuildArchiveInfo::Kind::ipa);
    EXPECT_EQ(inspect(ipa, "A.zip").kind, BuildArchiveInfo::Kind::ipa);
    EXPECT_EQ(inspect(pkg, "A.pkg").kind, BuildArchiveInfo::Kind::pkg);
    EXPECT_EQ(inspect(pkg, "A.Pkg").kind, BuildArchiveInfo::Kind::pkg);
    EXPECT_EQ(errorOf(ipa, "B.pkg"), Kind::notAnArchive);
    EXPECT_EQ(errorOf(pkg, "B.ipa"), Kind::notAnArchive);
    EXPECT_EQ(errorOf(pkg, "B"), Kind::notAnArchive);
    EXPECT_EQ(errorOf("", "empty.pkg"), Kind::notAnArchive);
    EXPECT_EQ(errorOf("xar", "short.pkg"), Kind::notAnArchive);
}

TEST_F(BuildArchiveInspectorTest, ThePlatformIsThatOfTheSupportedPlatforms) {
    struct Row {
        const char *when, *platforms, *platform;
    };
    const Row rows[] = {
        {"no list", "", "IOS"},
        {"an empty one", "<array/>", "IOS"},
        {"the phone", "<array><string>iPhoneOS</string></array>", "IOS"},
        {"the television", "<array><string>AppleTVOS</string></array>", "TV_OS"},
        {"the headset", "<array><string>XROS</string></array>", "VISION_OS"},
        {"the television wins", "<array><string>XROS</string><string>AppleTVOS</string></array>", "TV_OS"},
        {"a simulator", "<array><string>AppleTVSimulator</string></array>", "IOS"},
        {"one that isn't a text", "<array><integer>1</integer><string>XROS</string></array>", "VISION_OS"},
        {"no array", "<string>AppleTVOS</string>", "IOS"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.when);
        const std::string list = row.platforms;
        EXPECT_EQ(inspectList(list.empty() ? "" : "<key>CFBundleSupportedPlatforms</key>" + list).platform,
                  row.platform);
    }
}

TEST_F(BuildArchiveInspectorTest, WhatThePropertyListDoesNotSayIsAbsent) {
    const auto info = inspect(zip({storedMember(kInfo, xmlPropertyList(""))}));
    EXPECT_EQ(info, (BuildArchiveInfo{.platform = "IOS", .fileSize = info.fileSize}));
}

TEST_F(BuildArchiveInspectorTest, AValueOfAnotherTypeIsAbsent) {
    const auto info = inspectList(
        "<key>CFBundleVersion</key><integer>27</integer>"
        "<key>CFBundleShortVersionString</key><array/>"
        "<key>ITSAppUsesNonExemptEncryption</key><string>true</string>");
    EXPECT_EQ(info.buildVersion, std::nullopt);
    EXPECT_EQ(info.shortVersion, std::nullopt);
    EXPECT_EQ(info.usesNonExemptEncryption, std::nullopt);
}

TEST_F(BuildArchiveInspectorTest, TheEncryptionFlagIsAThreefoldAnswer) {
    const std::string key = "<key>ITSAppUsesNonExemptEncryption</key>";
    EXPECT_EQ(inspectList(key + "<true/>").usesNonExemptEncryption, true);
    EXPECT_EQ(inspectList(key + "<false/>").usesNonExemptEncryption, false);
    EXPECT_EQ(inspectList("").usesNonExemptEncryption, std::nullopt);
}

TEST_F(BuildArchiveInspectorTest, ThePropertyListMustBeADictionary) {
    EXPECT_EQ(errorOf(zip({storedMember(kInfo, "<plist><array/></plist>")})), Kind::malformed);
    EXPECT_EQ(errorOf(zip({storedMember(kInfo, "CFBundleIdentifier = a;")})), Kind::malformed);
    EXPECT_EQ(errorOf(zip({storedMember(kInfo, "")})), Kind::malformed);
}

TEST_F(BuildArchiveInspectorTest, AnArchiveWithoutAnAppHasNoAppInside) {
    EXPECT_EQ(errorOf(zip({})), Kind::noAppInside);
    EXPECT_EQ(errorOf(zip({storedMember("readme.txt", "a")})), Kind::noAppInside);
    EXPECT_EQ(errorOf(xar({{"Distribution", "", "<d/>", 4}}), "A.pkg"), Kind::noAppInside);
}

TEST_F(BuildArchiveInspectorTest, OfAPackageTheFirstBundleWithAVersionCounts) {
    const std::string distribution =
        R"(<installer-script><bundle id="helper"/><Bundle id="x" CFBundleShortVersionString="0"/>)"
        R"(<product><a><bundle id="com.example.glowworm" CFBundleShortVersionString="1.4" CFBundleVersion="27"/></a>)"
        R"(</product><bundle id="later" CFBundleShortVersionString="2"/></installer-script>)";
    const auto bytes =
        xar({{"Distribution", "application/x-gzip", zlibStream(distribution), distribution.size()}});

    EXPECT_EQ(inspect(bytes, "A.pkg"),
              (BuildArchiveInfo{.kind = BuildArchiveInfo::Kind::pkg,
                                .bundleID = "com.example.glowworm",
                                .shortVersion = "1.4",
                                .buildVersion = "27",
                                .platform = "MAC_OS",
                                .fileSize = static_cast<std::int64_t>(bytes.size())}));
}

TEST_F(BuildArchiveInspectorTest, AnEmptyVersionInAPackageIsAVersion) {
    const std::string distribution = R"(<d><bundle CFBundleShortVersionString=""/></d>)";
    const auto info = inspect(xar({{"Distribution", "", distribution, distribution.size()}}), "A.pkg");
    EXPECT_EQ(info.shortVersion, "");
    EXPECT_EQ(info.bundleID, std::nullopt);
}

TEST_F(BuildArchiveInspectorTest, TheEncryptionFlagOfAPackageIsAWord) {
    const std::pair<const char*, bool> answers[] = {{"true", true}, {"YES", true},    {"1", true},
                                                    {"no", false},  {"false", false}, {"", false}};
    for (const auto& [word, uses] : answers) {
        SCOPED_TRACE(word);
        const std::string distribution =
            std::string(R"(<d><bundle CFBundleShortVersionString="1" ITSAppUsesNonExemptEncryption=")") +
            word + "\"/></d>";
        EXPECT_EQ(inspect(xar({{"Distribution", "", distribution, distribution.size()}}), "A.pkg")
                      .usesNonExemptEncryption,
                  uses);
    }
}

TEST_F(BuildArchiveInspectorTest, AFileThatCannotBeReadIsAFileError) {
    EXPECT_THROW(BuildArchiveInspector::inspect(folder / "none.ipa"), FileError);
    EXPECT_THROW(BuildArchiveInspector::inspect(folder.path()), FileError);
}

TEST(BuildArchiveInfo, TakesTheVersionsThatAreGivenInPlaceOfItsOwn) {
    const BuildArchiveInfo info{.shortVersion = "1.4", .buildVersion = "27"};
    EXPECT_EQ(info.with({}, {}), info);
    EXPECT_EQ(info.with("2", {}), (BuildArchiveInfo{.shortVersion = "2", .buildVersion = "27"}));
    EXPECT_EQ(info.with({}, "28"), (BuildArchiveInfo{.shortVersion = "1.4", .buildVersion = "28"}));
    EXPECT_EQ(info.with("2", "28"), (BuildArchiveInfo{.shortVersion = "2", .buildVersion = "28"}));
}

TEST(BuildArchiveError, SaysWhatTheUserCanDo) {
    const std::pair<Kind, const char*> sentences[] = {
        {Kind::notAnArchive,
         "The file isn’t a whole .ipa or .pkg archive: pass the file that Xcode exported."},
        {Kind::malformed, "The archive is damaged or incomplete: copy or export it again."},
        {Kind::unsupportedCompression,
         "The app’s Info.plist is compressed in a way that can’t be read: export the archive with Xcode, or "
         "pack it "
         "with zip."},
        {Kind::noAppInside,
         "There is no app in the archive: pass an .ipa with an app in its Payload folder, or a .pkg that was "
         "exported for the App Store."},
    };
    for (const auto& [kind, sentence] : sentences)
        EXPECT_EQ(BuildArchiveError(kind).errorDescription(), sentence);
}

}  // namespace
}  // namespace kestrin
