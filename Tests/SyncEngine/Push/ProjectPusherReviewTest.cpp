#include <gtest/gtest.h>

#include "SyncEngine/Pull/SyncError.h"
#include "SyncEngine/Push/ProjectPusher.h"
#include "Tests/SyncEngine/Push/PusherWorld.h"

namespace kestrin {
namespace {

const char* const kRefDataPath = "/v1/appAssetLibraryRefData";

// Reference data that know one limit.
std::string refData(int limit) {
    return R"({"data":{"type":"t","id":"1","attributes":{"features":[{"featureId":"APP_STORE_VERSIONS",)"
           R"("placementPolicies":[{"placementType":"shot","groupLimits":[{"maxCount":)" +
           std::to_string(limit) + R"(,"groupIds":["phone"]}]}]}]}}})";
}

TEST(ProjectPusherReview, AProjectThatIsntConnectedIsRefusedBeforeAnyRequest) {
    PusherWorld world;
    world.project.manifest.app.ascAppID.reset();
    try {
        world.review();
        ADD_FAILURE() << "no error";
    } catch (const SyncError& error) {
        EXPECT_EQ(error.errorDescription(), "This project isn’t connected to an App Store Connect app yet.");
    }
    EXPECT_TRUE(world.paths().empty());
}

TEST(ProjectPusherReview, ShowsBothSidesAndWritesNothing) {
    PusherWorld world;
    world.set("IOS/de-DE/whatsNew", "Neu");
    const auto review = world.review();
    EXPECT_EQ(review.remote.ids.versions.at(StorePlatform::iOS).id, "V");
    const Change expected{keyOf("IOS/de-DE/whatsNew"), "Alt", "Neu"};
    EXPECT_EQ(review.changeSet, (ChangeSet{{expected}, {}, {}, {}}));
    EXPECT_FALSE(review.base);
    EXPECT_FALSE(review.media);
    EXPECT_FALSE(review.refData);
    EXPECT_FALSE(review.rateLimit);
    EXPECT_TRUE(world.server->writes.empty());
    EXPECT_FALSE(world.hasState());
}

TEST(ProjectPusherReview, ComparesWithTheRememberedBase) {
    PusherWorld world;
    world.set("IOS/de-DE/whatsNew", "Neu");
    world.store.saveBase({{keyOf("IOS/de-DE/whatsNew"), "Uralt"}, {keyOf("IOS/version/copyright"), "2025"}},
                         world.id());
    const auto review = world.review();
    EXPECT_EQ(review.changeSet.conflicts.size(), 1u);
    EXPECT_EQ(review.base->at(keyOf("IOS/de-DE/whatsNew")), "Uralt");
}

TEST(ProjectPusherReview, APageKeepsTheSlugThatItsIdIsRememberedUnder) {
    PusherWorld world;
    world.answer("/v1/apps/7/appCustomProductPages",
                 R"({"data":[{"type":"p","id":"P","attributes":{"name":"Renamed"}}]})");
    world.answer("/v1/appCustomProductPages/P/appCustomProductPageVersions",
                 R"({"data":[{"type":"v","id":"PV","attributes":{"version":"1"}}]})");
    RemoteIDs ids;
    ids.pages[{"summer"}] = {"P", {}, "PV", "", {}, {}};
    world.store.saveRemoteIDs(ids, world.id());
    EXPECT_TRUE(world.review().remote.pages.contains({"summer"}));
}

TEST(ProjectPusherReview, TheRateLimitIsTheLastReading) {
    PusherWorld world;
    world.server->headers = {{"X-Rate-Limit", "user-hour-lim:3600;user-hour-rem:42;"}};
    EXPECT_EQ(world.review().rateLimit, (RateLimitStatus{3600, 42}));
}

TEST(ProjectPusherReview, ADamagedStateFileEndsIt) {
    for (const auto* file : {"base.json", "remote-ids.json"}) {
        PusherWorld world;
        world.folder.write("state/" + world.id().text() + "/" + file, "{");
        EXPECT_THROW(world.review(), StateFileError) << file;
    }
}

// --- Local media

struct ReviewedMedia : PusherWorld {
    ReviewedMedia() {
        folder.write("a.png", "a");
        set("IOS/de-DE/media/phone/shot", "file:a.png");
        answer(kRefDataPath, refData(3));
    }
    void putInLibrary() {
        answer("/v1/appAssetLibraries/7/images",
               R"({"data":[{"type":"appAssetLibraryImages","id":"A","attributes":
            {"fileName":"a.png","referenceName":"mq-a-0cc175b9c0f1"}}]})");
    }
    std::string wanted(const PushReview& review) {
        return review.changeSet.changes.empty() ? "nothing" : review.changeSet.changes.front().local;
    }
};

TEST(ProjectPusherReview, AFileIsComparedAsTheAssetThatHoldsItsContent) {
    ReviewedMedia world;
    EXPECT_EQ(world.wanted(world.review(world.locator())), "file:a.png");
    world.putInLibrary();
    const auto review = world.review(world.locator());
    EXPECT_EQ(world.wanted(review), "asset:A");
    EXPECT_EQ(review.media->hashes,
              (std::map<std::string, std::string>{{"a.png", "0cc175b9c0f1b6a831c399e269772661"}}));
    EXPECT_TRUE(review.media->index.assets().contains("A"));
}

TEST(ProjectPusherReview, TheLibraryIsReadImagesThenVideosAndOnlyForLocalFiles) {
    ReviewedMedia world;
    world.review(world.locator());
    std::vector<std::string> asked;
    for (const auto& path : world.paths()) {
        if (path.find("appAssetLibraries") != std::string::npos) asked.push_back(path);
    }
    EXPECT_EQ(asked,
              (std::vector<std::string>{"/v1/appAssetLibraries/7/images", "/v1/appAssetLibraries/7/videos"}));

    PusherWorld withoutFiles;
    EXPECT_FALSE(withoutFiles.review(withoutFiles.locator()).media);
    EXPECT_FALSE(withoutFiles.wasAsked("/v1/appAssetLibraries/7/images"));
}

TEST(ProjectPusherReview, WithoutALocatorNoFileIsLookedAt) {
    ReviewedMedia world;
    world.putInLibrary();
    const auto review = world.review();
    EXPECT_EQ(world.wanted(review), "file:a.png");
    EXPECT_FALSE(review.media);
}

// --- Reference data

TEST(ProjectPusherReview, ReferenceDataAreReadOnlyWhenMediaAreToBeWritten) {
    for (const auto* key : {"IOS/de-DE/media/phone/shot", "pages/new/de-DE/media/phone/shot",
                            "experiments/new/treatments/red/de-DE/media/phone/shot"}) {
        SCOPED_TRACE(key);
        PusherWorld world;
        world.answer(kRefDataPath, refData(3));
        EXPECT_FALSE(world.review().refData);
        EXPECT_FALSE(world.wasAsked(kRefDataPath));
        world.set(key, "asset:1");
        EXPECT_EQ(world.review().refData->maxCount("shot", "phone"), 3);
    }
}

TEST(ProjectPusherReview, AConflictOfMediaNeedsReferenceDataTooAndDriftNone) {
    PusherWorld world;
    world.answer(kRefDataPath, refData(3));
    world.answer(
        "/v1/appStoreVersionLocalizations/L/placements",
        R"({"data":[{"type":"p","id":"P","attributes":{"placementGroup":"phone","placementType":"shot"},
            "relationships":{"image":{"data":{"type":"appAssetLibraryImages","id":"A"}}}}]})");
    EXPECT_EQ(world.review().changeSet.drift.size(), 1u);
    EXPECT_FALSE(world.review().refData);
    world.set("IOS/de-DE/media/phone/shot", "asset:B");
    world.store.saveBase({}, world.id());
    const auto review = world.review();
    EXPECT_EQ(review.changeSet.conflicts.size(), 1u);
    EXPECT_TRUE(review.refData);
}

TEST(ProjectPusherReview, ReferenceDataAreFetchedOnceAndKept) {
    ReviewedMedia world;
    world.review();
    world.answer(kRefDataPath, refData(4));
    world.server->paths.clear();
    EXPECT_EQ(world.review().refData->maxCount("shot", "phone"), 3);
    EXPECT_FALSE(world.wasAsked(kRefDataPath));
}

TEST(ProjectPusherReview, CachedReferenceDataThatAreDamagedAreFetchedAnew) {
    for (const auto* damaged : {"", "{", "[]", "{}", "\xFF"}) {
        SCOPED_TRACE(damaged);
        ReviewedMedia world;
        world.folder.write("state/refdata.json", damaged);
        EXPECT_EQ(world.review().refData->maxCount("shot", "phone"), 3);
        EXPECT_TRUE(world.store.refData()) << "and kept";
    }
}

TEST(ProjectPusherReview, ReferenceDataThatCantBeKeptAreUsedAllTheSame) {
    ReviewedMedia world;
    world.folder.write("state/refdata.json/in-the-way", "");
    EXPECT_EQ(world.review().refData->maxCount("shot", "phone"), 3);
}

TEST(ProjectPusherReview, ReferenceDataThatCantBeFetchedEndTheReview) {
    ReviewedMedia world;
    world.answer(kRefDataPath, "", 403);
    EXPECT_THROW(world.review(), ASCError);
}

}  // namespace
}  // namespace kestrin
