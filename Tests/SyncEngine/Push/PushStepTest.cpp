#include "SyncEngine/Push/PushStep.h"

#include <gtest/gtest.h>

#include "Tests/Support/ListingNames.h"
#include "Tests/SyncEngine/Push/PlannedChanges.h"
#include "Tests/SyncEngine/Push/StepText.h"

namespace kestrin {
namespace {

const Slug kSummer{"summer"};
const Slug kIcons{"icons"};
const std::vector<ContentKey> kNoKeys;

TEST(PushStep, IsACreateExactlyForTheActionsThatMakeSomething) {
    struct Row {
        PushStep::Action action;
        bool isCreate;
    };
    const Row rows[] = {
        {PushStep::UpdateAppInfoLocalization{}, false},
        {PushStep::CreateAppInfoLocalization{}, true},
        {PushStep::UpdateVersionLocalization{}, false},
        {PushStep::CreateVersionLocalization{}, true},
        {PushStep::UpdateVersion{}, false},
        {PushStep::UpdateCategories{}, false},
        {PushStep::EnsureAsset{}, false},
        {PushStep::PlaceMedia{}, false},
        {PushStep::UpdateReviewDetail{}, false},
        {PushStep::CreateReviewDetail{}, true},
        {PushStep::CreateCustomPage{}, true},
        {PushStep::UpdateCustomPage{}, false},
        {PushStep::UpdateCustomPageVersion{}, false},
        {PushStep::UpdateCustomPageLocalization{}, false},
        {PushStep::CreateCustomPageLocalization{}, true},
        {PushStep::CreateExperiment{}, true},
        {PushStep::UpdateExperiment{}, false},
        {PushStep::CreateTreatment{}, true},
        {PushStep::UpdateTreatment{}, false},
        {PushStep::CreateTreatmentLocalization{}, true},
    };
    EXPECT_EQ(std::size(rows), std::variant_size_v<PushStep::Action>);
    std::size_t place = 0;
    for (const auto& [action, isCreate] : rows) {
        SCOPED_TRACE(StepText::of(PushStep{action, {}}));
        EXPECT_EQ(action.index(), place++) << "the actions in their order";
        EXPECT_EQ((PushStep{action, {}}).isCreate(), isCreate);
    }
}

TEST(PushStep, IsKnownByItsKeysExceptWhereItHasNone) {
    const auto copyright = keyOf("IOS/version/copyright");
    const auto release = keyOf("IOS/version/releaseType");
    const auto text = keyOf("pages/summer/de-DE/promotionalText");
    struct Row {
        const char* id;
        PushStep step;
    };
    const Row rows[] = {
        {"IOS/version/copyright", {PushStep::UpdateVersion{}, {copyright}}},
        {"IOS/version/releaseType|IOS/version/copyright", {PushStep::UpdateVersion{}, {release, copyright}}},
        {"", {PushStep::UpdateVersion{}, kNoKeys}},
        {"asset:0123:Media/a.png",
         {PushStep::EnsureAsset{"Media/a.png", "0123", {"group", "type"}}, kNoKeys}},
        {"treatment-localization:icons/blue/de-DE",
         {PushStep::CreateTreatmentLocalization{kIcons, kBlue, "T", kGerman}, kNoKeys}},
        {"page-localization:summer/de-DE",
         {PushStep::CreateCustomPageLocalization{kSummer, "PV", kGerman, ""}, kNoKeys}},
        {"pages/summer/de-DE/promotionalText",
         {PushStep::CreateCustomPageLocalization{kSummer, "PV", kGerman, "Sonne"}, {text}}},
    };
    for (const auto& [id, step] : rows) EXPECT_EQ(step.id(), id) << StepText::of(step);
}

TEST(PushStep, LocalizationsWithoutKeysAreToldApartByPageAndLocale) {
    const auto idOf = [](const char* page, const char* locale) {
        return PushStep{PushStep::CreateCustomPageLocalization{{page}, "PV", {locale}, ""}, {}}.id();
    };
    EXPECT_NE(idOf("summer", "de-DE"), idOf("summer", "fr-FR"));
    EXPECT_NE(idOf("summer", "de-DE"), idOf("winter", "de-DE"));
}

}  // namespace
}  // namespace kestrin
