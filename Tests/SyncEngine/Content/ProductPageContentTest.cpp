#include "SyncEngine/Content/ProductPageContent.h"

#include <gtest/gtest.h>

#include "Tests/SyncEngine/Content/SampleListing.h"

namespace kestrin {
namespace {

using ContentGraph::adding;
using ContentGraph::mediaItems;
using sample::english;
using sample::icons;
using sample::screenshots;
using sample::winter;

using Locales = std::vector<StoreLocale>;

const ContentKey kOfDefaultPage = ContentKey::Placements{StorePlatform::iOS, english, screenshots};
const ContentKey kOfPage = ContentKey::PagePlacements{winter, english, screenshots};
const ContentKey kText = ContentKey::Page{winter, PageAttribute::deepLink};

TEST(ProductPageContent, LeavesKeysOfTheDefaultPageToOthers) {
    auto project = sample::project();

    EXPECT_EQ(ContentGraph::productPageValue(kOfDefaultPage, project), std::nullopt);
    EXPECT_FALSE(ContentGraph::setProductPageValue("asset:1", kOfDefaultPage, project));
    EXPECT_FALSE(ContentGraph::copyProductPageMedia(kOfDefaultPage, {}, project));
    EXPECT_FALSE(ContentGraph::copyProductPageMedia(kText, {}, project));
    EXPECT_EQ(project, sample::project());
}

TEST(ProductPageContent, SettlesKeysOfPagesAndTestsAlsoWhenThereIsNothing) {
    Project project;

    EXPECT_EQ(ContentGraph::productPageValue(kOfPage, project), "");
    EXPECT_TRUE(ContentGraph::setProductPageValue("", kText, project));
    EXPECT_TRUE(ContentGraph::copyProductPageMedia(kOfPage, {}, project));
}

TEST(ProductPageContent, FlattensPagesAndTestsOnly) {
    const auto project = sample::project();
    ContentGraph::Flattening flattening;
    ContentGraph::flattenProductPages(project.pages, project.experiments, flattening);
    const auto values = std::move(flattening).take();

    ASSERT_EQ(values.size(), 11u);
    for (const auto& [key, text] : values) EXPECT_FALSE(key.isDefaultProductPage()) << key;
}

TEST(ProductPageContent, MediaItemsKeepTheOrderOfTheLinesAndTheFirstKnownName) {
    const MediaItems known = {MediaItem::remote("1", "first.png"), MediaItem::remote("1", "second.png"),
                              MediaItem::remote("2", "two.png")};
    struct Row {
        const char* when;
        const char* value;
        MediaItems items;
    };
    const Row rows[] = {
        {"nothing", "", {}},
        {"only line feeds", "\n\n", {}},
        {"a known asset", "asset:2", {MediaItem::remote("2", "two.png")}},
        {"an unknown asset", "asset:3", {MediaItem::remote("3")}},
        {"an asset known twice", "asset:1", {MediaItem::remote("1", "first.png")}},
        {"a file", "file:a/b.png", {MediaItem::file("a/b.png")}},
        {"another order",
         "asset:2\nasset:1",
         {MediaItem::remote("2", "two.png"), MediaItem::remote("1", "first.png")}},
        {"lines that are no tokens", "Asset:1\nx\n asset:1\nfile:a", {MediaItem::file("a")}},
        {"empty lines", "\nfile:a\n\nfile:b\n", {MediaItem::file("a"), MediaItem::file("b")}},
        {"a token twice", "file:a\nfile:a", {MediaItem::file("a"), MediaItem::file("a")}},
        {"an empty asset ID", "asset:", {MediaItem::remote("")}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(mediaItems(row.value, known), row.items);
    }
}

TEST(ProductPageContent, AddingALocaleSortsTheListOnlyWhenItIsNew) {
    const Locales list = {{"fr-FR"}, {"en-US"}};

    EXPECT_EQ(adding({"de-DE"}, list), (Locales{{"de-DE"}, {"en-US"}, {"fr-FR"}}));
    EXPECT_EQ(adding({"fr-FR"}, list), list);
    EXPECT_EQ(adding({"de-DE"}, {}), Locales{{"de-DE"}});
}

}  // namespace
}  // namespace kestrin
