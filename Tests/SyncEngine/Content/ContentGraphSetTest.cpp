#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "SyncEngine/Content/ContentGraph.h"
#include "Tests/SyncEngine/Content/ContentGenerators.h"
#include "Tests/SyncEngine/Content/SamplePlacements.h"

namespace kestrin {
namespace {

using ContentGraph::flatten;
using ContentGraph::set;
using ContentGraph::value;
using sample::blue;
using sample::english;
using sample::german;
using sample::icons;
using sample::screenshots;
using sample::winter;

using Key = ContentKey;
using Locales = std::vector<StoreLocale>;

Project with(std::string text, const Key& key, Project project = sample::project()) {
    set(std::move(text), key, project);
    return project;
}

std::vector<Key> keysOfTheDefaultPage() {
    return {
        Key::AppInfo{AppInfoAttribute::primaryCategory},
        Key::AppInfo{AppInfoAttribute::secondaryCategory},
        Key::AppInfoLocale{english, ListingField::name},
        Key::AppInfoLocale{english, ListingField::keywords},  // stored where it is put, whatever its level
        Key::Version{StorePlatform::iOS, VersionAttribute::versionString},
        Key::Version{StorePlatform::iOS, VersionAttribute::copyright},
        Key::Version{StorePlatform::iOS, VersionAttribute::releaseType},
        Key::VersionLocale{StorePlatform::iOS, english, ListingField::whatsNew},
        Key::Review{StorePlatform::iOS, ReviewAttribute::contactFirstName},
        Key::Review{StorePlatform::iOS, ReviewAttribute::contactLastName},
        Key::Review{StorePlatform::iOS, ReviewAttribute::contactPhone},
        Key::Review{StorePlatform::iOS, ReviewAttribute::contactEmail},
        Key::Review{StorePlatform::iOS, ReviewAttribute::demoAccountName},
        Key::Review{StorePlatform::iOS, ReviewAttribute::notes},
    };
}

TEST(ContentGraphSet, TextsOfTheDefaultPageAreStoredAndCleared) {
    for (const auto& key : keysOfTheDefaultPage()) {
        SCOPED_TRACE(key.id());
        auto project = with("text", key, {});
        EXPECT_EQ(flatten(project), (FlatValues{{key, "text"}}));
        set("", key, project);
        EXPECT_EQ(flatten(project), FlatValues{});
    }
}

TEST(ContentGraphSet, AClearedAttributeIsAbsentNotEmpty) {
    const auto project = with("", Key::Review{StorePlatform::iOS, ReviewAttribute::notes},
                              with("", Key::Version{StorePlatform::iOS, VersionAttribute::copyright},
                                   with("", Key::AppInfo{AppInfoAttribute::secondaryCategory})));

    EXPECT_EQ(project.app.info.secondaryCategory, std::nullopt);
    EXPECT_EQ(project[StorePlatform::iOS].version.copyright, std::nullopt);
    EXPECT_EQ(project[StorePlatform::iOS].review.notes, std::nullopt);
}

TEST(ContentGraphSet, APlatformComesIntoBeingEvenWithAnEmptyValue) {
    const Key keys[] = {
        Key::Version{StorePlatform::tvOS, VersionAttribute::copyright},
        Key::VersionLocale{StorePlatform::tvOS, english, ListingField::keywords},
        Key::Placements{StorePlatform::tvOS, english, screenshots},
        Key::Review{StorePlatform::tvOS, ReviewAttribute::notes},
    };
    for (const auto& key : keys) {
        SCOPED_TRACE(key.id());
        const auto project = with("", key, {});
        ASSERT_EQ(project.platforms.size(), 1u);
        EXPECT_EQ(project.platforms.at(StorePlatform::tvOS), PlatformListing{});
    }
}

TEST(ContentGraphSet, TheDemoAccountIsRequiredOnlyWhenTheTextIsTrue) {
    const Key key = Key::Review{StorePlatform::iOS, ReviewAttribute::demoAccountRequired};
    const std::pair<const char*, std::optional<bool>> rows[] = {
        {"true", true}, {"false", false}, {"yes", false}, {"TRUE", false}, {"", std::nullopt}};
    for (const auto& [text, flag] : rows) {
        SCOPED_TRACE(text);
        EXPECT_EQ(with(text, key)[StorePlatform::iOS].review.demoAccountRequired, flag);
    }
}

TEST(ContentGraphSet, ALocaleLeftWithNothingIsRemoved) {
    auto project = with("", Key::VersionLocale{StorePlatform::iOS, english, ListingField::keywords});
    set("", kPlacements, project);

    EXPECT_TRUE(project[StorePlatform::iOS].locales.empty());
    EXPECT_TRUE(project[StorePlatform::iOS].media.empty());
}

TEST(ContentGraphSet, TokensKeepTheFileNamesThatTheSlotHeld) {
    const auto project = with("asset:1\ngarbage\n\nfile:a.png\nasset:9", kPlacements);

    EXPECT_EQ(
        Media::items(project[StorePlatform::iOS].media, english, screenshots),
        (MediaItems{MediaItem::remote("1", "one.png"), MediaItem::file("a.png"), MediaItem::remote("9")}));
}

TEST(ContentGraphSet, TheNameIsTheLifeLine) {
    const auto withoutPage = with("", Key::Page{winter, PageAttribute::name});
    const auto withoutTest = with("", Key::Experiment{icons, ExperimentAttribute::name});
    const auto withoutTreatment = with("", Key::Treatment{icons, blue, TreatmentAttribute::name});

    EXPECT_TRUE(withoutPage.pages.empty());
    EXPECT_TRUE(withoutTest.experiments.empty());
    EXPECT_TRUE(withoutTreatment.experiments.at(icons).treatments.empty());
    EXPECT_EQ(withoutTreatment.experiments.at(icons).name, "Icons");
}

std::vector<Key> keysOfPagesAndTests() {
    std::vector<Key> keys = {Key::PagePromotionalText{winter, english}, kPagePlacements,
                             kTreatmentPlacements};
    for (const auto attribute : allCases<PageAttribute>) keys.push_back(Key::Page{winter, attribute});
    for (const auto attribute : allCases<ExperimentAttribute>)
        keys.push_back(Key::Experiment{icons, attribute});
    for (const auto attribute : allCases<TreatmentAttribute>) {
        keys.push_back(Key::Treatment{icons, blue, attribute});
    }
    return keys;
}

TEST(ContentGraphSet, AnEmptyValueBringsNoPageTestOrTreatmentIntoBeing) {
    Project withTest;
    withTest.experiments[icons];
    for (const auto& key : keysOfPagesAndTests()) {
        SCOPED_TRACE(key.id());
        EXPECT_EQ(with("", key, {}), Project{});
        const bool ofTreatment = key.experiment() && key.experiment()->treatment;
        if (ofTreatment) {
            EXPECT_EQ(with("", key, withTest), withTest);
        }
    }
}

TEST(ContentGraphSet, AValueBringsItsPageTestAndTreatmentIntoBeing) {
    for (const auto& key : keysOfPagesAndTests()) {
        SCOPED_TRACE(key.id());
        const auto project = with("asset:1", key, {});
        EXPECT_EQ(project.pages.count(winter), key.page() ? 1u : 0u);
        EXPECT_EQ(project.experiments.count(icons), key.experiment() ? 1u : 0u);
        if (key.experiment()) {
            EXPECT_EQ(project.experiments.at(icons).treatments.count(blue),
                      key.experiment()->treatment ? 1u : 0u);
        }
    }
}

TEST(ContentGraphSet, AMadeTestIsForIOSAndAMadePageHasNoName) {
    const auto project = with("Icons", Key::Experiment{icons, ExperimentAttribute::name},
                              with("false", Key::Page{winter, PageAttribute::visible}, {}));

    Project expected;
    expected.pages[winter].visible = false;
    expected.experiments[icons].name = "Icons";
    expected.experiments[icons].platform = StorePlatform::iOS;
    EXPECT_EQ(project, expected);
}

TEST(ContentGraphSet, PageAttributesAreStoredAndCleared) {
    const auto page = [](const char* text, const Key& key) { return with(text, key).pages.at(winter); };
    const Key name = Key::Page{winter, PageAttribute::name};
    const Key visible = Key::Page{winter, PageAttribute::visible};
    const Key deepLink = Key::Page{winter, PageAttribute::deepLink};

    EXPECT_EQ(page("Ice", name).name, "Ice");
    EXPECT_EQ(page("true", visible).visible, true);
    EXPECT_EQ(page("no", visible).visible, false);
    EXPECT_EQ(page("", visible).visible, std::nullopt);
    EXPECT_EQ(page("app://ice", deepLink).deepLink, "app://ice");
    EXPECT_EQ(page("", deepLink).deepLink, std::nullopt);
}

TEST(ContentGraphSet, APageTextAddsItsLocaleAndLeavesItWhenCleared) {
    const Key key = Key::PagePromotionalText{winter, german};
    auto project = with("Schnee", key);
    EXPECT_EQ(project.pages.at(winter).promotionalText.at(german), "Schnee");
    EXPECT_EQ(project.pages.at(winter).locales, (Locales{german, english}));

    set("", key, project);
    EXPECT_EQ(project.pages.at(winter).promotionalText.count(german), 0u);
    EXPECT_EQ(project.pages.at(winter).locales, (Locales{german, english}));
}

TEST(ContentGraphSet, MediaOfPagesAndTreatmentsAddTheirLocaleWhenThereAreItems) {
    const Key ofPage = Key::PagePlacements{winter, german, screenshots};
    const Key ofTreatment = Key::TreatmentPlacements{icons, blue, german, screenshots};

    EXPECT_EQ(with("asset:1", ofPage).pages.at(winter).locales, (Locales{german, english}));
    EXPECT_EQ(with("garbage", ofPage).pages.at(winter).locales, Locales{english});
    EXPECT_EQ(with("asset:1", ofTreatment).experiments.at(icons).treatments.at(blue).locales,
              (Locales{german, english}));
    EXPECT_EQ(with("garbage", ofTreatment).experiments.at(icons).treatments.at(blue).locales,
              Locales{english});
}

TEST(ContentGraphSet, MediaOfPagesAndTreatmentsKeepFileNamesAndEmptyTheirSlot) {
    const auto project = with("asset:8\nasset:7", kPagePlacements);
    EXPECT_EQ(Media::items(project.pages.at(winter).media, english, screenshots),
              (MediaItems{MediaItem::remote("8"), MediaItem::remote("7", "snow.png")}));

    EXPECT_TRUE(with("", kPagePlacements).pages.at(winter).media.empty());
    EXPECT_TRUE(with("garbage", kPagePlacements).pages.at(winter).media.empty());
    EXPECT_TRUE(with("", kTreatmentPlacements).experiments.at(icons).treatments.at(blue).media.empty());
}

TEST(ContentGraphSet, TestAttributesAreStoredAndCleared) {
    const auto test = [](const char* text, ExperimentAttribute attribute) {
        return with(text, Key::Experiment{icons, attribute}).experiments.at(icons);
    };

    EXPECT_EQ(test("New", ExperimentAttribute::name).name, "New");
    EXPECT_EQ(test("TV_OS", ExperimentAttribute::platform).platform, StorePlatform::tvOS);
    EXPECT_EQ(test("", ExperimentAttribute::platform).platform, StorePlatform::iOS);
    EXPECT_EQ(test("50", ExperimentAttribute::trafficProportion).trafficProportion, 50);
    EXPECT_EQ(test("half", ExperimentAttribute::trafficProportion).trafficProportion, std::nullopt);
    EXPECT_EQ(test("", ExperimentAttribute::trafficProportion).trafficProportion, std::nullopt);
}

TEST(ContentGraphSet, TreatmentAttributesAreStoredAndCleared) {
    const auto treatment = [](const char* text, TreatmentAttribute attribute) {
        return with(text, Key::Treatment{icons, blue, attribute}).experiments.at(icons).treatments.at(blue);
    };

    EXPECT_EQ(treatment("Navy", TreatmentAttribute::name).name, "Navy");
    EXPECT_EQ(treatment("NavyIcon", TreatmentAttribute::appIconName).appIconName, "NavyIcon");
    EXPECT_EQ(treatment("", TreatmentAttribute::appIconName).appIconName, std::nullopt);
}

TEST(ContentGraphSet, AProportionIsAWholeDecimalNumber) {
    const std::pair<const char*, std::optional<std::int64_t>> rows[] = {
        {"0", 0}, {"+25", 25}, {"-25", -25}, {"", std::nullopt}, {" 1", std::nullopt}, {"1.0", std::nullopt}};
    for (const auto& [text, number] : rows) {
        SCOPED_TRACE(text);
        EXPECT_EQ(ContentGraph::trafficProportion(text), number);
    }
}

RC_GTEST_PROP(ContentGraphSetProperties, WritingAValueBackChangesNoValue, ()) {
    auto project = *generated::project();
    const auto values = flatten(project);
    for (const auto& [key, text] : values) set(text, key, project);

    RC_ASSERT(flatten(project) == values);
}

RC_GTEST_PROP(ContentGraphSetProperties, WritingATextBackToTheDefaultPageChangesNothing, ()) {
    const auto before = *generated::project();
    auto project = before;
    for (const auto& [key, text] : flatten(before)) {
        if (key.isDefaultProductPage() && !key.isMedia()) set(text, key, project);
    }

    RC_ASSERT(project == before);
}

RC_GTEST_PROP(ContentGraphSetProperties, AClearedKeyHasTheEmptyValue, ()) {
    auto project = *generated::project();
    const auto key = *generated::projectKey();
    set("", key, project);

    const auto* ofTest = key.as<Key::Experiment>();
    const bool isPlatform = ofTest && ofTest->attribute == ExperimentAttribute::platform;
    const bool goesBackToIOS = isPlatform && project.experiments.count(ofTest->experiment) == 1;
    RC_ASSERT(value(key, project) == (goesBackToIOS ? "IOS" : ""));
}

}  // namespace
}  // namespace kestrin
