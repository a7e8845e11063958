#include <gtest/gtest.h>

#include "SyncEngine/Push/PushPlanner.h"
#include "Tests/Support/ListingNames.h"
#include "Tests/SyncEngine/Push/PlannedChanges.h"
#include "Tests/SyncEngine/Push/StepText.h"

namespace kestrin {
namespace {

const PlacementSlot kPhone{"phone", "shot"};

// A version, a page and a treatment, each in German with two placements in phone/shot.
RemoteListing listingOfMedia() {
    const MediaItems items{MediaItem::remote("A1"), MediaItem::remote("A2")};
    const LocalizedMedia media{{kGerman, {{kPhone, items}}}};
    const PlacementIDs placements{{kGerman, {{"phone/shot", {"P1", "P2"}}}}};
    const LocalizationIDs localizations{{kGerman, "L"}};

    RemoteListing remote;
    remote.appID = "7";
    remote.ids.versions[StorePlatform::iOS] = {"V", "", localizations, placements, {}, {}};
    remote.platforms[StorePlatform::iOS].media = media;
    remote.ids.pages[{"old"}] = {"P", {}, "PV", "", localizations, placements};
    remote.pages[{"old"}].media = media;
    remote.ids.experiments[{"icons"}] = {"E", "", {{{"blue"}, {"T", localizations, placements}}}};
    remote.experiments[{"icons"}].treatments[{"blue"}].media = media;
    return remote;
}

std::string mediaStepsOf(const std::vector<Change>& changes, const RemoteListing& remote = listingOfMedia(),
                         const PushPlanner::MediaHashes& hashes = {},
                         const std::optional<AssetLibraryRefData>& refData = {}) {
    return StepText::of(PushPlanner::mediaSteps(changes, remote, hashes, refData));
}

TEST(MediaSteps, FindWhatTheSlotOfEachParentHolds) {
    EXPECT_EQ(mediaStepsOf(changesTo({{"IOS/de-DE/media/phone/shot", "asset:A1"}})),
              "placeMedia version IOS V/L de-DE phone/shot want asset:A1 have P1=A1 P2=A2 <- "
              "IOS/de-DE/media/phone/shot\n");
    EXPECT_EQ(mediaStepsOf(changesTo({{"pages/old/de-DE/media/phone/shot", "asset:A1"}})),
              "placeMedia page old/L de-DE phone/shot want asset:A1 have P1=A1 P2=A2 <- "
              "pages/old/de-DE/media/phone/shot\n");
    EXPECT_EQ(
        mediaStepsOf(changesTo({{"experiments/icons/treatments/blue/de-DE/media/phone/shot", "asset:A1"}})),
        "placeMedia treatment icons/blue/L de-DE phone/shot want asset:A1 have P1=A1 P2=A2 <- "
        "experiments/icons/treatments/blue/de-DE/media/phone/shot\n");
}

TEST(MediaSteps, ALocalizationOrASlotThatIsntThereYetHoldsNothing) {
    EXPECT_EQ(mediaStepsOf(changesTo({{"IOS/fr-FR/media/phone/shot", "asset:A1"}})),
              "placeMedia version IOS V/- fr-FR phone/shot want asset:A1 have <- "
              "IOS/fr-FR/media/phone/shot\n");
    EXPECT_EQ(mediaStepsOf(changesTo({{"IOS/de-DE/media/pad/shot", "asset:A1"}})),
              "placeMedia version IOS V/L de-DE pad/shot want asset:A1 have <- IOS/de-DE/media/pad/shot\n");
}

TEST(MediaSteps, AVersionThatDoesntExistHasNoSlots) {
    EXPECT_EQ(mediaStepsOf(changesTo({{"MAC_OS/de-DE/media/phone/shot", "file:a.png"}})), "");
}

TEST(MediaSteps, APageOrTreatmentThatDoesntExistYetIsMadeByStepsAhead) {
    EXPECT_EQ(mediaStepsOf(changesTo({{"pages/new/de-DE/media/phone/shot", "asset:A1"}})),
              "placeMedia page new/- de-DE phone/shot want asset:A1 have <- "
              "pages/new/de-DE/media/phone/shot\n");
    EXPECT_EQ(
        mediaStepsOf(changesTo({{"experiments/icons/treatments/red/de-DE/media/phone/shot", "asset:A1"},
                                {"experiments/new/treatments/red/de-DE/media/phone/shot", "asset:A1"}})),
        "placeMedia treatment icons/red/- de-DE phone/shot want asset:A1 have <- "
        "experiments/icons/treatments/red/de-DE/media/phone/shot\n"
        "placeMedia treatment new/red/- de-DE phone/shot want asset:A1 have <- "
        "experiments/new/treatments/red/de-DE/media/phone/shot\n");
}

TEST(MediaSteps, ASlotIsEmptiedByAStepOfItsOwn) {
    EXPECT_EQ(mediaStepsOf(changesTo({{"IOS/de-DE/media/phone/shot", ""}})),
              "placeMedia version IOS V/L de-DE phone/shot want have P1=A1 P2=A2 <- "
              "IOS/de-DE/media/phone/shot\n");
}

TEST(MediaSteps, EmptyLinesAndWhatIsNoItemAreDroppedFromAValue) {
    EXPECT_EQ(mediaStepsOf(changesTo({{"IOS/de-DE/media/phone/shot", "asset:A2\n\nnonsense\nasset:A1\n"}})),
              "placeMedia version IOS V/L de-DE phone/shot want asset:A2 asset:A1 have P1=A1 P2=A2 <- "
              "IOS/de-DE/media/phone/shot\n");
}

TEST(MediaSteps, OtherKeysAreNoneOfTheirBusiness) {
    EXPECT_EQ(mediaStepsOf(changesTo({{"IOS/de-DE/whatsNew", "Neu"}, {"pages/old/name", "Old"}})), "");
}

// --- Assets

TEST(MediaSteps, AllAssetsAreThereBeforeTheFirstSlotIsTouched) {
    EXPECT_EQ(mediaStepsOf(changesTo({{"IOS/de-DE/media/phone/shot", "file:b.png\nasset:A1"},
                                      {"IOS/de-DE/media/pad/shot", "file:a.png"}}),
                           listingOfMedia(), {{"a.png", "aa"}, {"b.png", "bb"}}),
              "ensureAsset a.png aa pad/shot\n"
              "ensureAsset b.png bb phone/shot\n"
              "placeMedia version IOS V/L de-DE pad/shot want file:a.png have <- IOS/de-DE/media/pad/shot\n"
              "placeMedia version IOS V/L de-DE phone/shot want file:b.png asset:A1 have P1=A1 P2=A2 <- "
              "IOS/de-DE/media/phone/shot\n");
}

TEST(MediaSteps, OneContentIsOneUploadByItsFirstPathAndSlotInTheOrderOfKeys) {
    const PushPlanner::MediaHashes hashes{{"a.png", "same"}, {"copy.png", "same"}};
    const auto plan = mediaStepsOf(changesTo({{"pages/old/de-DE/media/phone/shot", "file:a.png"},
                                              {"IOS/ja/media/phone/shot", "file:copy.png\nfile:a.png"},
                                              {"IOS/de-DE/media/tv/shot", "file:copy.png"}}),
                                   listingOfMedia(), hashes);
    EXPECT_EQ(plan,
              "ensureAsset copy.png same tv/shot\n"
              "placeMedia version IOS V/L de-DE tv/shot want file:copy.png have <- IOS/de-DE/media/tv/shot\n"
              "placeMedia version IOS V/- ja phone/shot want file:copy.png file:a.png have <- "
              "IOS/ja/media/phone/shot\n"
              "placeMedia page old/L de-DE phone/shot want file:a.png have P1=A1 P2=A2 <- "
              "pages/old/de-DE/media/phone/shot\n");
}

TEST(MediaSteps, OneFileInTwentySlotsIsOneUpload) {
    std::vector<Change> changes;
    for (char group = 'a'; group < 'a' + 20; ++group) {
        changes.push_back({keyOf(std::string("IOS/de-DE/media/") + group + "/shot"), "", "file:a.png"});
    }
    const auto steps = PushPlanner::mediaSteps(changes, listingOfMedia(), {{"a.png", "aa"}}, {});
    ASSERT_EQ(steps.size(), 21u);
    EXPECT_EQ(StepText::of(steps.front()), "ensureAsset a.png aa a/shot");
    for (std::size_t n = 1; n < steps.size(); ++n) {
        EXPECT_TRUE(std::holds_alternative<PushStep::PlaceMedia>(steps[n].action));
    }
}

TEST(MediaSteps, AFileWithoutAHashGoesOutUnderItsPathToFailByName) {
    const auto change = changesTo({{"IOS/de-DE/media/pad/shot", "file:a.png\nfile:b.png\nfile:a.png"}});
    const auto slot =
        "placeMedia version IOS V/L de-DE pad/shot want file:a.png file:b.png file:a.png have <- "
        "IOS/de-DE/media/pad/shot\n";
    const auto assets = std::string("ensureAsset a.png missing:a.png pad/shot\n") +
                        "ensureAsset b.png missing:b.png pad/shot\n";
    EXPECT_EQ(mediaStepsOf(change), assets + slot);
    EXPECT_EQ(mediaStepsOf(change, listingOfMedia(), {{"a.png", ""}}), assets + slot)
        << "an empty hash is none";
}

// --- What the slot holds

TEST(MediaSteps, PlacementsAndItemsAreWalkedSideBySideToTheEndOfTheShorterList) {
    auto remote = listingOfMedia();
    remote.ids.versions[StorePlatform::iOS].placements[kGerman]["phone/shot"] = {"P1", "P2", "P3"};
    const auto change = changesTo({{"IOS/de-DE/media/phone/shot", ""}});
    EXPECT_NE(mediaStepsOf(change, remote).find("have P1=A1 P2=A2 <-"), std::string::npos)
        << mediaStepsOf(change, remote);
    remote.ids.versions[StorePlatform::iOS].placements[kGerman]["phone/shot"] = {"P1"};
    EXPECT_NE(mediaStepsOf(change, remote).find("have P1=A1 <-"), std::string::npos)
        << mediaStepsOf(change, remote);
}

TEST(MediaSteps, AFileAmongTheRemoteItemsIsPassedOverWithItsPlacement) {
    auto remote = listingOfMedia();
    remote.platforms[StorePlatform::iOS].media[kGerman][kPhone] = {MediaItem::file("x.png"),
                                                                   MediaItem::remote("A2")};
    const auto plan = mediaStepsOf(changesTo({{"IOS/de-DE/media/phone/shot", ""}}), remote);
    EXPECT_NE(plan.find("have P2=A2 <-"), std::string::npos) << plan;
}

TEST(MediaSteps, TheLimitOfASlotComesFromTheReferenceData) {
    AssetLibraryRefData refData;
    refData.maxCounts = {{"shot", {{"phone", 10}}}};
    const auto limited = [&](const char* key) {
        const auto plan = mediaStepsOf(changesTo({{key, ""}}), listingOfMedia(), {}, refData);
        return plan.find(" max 10 <-") != std::string::npos;
    };
    EXPECT_TRUE(limited("IOS/de-DE/media/phone/shot"));
    EXPECT_FALSE(limited("IOS/de-DE/media/phone/film"));
    EXPECT_FALSE(limited("IOS/de-DE/media/pad/shot"));
}

}  // namespace
}  // namespace kestrin
