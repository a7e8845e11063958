#include <gtest/gtest.h>

#include "AssetPipeline/AlphaFlattener.h"
#include "AssetPipeline/MediaHash.h"
#include "AssetPipeline/MediaInspector.h"
#include "KestrinCore/StableJSON.h"
#include "Tests/Support/ListingNames.h"
#include "Tests/Support/MediaTools.h"
#include "Tests/Support/PNGBytes.h"
#include "Tests/SyncEngine/Push/MediaPushWorld.h"

namespace kestrin {
namespace {

using Kind = ASCLibraryAsset::Kind;
using Colour = PNGImage::Colour;
using namespace std::string_literals;

constexpr const char* kMD5 = "0123456789abcdef0123456789abcdef";

const std::string kOpaque = plainPNG(Colour::rgb, "\x10\x20\x30"s).bytes();
const std::string kHalfTransparent = plainPNG(Colour::rgba, "\xFF\xFF\xFF\x80"s).bytes();

// Replies of the steps of an upload.
ScriptedTransport::Step reserved(
    const std::string& operations = R"([{"url":"https://up.example.test/1","offset":0,"length":1000000}])") {
    return reply(201,
                 R"({"data":{"type":"appAssetLibraryImages","id":"NEW","attributes":{"uploadOperations":)" +
                     operations + "}}}");
}
ScriptedTransport::Step sent() {
    return reply(200);
}
ScriptedTransport::Step committed() {
    return reply(200, R"({"data":{"type":"appAssetLibraryImages","id":"NEW"}})");
}
ScriptedTransport::Step assetIn(const std::string& state) {
    return reply(200, R"({"data":{"type":"appAssetLibraryImages","id":"NEW","attributes":{"state":")" +
                          state + "\"}}}");
}
MediaPushWorld::Steps wholeUpload() {
    return {reserved(), sent(), committed(), assetIn("COMPLETE")};
}

// Reference data in which the slot has one specification that any image fits.
AssetLibraryRefData refDataWith(std::optional<bool> alphaAllowed, std::int64_t maxWidth = 10'000) {
    AssetLibraryRefData data;
    data.placementTypes = {{kSlot.type, {"FROM_REFERENCE_DATA", "SECOND"}, {{kSlot.group, {"spec"}}}}};
    AssetLibraryRefData::Spec spec;
    spec.id = "spec";
    spec.alphaAllowed = alphaAllowed;
    spec.maxWidth = maxWidth;
    data.specs = {{"spec", spec}};
    return data;
}

ASCLibraryAsset libraryAsset(const std::string& id, const std::string& state, Kind kind = Kind::image) {
    ASCLibraryAsset asset;
    asset.id = id;
    asset.kind = kind;
    asset.fileName = "in-library.png";
    asset.referenceName = "mq-a-0123456789ab";
    asset.state = state;
    return asset;
}

// An attribute of the reservation, the first request of an upload.
std::string reservation(const MediaPushWorld& world, const char* attribute) {
    const auto body = StableJSON::decode(world.body(0));
    return StableJSON::encode(member(body, {"data", "attributes", attribute}));
}

TEST(MediaPushEnsure, UploadsInFourMoves) {
    MediaPushWorld world(wholeUpload());
    world.folder.write("Media/Shot 1.png", kOpaque);

    const auto asset = world.context.ensureAsset("Media/Shot 1.png", kMD5, kSlot, world.client);

    EXPECT_EQ(asset, (RunState::Asset{"NEW", Kind::image}));
    EXPECT_EQ(world.requests(),
              "POST /v1/appAssetLibraryImages\n"
              "PUT https://up.example.test/1\n"
              "PATCH /v1/appAssetLibraryImages/NEW\n"
              "GET /v1/appAssetLibraryImages/NEW\n");
    EXPECT_EQ(StableJSON::decode(world.body(0)),
              StableJSON::decode(R"({"data":{"type":"appAssetLibraryImages",
        "attributes":{"category":"APP_SCREENSHOTS_AND_PREVIEWS","fileName":"Shot 1.png","fileSize":)" +
                                 std::to_string(kOpaque.size()) +
                                 R"(,"referenceName":"mq-Shot-1-0123456789ab"},
        "relationships":{"assetLibrary":{"data":{"type":"appAssetLibraries","id":"7"}}}}})"));
    EXPECT_EQ(StableJSON::decode(world.body(2)),
              StableJSON::decode(
                  R"({"data":{"type":"appAssetLibraryImages","id":"NEW","attributes":{"uploaded":true}}})"));
    EXPECT_TRUE(world.time.slept.empty());
}

TEST(MediaPushEnsure, AVideoGoesUpAsItIsAndIsAVideoThroughout) {
    const MediaTools tools;
    MediaPushWorld world(wholeUpload());
    world.folder.write("clip.mov", tools.folder.read(tools.clip("clip.mov")));

    const auto asset =
        world.context.ensureAsset("clip.mov", kMD5, {"IPHONE_67", "APP_PREVIEW"}, world.client);

    EXPECT_EQ(asset, (RunState::Asset{"NEW", Kind::video}));
    EXPECT_EQ(world.requests(),
              "POST /v1/appAssetLibraryVideos\n"
              "PUT https://up.example.test/1\n"
              "PATCH /v1/appAssetLibraryVideos/NEW\n"
              "GET /v1/appAssetLibraryVideos/NEW\n");
    EXPECT_TRUE(std::holds_alternative<FileRange>(*world.server->sent[1].body));
    EXPECT_EQ(world.body(0).find("previewFrameTimeCode"), std::string::npos);
}

TEST(MediaPushEnsure, AnAssetOfTheLibraryWithThisDigestIsTakenAndNothingIsUploaded) {
    MediaPushWorld world({assetIn("COMPLETE")});
    world.context.index = LibraryIndex({libraryAsset("OLD", "COMPLETE", Kind::video)});
    const auto asset = world.context.ensureAsset("not there.mp4", kMD5, kSlot, world.client);
    EXPECT_EQ(asset, (RunState::Asset{"OLD", Kind::video}));
    EXPECT_EQ(world.requests(), "GET /v1/appAssetLibraryVideos/OLD\n");
}

TEST(MediaPushEnsure, AnAssetThatStillAwaitsItsUploadIsWaitedForAndNotUploadedAgain) {
    MediaPushWorld world({assetIn("AWAITING_UPLOAD"), assetIn("UPLOAD_COMPLETE"), assetIn("COMPLETE")});
    world.context.index = LibraryIndex({libraryAsset("OLD", "AWAITING_UPLOAD")});
    EXPECT_EQ(world.context.ensureAsset("a.png", kMD5, kSlot, world.client).id, "OLD");
    EXPECT_EQ(world.time.slept, (std::vector<Seconds>{Seconds(5), Seconds(5)}));
    EXPECT_TRUE(world.server->isAtTheEnd());
}

TEST(MediaPushEnsure, AnAssetOfTheLibraryIsSpokenOfByItsFileNameThere) {
    MediaPushWorld failed({assetIn("FAILED")});
    failed.context.index = LibraryIndex({libraryAsset("OLD", "UPLOAD_COMPLETE")});
    EXPECT_EQ(failureOf([&] { failed.context.ensureAsset("a.png", kMD5, kSlot, failed.client); }),
              "App Store Connect couldn’t process in-library.png (FAILED). Check it matches the slot’s "
              "requirements.");

    MediaPushWorld slow(times(181, assetIn("UPLOAD_COMPLETE")));
    slow.context.index = LibraryIndex({libraryAsset("OLD", "UPLOAD_COMPLETE")});
    EXPECT_EQ(
        failureOf([&] { slow.context.ensureAsset("a.png", kMD5, kSlot, slow.client); }),
        "App Store Connect is still processing in-library.png. Push again later to finish placing it; it "
        "won’t be uploaded twice.");
}

TEST(MediaPushEnsure, ADeadAssetOfTheLibraryIsUploadedAfresh) {
    for (const auto* state : {"FAILED", "REJECTED", "ARCHIVED"}) {
        MediaPushWorld world(wholeUpload());
        world.folder.write("a.png", kOpaque);
        world.context.index = LibraryIndex({libraryAsset("OLD", state)});
        EXPECT_EQ(world.context.ensureAsset("a.png", kMD5, kSlot, world.client).id, "NEW");
    }
}

TEST(MediaPushEnsure, AnEmptyDigestFindsNothingInTheLibraryAndIsWorkedOut) {
    MediaPushWorld world(wholeUpload());
    world.folder.write("a.png", kOpaque);
    const auto md5 = MediaHash::md5(world.folder / "a.png");
    auto asset = libraryAsset("OLD", "COMPLETE");
    asset.referenceName = "mq-a-" + md5.substr(0, 12);
    world.context.index = LibraryIndex({asset});

    EXPECT_EQ(world.context.ensureAsset("a.png", "", kSlot, world.client).id, "NEW");
    EXPECT_EQ(reservation(world, "referenceName"), "\"mq-a-" + md5.substr(0, 12) + "\"\n");
}

TEST(MediaPushEnsure, APseudoHashIsNotEmptyAndIsUsedAsItStands) {
    MediaPushWorld world(wholeUpload());
    world.folder.write("Pages/a.png", kOpaque);
    EXPECT_EQ(world.context.ensureAsset("Pages/a.png", "missing:Pages/a.png", kSlot, world.client).id, "NEW");
    EXPECT_EQ(reservation(world, "referenceName"), "\"mq-a-missing:Page\"\n");
}

TEST(MediaPushEnsure, AFileThatIsNowhereIsMissingByItsPath) {
    MediaPushWorld world;
    EXPECT_EQ(failureOf([&] { world.context.ensureAsset("Media/a.png", kMD5, kSlot, world.client); }),
              "Couldn’t find the media file Media/a.png.");
    world.context.locate = nullptr;
    EXPECT_EQ(failureOf([&] { world.context.ensureAsset("Media/a.png", kMD5, kSlot, world.client); }),
              "Couldn’t find the media file Media/a.png.");
    EXPECT_EQ(world.requests(), "");
}

TEST(MediaPushEnsure, AFileThatIsNoMediaFileFailsBeforeAnyRequest) {
    MediaPushWorld world;
    world.folder.write("a.png", "no picture");
    EXPECT_THROW(world.context.ensureAsset("a.png", kMD5, kSlot, world.client), MediaInspectorError);
    EXPECT_EQ(world.requests(), "");
}

TEST(MediaPushEnsure, AnImageWithAlphaGoesUpAsItIsOnlyWhereItsSpecificationAllowsAlpha) {
    const struct {
        const char* when;
        std::string file;
        std::optional<AssetLibraryRefData> refData;
        bool flattened;
    } rows[] = {
        {"alpha, allowed", kHalfTransparent, refDataWith(true), false},
        {"alpha, forbidden", kHalfTransparent, refDataWith(false), true},
        {"alpha, not said", kHalfTransparent, refDataWith(std::nullopt), true},
        {"alpha, no specification fits", kHalfTransparent, refDataWith(true, 0), true},
        {"alpha, no reference data", kHalfTransparent, std::nullopt, true},
        {"no alpha, forbidden", kOpaque, refDataWith(false), false},
        {"no alpha, no reference data", kOpaque, std::nullopt, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.when);
        MediaPushWorld world(wholeUpload());
        world.folder.write("a.png", row.file);
        world.context.refData = row.refData;

        world.context.ensureAsset("a.png", kMD5, kSlot, world.client);

        const auto& body = *world.server->sent[1].body;
        if (row.flattened) {
            const auto flat = AlphaFlattener::flattenedPNG(world.folder / "a.png");
            EXPECT_EQ(std::get<std::string>(body), flat);
            EXPECT_EQ(reservation(world, "fileSize"), std::to_string(flat.size()) + "\n");
        } else {
            EXPECT_EQ(std::get<FileRange>(body), (FileRange{world.folder / "a.png", 0, 1'000'000}));
            EXPECT_EQ(reservation(world, "fileSize"), std::to_string(row.file.size()) + "\n");
        }
        EXPECT_EQ(reservation(world, "fileName"), "\"a.png\"\n");
        EXPECT_EQ(reservation(world, "referenceName"), "\"mq-a-0123456789ab\"\n")
            << "the file's digest in any case";
    }
}

TEST(MediaPushEnsure, TheCategoryIsTheFirstOfTheReferenceDataOrElseFollowsFromTheGroup) {
    auto withoutCategories = refDataWith(true);
    withoutCategories.placementTypes[0].assetCategories.clear();
    auto otherType = refDataWith(true);
    otherType.placementTypes[0].id = "ANOTHER";
    const struct {
        const char* when;
        std::optional<AssetLibraryRefData> refData;
        const char* group;
        const char* category;
    } rows[] = {
        {"from the reference data", refDataWith(true), "IPHONE_67", "FROM_REFERENCE_DATA"},
        {"from the reference data, default group", refDataWith(true), "DEFAULT_PROFILE",
         "FROM_REFERENCE_DATA"},
        {"the type has no category", withoutCategories, "IPHONE_67", "APP_SCREENSHOTS_AND_PREVIEWS"},
        {"the type isn't there", otherType, "IPHONE_67", "APP_SCREENSHOTS_AND_PREVIEWS"},
        {"no reference data", std::nullopt, "IPHONE_67", "APP_SCREENSHOTS_AND_PREVIEWS"},
        {"no reference data, default group", std::nullopt, "DEFAULT_PROFILE", "CREATIVE_ASSETS"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.when);
        MediaPushWorld world(wholeUpload());
        world.folder.write("a.png", kOpaque);
        world.context.refData = row.refData;
        world.context.ensureAsset("a.png", kMD5, {row.group, kSlot.type}, world.client);
        EXPECT_EQ(reservation(world, "category"), "\"" + std::string(row.category) + "\"\n");
    }
}

TEST(MediaPushEnsure, WithoutAPlaceToUploadToNothingIsSentOrCommitted) {
    MediaPushWorld world({reserved("[]")});
    world.folder.write("a.png", kOpaque);
    EXPECT_EQ(failureOf([&] { world.context.ensureAsset("a.png", kMD5, kSlot, world.client); }),
              "App Store Connect didn’t accept the upload. Try again.");
    EXPECT_EQ(world.requests(), "POST /v1/appAssetLibraryImages\n");
}

TEST(MediaPushEnsure, APartThatFailsIsNotCommitted) {
    MediaPushWorld world({reserved(), reply(403)});
    world.folder.write("a.png", kOpaque);
    EXPECT_THROW(world.context.ensureAsset("a.png", kMD5, kSlot, world.client), ASCError);
    EXPECT_TRUE(world.server->isAtTheEnd());
}

class MediaPushWait : public testing::Test {
 protected:
    // What comes of waiting for an asset whose states are these, one for each look; "" is an asset without a state,
    // "-" a reply without an asset.
    std::string outcomeOf(const std::vector<std::string>& states, Kind kind = Kind::image) {
        world = std::make_unique<MediaPushWorld>();
        for (const auto& state : states) {
            if (state.empty()) {
                world->server->then(reply(200, R"({"data":{"type":"appAssetLibraryImages","id":"A"}})"));
            } else if (state == "-") {
                world->server->then(reply(200, R"({"data":[]})"));
            } else {
                world->server->then(assetIn(state));
            }
        }
        const auto failure =
            failureOf([&] { world->context.waitUntilProcessed("A", kind, "a.png", world->client); });
        EXPECT_TRUE(world->server->isAtTheEnd());
        return failure;
    }

    std::unique_ptr<MediaPushWorld> world;
};

TEST_F(MediaPushWait, EndsAtTheFirstStateThatIsUsable) {
    for (const auto* state : {"COMPLETE", "PREPARE_FOR_SUBMISSION", "a state of next year", ""}) {
        SCOPED_TRACE(state);
        EXPECT_EQ(outcomeOf({state}), "");
        EXPECT_TRUE(world->time.slept.empty());
        EXPECT_EQ(outcomeOf({"-", "AWAITING_UPLOAD", "UPLOAD_COMPLETE", state}), "");
        EXPECT_EQ(world->time.slept, (std::vector<Seconds>(3, Seconds(5))));
    }
}

TEST_F(MediaPushWait, AStateThatIsDeadNamesFileAndState) {
    for (const std::string state : {"FAILED", "REJECTED", "ARCHIVED"}) {
        EXPECT_EQ(outcomeOf({"UPLOAD_COMPLETE", state}), "App Store Connect couldn’t process a.png (" +
                                                             state +
                                                             "). Check it matches the slot’s requirements.");
    }
}

TEST_F(MediaPushWait, LooksForAnAssetOfItsKind) {
    EXPECT_EQ(outcomeOf({"COMPLETE"}, Kind::video), "");
    EXPECT_EQ(world->requests(), "GET /v1/appAssetLibraryVideos/A\n");
}

TEST_F(MediaPushWait, GivesUpAfter180SleepsOf5Seconds) {
    for (const auto* state : {"UPLOAD_COMPLETE", "-"}) {
        EXPECT_EQ(
            outcomeOf(std::vector<std::string>(181, state)),
            "App Store Connect is still processing a.png. Push again later to finish placing it; it won’t be "
            "uploaded twice.");
        EXPECT_EQ(world->time.slept, std::vector<Seconds>(180, Seconds(5)));
    }
}

TEST_F(MediaPushWait, TheLastLookIsAfterTheLastSleep) {
    auto states = std::vector<std::string>(180, "UPLOAD_COMPLETE");
    states.push_back("COMPLETE");
    EXPECT_EQ(outcomeOf(states), "");
}

TEST(MediaPushWaiting, AFailedLookEndsTheWait) {
    MediaPushWorld world({assetIn("UPLOAD_COMPLETE"), reply(404)});
    EXPECT_THROW(world.context.waitUntilProcessed("A", Kind::image, "a.png", world.client), ASCError);
}

TEST(MediaPushWaiting, AStopEndsTheWait) {
    MediaPushWorld world({assetIn("UPLOAD_COMPLETE")});
    world.context.sleep = [&](Seconds, const std::stop_token& stop) {
        world.stopSource.request_stop();
        throwIfStopped(stop);
    };
    EXPECT_THROW(world.context.waitUntilProcessed("A", Kind::image, "a.png", world.client), Cancelled);
    EXPECT_EQ(world.server->sent.size(), 1u);
}

TEST(MediaPushWaiting, IsToldEachMinuteByTheNameOfTheFile) {
    MediaPushWorld world(times(30, assetIn("UPLOAD_COMPLETE")));
    world.server->then(assetIn("COMPLETE"));
    ToldWaits told;
    world.context.waitNotes = told.notes(world.time);
    world.context.waitUntilProcessed("A", Kind::image, "a.png", world.client);
    EXPECT_EQ(told.lines, (std::vector<std::string>{"App Store Connect is still processing a.png 1",
                                                    "App Store Connect is still processing a.png 2"}));
}

}  // namespace
}  // namespace kestrin
