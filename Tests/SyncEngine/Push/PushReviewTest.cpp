#include "SyncEngine/Push/PushReview.h"

#include <gtest/gtest.h>

#include "Tests/SyncEngine/Push/PlannedChanges.h"
#include "Tests/SyncEngine/Push/StepText.h"

namespace kestrin {
namespace {

const PlacementSlot kPhone{"phone", "shot"};
const ContentKey kCopyright = keyOf("IOS/version/copyright");
const ContentKey kRelease = keyOf("IOS/version/releaseType");

// An app whose version of iOS has German. Reading it back takes 6 + 3 + 1 requests.
constexpr std::size_t kReadBack = 10;

PushReview review() {
    PushReview review;
    review.remote.appID = "7";
    review.remote.ids.versions[StorePlatform::iOS] = {"V", "", {{{"de-DE"}, "L"}}, {}, {}, {}};
    return review;
}

std::set<ContentKey> keysOf(const std::vector<Change>& changes) {
    std::set<ContentKey> keys;
    for (const auto& change : changes) keys.insert(change.key);
    return keys;
}

// --- steps

TEST(PushReview, PlansWhatIsSelectedOfTheChanges) {
    auto both = review();
    both.changeSet.changes =
        changesTo({{"IOS/version/copyright", "2026"}, {"IOS/version/releaseType", "MANUAL"}});
    EXPECT_EQ(StepText::of(both.steps({kRelease})),
              "updateVersion V {releaseType=\"MANUAL\"} <- IOS/version/releaseType\n");
    EXPECT_TRUE(both.steps({}).empty());
}

TEST(PushReview, AConflictIsPlannedLikeAChangeButOnlyWhenItIsSelected) {
    auto mixed = review();
    mixed.changeSet.changes = changesTo({{"IOS/version/releaseType", "MANUAL"}});
    mixed.changeSet.conflicts = changesTo({{"IOS/version/copyright", "2026"}});
    EXPECT_EQ(StepText::of(mixed.steps({kRelease})),
              "updateVersion V {releaseType=\"MANUAL\"} <- IOS/version/releaseType\n");
    EXPECT_EQ(StepText::of(mixed.steps({kRelease, kCopyright})),
              "updateVersion V {copyright=\"2026\" releaseType=\"MANUAL\"} <- IOS/version/releaseType, "
              "IOS/version/copyright\n")
        << "changes first, then conflicts";
}

TEST(PushReview, DriftAndWhatIsBlockedNeverGoOut) {
    auto idle = review();
    idle.changeSet.drift = changesTo({{"IOS/version/releaseType", "MANUAL"}});
    for (auto& change : changesTo({{"IOS/version/copyright", "2026"}}))
        idle.changeSet.blocked.push_back({change, {BlockReason::NoRemoteVersion{}}});
    EXPECT_TRUE(idle.steps({kRelease, kCopyright}).empty());
}

TEST(PushReview, PlansWithItsHashesAndReferenceData) {
    auto media = review();
    media.changeSet.changes = changesTo({{"IOS/de-DE/media/phone/shot", "file:a.png"}});
    const auto selection = keysOf(media.changeSet.changes);
    EXPECT_EQ(StepText::of(media.steps(selection)),
              "ensureAsset a.png missing:a.png phone/shot\n"
              "placeMedia version IOS V/L de-DE phone/shot want file:a.png have <- "
              "IOS/de-DE/media/phone/shot\n");
    media.media = MediaResolution{};
    media.media->hashes = {{"a.png", "aa"}};
    media.refData.emplace();
    media.refData->maxCounts = {{"shot", {{"phone", 10}}}};
    EXPECT_EQ(StepText::of(media.steps(selection)),
              "ensureAsset a.png aa phone/shot\n"
              "placeMedia version IOS V/L de-DE phone/shot want file:a.png have max 10 <- "
              "IOS/de-DE/media/phone/shot\n");
}

// --- assetsAwaitingUpload

ASCLibraryAsset assetIn(const std::string& id, const std::string& state, const std::string& hash = "") {
    ASCLibraryAsset asset;
    asset.id = id;
    asset.state = state;
    if (!hash.empty()) asset.referenceName = "mq-a-" + hash;
    return asset;
}

TEST(PushReview, AnAssetWithoutItsBytesIsToldWhereverItIsSeen) {
    auto cut = review();
    cut.remote.assets = {{"placed", assetIn("placed", "AWAITING_UPLOAD")},
                         {"processed", assetIn("processed", "UPLOAD_COMPLETE")},
                         {"whole", assetIn("whole", "APPROVED")}};
    cut.media = MediaResolution{};
    cut.media->index = LibraryIndex({assetIn("for a file", "AWAITING_UPLOAD", "aaaaaaaaaaaa"),
                                     assetIn("another's", "AWAITING_UPLOAD", "bbbbbbbbbbbb")});
    cut.media->hashes = {{"Media/a.png", "aaaaaaaaaaaa0000"}, {"Media/new.png", "cccccccccccc0000"}};

    std::vector<std::string> ids;
    for (const auto& [id, asset] : cut.assetsAwaitingUpload()) ids.push_back(id);
    EXPECT_EQ(ids, (std::vector<std::string>{"for a file", "placed"}));
}

TEST(PushReview, AFileWhoseContentIsThereTwiceIsntTakenForTheEmptyAsset) {
    auto again = review();
    again.media = MediaResolution{};
    again.media->index = LibraryIndex(
        {assetIn("1", "AWAITING_UPLOAD", "aaaaaaaaaaaa"), assetIn("2", "APPROVED", "aaaaaaaaaaaa")});
    again.media->hashes = {{"Media/a.png", "aaaaaaaaaaaa0000"}};
    EXPECT_TRUE(again.assetsAwaitingUpload().empty());
}

// --- estimatedRequests

TEST(PushReview, TheEstimateOfNothingIsTheReadBack) {
    EXPECT_EQ(review().estimatedRequests({}), kReadBack);
    auto media = review();
    media.media = MediaResolution{};
    EXPECT_EQ(media.estimatedRequests({}), kReadBack + 2) << "and the library, images and videos";
}

// What the remote German slot phone/shot holds.
void setRemoteSlot(PushReview& review, const std::vector<std::string>& assets) {
    auto& version = review.remote.ids.versions[StorePlatform::iOS];
    auto& content = review.remote.platforms[StorePlatform::iOS];
    for (const auto& asset : assets) {
        version.placements[{"de-DE"}]["phone/shot"].push_back("P" + asset);
        content.media[{"de-DE"}][kPhone].push_back(MediaItem::remote(asset));
    }
}

TEST(PushReview, EstimatesEachWriteByItsKind) {
    struct Row {
        const char* write;
        std::vector<Change> changes;
        std::size_t requests;
    };
    const Row rows[] = {
        {"a text", changesTo({{"IOS/de-DE/whatsNew", "Neu"}}), 1},
        {"two texts of one localization",
         changesTo({{"IOS/de-DE/whatsNew", "Neu"}, {"IOS/de-DE/keywords", "a"}}), 1},
        {"texts of two localizations", changesTo({{"IOS/de-DE/whatsNew", "Neu"}, {"IOS/ja/whatsNew", "x"}}),
         2},
        {"a new page", changesTo({{"pages/new/name", "New"}}), 3},
        {"a new page with its visibility",
         changesTo({{"pages/new/name", "New"}, {"pages/new/visible", "true"}}), 4},
        {"a test", changesTo({{"experiments/new/name", "New"}}), 1},
        {"an upload into an empty slot: the asset, the placement, perhaps an order",
         changesTo({{"IOS/de-DE/media/pad/shot", "file:a.png"}}), 10 + 1 + 1},
        {"one file twice in a slot", changesTo({{"IOS/de-DE/media/pad/shot", "file:a.png\nfile:a.png"}}),
         10 + 1 + 1},
        {"a slot that is emptied", changesTo({{"IOS/de-DE/media/phone/shot", ""}}), 2 + 1},
        {"a slot that is reordered", changesTo({{"IOS/de-DE/media/phone/shot", "asset:2\nasset:1"}}), 0 + 1},
        {"one of two replaced", changesTo({{"IOS/de-DE/media/phone/shot", "asset:1\nasset:3"}}), 2 + 1},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.write);
        auto reviewed = review();
        setRemoteSlot(reviewed, {"1", "2"});
        reviewed.changeSet.changes = row.changes;
        EXPECT_EQ(reviewed.estimatedRequests(keysOf(row.changes)), kReadBack + row.requests);
    }
}

}  // namespace
}  // namespace kestrin
