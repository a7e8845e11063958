#include "KestrinModel/MediaItem.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "KestrinCore/StableJSON.h"
#include "Tests/Support/Generators.h"
#include "Tests/Support/ListingNames.h"

namespace kestrin {
namespace {

using StableJSON::encodeCompact;

TEST(MediaItem, HasAJSONFormByItsKind) {
    struct Row {
        const char* when;
        MediaItem item;
        const char* json;
    };
    const Row rows[] = {
        {"an asset with its file name", MediaItem::remote("42", "a.png"), R"({"asset":"42","name":"a.png"})"},
        {"an empty file name is left out", MediaItem::remote("42"), R"({"asset":"42"})"},
        {"an asset without an ID", MediaItem::remote(""), R"({"asset":""})"},
        {"a file", MediaItem::file("Media/a.png"), R"({"file":"Media/a.png"})"},
        {"a file without a path", MediaItem::file(""), R"({"file":""})"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(encodeCompact(row.item.toJSON()), row.json);
        EXPECT_EQ(StableJSON::decode<MediaItem>(row.json), row.item);
    }
}

TEST(MediaItem, IsReadAsAFileWhenThereIsOne) {
    struct Row {
        const char* json;
        MediaItem item;
    };
    const Row rows[] = {
        {R"({"file":"a.png","asset":"42","name":"b.png"})", MediaItem::file("a.png")},
        {R"({"file":null,"asset":"42"})", MediaItem::remote("42")},
        {R"({"asset":"42","name":null})", MediaItem::remote("42")},
        {R"({"asset":"42","name":"","more":[1]})", MediaItem::remote("42")},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.json);
        EXPECT_EQ(StableJSON::decode<MediaItem>(row.json), row.item);
    }
}

TEST(MediaItem, RefusesWhatIsNeither) {
    struct Row {
        const char* json;
        const char* complaint;
    };
    const Row rows[] = {
        {"{}", "asset: missing"},
        {R"({"name":"a.png"})", "asset: missing"},
        {R"({"asset":null})", "asset: missing"},
        {R"({"asset":42})", "asset: expected a string"},
        {R"({"asset":"42","name":1})", "name: expected a string"},
        {R"({"file":1,"asset":"42"})", "file: expected a string"},
        {R"("asset:42")", "expected an object"},
        {"[]", "expected an object"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.json);
        try {
            StableJSON::decode<MediaItem>(row.json);
            FAIL() << "was read";
        } catch (const DecodingError& error) {
            EXPECT_EQ(error.errorDescription(), row.complaint);
        }
    }
}

TEST(MediaItem, HasATokenWithoutTheFileName) {
    EXPECT_EQ(MediaItem::remote("42", "a.png").token(), "asset:42");
    EXPECT_EQ(MediaItem::file("Media/a.png").token(), "file:Media/a.png");
    EXPECT_EQ(MediaItem::remote("").token(), "asset:");
}

TEST(MediaItem, IsMadeFromAToken) {
    struct Row {
        const char* token;
        std::optional<MediaItem> item;
    };
    const Row rows[] = {
        {"asset:42", MediaItem::remote("42", "a.png")},
        {"asset:", MediaItem::remote("", "a.png")},
        {"asset:file:x", MediaItem::remote("file:x", "a.png")},
        {"file:Media/b.png", MediaItem::file("Media/b.png")},
        {"file:", MediaItem::file("")},
        {"file:asset:42", MediaItem::file("asset:42")},
        {"", std::nullopt},
        {"asset", std::nullopt},
        {"Asset:42", std::nullopt},
        {" asset:42", std::nullopt},
        {"garbage", std::nullopt},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.token);
        EXPECT_EQ(MediaItem::fromToken(row.token, "a.png"), row.item);
    }
}

TEST(MediaItem, HasAFileName) {
    EXPECT_EQ(MediaItem::remote("42", "dir/a.png").fileName(), "dir/a.png");
    EXPECT_EQ(MediaItem::remote("42").fileName(), "");
    struct Row {
        const char* path;
        const char* fileName;
    };
    const Row rows[] = {
        {"Media/de-DE/a.png", "a.png"},
        {"a.png", "a.png"},
        {"Media//a.png//", "a.png"},
        {"/a.png", "a.png"},
        {"Media/", "Media"},
        {"", ""},
        {"/", ""},
        {"///", ""},
        {"..", ".."},
        {"日本/é.png", "é.png"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.path);
        EXPECT_EQ(MediaItem::file(row.path).fileName(), row.fileName);
    }
}

TEST(MediaItem, KnowsItsKind) {
    EXPECT_EQ(MediaItem::remote("42", "a").asRemote()->assetID, "42");
    EXPECT_EQ(MediaItem::remote("42", "a").asFile(), nullptr);
    EXPECT_EQ(MediaItem::file("a").asFile()->path, "a");
    EXPECT_EQ(MediaItem::file("a").asRemote(), nullptr);
    EXPECT_NE(MediaItem::remote("42", "a"), MediaItem::remote("42", "b"));
    EXPECT_NE(MediaItem::remote("a"), MediaItem::file("a"));
}

RC_GTEST_PROP(MediaItemProperty, IsReadBackFromItsJSONAndItsToken, ()) {
    const auto item = *arbitrary::mediaItem();
    RC_ASSERT(MediaItem::fromJSON(item.toJSON()) == item);
    RC_ASSERT(MediaItem::fromToken(item.token(), item.fileName()) == item);
}

const PlacementSlot kPhone{"screenshots", "APP_IPHONE_67"}, kPad{"screenshots", "APP_IPAD_PRO_129"};

TEST(Media, OfALocaleAndSlotThatIsNotThereIsEmpty) {
    LocalizedMedia media;
    EXPECT_TRUE(Media::items(media, kGerman, kPhone).empty());
    Media::setItems(media, kGerman, kPad, {MediaItem::remote("1")});
    EXPECT_TRUE(Media::items(media, kGerman, kPhone).empty());
    EXPECT_TRUE(Media::items(media, kFrench, kPad).empty());
    EXPECT_EQ(media.size(), 1u) << "asking makes nothing";
}

TEST(Media, IsStoredByLocaleAndSlotInItsOrder) {
    const MediaItems items = {MediaItem::remote("2"), MediaItem::file("a.png"), MediaItem::remote("1")};
    LocalizedMedia media;
    Media::setItems(media, kGerman, kPhone, items);
    EXPECT_EQ(Media::items(media, kGerman, kPhone), items);
    Media::setItems(media, kGerman, kPhone, {MediaItem::remote("3")});
    EXPECT_EQ(Media::items(media, kGerman, kPhone), (MediaItems{MediaItem::remote("3")}));
}

TEST(Media, AnEmptyListRemovesTheSlotAndALocaleLeftWithout) {
    LocalizedMedia media;
    Media::setItems(media, kGerman, kPhone, {});
    EXPECT_TRUE(media.empty()) << "no locale for nothing";

    Media::setItems(media, kGerman, kPhone, {MediaItem::remote("1")});
    Media::setItems(media, kGerman, kPad, {MediaItem::remote("2")});
    Media::setItems(media, kGerman, kPhone, {});
    EXPECT_EQ(media, (LocalizedMedia{{kGerman, {{kPad, {MediaItem::remote("2")}}}}}));

    Media::setItems(media, kFrench, kPad, {});
    Media::setItems(media, kGerman, kPad, {});
    EXPECT_TRUE(media.empty());
}

}  // namespace
}  // namespace kestrin
