#include "KestrinModel/Project.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "Tests/Support/Generators.h"
#include "Tests/Support/ListingNames.h"

namespace kestrin {
namespace {

using enum ListingField;

TEST(Project, HasAnEmptyListingForAPlatformThatIsNotThere) {
    Project project;
    project.manifest.platforms = {StorePlatform::tvOS};
    const Project before = project;

    EXPECT_EQ(project[StorePlatform::tvOS], PlatformListing{});
    EXPECT_TRUE(project[StorePlatform::tvOS].review.isEmpty());
    EXPECT_EQ(project, before) << "asking makes nothing";
}

TEST(Project, StoresAppInfoFieldsOnceAndVersionFieldsByPlatform) {
    for (const auto field : ListingFields::all) {
        SCOPED_TRACE(rawValue(field));
        const bool isOfTheApp = parent(field) == ListingFieldInfo::Parent::appInfoLocalization;
        Project project;

        project.setValue("text", field, kGerman, StorePlatform::iOS);

        EXPECT_EQ(project.value(field, kGerman, StorePlatform::iOS), "text");
        EXPECT_EQ(project.value(field, kGerman, StorePlatform::macOS), isOfTheApp ? "text" : "");
        EXPECT_EQ(project.value(field, {"fr-FR"}, StorePlatform::iOS), "");
        EXPECT_EQ(project.app.locales.contains(kGerman), isOfTheApp);
        EXPECT_EQ(project.platforms.contains(StorePlatform::iOS), !isOfTheApp);
    }
}

TEST(Project, RemovingTheLastTextRemovesTheLocale) {
    for (const auto field : ListingFields::all) {
        SCOPED_TRACE(rawValue(field));
        Project project;
        project.setValue("text", field, kGerman, StorePlatform::iOS);

        project.setValue("", field, kGerman, StorePlatform::iOS);

        EXPECT_TRUE(project.app.locales.empty());
        EXPECT_TRUE(project[StorePlatform::iOS].locales.empty());
        EXPECT_EQ(project.value(field, kGerman, StorePlatform::iOS), "");
        EXPECT_TRUE(Texts::fields(project.app.locales, kGerman).isEmpty());
    }
}

TEST(Project, AVersionTextBringsItsPlatformIntoBeingEvenWhenItIsEmpty) {
    Project project;
    project.setValue("", keywords, kGerman, StorePlatform::iOS);
    EXPECT_EQ(project.platforms, (std::map<StorePlatform, PlatformListing>{{StorePlatform::iOS, {}}}));

    project.setValue("", name, kGerman, StorePlatform::tvOS);
    EXPECT_FALSE(project.platforms.contains(StorePlatform::tvOS));
}

TEST(Project, ALocaleWithUnknownMembersOutlivesItsTexts) {
    Project project;
    project.app.locales[kGerman] = LocalizedFields({{name, "Notizen"}}, {{"future", 1}});

    project.setValue("", name, kGerman, StorePlatform::iOS);

    EXPECT_EQ(project.app.locales, (LocalizedTexts{{kGerman, LocalizedFields({}, {{"future", 1}})}}));
}

TEST(Project, FindsALocaleInEveryForm) {
    Project project;
    project.setValue("text", name, {"caf\u00E9"}, StorePlatform::iOS);
    project.setValue("other", name, {"cafe\u0301"}, StorePlatform::iOS);
    EXPECT_EQ(project.value(name, {"caf\u00E9"}, StorePlatform::iOS), "other");
    EXPECT_EQ(project.app.locales.size(), 1u);
}

RC_GTEST_PROP(Project, ACopyIsIndependent, ()) {
    const auto project = *arbitrary::project();
    auto copy = project;
    RC_ASSERT(copy == project);
    copy.setValue("changed", name, kGerman, StorePlatform::iOS);
    copy.pages[{"new"}].name = "New";
    RC_ASSERT(!project.pages.contains({"new"}));
    RC_ASSERT(copy != project);
}

TEST(CustomProductPage, IsMadeWithSortedLocalesAndWithoutEmptyTexts) {
    const auto page = CustomProductPage::made({.name = "Summer",
                                               .visible = true,
                                               .deepLink = std::nullopt,
                                               .locales = {{"fr-FR"}, {"cafe\u0301"}, {"de-DE"}, {"cafz"}},
                                               .promotionalText = {{kGerman, "Sommer"}, {{"fr-FR"}, ""}},
                                               .media = {},
                                               .unknownFields = {{"future", 1}}});

    EXPECT_THAT(page.locales, testing::ElementsAre(StoreLocale{"cafz"}, StoreLocale{"caf\u00E9"}, kGerman,
                                                   StoreLocale{"fr-FR"}));
    EXPECT_EQ(page.promotionalText, (std::map<StoreLocale, std::string>{{kGerman, "Sommer"}}));
    EXPECT_EQ(page.name, "Summer");
    EXPECT_EQ(page.visible, true);
    EXPECT_EQ(page.unknownFields, (UnknownFields{{"future", 1}}));
}

TEST(Treatment, IsMadeWithSortedLocales) {
    const auto treatment = Treatment::made({.name = "Icon B",
                                            .appIconName = "IconB",
                                            .locales = {{"ja"}, {"ar-SA"}, {"en-US"}},
                                            .media = {},
                                            .unknownFields = {}});

    EXPECT_THAT(treatment.locales,
                testing::ElementsAre(StoreLocale{"ar-SA"}, StoreLocale{"en-US"}, StoreLocale{"ja"}));
    EXPECT_EQ(treatment.appIconName, "IconB");
}

TEST(Experiment, IsForIOSUnlessItSaysOtherwise) {
    EXPECT_EQ(Experiment{}.platform, StorePlatform::iOS);
    EXPECT_EQ(Experiment{}.trafficProportion, std::nullopt);
}

}  // namespace
}  // namespace kestrin
