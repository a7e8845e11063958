#include "SyncEngine/State/ProjectStateStore.h"

#include <gtest/gtest.h>

#include "KestrinCore/FileError.h"
#include "KestrinCore/StableJSON.h"
#include "Tests/Support/PeakMemory.h"
#include "Tests/Support/ProcessState.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Support/Unprivileged.h"

namespace kestrin {
namespace {

const UUID kProject = *UUID::parse("0f9c1b2a-3d4e-4f50-8a6b-7c8d9e0f1a2b");
const ContentKey kName = ContentKey::AppInfoLocale{{"de-DE"}, ListingField::name};

class ProjectStateStoreTest : public testing::Test {
 protected:
    std::filesystem::path file(const char* name) const {
        return "0F9C1B2A-3D4E-4F50-8A6B-7C8D9E0F1A2B/" + std::string(name);
    }

    TemporaryFolder folder;
    ProjectStateStore store{folder.path()};
};

RemoteIDs everyID() {
    RemoteIDs ids;
    ids.appInfoID = "AI";
    ids.appInfoState = "PREPARE_FOR_SUBMISSION";
    ids.appInfoLocalizations[{"de-DE"}] = "AL";
    ids.versions[StorePlatform::iOS] = {
        "V", "PREPARE_FOR_SUBMISSION", {{{"de-DE"}, "VL"}}, {{{"de-DE"}, {{"G/T", {"P2", "P1"}}}}}, "R", "B"};
    ids.pages[{"summer"}] = {"P", "https://p", "PV", "APPROVED", {{{"ja"}, "PL"}}, {{{"ja"}, {}}}};
    ids.experiments[{"icons"}] = {
        "E", "REJECTED", {{{"blue"}, {"T", {{{"ja"}, "TL"}}, {{{"ja"}, {{"G/T", {}}}}}}}}};
    return ids;
}

TEST_F(ProjectStateStoreTest, ANewProjectHasNothing) {
    EXPECT_EQ(store.base(kProject), std::nullopt);
    EXPECT_EQ(store.remoteIDs(kProject), std::nullopt);
    EXPECT_TRUE(store.remoteAssets(kProject).empty());
    EXPECT_EQ(store.refData(), std::nullopt);
}

TEST_F(ProjectStateStoreTest, WritingMakesTheFoldersAndTheFilesAreStableJSON) {
    ProjectStateStore deeper(folder / "a/b");
    deeper.saveBase({{kName, "Name"}}, kProject);
    deeper.saveRefData({});
    EXPECT_EQ(folder.read("a/b/0F9C1B2A-3D4E-4F50-8A6B-7C8D9E0F1A2B/base.json"),
              "{\n  \"app/de-DE/name\" : \"Name\"\n}\n");
    EXPECT_EQ(deeper.refData(), AssetLibraryRefData{});
}

TEST_F(ProjectStateStoreTest, AnEmptySnapshotIsNotAnAbsentOne) {
    folder.write(file("base.json"), "{}");
    EXPECT_EQ(store.base(kProject), FlatValues{});
}

TEST_F(ProjectStateStoreTest, AnUnknownKeyOfTheSnapshotIsLeftOutAndTheRestStay) {
    folder.write(file("base.json"), R"({"foo/bar":"x","app/de-DE/name":"Name"})");
    EXPECT_EQ(store.base(kProject), (FlatValues{{kName, "Name"}}));
}

TEST_F(ProjectStateStoreTest, AnEmptyValueOfTheSnapshotSurvives) {
    store.saveBase({{kName, ""}}, kProject);
    EXPECT_EQ(store.base(kProject), (FlatValues{{kName, ""}}));
}

TEST_F(ProjectStateStoreTest, IdsReadBackAsTheyWereWritten) {
    store.saveRemoteIDs(everyID(), kProject);
    EXPECT_EQ(store.remoteIDs(kProject), everyID());
    store.saveRemoteIDs({}, kProject);
    EXPECT_EQ(store.remoteIDs(kProject), RemoteIDs{});
}

TEST_F(ProjectStateStoreTest, IdsHaveExactlyTheNamesOfTheFields) {
    EXPECT_EQ(
        StableJSON::encodeCompact(everyID().toJSON()),
        R"({"appInfoID":"AI","appInfoLocalizations":{"de-DE":"AL"},"appInfoState":"PREPARE_FOR_SUBMISSION",)"
        R"("experiments":{"icons":{"id":"E","state":"REJECTED","treatments":{"blue":{"id":"T",)"
        R"("localizations":{"ja":"TL"},"placements":{"ja":{"G/T":[]}}}}}},)"
        R"("pages":{"summer":{"id":"P","localizations":{"ja":"PL"},"placements":{"ja":{}},"url":"https://p",)"
        R"("versionID":"PV","versionState":"APPROVED"}},)"
        R"("versions":{"IOS":{"buildID":"B","id":"V","localizations":{"de-DE":"VL"},)"
        R"("placements":{"de-DE":{"G/T":["P2","P1"]}},"reviewDetailID":"R","state":"PREPARE_FOR_SUBMISSION"}}})");
    EXPECT_EQ(StableJSON::encodeCompact(RemoteIDs{}.toJSON()),
              R"({"appInfoLocalizations":{},"experiments":{},"pages":{},"versions":{}})");
}

TEST_F(ProjectStateStoreTest, TopLevelMembersOfTheIdsMayBeMissingAndSoMayMostOfAVersion) {
    folder.write(file("remote-ids.json"), R"({"versions":{"IOS":{"id":"V","state":"S"}}})");
    RemoteIDs expected;
    expected.versions[StorePlatform::iOS].id = "V";
    expected.versions[StorePlatform::iOS].state = "S";
    EXPECT_EQ(store.remoteIDs(kProject), expected);
}

TEST_F(ProjectStateStoreTest, AMissingRequiredMemberOfTheIdsIsADamagedFile) {
    for (
        const auto* ids : {
            R"({"versions":{"IOS":{"id":"V"}}})",
            R"({"versions":{"IOS":{"state":"S"}}})",
            R"({"versions":{"IOS":null}})",
            R"({"pages":{"p":{"id":"P","versionID":"V","versionState":"S","localizations":{}}}})",
            R"({"pages":{"p":{"id":"P","versionID":"V","localizations":{},"placements":{}}}})",
            R"({"experiments":{"e":{"id":"E","state":"S"}}})",
            R"({"experiments":{"e":{"id":"E","state":"S","treatments":{"t":{"id":"T","localizations":{}}}}}})",
            R"({"appInfoLocalizations":{"de-DE":7}})",
            R"([])",
        }) {
        SCOPED_TRACE(ids);
        folder.write(file("remote-ids.json"), ids);
        EXPECT_THROW(store.remoteIDs(kProject), StateFileError);
    }
}

TEST_F(ProjectStateStoreTest, AssetsReadBackAsTheyWereWritten) {
    ASCLibraryAsset asset;
    asset.id = "7";
    asset.fileName = "a.png";
    store.saveRemoteAssets({{"7", asset}}, kProject);
    EXPECT_EQ(store.remoteAssets(kProject), (KnownAssets{{"7", asset}}));
    EXPECT_EQ(
        folder.read(file("remote-assets.json")),
        "{\n  \"7\" : {\n    \"fileName\" : \"a.png\",\n    \"id\" : \"7\",\n    \"kind\" : \"image\",\n"
        "    \"referenceName\" : \"\"\n  }\n}\n");
}

TEST_F(ProjectStateStoreTest, SavingManyAssetsTakesNoMemoryForAllOfThemAtOnce) {
    KnownAssets assets;
    for (int number = 0; number < 50'000; ++number) {
        auto& asset = assets[std::to_string(number)];
        asset.id = std::to_string(number);
        asset.fileName = "Screen " + asset.id + ".png";
        asset.category = "APP_SCREENSHOTS_AND_PREVIEWS";
        asset.thumbnail = ImageTemplate{"https://example.com/" + asset.id + "/{w}x{h}.{f}", 1290, 2796};
    }
    const auto peak = peakMemoryOf([&] { store.saveRemoteAssets(assets, kProject); });
    // Under the address sanitizer whatever was freed on the way counts, too.
    EXPECT_LT(peak, (std::size_t{4} << 20) + keptOfWhatWasFreed);
    EXPECT_GT(std::filesystem::file_size(folder / file("remote-assets.json")), std::uintmax_t{10} << 20);
    EXPECT_EQ(store.remoteAssets(kProject), assets);
}

TEST_F(ProjectStateStoreTest, TheSnapshotIsInTheOrderOfTheBytesOfItsKeys) {
    // A decomposed é is "e" and more in bytes, and behind "z" as text.
    const ContentKey decomposed = ContentKey::Page{{"e\u0301"}, PageAttribute::name};
    const ContentKey z = ContentKey::Page{{"z"}, PageAttribute::name};
    ASSERT_LT(z, decomposed);
    store.saveBase({{z, "Z"}, {decomposed, "E"}}, kProject);
    EXPECT_EQ(folder.read(file("base.json")),
              "{\n  \"pages/e\u0301/name\" : \"E\",\n  \"pages/z/name\" : \"Z\"\n}\n");
}

TEST_F(ProjectStateStoreTest, ADamagedFileIsNamedAndLeftAsItIs) {
    for (const auto* damaged : {"", "{", "7", R"({"app/de-DE/name":7})"}) {
        SCOPED_TRACE(damaged);
        folder.write(file("base.json"), damaged);
        try {
            store.base(kProject);
            ADD_FAILURE() << "no error";
        } catch (const StateFileError& error) {
            EXPECT_EQ(error.errorDescription(),
                      "The state file “" + (folder / file("base.json")).native() +
                          "” is damaged. Remove it and pull again to make a new one.");
        }
        EXPECT_EQ(folder.read(file("base.json")), damaged);
    }
}

TEST_F(ProjectStateStoreTest, AFileThatCantBeReadIsAFileError) {
    std::filesystem::create_directories(folder / file("base.json"));
    EXPECT_THROW(store.base(kProject), FileError);
}

TEST_F(ProjectStateStoreTest, AFolderThatCantBeMadeIsAFileErrorAndNothingIsWritten) {
    folder.write("in-the-way", "");
    ProjectStateStore blocked(folder / "in-the-way");
    EXPECT_THROW(blocked.saveBase({}, kProject), FileError);
    EXPECT_EQ(folder.read("in-the-way"), "");
}

TEST_F(ProjectStateStoreTest, AProjectsFolderIsItsIdInUpperCase) {
    store.saveRemoteIDs({}, kProject);
    EXPECT_TRUE(std::filesystem::exists(folder / "0F9C1B2A-3D4E-4F50-8A6B-7C8D9E0F1A2B/remote-ids.json"));
}

TEST_F(ProjectStateStoreTest, AWriteThatFailsLeavesTheEarlierFile) {
    store.saveBase({{kName, "Name"}}, kProject);
    const auto projectFolder = (folder / file("base.json")).parent_path();
    std::filesystem::permissions(folder.path(), std::filesystem::perms(0755));
    std::filesystem::permissions(projectFolder, std::filesystem::perms(0555));
    {
        const Unprivileged user;
        EXPECT_THROW(store.saveBase({{kName, "Other"}}, kProject), FileError);
        EXPECT_EQ(store.base(kProject), (FlatValues{{kName, "Name"}}));
    }
    std::filesystem::permissions(projectFolder, std::filesystem::perms(0755));
}

TEST_F(ProjectStateStoreTest, ASaveLeavesNothingBesideItsFile) {
    store.saveBase({{kName, "Name"}}, kProject);
    store.saveBase({{kName, "Other"}}, kProject);
    store.saveRemoteIDs(everyID(), kProject);
    store.saveRemoteAssets({}, kProject);
    store.saveRefData({});
    std::vector<std::string> names;
    for (const auto& [name, bytes] : folder.files()) names.push_back(name);
    EXPECT_EQ(names, (std::vector<std::string>{file("base.json"), file("remote-assets.json"),
                                               file("remote-ids.json"), "refdata.json"}));
}

TEST_F(ProjectStateStoreTest, WhatWasKeptIsPutBackByteForByte) {
    folder.write(file("base.json"), "{ }");
    folder.write(file("remote-ids.json"), "damaged");
    const auto before = folder.files();

    const auto earlier = store.keep(kProject);
    store.saveBase({{kName, "Name"}}, kProject);
    store.saveRemoteIDs(everyID(), kProject);
    store.saveRemoteAssets({}, kProject);
    store.restore(earlier, kProject);

    EXPECT_EQ(folder.files(), before);
}

TEST_F(ProjectStateStoreTest, PuttingBackNothingLeavesNothing) {
    const auto earlier = store.keep(kProject);
    store.saveBase({{kName, "Name"}}, kProject);
    store.restore(earlier, kProject);
    EXPECT_FALSE(folder.has(file("").parent_path()));
}

TEST_F(ProjectStateStoreTest, WhatIsKeptIsNotReadUntilItIsPutBack) {
    folder.write(file("remote-assets.json"), std::string(std::size_t{32} << 20, ' '));
    EXPECT_LT(peakMemoryOf([&] { store.keep(kProject); }), std::size_t{16} << 20);
}

TEST_F(ProjectStateStoreTest, PuttingBackTouchesNoFileThatIsAsItWas) {
    store.saveBase({{kName, "Name"}}, kProject);
    const auto earlier = store.keep(kProject);
    const auto written = std::filesystem::last_write_time(folder / file("base.json"));
    store.restore(earlier, kProject);
    EXPECT_EQ(std::filesystem::last_write_time(folder / file("base.json")), written);
}

TEST_F(ProjectStateStoreTest, ProjectsDontSeeEachOther) {
    store.saveBase({{kName, "Name"}}, kProject);
    EXPECT_EQ(store.base(UUID::random()), std::nullopt);
}

TEST(ProjectStateStoreRoots, TheCommandLinesIsBelowTheHomeFolder) {
    const EnvironmentVariable home("HOME", "/home/of/a/test");
    EXPECT_EQ(ProjectStateStore::commandLine().root, "/home/of/a/test/.kestrin/state");
}

TEST(ProjectStateStoreRoots, TheApplicationsIsInTheFolderForApplicationData) {
    const EnvironmentVariable home("HOME", "/home/of/a/test");
    struct Row {
        const char* folder;
        const char* root;
    };
    const Row rows[] = {
        {nullptr, "/home/of/a/test/.local/share/Kestrin/Projects"},
        {"", "/home/of/a/test/.local/share/Kestrin/Projects"},
        {"relative", "/home/of/a/test/.local/share/Kestrin/Projects"},
        {"/data", "/data/Kestrin/Projects"},
    };
    for (const Row& row : rows) {
        const EnvironmentVariable data("XDG_DATA_HOME", row.folder);
        EXPECT_EQ(ProjectStateStore::application().root, row.root);
    }
}

}  // namespace
}  // namespace kestrin
