#include "SyncEngine/Pull/ProjectPuller.h"

#include <gtest/gtest.h>

#include "KestrinCore/FileError.h"
#include "KestrinModel/PackageNameError.h"
#include "SyncEngine/Pull/SyncError.h"
#include "Tests/Support/ListingNames.h"
#include "Tests/Support/RoutedClient.h"
#include "Tests/Support/TemporaryFolder.h"

namespace kestrin {
namespace {

const ContentKey kName = ContentKey::AppInfoLocale{kGerman, ListingField::name};

struct PullWorld : RoutedClient {
    TemporaryFolder folder;
    ProjectStateStore store{folder / "state"};
    Project project;

    PullWorld() {
        project.manifest.projectID = UUID::random();
        project.manifest.app.bundleID = "a.b";
        answer("/v1/apps", R"({"data":[{"type":"apps","id":"7"}]})");
        answer("/v1/apps/7", R"({"data":{"type":"apps","id":"7"}})");
        remoteName("de-DE", "Remote");
    }

    void remoteName(const std::string& locale, const std::string& name) {
        answer("/v1/apps/7/appInfos", R"({"data":[{"type":"appInfos","id":"AI"}]})");
        answer("/v1/appInfos/AI/appInfoLocalizations",
               R"({"data":[{"type":"l","id":"L","attributes":{"locale":")" + locale + R"(","name":")" + name +
                   R"("}}]})");
    }

    PullResult pull(const MediaLocator& locate = {}) {
        return ProjectPuller(client, store).pull(project, locate);
    }
    bool hasState() const { return std::filesystem::exists(store.root); }
};

TEST(ProjectPuller, FindsTheAppByItsBundleIDAndRemembersIt) {
    PullWorld world;
    const auto result = world.pull();
    EXPECT_EQ(result.project.manifest.app.ascAppID, "7");
    EXPECT_EQ(world.paths().front(), "/v1/apps");
    EXPECT_EQ(ContentGraph::value(kName, result.project), "Remote");
    EXPECT_EQ(result.updatedKeys, std::vector{kName});
}

TEST(ProjectPuller, AsksForNoAppThatTheProjectAlreadyKnows) {
    PullWorld world;
    world.project.manifest.app.ascAppID = "7";
    world.pull();
    EXPECT_EQ(world.paths().front(), "/v1/apps/7");
}

TEST(ProjectPuller, AProjectWithoutABundleIDIsntConnected) {
    PullWorld world;
    world.project.manifest.app.bundleID = "";
    try {
        world.pull();
        ADD_FAILURE() << "no error";
    } catch (const SyncError& error) {
        EXPECT_EQ(error.errorDescription(), "This project isn’t connected to an App Store Connect app yet.");
    }
    EXPECT_TRUE(world.paths().empty());
}

TEST(ProjectPuller, AnAppThatTheKeyDoesntSeeIsNotFound) {
    PullWorld world;
    world.answer("/v1/apps", R"({"data":[]})");
    try {
        world.pull();
        ADD_FAILURE() << "no error";
    } catch (const SyncError& error) {
        EXPECT_EQ(error.errorDescription(), "No app with the bundle ID a.b is visible to this API key.");
    }
    EXPECT_FALSE(world.hasState());
}

TEST(ProjectPuller, SavesTheSnapshotTheIdsAndTheAssets) {
    PullWorld world;
    const auto result = world.pull();
    const auto& id = world.project.manifest.projectID;
    EXPECT_EQ(world.store.base(id), result.base);
    EXPECT_EQ(world.store.remoteIDs(id)->appInfoID, "AI");
    EXPECT_TRUE(std::filesystem::exists(world.store.root / id.text() / "remote-assets.json"));
}

TEST(ProjectPuller, AFailedPullChangesNoState) {
    PullWorld world;
    world.answer("/v1/apps/7/appStoreVersions", "", 400);
    EXPECT_THROW(world.pull(), ASCError);
    EXPECT_FALSE(world.hasState());
}

TEST(ProjectPuller, ANameThatAPackageCantHoldIsRefusedBeforeAnythingIsWritten) {
    for (const auto* locale : {"..", "a/b", "/etc", ""}) {
        SCOPED_TRACE(locale);
        PullWorld world;
        world.remoteName(locale, "Name");
        EXPECT_THROW(world.pull(), PackageNameError);
        EXPECT_FALSE(world.hasState());
    }
}

TEST(ProjectPuller, ADamagedStateFileEndsThePullAndEveryFileStaysAsItIs) {
    for (const auto* name : {"base.json", "remote-ids.json"}) {
        SCOPED_TRACE(name);
        PullWorld world;
        const auto id = world.project.manifest.projectID.text();
        world.folder.write("state/" + id + "/" + name, "{");
        const auto before = world.folder.files();
        EXPECT_THROW(world.pull(), StateFileError);
        EXPECT_EQ(world.folder.files(), before);
    }
}

TEST(ProjectPuller, AStateThatCannotBeWrittenFailsThePullAndWhatWasWrittenStays) {
    PullWorld world;
    const auto state = "state/" + world.project.manifest.projectID.text();
    std::filesystem::create_directories(world.folder / state / "remote-assets.json/in-the-way");
    EXPECT_THROW(world.pull(), FileError);
    EXPECT_TRUE(world.folder.has(state + "/base.json")) << "the snapshot goes first";
    EXPECT_TRUE(world.folder.has(state + "/remote-ids.json")) << "then the ids";
}

TEST(ProjectPuller, ASecondPullUpdatesNothing) {
    PullWorld world;
    world.project = world.pull().project;
    const auto second = world.pull();
    EXPECT_EQ(second.project, world.project);
    EXPECT_TRUE(second.updatedKeys.empty());
    EXPECT_TRUE(second.conflicts.empty());
}

TEST(ProjectPuller, ALaterPullKeepsALocalEditAndBringsTheRemoteOneIn) {
    PullWorld world;
    world.project = world.pull().project;
    const ContentKey subtitle = ContentKey::AppInfoLocale{kGerman, ListingField::subtitle};
    ContentGraph::set("Local", subtitle, world.project);
    world.remoteName("de-DE", "Renamed");

    const auto result = world.pull();

    EXPECT_EQ(result.updatedKeys, std::vector{kName});
    EXPECT_TRUE(result.conflicts.empty());
    EXPECT_EQ(ContentGraph::value(subtitle, result.project), "Local");
}

// The remote side holds the very content that the project has as a file.
struct PulledMedia : PullWorld {
    PulledMedia() {
        folder.write("a.png", "a");
        project.platforms[StorePlatform::iOS].media = {{kGerman, {{kSlot, {MediaItem::file("a.png")}}}}};
        answer("/v1/appAssetLibraries/7/images",
               R"({"data":[{"type":"appAssetLibraryImages","id":"A","attributes":
            {"fileName":"a.png","referenceName":"mq-a-0cc175b9c0f1"}}]})");
        answer("/v1/apps/7/appStoreVersions",
               R"({"data":[{"type":"v","id":"V","attributes":{"platform":"IOS"}}]})");
        answer("/v1/appStoreVersions/V/appStoreVersionLocalizations",
               R"({"data":[{"type":"l","id":"L","attributes":{"locale":"de-DE"}}]})");
        answer("/v1/appStoreVersions/V/appStoreReviewDetail", "", 404);
        answer("/v1/appStoreVersions/V", R"({"data":{"type":"v","id":"V"}})");
        answer("/v1/appStoreVersionLocalizations/L/placements", R"({"data":[{"type":"p","id":"P","attributes":
            {"placementGroup":"IPHONE_67","placementType":"APP_SCREENSHOT"},
            "relationships":{"image":{"data":{"type":"appAssetLibraryImages","id":"A"}}}}]})");
    }

    MediaLocator locator() {
        return [this](const std::string& path) { return std::optional(folder / path); };
    }
    MediaItems items(const PullResult& result) {
        return Media::items(result.project[StorePlatform::iOS].media, kGerman, kSlot);
    }
};

TEST(ProjectPuller, AFileWhoseContentIsOnTheServerIsNoDifferenceAndStaysAFile) {
    PulledMedia world;
    const auto result = world.pull(world.locator());
    EXPECT_TRUE(result.conflicts.empty());
    EXPECT_EQ(world.items(result), MediaItems{MediaItem::file("a.png")});
    EXPECT_EQ(ContentGraph::value(kName, result.project), "Remote") << "other updates come in";
}

TEST(ProjectPuller, TheSnapshotHasTheRemoteSideAlsoWhereAFileIsTheSame) {
    PulledMedia world;
    const auto result = world.pull(world.locator());
    const ContentKey slot = ContentKey::Placements{StorePlatform::iOS, kGerman, kSlot};
    EXPECT_EQ(result.base.at(slot), "asset:A");
}

TEST(ProjectPuller, TheLibraryIsAskedForImagesAndThenForVideosAfterTheFetch) {
    PulledMedia world;
    world.pull(world.locator());
    const auto& paths = world.paths();
    ASSERT_GE(paths.size(), 2u);
    EXPECT_EQ(std::vector(paths.end() - 2, paths.end()),
              (std::vector<std::string>{"/v1/appAssetLibraries/7/images", "/v1/appAssetLibraries/7/videos"}));
}

TEST(ProjectPuller, AnAssetOfADangerousNameIsRefusedBeforeAnythingIsWritten) {
    struct Row {
        const char* id;
        const char* fileName;
    };
    for (const Row& row : {Row{"../A", "a.png"}, Row{"A", "../../a.png"}, Row{"", "a.png"}}) {
        SCOPED_TRACE(std::string(row.id) + " " + row.fileName);
        PulledMedia world;
        const std::string id = row.id, fileName = row.fileName;
        world.answer("/v1/appStoreVersionLocalizations/L/placements",
                     R"({"data":[{"type":"p","id":"P","attributes":
            {"placementGroup":"IPHONE_67","placementType":"APP_SCREENSHOT"},
            "relationships":{"image":{"data":{"type":"appAssetLibraryImages","id":")" +
                         id + R"("}}}}],"included":[{"type":"appAssetLibraryImages","id":")" + id +
                         R"(","attributes":{"fileName":")" + fileName + R"("}}]})");
        EXPECT_THROW(world.pull(), PackageNameError);
        EXPECT_FALSE(world.hasState());
    }
}

TEST(ProjectPuller, WithoutALocatorLocalMediaArentLookedAt) {
    PulledMedia world;
    const auto result = world.pull();
    EXPECT_EQ(result.conflicts.size(), 1u);
    for (const auto& path : world.paths()) EXPECT_EQ(path.find("appAssetLibraries"), std::string::npos);
}

TEST(ProjectPuller, AProjectWithoutLocalFilesDoesntAskForTheLibrary) {
    PullWorld world;
    world.pull([](const std::string&) { return std::nullopt; });
    for (const auto& path : world.paths()) EXPECT_EQ(path.find("appAssetLibraries"), std::string::npos);
}

}  // namespace
}  // namespace kestrin
