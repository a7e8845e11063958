#include "SyncEngine/Media/MediaResolver.h"

#include <gtest/gtest.h>

#include "Tests/Support/ListingNames.h"
#include "Tests/Support/ScriptedClient.h"
#include "Tests/Support/TemporaryFolder.h"

namespace kestrin {
namespace {

const PlacementSlot kOtherSlot{"IPHONE_65", "APP_SCREENSHOT"};
constexpr const char* kMD5OfA = "0cc175b9c0f1b6a831c399e269772661";  // of "a"

ASCLibraryAsset asset(const std::string& id, std::optional<std::string> state = std::nullopt,
                      const std::string& referenceName = "mq-a-0cc175b9c0f1") {
    ASCLibraryAsset made;
    made.id = id;
    made.fileName = "uploaded-" + id + ".png";
    made.referenceName = referenceName;
    made.state = std::move(state);
    return made;
}

std::string found(const std::vector<ASCLibraryAsset>& assets, const std::string& md5 = kMD5OfA) {
    const LibraryIndex index(assets);
    const auto* match = index.asset(md5);
    return match ? match->id : "none";
}

TEST(LibraryIndex, FindsAnAssetByTheDigestInItsReferenceName) {
    struct Row {
        const char* when;
        std::vector<ASCLibraryAsset> assets;
        const char* id;
    };
    const Row rows[] = {
        {"an empty library", {}, "none"},
        {"a reference name of another's making", {asset("1", {}, "my screenshot")}, "none"},
        {"another content", {asset("1", {}, "mq-a-ffffffffffff")}, "none"},
        {"upper-case digits", {asset("1", {}, "mq-a-0CC175B9C0F1")}, "1"},
        {"no state", {asset("1")}, "1"},
        {"failed", {asset("1", "FAILED")}, "none"},
        {"rejected", {asset("1", "REJECTED")}, "none"},
        {"archived", {asset("1", "ARCHIVED")}, "none"},
        {"waiting is better than none", {asset("1", "AWAITING_UPLOAD")}, "1"},
        {"ready is better than waiting", {asset("1", "UPLOAD_COMPLETE"), asset("2", "COMPLETE")}, "2"},
        {"of two ready the smaller id", {asset("2", "COMPLETE"), asset("1", "PREPARE_FOR_SUBMISSION")}, "1"},
        {"of two waiting the smaller id",
         {asset("2", "AWAITING_UPLOAD"), asset("1", "UPLOAD_COMPLETE")},
         "1"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(found(row.assets), row.id);
        auto reversed = row.assets;
        std::reverse(reversed.begin(), reversed.end());
        EXPECT_EQ(found(reversed), row.id) << "the order of the library plays no part";
    }
}

TEST(LibraryIndex, ADigestShorterThanTwelveDigitsFindsNothing) {
    EXPECT_EQ(found({asset("1")}, "0cc175"), "none");
    EXPECT_EQ(found({asset("1")}, ""), "none");
}

TEST(LibraryIndex, IsFetchedImagesFirst) {
    ScriptedClient world({reply(200, R"({"data":[{"type":"appAssetLibraryImages","id":"i"}]})"),
                          reply(200, R"({"data":[{"type":"appAssetLibraryVideos","id":"v"}]})")});
    const auto index = LibraryIndex::fetch(world.client, "7");
    EXPECT_EQ(index.assets().size(), 2u);
    EXPECT_EQ(world.line(0), "GET /v1/appAssetLibraries/7/images?limit=200");
    EXPECT_EQ(world.line(1), "GET /v1/appAssetLibraries/7/videos?limit=200");
}

class MediaResolverTest : public testing::Test {
 protected:
    MediaResolverTest() { folder.write("a.png", "a"); }

    MediaResolution resolve(const Project& project, const std::vector<ASCLibraryAsset>& assets) {
        return MediaResolver::resolve(project, LibraryIndex(assets), [&](const std::string& path) {
            ++asked[path];
            const auto file = folder / path;
            return std::filesystem::exists(file) ? std::optional(file) : std::nullopt;
        });
    }

    static Project projectWith(const MediaItems& items) {
        Project project;
        project.platforms[StorePlatform::iOS].media = {{kGerman, {{kSlot, items}, {kOtherSlot, items}}}};
        return project;
    }

    static MediaItems itemsOf(const MediaResolution& resolution) {
        return Media::items(resolution.project[StorePlatform::iOS].media, kGerman, kSlot);
    }

    TemporaryFolder folder;
    std::map<std::string, int> asked;
};

TEST_F(MediaResolverTest, AFileWhoseContentTheLibraryHasBecomesItsAsset) {
    const auto resolution =
        resolve(projectWith({MediaItem::remote("9"), MediaItem::file("a.png")}), {asset("1")});
    EXPECT_EQ(itemsOf(resolution),
              (MediaItems{MediaItem::remote("9"), MediaItem::remote("1", "uploaded-1.png")}));
    EXPECT_EQ(resolution.hashes, (std::map<std::string, std::string>{{"a.png", kMD5OfA}}));
    EXPECT_TRUE(resolution.missing.empty());
}

TEST_F(MediaResolverTest, AFileThatTheLibraryCantServeStaysAFileWithItsHash) {
    for (const auto& assets : {std::vector<ASCLibraryAsset>{}, {asset("1", "REJECTED")}}) {
        const auto resolution = resolve(projectWith({MediaItem::file("a.png")}), assets);
        EXPECT_EQ(itemsOf(resolution), MediaItems{MediaItem::file("a.png")});
        EXPECT_EQ(resolution.hashes.size(), 1u);
    }
}

TEST_F(MediaResolverTest, AFileThatCantBeReadIsMissingOnceHoweverManySlotsUseIt) {
    std::filesystem::create_directory(folder / "folder");
    const auto resolution =
        resolve(projectWith({MediaItem::file("z.png"), MediaItem::file("folder"), MediaItem::file("b.png")}),
                {asset("1")});
    EXPECT_EQ(resolution.missing, (std::vector<std::string>{"b.png", "folder", "z.png"}));
    EXPECT_TRUE(resolution.hashes.empty());
    EXPECT_EQ(itemsOf(resolution).size(), 3u);
    EXPECT_EQ(asked["z.png"], 1);
}

TEST_F(MediaResolverTest, PathsAreToldApartAsTheFileSystemDoes) {
    folder.write("e\u0301.png", "a");
    const auto resolution =
        resolve(projectWith({MediaItem::file("é.png"), MediaItem::file("e\u0301.png")}), {asset("1")});
    EXPECT_EQ(resolution.missing, std::vector<std::string>{"é.png"});
    EXPECT_EQ(itemsOf(resolution),
              (MediaItems{MediaItem::file("é.png"), MediaItem::remote("1", "uploaded-1.png")}));
}

TEST_F(MediaResolverTest, AFileIsReadOnceHoweverManySlotsUseIt) {
    resolve(projectWith({MediaItem::file("a.png"), MediaItem::file("a.png")}), {});
    EXPECT_EQ(asked["a.png"], 1);
}

TEST_F(MediaResolverTest, MediaOfPagesAndTreatmentsAreLeftAsTheyAre) {
    Project project;
    project.pages[{"p"}].media = {{kGerman, {{kSlot, {MediaItem::file("a.png")}}}}};
    EXPECT_FALSE(MediaResolver::hasLocalFiles(project));
    EXPECT_EQ(resolve(project, {asset("1")}).project, project);
    EXPECT_TRUE(asked.empty());
}

TEST_F(MediaResolverTest, OnlyFilesOfTheDefaultPageAreLocalFiles) {
    EXPECT_FALSE(MediaResolver::hasLocalFiles(Project{}));
    EXPECT_FALSE(MediaResolver::hasLocalFiles(projectWith({MediaItem::remote("1")})));
    EXPECT_TRUE(
        MediaResolver::hasLocalFiles(projectWith({MediaItem::remote("1"), MediaItem::file("a.png")})));
}

}  // namespace
}  // namespace kestrin
