#include <gtest/gtest.h>

#include "SyncEngine/Push/PushPlanner.h"
#include "Tests/SyncEngine/Push/PlannedChanges.h"
#include "Tests/SyncEngine/Push/StepText.h"

namespace kestrin {
namespace {

// An app with the page "old" in German, and the test "icons" with the treatment "blue" in German.
RemoteListing listingOfPages() {
    RemoteListing remote;
    remote.appID = "7";
    remote.ids.pages[{"old"}] = {"P", {}, "PV", "", {{{"de-DE"}, "PL-de"}}, {}};
    remote.ids.experiments[{"icons"}] = {"E", "", {{{"blue"}, {"T", {{{"de-DE"}, "TL-de"}}, {}}}}};
    return remote;
}

std::string pageStepsOf(const std::vector<Change>& changes, const RemoteListing& remote = listingOfPages()) {
    return StepText::of(PushPlanner::productPageSteps(changes, remote));
}

// --- A page that exists

TEST(PageSteps, NameAndVisibilityAreOneStep) {
    EXPECT_EQ(pageStepsOf(changesTo({{"pages/old/name", "Old"}, {"pages/old/visible", "false"}})),
              "updateCustomPage old P name=\"Old\" invisible <- pages/old/name, pages/old/visible\n");
}

TEST(PageSteps, AVisibilityAloneLeavesTheNameOut) {
    EXPECT_EQ(pageStepsOf(changesTo({{"pages/old/visible", "true"}})),
              "updateCustomPage old P visible <- pages/old/visible\n");
}

TEST(PageSteps, OnlyTheWordTrueIsVisible) {
    for (const auto* value : {"false", "TRUE", "yes", ""}) {
        EXPECT_EQ(pageStepsOf(changesTo({{"pages/old/visible", value}})),
                  "updateCustomPage old P invisible <- pages/old/visible\n")
            << value;
    }
}

TEST(PageSteps, AnEmptiedNameIsStillAStepWithoutTheName) {
    EXPECT_EQ(pageStepsOf(changesTo({{"pages/old/name", ""}})), "updateCustomPage old P <- pages/old/name\n");
}

TEST(PageSteps, TheDeepLinkIsAStepOfItsOwnOnTheVersionEmptyOrNot) {
    EXPECT_EQ(pageStepsOf(changesTo({{"pages/old/deepLink", "tide://x"}, {"pages/old/name", "Old"}})),
              "updateCustomPage old P name=\"Old\" <- pages/old/name\n"
              "updateCustomPageVersion PV deepLink=\"tide://x\" <- pages/old/deepLink\n");
    EXPECT_EQ(pageStepsOf(changesTo({{"pages/old/deepLink", ""}})),
              "updateCustomPageVersion PV deepLink=\"\" <- pages/old/deepLink\n");
}

TEST(PageSteps, ALocalizationIsMadeOrChangedOrForMediaAloneLeftAlone) {
    EXPECT_EQ(pageStepsOf(changesTo({{"pages/old/de-DE/promotionalText", ""}})),
              "updateCustomPageLocalization PL-de text=\"\" <- pages/old/de-DE/promotionalText\n");
    EXPECT_EQ(pageStepsOf(changesTo({{"pages/old/de-DE/media/group/type", "asset:1"}})), "");
    EXPECT_EQ(pageStepsOf(changesTo({{"pages/old/fr-FR/promotionalText", "Été"}})),
              "createCustomPageLocalization old PV fr-FR text=\"Été\" <- pages/old/fr-FR/promotionalText\n");
    EXPECT_EQ(pageStepsOf(changesTo({{"pages/old/fr-FR/media/group/type", "asset:1"}})),
              "createCustomPageLocalization old PV fr-FR text=\"\"\n");
    EXPECT_EQ(pageStepsOf(changesTo({{"pages/old/fr-FR/media/group/type", "asset:1"},
                                     {"pages/old/fr-FR/promotionalText", "Été"}})),
              "createCustomPageLocalization old PV fr-FR text=\"Été\" <- pages/old/fr-FR/promotionalText\n");
}

TEST(PageSteps, LocalizationsAreInOrderWhetherOfTextOrMedia) {
    EXPECT_EQ(pageStepsOf(changesTo({{"pages/old/ja/media/group/type", "asset:1"},
                                     {"pages/old/fr-FR/promotionalText", "Été"},
                                     {"pages/old/de-DE/promotionalText", "Sommer"},
                                     {"pages/old/ar-SA/media/group/type", "asset:1"}})),
              "createCustomPageLocalization old PV ar-SA text=\"\"\n"
              "updateCustomPageLocalization PL-de text=\"Sommer\" <- pages/old/de-DE/promotionalText\n"
              "createCustomPageLocalization old PV fr-FR text=\"Été\" <- pages/old/fr-FR/promotionalText\n"
              "createCustomPageLocalization old PV ja text=\"\"\n");
}

// --- A page that is new

TEST(PageSteps, ANewPageIsOneCreateWithItsLocalizations) {
    EXPECT_EQ(pageStepsOf(changesTo({{"pages/new/deepLink", "tide://x"},
                                     {"pages/new/fr-FR/media/group/type", "asset:1"},
                                     {"pages/new/de-DE/media/group/type", "asset:1"},
                                     {"pages/new/de-DE/promotionalText", "Sommer"},
                                     {"pages/new/name", "New"}})),
              "createCustomPage new 7 name=\"New\" deepLink=\"tide://x\" {de-DE=\"Sommer\" fr-FR=\"\"} <- "
              "pages/new/deepLink, pages/new/name, pages/new/de-DE/promotionalText\n");
}

TEST(PageSteps, AnEmptyDeepLinkOfANewPageIsLeftOut) {
    EXPECT_EQ(pageStepsOf(changesTo({{"pages/new/deepLink", ""}, {"pages/new/name", "New"}})),
              "createCustomPage new 7 name=\"New\" {} <- pages/new/deepLink, pages/new/name\n");
}

TEST(PageSteps, ANewPageTakesItsVisibilityRightBehindItsCreate) {
    EXPECT_EQ(pageStepsOf(changesTo(
                  {{"pages/new/name", "New"}, {"pages/new/visible", "true"}, {"pages/newer/name", "Newer"}})),
              "createCustomPage new 7 name=\"New\" {} <- pages/new/name\n"
              "updateCustomPage new - visible <- pages/new/visible\n"
              "createCustomPage newer 7 name=\"Newer\" {} <- pages/newer/name\n");
}

TEST(PageSteps, ANewPageNeedsANameAndAnApp) {
    const auto nameless = changesTo({{"pages/new/visible", "true"},
                                     {"pages/new/deepLink", "tide://x"},
                                     {"pages/new/de-DE/promotionalText", "Sommer"}});
    EXPECT_EQ(pageStepsOf(nameless), "");
    EXPECT_EQ(pageStepsOf(changesTo({{"pages/new/name", ""}, {"pages/new/visible", "true"}})), "");
    auto noApp = listingOfPages();
    noApp.appID.reset();
    EXPECT_EQ(pageStepsOf(changesTo({{"pages/new/name", "New"}}), noApp), "");
}

// --- A test that exists

TEST(ExperimentSteps, NameAndShareAreOneStep) {
    EXPECT_EQ(pageStepsOf(changesTo(
                  {{"experiments/icons/name", "Icons"}, {"experiments/icons/trafficProportion", "25"}})),
              "updateExperiment E name=\"Icons\" 25% <- experiments/icons/name, "
              "experiments/icons/trafficProportion\n");
}

TEST(ExperimentSteps, ThePlatformOfAnExistingTestIsNeverWritten) {
    EXPECT_EQ(pageStepsOf(changesTo({{"experiments/icons/platform", "MAC_OS"}})), "");
    EXPECT_EQ(pageStepsOf(
                  changesTo({{"experiments/icons/name", "Icons"}, {"experiments/icons/platform", "MAC_OS"}})),
              "updateExperiment E name=\"Icons\" <- experiments/icons/name\n");
}

TEST(ExperimentSteps, AnEmptyNameOrAnUnreadableShareOfAnExistingTestIsNoChange) {
    EXPECT_EQ(pageStepsOf(changesTo({{"experiments/icons/name", ""}})), "");
    for (const auto* share : {"", "half", "12.5"}) {
        EXPECT_EQ(pageStepsOf(changesTo({{"experiments/icons/trafficProportion", share}})), "") << share;
    }
    EXPECT_EQ(pageStepsOf(changesTo(
                  {{"experiments/icons/name", "Icons"}, {"experiments/icons/trafficProportion", "half"}})),
              "updateExperiment E name=\"Icons\" <- experiments/icons/name, "
              "experiments/icons/trafficProportion\n");
}

// --- A test that is new

TEST(ExperimentSteps, ANewTestIsCreatedWithAllItsKeys) {
    EXPECT_EQ(pageStepsOf(changesTo({{"experiments/new/name", "New"},
                                     {"experiments/new/platform", "MAC_OS"},
                                     {"experiments/new/trafficProportion", "25"}})),
              "createExperiment new 7 name=\"New\" MAC_OS 25% <- experiments/new/name, "
              "experiments/new/platform, experiments/new/trafficProportion\n");
}

TEST(ExperimentSteps, ANewTestIsForIOSAndHalfOfThePeopleUnlessItSaysOtherwise) {
    EXPECT_EQ(pageStepsOf(changesTo({{"experiments/new/name", "New"}})),
              "createExperiment new 7 name=\"New\" IOS 50% <- experiments/new/name\n");
    EXPECT_EQ(pageStepsOf(changesTo({{"experiments/new/name", "New"},
                                     {"experiments/new/platform", ""},
                                     {"experiments/new/trafficProportion", "half"}})),
              "createExperiment new 7 name=\"New\" IOS 50% <- experiments/new/name, "
              "experiments/new/platform, experiments/new/trafficProportion\n");
}

TEST(ExperimentSteps, ANewTestWithoutANameOrAnAppGivesNothingForItsTreatmentsEither) {
    const auto treatments = changesTo({{"experiments/new/treatments/blue/name", "Blue"},
                                       {"experiments/new/treatments/blue/de-DE/media/g/t", "asset:1"}});
    EXPECT_EQ(pageStepsOf(treatments), "");
    EXPECT_EQ(pageStepsOf(changesTo(
                  {{"experiments/new/name", ""}, {"experiments/new/treatments/blue/name", "Blue"}})),
              "");
    auto noApp = listingOfPages();
    noApp.appID.reset();
    EXPECT_EQ(pageStepsOf(changesTo({{"experiments/new/name", "New"},
                                     {"experiments/new/treatments/blue/name", "Blue"}}),
                          noApp),
              "");
}

// --- Treatments

TEST(TreatmentSteps, AnExistingTreatmentIsUpdatedAndAnEmptyIconClearsIt) {
    EXPECT_EQ(pageStepsOf(changesTo({{"experiments/icons/treatments/blue/appIconName", ""},
                                     {"experiments/icons/treatments/blue/name", "Blue"}})),
              "updateTreatment T name=\"Blue\" icon=\"\" <- experiments/icons/treatments/blue/appIconName, "
              "experiments/icons/treatments/blue/name\n");
    EXPECT_EQ(pageStepsOf(changesTo({{"experiments/icons/treatments/blue/name", ""}})), "");
}

TEST(TreatmentSteps, ANewTreatmentOfAnExistingTestIsCreatedInIt) {
    EXPECT_EQ(pageStepsOf(changesTo({{"experiments/icons/treatments/red/appIconName", "IconRed"},
                                     {"experiments/icons/treatments/red/name", "Red"}})),
              "createTreatment icons/red E name=\"Red\" icon=\"IconRed\" <- "
              "experiments/icons/treatments/red/appIconName, experiments/icons/treatments/red/name\n");
    EXPECT_EQ(pageStepsOf(changesTo({{"experiments/icons/treatments/red/appIconName", ""},
                                     {"experiments/icons/treatments/red/name", "Red"}})),
              "createTreatment icons/red E name=\"Red\" <- "
              "experiments/icons/treatments/red/appIconName, experiments/icons/treatments/red/name\n");
}

TEST(TreatmentSteps, ANewTreatmentNeedsAName) {
    EXPECT_EQ(pageStepsOf(changesTo({{"experiments/icons/treatments/red/appIconName", "IconRed"}})), "");
}

TEST(TreatmentSteps, MediaNeedALocalizationWhichIsMadeWhereItIsMissing) {
    EXPECT_EQ(pageStepsOf(changesTo({{"experiments/icons/treatments/blue/de-DE/media/g/t", "asset:1"},
                                     {"experiments/icons/treatments/blue/ja/media/g/t", "asset:1"},
                                     {"experiments/icons/treatments/blue/ja/media/g/u", "asset:1"},
                                     {"experiments/icons/treatments/blue/fr-FR/media/g/t", "asset:1"}})),
              "createTreatmentLocalization icons/blue T fr-FR\n"
              "createTreatmentLocalization icons/blue T ja\n");
}

TEST(TreatmentSteps, MediaOfATreatmentThatCantBeMadeStillGetALocalizationThatFailsByName) {
    EXPECT_EQ(pageStepsOf(changesTo({{"experiments/icons/treatments/red/de-DE/media/g/t", "asset:1"}})),
              "createTreatmentLocalization icons/red - de-DE\n");
}

TEST(TreatmentSteps, ANewTestWithTreatmentsAndMediaIsPlannedParentsFirst) {
    EXPECT_EQ(pageStepsOf(changesTo({{"experiments/new/treatments/red/de-DE/media/g/t", "asset:1"},
                                     {"experiments/new/treatments/red/name", "Red"},
                                     {"experiments/new/treatments/blue/name", "Blue"},
                                     {"experiments/new/name", "New"},
                                     {"experiments/icons/treatments/red/name", "Red"},
                                     {"pages/new/name", "New"}})),
              "createCustomPage new 7 name=\"New\" {} <- pages/new/name\n"
              "createTreatment icons/red E name=\"Red\" <- experiments/icons/treatments/red/name\n"
              "createExperiment new 7 name=\"New\" IOS 50% <- experiments/new/name\n"
              "createTreatment new/blue - name=\"Blue\" <- experiments/new/treatments/blue/name\n"
              "createTreatment new/red - name=\"Red\" <- experiments/new/treatments/red/name\n"
              "createTreatmentLocalization new/red - de-DE\n");
}

}  // namespace
}  // namespace kestrin
