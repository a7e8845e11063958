#include "SyncEngine/Push/PushPlanner.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "Tests/SyncEngine/Push/PlannedChanges.h"
#include "Tests/SyncEngine/Push/StepText.h"

namespace kestrin {
namespace {

// An app whose version of iOS has German and review details; that of macOS has neither.
RemoteIDs remoteIDs() {
    RemoteIDs ids;
    ids.appInfoID = "AI";
    ids.appInfoLocalizations = {{{"de-DE"}, "AL-de"}};
    ids.versions = {{{"IOS"}, {"V-ios", "", {{{"de-DE"}, "L-de"}}, {}, "R", {}}},
                    {{"MAC_OS"}, {"V-mac", "", {}, {}, {}, {}}}};
    return ids;
}

std::string stepsOf(const std::vector<Change>& changes, const RemoteIDs& ids = remoteIDs()) {
    return StepText::of(PushPlanner::plan(changes, ids));
}

TEST(PushPlanner, NoChangesAreNoSteps) {
    EXPECT_EQ(stepsOf({}), "");
}

// --- Categories

TEST(PushPlanner, CategoriesAreOneStep) {
    EXPECT_EQ(stepsOf(changesTo({{"app/primaryCategory", "GAMES"}, {"app/secondaryCategory", "BOOKS"}})),
              "updateCategories AI primary=\"GAMES\" secondary=\"BOOKS\" <- app/primaryCategory, "
              "app/secondaryCategory\n");
}

TEST(PushPlanner, ACategoryThatDidntChangeIsAbsentAndOneThatWasEmptiedIsEmpty) {
    EXPECT_EQ(stepsOf(changesTo({{"app/secondaryCategory", ""}})),
              "updateCategories AI secondary=\"\" <- app/secondaryCategory\n");
}

// --- Localized texts

TEST(PushPlanner, AnExistingLocalizationIsUpdatedWithAllItsChangedValuesEmptyOnesToo) {
    EXPECT_EQ(stepsOf(changesTo({{"app/de-DE/name", "Tide"}, {"app/de-DE/subtitle", ""}})),
              "updateAppInfoLocalization AL-de {name=\"Tide\" subtitle=\"\"} <- app/de-DE/name, "
              "app/de-DE/subtitle\n");
    EXPECT_EQ(stepsOf(changesTo({{"IOS/de-DE/keywords", ""}, {"IOS/de-DE/whatsNew", "Neu"}})),
              "updateVersionLocalization L-de {keywords=\"\" whatsNew=\"Neu\"} <- IOS/de-DE/keywords, "
              "IOS/de-DE/whatsNew\n");
}

TEST(PushPlanner, ANewLocalizationIsCreatedWithItsNonEmptyValuesAndSettlesAll) {
    EXPECT_EQ(stepsOf(changesTo({{"app/fr-FR/name", "Marée"}, {"app/fr-FR/subtitle", ""}})),
              "createAppInfoLocalization AI fr-FR {name=\"Marée\"} <- app/fr-FR/name, app/fr-FR/subtitle\n");
    EXPECT_EQ(stepsOf(changesTo({{"IOS/fr-FR/keywords", ""}, {"IOS/fr-FR/whatsNew", "Neuf"}})),
              "createVersionLocalization V-ios fr-FR {whatsNew=\"Neuf\"} <- IOS/fr-FR/keywords, "
              "IOS/fr-FR/whatsNew\n");
}

TEST(PushPlanner, ACreateOfOnlyEmptyValuesIsStillAStep) {
    EXPECT_EQ(stepsOf(changesTo({{"app/fr-FR/subtitle", ""}})),
              "createAppInfoLocalization AI fr-FR {} <- app/fr-FR/subtitle\n");
    EXPECT_EQ(stepsOf(changesTo({{"IOS/fr-FR/keywords", ""}})),
              "createVersionLocalization V-ios fr-FR {} <- IOS/fr-FR/keywords\n");
    EXPECT_EQ(stepsOf(changesTo({{"MAC_OS/review/notes", ""}})),
              "createReviewDetail V-mac {} <- MAC_OS/review/notes\n");
}

TEST(PushPlanner, LocalizationsAreInTheOrderOfPlatformsAndLocales) {
    EXPECT_EQ(stepsOf(changesTo({{"MAC_OS/de-DE/whatsNew", "d"},
                                 {"IOS/fr-FR/whatsNew", "b"},
                                 {"app/fr-FR/name", "y"},
                                 {"IOS/de-DE/whatsNew", "a"},
                                 {"app/de-DE/name", "x"},
                                 {"MAC_OS/ar-SA/whatsNew", "c"}})),
              "updateAppInfoLocalization AL-de {name=\"x\"} <- app/de-DE/name\n"
              "createAppInfoLocalization AI fr-FR {name=\"y\"} <- app/fr-FR/name\n"
              "updateVersionLocalization L-de {whatsNew=\"a\"} <- IOS/de-DE/whatsNew\n"
              "createVersionLocalization V-ios fr-FR {whatsNew=\"b\"} <- IOS/fr-FR/whatsNew\n"
              "createVersionLocalization V-mac ar-SA {whatsNew=\"c\"} <- MAC_OS/ar-SA/whatsNew\n"
              "createVersionLocalization V-mac de-DE {whatsNew=\"d\"} <- MAC_OS/de-DE/whatsNew\n");
}

// --- Versions and App Review

TEST(PushPlanner, TheAttributesOfAVersionAreOneStepPerPlatform) {
    EXPECT_EQ(stepsOf(changesTo({{"MAC_OS/version/copyright", "2026"},
                                 {"IOS/version/versionString", "2.0"},
                                 {"IOS/version/copyright", ""}})),
              "updateVersion V-ios {versionString=\"2.0\" copyright=\"\"} <- IOS/version/versionString, "
              "IOS/version/copyright\n"
              "updateVersion V-mac {copyright=\"2026\"} <- MAC_OS/version/copyright\n");
}

TEST(PushPlanner, ReviewDetailsAreUpdatedWhereThereAreSomeAndElseCreated) {
    EXPECT_EQ(stepsOf(changesTo({{"IOS/review/contactPhone", ""},
                                 {"IOS/review/notes", "Hi"},
                                 {"MAC_OS/review/demoAccountRequired", "false"},
                                 {"MAC_OS/review/notes", ""}})),
              "updateReviewDetail R {contactPhone=\"\" notes=\"Hi\"} <- IOS/review/contactPhone, "
              "IOS/review/notes\n"
              "createReviewDetail V-mac {demoAccountRequired=\"false\"} <- "
              "MAC_OS/review/demoAccountRequired, MAC_OS/review/notes\n");
}

// --- What has nowhere to go

TEST(PushPlanner, WithoutAnAppInfoCategoriesAndTextsOfTheAppGiveNothing) {
    auto ids = remoteIDs();
    ids.appInfoID.reset();
    EXPECT_EQ(stepsOf(changesTo({{"app/primaryCategory", "GAMES"},
                                 {"app/de-DE/name", "Tide"},
                                 {"app/fr-FR/name", "Marée"},
                                 {"IOS/version/copyright", "2026"}}),
                      ids),
              "updateVersion V-ios {copyright=\"2026\"} <- IOS/version/copyright\n");
}

TEST(PushPlanner, APlatformWithoutAVersionGivesNothing) {
    EXPECT_EQ(stepsOf(changesTo({{"TV_OS/version/copyright", "2026"},
                                 {"TV_OS/de-DE/whatsNew", "Neu"},
                                 {"TV_OS/review/notes", "Hi"},
                                 {"TV_OS/de-DE/media/group/type", "asset:1"}})),
              "");
}

// --- The whole order

RemoteListing remoteWithPage() {
    RemoteListing remote;
    remote.appID = "7";
    remote.ids = remoteIDs();
    remote.ids.pages[{"old"}] = {"P", {}, "PV", "", {{{"de-DE"}, "PL-de"}}, {}};
    return remote;
}

const auto kEverything = changesTo({
    {"IOS/de-DE/media/group/type", "file:a.png"},
    {"IOS/de-DE/whatsNew", "Neu"},
    {"IOS/review/notes", "Hi"},
    {"IOS/version/copyright", "2026"},
    {"app/de-DE/name", "Tide"},
    {"app/primaryCategory", "GAMES"},
    {"experiments/icons/name", "Icons"},
    {"pages/old/de-DE/media/group/type", "file:b.png"},
    {"pages/summer/name", "Summer"},
});

TEST(PushPlanner, ParentsGoAheadOfChildrenTextAheadOfMediaAndUploadsAheadOfSlots) {
    EXPECT_EQ(StepText::of(
                  PushPlanner::plan(kEverything, remoteWithPage(), {{"a.png", "aa"}, {"b.png", "bb"}}, {})),
              "updateCategories AI primary=\"GAMES\" <- app/primaryCategory\n"
              "updateAppInfoLocalization AL-de {name=\"Tide\"} <- app/de-DE/name\n"
              "updateVersion V-ios {copyright=\"2026\"} <- IOS/version/copyright\n"
              "updateVersionLocalization L-de {whatsNew=\"Neu\"} <- IOS/de-DE/whatsNew\n"
              "updateReviewDetail R {notes=\"Hi\"} <- IOS/review/notes\n"
              "createCustomPage summer 7 name=\"Summer\" {} <- pages/summer/name\n"
              "createExperiment icons 7 name=\"Icons\" IOS 50% <- experiments/icons/name\n"
              "ensureAsset a.png aa group/type\n"
              "ensureAsset b.png bb group/type\n"
              "placeMedia version IOS V-ios/L-de de-DE group/type want file:a.png have <- "
              "IOS/de-DE/media/group/type\n"
              "placeMedia page old/PL-de de-DE group/type want file:b.png have <- "
              "pages/old/de-DE/media/group/type\n");
}

TEST(PushPlanner, TheOrderOfTheStepsDoesntFollowTheOrderOfTheChanges) {
    auto reversed = kEverything;
    std::reverse(reversed.begin(), reversed.end());
    const PushPlanner::MediaHashes hashes{{"a.png", "aa"}, {"b.png", "bb"}};
    EXPECT_EQ(StepText::of(PushPlanner::plan(reversed, remoteWithPage(), hashes, {})),
              StepText::of(PushPlanner::plan(kEverything, remoteWithPage(), hashes, {})));
}

TEST(PushPlanner, AStepsKeysAreInTheOrderOfTheChanges) {
    EXPECT_EQ(stepsOf(changesTo({{"IOS/version/releaseType", "MANUAL"}, {"IOS/version/copyright", "2026"}})),
              "updateVersion V-ios {copyright=\"2026\" releaseType=\"MANUAL\"} <- IOS/version/releaseType, "
              "IOS/version/copyright\n");
}

TEST(PushPlanner, WithIdsAloneThereIsNoAppToMakePagesIn) {
    EXPECT_EQ(stepsOf(changesTo({{"pages/summer/name", "Summer"}})), "");
}

}  // namespace
}  // namespace kestrin
