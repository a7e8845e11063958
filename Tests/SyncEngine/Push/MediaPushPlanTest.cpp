// A plan of media and what comes of carrying it out.
#include <gtest/gtest.h>

#include "AssetPipeline/MediaHash.h"
#include "SyncEngine/Push/PushPlanner.h"
#include "Tests/Support/ListingNames.h"
#include "Tests/Support/PNGBytes.h"
#include "Tests/SyncEngine/Push/MediaPushWorld.h"

namespace kestrin {
namespace {

constexpr const char* kFile = "Media/a.png";

const ContentKey kOnDefaultPage{ContentKey::Placements{StorePlatform::iOS, kGerman, kSlot}};
const ContentKey kOnPage{ContentKey::PagePlacements{kPage, kGerman, kSlot}};
const ContentKey kOnTreatment{ContentKey::TreatmentPlacements{kTest, kBlue, kGerman, kSlot}};

// A localization of each kind, all slots empty.
RemoteListing remoteListing() {
    RemoteListing remote;
    remote.ids.versions[StorePlatform::iOS].id = "V";
    remote.ids.versions[StorePlatform::iOS].localizations[kGerman] = "L1";
    remote.ids.pages[kPage].localizations[kGerman] = "L2";
    remote.ids.experiments[kTest].treatments[kBlue].localizations[kGerman] = "L3";
    return remote;
}

ScriptedTransport::Step created(const std::string& type, const std::string& id,
                                const std::string& more = "") {
    return reply(201, R"({"data":{"type":")" + type + R"(","id":")" + id + "\"" + more + "}}");
}

// The four requests of an upload.
MediaPushWorld::Steps upload() {
    return {
        created(
            "appAssetLibraryImages", "NEW",
            R"(,"attributes":{"uploadOperations":[{"url":"https://up.example.test/1","offset":0,"length":1}]})"),
        reply(200), reply(200, R"({"data":{"type":"appAssetLibraryImages","id":"NEW"}})"),
        created("appAssetLibraryImages", "NEW")};
}

// Carries out the media steps for these keys, each of which wants the one file; gives the failure's sentence, or "".
std::string pushed(MediaPushWorld& world, const std::vector<ContentKey>& keys) {
    std::vector<Change> changes;
    for (const auto& key : keys) changes.push_back({key, "", std::string("file:") + kFile});
    return failureOf([&] {
        for (const auto& step :
             PushPlanner::mediaSteps(changes, remoteListing(), world.context.hashes, std::nullopt)) {
            if (const auto* ensure = std::get_if<PushStep::EnsureAsset>(&step.action)) {
                world.state.assets[ensure->md5] =
                    world.context.ensureAsset(ensure->path, ensure->md5, ensure->slot, world.client);
            } else {
                world.context.place(std::get<PushStep::PlaceMedia>(step.action).placement, world.state,
                                    world.client);
            }
        }
    });
}

// A world in which only the default page's files have a digest, as after a review.
struct PlannedWorld : MediaPushWorld {
    explicit PlannedWorld(Steps script, bool defaultPageUsesTheFile) : MediaPushWorld(std::move(script)) {
        folder.write(kFile, plainPNG(PNGImage::Colour::rgb, "abc").bytes());
        if (defaultPageUsesTheFile) context.hashes = {{kFile, MediaHash::md5(folder / kFile)}};
    }
};

TEST(MediaPushPlan, OneFileInSlotsOfEveryKindIsUploadedOnce) {
    auto script = upload();
    for (const auto* id : {"p1", "p2", "p3"}) script.push_back(created("appAssetLibraryPlacements", id));
    PlannedWorld world(script, true);

    EXPECT_EQ(pushed(world, {kOnDefaultPage, kOnPage, kOnTreatment}), "");

    EXPECT_TRUE(world.server->isAtTheEnd());
}

TEST(MediaPushPlan, AFileOfAPageOrTreatmentAloneIsUploadedButNotPlaced) {
    for (const auto& key : {kOnPage, kOnTreatment}) {
        PlannedWorld world(upload(), false);

        EXPECT_EQ(pushed(world, {key}), "Couldn’t find the media file Media/a.png.");

        EXPECT_TRUE(world.server->isAtTheEnd()) << "no request after the upload";
        EXPECT_NE(world.body(0).find("mq-a-missing:Medi"), std::string::npos);
    }
}

TEST(MediaPushPlan, AFileOfAPageOrTreatmentIsPlacedWhereTheDefaultPageUsesItToo) {
    for (const auto& key : {kOnPage, kOnTreatment}) {
        auto script = upload();
        script.push_back(created("appAssetLibraryPlacements", "p1"));
        PlannedWorld world(script, true);

        EXPECT_EQ(pushed(world, {key}), "") << "though the default page's own slot isn't among the changes";

        EXPECT_TRUE(world.server->isAtTheEnd());
    }
}

TEST(MediaPushPlan, AFileOfAPageThatTheLibraryHasIsPlacedWithoutAnUpload) {
    PlannedWorld world({created("appAssetLibraryImages", "OLD"), created("appAssetLibraryPlacements", "p1")},
                       true);
    ASCLibraryAsset asset;
    asset.id = "OLD";
    asset.referenceName = "mq-a-" + world.context.hashes.at(kFile).substr(0, 12);
    world.context.index = LibraryIndex({asset});

    EXPECT_EQ(pushed(world, {kOnPage}), "");

    EXPECT_EQ(world.requests(), "GET /v1/appAssetLibraryImages/OLD\nPOST /v1/appAssetLibraryPlacements\n");
}

}  // namespace
}  // namespace kestrin
