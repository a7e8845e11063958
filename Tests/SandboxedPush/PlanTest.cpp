// The plan as a push shows it, where the transcripts can't lead.
#include <gtest/gtest.h>

#include "Tests/SandboxedPush/ProjectEdit.h"
#include "Tests/SandboxedPush/PushStage.h"

namespace kestrin {
namespace {

// The plan of a push of one text, which is declined.
std::string planShown(PushStage& stage) {
    const auto ended = stage.run({"push", stage.package()}, {"n"});
    EXPECT_EQ(ended.status, 1);
    const auto begin = ended.output.find("\nPlan: ");
    return ended.output.substr(std::min(begin, ended.output.size()));
}

TEST(PushPlanShown, NamesTheRestOfTheHourOnlyWhereTheServiceDoes) {
    PushStage stage;
    EXPECT_EQ(stage.run({"pull", stage.package(), "--bundle-id", PushStage::kBundleID}).status, 0);
    stage.edit([](Project& project) { ProjectEdit(project).set("IOS/de-DE/whatsNew", "Neu"); });
    const std::string steps =
        "\n  update IOS/de-DE/whatsNew\n\nPush to App Store Connect? [y/N] Nothing pushed.\n";

    EXPECT_EQ(planShown(stage), "\nPlan: 1 writes for 1 values (~32 requests, 3537 left this hour)." + steps);
    stage.hideRateLimit();
    EXPECT_EQ(planShown(stage), "\nPlan: 1 writes for 1 values (~32 requests)." + steps);
}

TEST(PushPlanShown, CountsTheValuesThatWereSelectedNotThoseThatGiveAStep) {
    PushStage stage;
    EXPECT_EQ(stage.run({"pull", stage.package(), "--bundle-id", PushStage::kBundleID}).status, 0);
    stage.edit([](Project& project) {
        ProjectEdit(project).set("IOS/de-DE/whatsNew", "Neu");
        ProjectEdit(project).set("experiments/nameless/trafficProportion", "40");  // and its platform
    });
    EXPECT_TRUE(planShown(stage).starts_with("\nPlan: 1 writes for 3 values (~32 requests,"))
        << planShown(stage);
}

TEST(PushPlanShown, WithAConflictAndAFilterThatLeavesNothingThereIsNothingToPushAndItIsAFailure) {
    PushStage stage;
    EXPECT_EQ(stage.run({"pull", stage.package(), "--bundle-id", PushStage::kBundleID}).status, 0);
    stage.edit([](Project& project) { ProjectEdit(project).set("IOS/de-DE/whatsNew", "Hier."); });
    stage.remote().with([](sandbox::State& state) {
        auto* german = state.store.first("appStoreVersionLocalizations",
                                         {{"locale", "de-DE"}, {"appStoreVersion.versionString", "2.4"}});
        german->attributes["whatsNew"] = "Dort.";
        return 0;
    });

    for (const auto& words :
         {Arguments{"push", stage.package(), "--yes"},
          Arguments{"push", stage.package(), "--yes", "--include-conflicts", "--locales", "ja"}}) {
        const auto ended = stage.run(words);
        EXPECT_EQ(ended.output,
                  "Conflicts: changed here and in App Store Connect (1):\n"
                  "  IOS/de-DE/whatsNew\n"
                  "    - Dort.\n"
                  "    + Hier.\n"
                  "Nothing to push.\n");
        EXPECT_EQ(ended.status, 1);
    }
}

}  // namespace
}  // namespace kestrin
