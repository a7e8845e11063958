#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "SyncEngine/Content/ContentGraph.h"
#include "Tests/SyncEngine/Content/ContentGenerators.h"
#include "Tests/SyncEngine/Content/SampleListing.h"

namespace kestrin {
namespace {

using ContentGraph::flatten;
using ContentGraph::mediaValue;
using ContentGraph::value;
using sample::blue;
using sample::english;
using sample::icons;
using sample::screenshots;
using sample::winter;
using ::testing::IsEmpty;
using ::testing::SizeIs;

// One "id = value" a line, line feeds as "⏎".
std::string outline(const FlatValues& values) {
    std::string lines;
    for (const auto& [key, text] : values) {
        lines += key.id() + " = ";
        for (const char c : text) lines += c == '\n' ? "⏎" : std::string(1, c);
        lines += '\n';
    }
    return lines;
}

std::string outline(const Project& project) {
    return outline(flatten(project));
}

TEST(ContentGraphFlatten, NothingHasNoValues) {
    EXPECT_THAT(flatten(Project{}), IsEmpty());
}

TEST(ContentGraphFlatten, EveryKindOfValueHasItsEntry) {
    EXPECT_EQ(outline(sample::project()),
              "IOS/en-US/keywords = a,b\n"
              "IOS/en-US/media/IPHONE_65/SCREENSHOT = asset:1⏎file:a.png\n"
              "IOS/review/contactEmail = a@b.c\n"
              "IOS/review/contactFirstName = Ada\n"
              "IOS/review/contactLastName = L\n"
              "IOS/review/contactPhone = +1\n"
              "IOS/review/demoAccountName = demo\n"
              "IOS/review/demoAccountRequired = true\n"
              "IOS/review/notes = None\n"
              "IOS/version/copyright = 2024 Me\n"
              "IOS/version/releaseType = MANUAL\n"
              "IOS/version/versionString = 1.2\n"
              "app/de-DE/name = Käse\n"
              "app/primaryCategory = GAMES\n"
              "app/secondaryCategory = MUSIC\n"
              "experiments/icons/name = Icons\n"
              "experiments/icons/platform = MAC_OS\n"
              "experiments/icons/trafficProportion = 25\n"
              "experiments/icons/treatments/blue/appIconName = BlueIcon\n"
              "experiments/icons/treatments/blue/en-US/media/IPHONE_65/SCREENSHOT = file:media/blue.png\n"
              "experiments/icons/treatments/blue/name = Blue\n"
              "pages/winter/deepLink = app://winter\n"
              "pages/winter/en-US/media/IPHONE_65/SCREENSHOT = asset:7\n"
              "pages/winter/en-US/promotionalText = Snow\n"
              "pages/winter/name = Winter\n"
              "pages/winter/visible = false\n");
}

TEST(ContentGraphFlatten, WhatIsAbsentOrEmptyHasNoEntry) {
    Project project;
    project.app.info = {"", std::nullopt, {}};
    auto& listing = project.platforms[StorePlatform::iOS];
    listing.version = {"", std::nullopt, "", {}};
    listing.review.notes = "";
    listing.media[english][screenshots] = {};
    auto& page = project.pages[winter];
    page.deepLink = "";
    page.promotionalText[english] = "";
    page.media[english][screenshots] = {};
    auto& experiment = project.experiments[icons];
    experiment.platform = {""};
    auto& treatment = experiment.treatments[blue];
    treatment.appIconName = "";
    treatment.media[english][screenshots] = {};

    EXPECT_EQ(outline(project), "");
}

TEST(ContentGraphFlatten, LocaleListsAndTheManifestAreNoContent) {
    Project project;
    project.manifest.locales = {english};
    project.manifest.platforms = {StorePlatform::iOS};
    project.pages[winter].locales = {english};
    project.experiments[icons].platform = {""};
    project.experiments[icons].treatments[blue].locales = {english};

    EXPECT_EQ(outline(project), "");
}

TEST(ContentGraphFlatten, AFlagHasAnEntryUnlessItIsAbsent) {
    Project project;
    project.pages[winter].visible = false;
    project.pages[{"summer"}].visible = true;
    project.pages[{"spring"}];
    project.platforms[StorePlatform::iOS].review.demoAccountRequired = false;
    project.platforms[StorePlatform::macOS];

    EXPECT_EQ(outline(project),
              "IOS/review/demoAccountRequired = false\n"
              "pages/summer/visible = true\n"
              "pages/winter/visible = false\n");
}

TEST(ContentGraphFlatten, AProportionIsADecimalNumber) {
    Project project;
    auto& experiment = project.experiments[icons];
    experiment.platform = {""};
    for (const std::int64_t proportion : {std::int64_t{0}, std::int64_t{100}, std::int64_t{-5}, INT64_MIN}) {
        experiment.trafficProportion = proportion;
        EXPECT_EQ(outline(project),
                  "experiments/icons/trafficProportion = " + std::to_string(proportion) + "\n");
    }
}

TEST(ContentGraphFlatten, ATreatmentWithoutANameStillShowsItsMedia) {
    Project project;
    auto& experiment = project.experiments[icons];
    experiment.platform = {""};
    experiment.treatments[blue].media = sample::treatment().media;

    EXPECT_EQ(outline(project),
              "experiments/icons/treatments/blue/en-US/media/IPHONE_65/SCREENSHOT = file:media/blue.png\n");
}

TEST(ContentGraphFlatten, FieldsAreTakenWhereTheyAreStored) {
    Project project;
    project.app.locales = {{english, LocalizedFields({{ListingField::keywords, "k"}})}};
    project.platforms[StorePlatform::iOS].locales = {{english, LocalizedFields({{ListingField::name, "n"}})}};

    EXPECT_EQ(outline(project),
              "IOS/en-US/name = n\n"
              "app/en-US/keywords = k\n");
}

TEST(ContentGraphFlatten, AMediaListIsItsTokensInOrder) {
    const auto one = MediaItem::remote("1", "one.png");
    const auto two = MediaItem::file("media/two.png");

    EXPECT_EQ(mediaValue({}), "");
    EXPECT_EQ(mediaValue({one}), "asset:1");
    EXPECT_EQ(mediaValue({one, two}), "asset:1\nfile:media/two.png");
    EXPECT_EQ(mediaValue({two, one}), "file:media/two.png\nasset:1");
    EXPECT_EQ(mediaValue({one, one}), "asset:1\nasset:1");
    EXPECT_EQ(mediaValue({MediaItem::remote("1", "renamed.png")}), mediaValue({one}));
}

TEST(ContentGraphFlatten, AMediaListTakesNoMoreMemoryThanItsTokens) {
    // Room for every token at the length of the longest would be more than any machine has.
    MediaItems items(200'000, MediaItem::file("a"));
    items.push_back(MediaItem::file(std::string(std::size_t{8} << 20, 'b')));

    const auto lines = mediaValue(items);

    EXPECT_EQ(lines.size(), 200'000 * 7 + 5 + (std::size_t{8} << 20));
    EXPECT_LE(lines.capacity(), 2 * lines.size());
}

TEST(ContentGraphFlatten, ReviewValuesAreAsTheyStand) {
    const auto review = sample::platform().review;
    const std::pair<ReviewAttribute, const char*> rows[] = {
        {ReviewAttribute::contactFirstName, "Ada"},
        {ReviewAttribute::contactLastName, "L"},
        {ReviewAttribute::contactPhone, "+1"},
        {ReviewAttribute::contactEmail, "a@b.c"},
        {ReviewAttribute::demoAccountRequired, "true"},
        {ReviewAttribute::demoAccountName, "demo"},
        {ReviewAttribute::notes, "None"},
    };
    for (const auto& [attribute, text] : rows) {
        SCOPED_TRACE(rawValue(attribute));
        EXPECT_EQ(ContentGraph::reviewValue(attribute, review), text);
        EXPECT_EQ(ContentGraph::reviewValue(attribute, {}), std::nullopt);
    }

    ReviewDetailContent other;
    other.notes = "";
    other.demoAccountRequired = false;
    EXPECT_EQ(ContentGraph::reviewValue(ReviewAttribute::notes, other), "");
    EXPECT_EQ(ContentGraph::reviewValue(ReviewAttribute::demoAccountRequired, other), "false");
}

TEST(ContentGraphValue, IsEmptyWhereverSomethingOnTheWayIsMissing) {
    Project project;
    const ContentKey keys[] = {
        ContentKey::AppInfo{AppInfoAttribute::primaryCategory},
        ContentKey::AppInfoLocale{english, ListingField::name},
        ContentKey::Version{StorePlatform::iOS, VersionAttribute::copyright},
        ContentKey::VersionLocale{StorePlatform::iOS, english, ListingField::keywords},
        ContentKey::Placements{StorePlatform::iOS, english, screenshots},
        ContentKey::Review{StorePlatform::iOS, ReviewAttribute::demoAccountRequired},
        ContentKey::Page{winter, PageAttribute::visible},
        ContentKey::PagePromotionalText{winter, english},
        ContentKey::PagePlacements{winter, english, screenshots},
        ContentKey::Experiment{icons, ExperimentAttribute::trafficProportion},
        ContentKey::Treatment{icons, blue, TreatmentAttribute::appIconName},
        ContentKey::TreatmentPlacements{icons, blue, english, screenshots},
    };
    const auto expectAllEmpty = [&] {
        for (const auto& key : keys) {
            SCOPED_TRACE(key.id());
            EXPECT_EQ(value(key, project), "");
        }
    };

    expectAllEmpty();
    project.platforms[StorePlatform::iOS];
    project.pages[winter];
    project.experiments[icons];
    expectAllEmpty();
    project.experiments[icons].treatments[blue];
    expectAllEmpty();
    EXPECT_EQ(project.platforms.size() + project.pages.size() + project.experiments.size(), 3u);
}

RC_GTEST_PROP(ContentGraphProperties, NoFlatValueIsEmpty, ()) {
    for (const auto& [key, text] : flatten(*generated::project())) RC_ASSERT(!text.empty());
}

RC_GTEST_PROP(ContentGraphProperties, AFlatValueIsTheValueOfItsKey, ()) {
    const auto project = *generated::project();
    for (const auto& [key, text] : flatten(project)) RC_ASSERT(value(key, project) == text);
}

RC_GTEST_PROP(ContentGraphProperties, AKeyWithoutAnEntryHasTheEmptyValue, ()) {
    const auto project = *generated::project();
    const auto values = flatten(project);
    const auto key = *generated::projectKey();
    const auto entry = values.find(key);

    RC_ASSERT(value(key, project) == (entry == values.end() ? "" : entry->second));
}

}  // namespace
}  // namespace kestrin
