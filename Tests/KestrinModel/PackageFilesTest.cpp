// The JSON files of a package, each by itself.
#include <gtest/gtest.h>

#include "KestrinCore/StableJSON.h"
#include "KestrinModel/ExperimentFile.h"
#include "KestrinModel/LocaleFile.h"
#include "KestrinModel/PageFile.h"
#include "KestrinModel/PlacementsFile.h"
#include "KestrinModel/TreatmentFile.h"

namespace kestrin {
namespace {

// Defaults, members that are written always, and unknown ones.

TEST(PageFile, EverythingIsOptionalOnRead) {
    EXPECT_EQ(StableJSON::decode<PageFile>("{}"), PageFile());
}

TEST(PageFile, WritesNameAndLocalesAlwaysAndTheRestWhenPresent) {
    EXPECT_EQ(StableJSON::encode(PageFile()), "{\n  \"locales\" : [\n\n  ],\n  \"name\" : \"\"\n}\n");
    const PageFile full{"Summer", false, "app://x", {{"fr"}, {"de"}}, {{"new", 1}}};
    EXPECT_EQ(StableJSON::encode(full),
              "{\n  \"deepLink\" : \"app://x\",\n  \"locales\" : [\n    \"fr\",\n    \"de\"\n  ],\n"
              "  \"name\" : \"Summer\",\n  \"new\" : 1,\n  \"visible\" : false\n}\n");
    EXPECT_EQ(StableJSON::decode<PageFile>(StableJSON::encode(full)), full);
}

TEST(PageFile, GoesToAPageAndBackWithItsLocalesInTheOrderOfTheFile) {
    const PageFile file{"Summer", true, "app://x", {{"fr"}, {"de"}}, {{"new", 1}}};
    EXPECT_EQ(PageFile::of(file.page()), file);
}

TEST(ExperimentFile, IsForIOSUnlessItSaysOtherwise) {
    const auto file = StableJSON::decode<ExperimentFile>("{}");
    EXPECT_EQ(file, ExperimentFile());
    EXPECT_EQ(file.platform.rawValue, "IOS");
}

TEST(ExperimentFile, WritesNameAndPlatformAlwaysAndTheTrafficWhenPresent) {
    EXPECT_EQ(StableJSON::encode(ExperimentFile()), "{\n  \"name\" : \"\",\n  \"platform\" : \"IOS\"\n}\n");
    const ExperimentFile full{"Icons", StorePlatform::tvOS, -5, {{"new", nullptr}}};
    EXPECT_EQ(StableJSON::encode(full),
              "{\n  \"name\" : \"Icons\",\n  \"new\" : null,\n  \"platform\" : \"TV_OS\",\n"
              "  \"trafficProportion\" : -5\n}\n");
    EXPECT_EQ(StableJSON::decode<ExperimentFile>(StableJSON::encode(full)), full);
    EXPECT_EQ(ExperimentFile::of(full.experiment()), full);
}

TEST(TreatmentFile, WritesNameAndLocalesAlwaysAndTheIconWhenPresent) {
    EXPECT_EQ(StableJSON::decode<TreatmentFile>("{}"), TreatmentFile());
    EXPECT_EQ(StableJSON::encode(TreatmentFile()), "{\n  \"locales\" : [\n\n  ],\n  \"name\" : \"\"\n}\n");
    const TreatmentFile full{"Blue", "IconBlue", {{"fr"}, {"de"}}, {{"new", true}}};
    EXPECT_EQ(StableJSON::encode(full),
              "{\n  \"appIconName\" : \"IconBlue\",\n  \"locales\" : [\n    \"fr\",\n    \"de\"\n  ],\n"
              "  \"name\" : \"Blue\",\n  \"new\" : true\n}\n");
    EXPECT_EQ(StableJSON::decode<TreatmentFile>(StableJSON::encode(full)), full);
    EXPECT_EQ(TreatmentFile::of(full.treatment()), full);
}

TEST(PackageFiles, AMemberOfTheWrongTypeIsAFault) {
    EXPECT_THROW(StableJSON::decode<PageFile>(R"({"visible": "yes"})"), DecodingError);
    EXPECT_THROW(StableJSON::decode<PageFile>(R"({"locales": ["de", 1]})"), DecodingError);
    EXPECT_THROW(StableJSON::decode<ExperimentFile>(R"({"trafficProportion": 0.5})"), DecodingError);
    EXPECT_THROW(StableJSON::decode<ExperimentFile>(R"({"platform": 1})"), DecodingError);
    EXPECT_THROW(StableJSON::decode<TreatmentFile>(R"({"appIconName": []})"), DecodingError);
    EXPECT_THROW(StableJSON::decode<TreatmentFile>("[]"), DecodingError);
}

TEST(PackageFiles, ANullReadsAsAbsentAndIsNotWrittenAgain) {
    const auto page = StableJSON::decode<PageFile>(R"({"name": null, "visible": null, "locales": null})");
    EXPECT_EQ(page, PageFile());
}

// Placements

const MediaBySlot kMedia = {
    {{"screenshots", "APP_IPHONE_67"}, {MediaItem::remote("1", "a.png"), MediaItem::file("Media/b.png")}},
    {{"previews", "APP_IPHONE_67"}, {MediaItem::remote("2")}},
};
const char* const kPlacements =
    "{\n"
    "  \"previews\" : {\n"
    "    \"APP_IPHONE_67\" : [\n"
    "      {\n        \"asset\" : \"2\"\n      }\n"
    "    ]\n"
    "  },\n"
    "  \"screenshots\" : {\n"
    "    \"APP_IPHONE_67\" : [\n"
    "      {\n        \"asset\" : \"1\",\n        \"name\" : \"a.png\"\n      },\n"
    "      {\n        \"file\" : \"Media/b.png\"\n      }\n"
    "    ]\n"
    "  }\n"
    "}\n";

TEST(PlacementsFile, IsGroupToTypeToItems) {
    EXPECT_EQ(PlacementsFile::encode(kMedia), kPlacements);
    EXPECT_EQ(PlacementsFile::decode(kPlacements), kMedia);
}

TEST(PlacementsFile, ASlotWithAnEmptyListIsNeitherReadNorWritten) {
    EXPECT_EQ(PlacementsFile::decode(R"({"g": {"t": [], "u": [{"asset": "1"}]}, "h": {"t": []}, "i": {}})"),
              (MediaBySlot{{{"g", "u"}, {MediaItem::remote("1")}}}));
    EXPECT_EQ(PlacementsFile::encode({{{"g", "t"}, {}}, {{"h", "u"}, {MediaItem::remote("1")}}}),
              "{\n  \"h\" : {\n    \"u\" : [\n      {\n        \"asset\" : \"1\"\n      }\n    ]\n  }\n}\n");
    EXPECT_FALSE(PlacementsFile::hasItems({{{"g", "t"}, {}}}));
    EXPECT_TRUE(PlacementsFile::hasItems(kMedia));
}

TEST(PlacementsFile, NamesMayHoldSlashesAndBeEmpty) {
    const MediaBySlot media = {{{"a/b", ""}, {MediaItem::remote("1")}},
                               {{"a", "b/"}, {MediaItem::remote("2")}}};
    EXPECT_EQ(PlacementsFile::decode(PlacementsFile::encode(media)), media);
}

TEST(PlacementsFile, AnythingElseIsAFault) {
    for (const char* bytes : {"", "[]", "null", "{", R"({"g": []})", R"({"g": null})", R"({"g": {"t": {}}})",
                              R"({"g": {"t": null}})", R"({"g": {"t": ["a"]}})", R"({"g": {"t": [{}]}})",
                              R"({"g": {"t": [{"asset": 1}]}})", R"({"g": {"t": [{"file": 1}]}})",
                              R"({"g": {"t": [{"name": "a.png"}]}})", R"({"g": {"t": [null]}})"}) {
        EXPECT_THROW(PlacementsFile::decode(bytes), DecodingError) << bytes;
    }
}

// Texts of a locale

TEST(LocaleFile, AllowedFieldsAreTextsAndEverythingElseIsUnknown) {
    const auto fields = LocaleFile::decode(
        R"({"keywords": "a,b", "supportUrl": 7, "description": "not here", "marketingUrl": "", "new": [1]})",
        ListingFields::versionJSON);
    EXPECT_EQ(fields.values(), (std::map<ListingField, std::string>{{ListingField::keywords, "a,b"}}));
    EXPECT_EQ(fields.unknownFields,
              (UnknownFields{{"supportUrl", 7}, {"description", "not here"}, {"new", JSONArray{1}}}));
}

TEST(LocaleFile, ANullOfAKnownFieldIsKeptAsItIs) {
    const auto fields = LocaleFile::decode(R"({"name": null})", ListingFields::appInfo);
    EXPECT_EQ(LocaleFile::encode(fields, ListingFields::appInfo), "{\n  \"name\" : null\n}\n");
}

TEST(LocaleFile, ATextWinsOverAnUnknownMemberOfItsName) {
    LocalizedFields fields({{ListingField::name, "Foo"}}, {{"name", 7}, {"new", 1}});
    EXPECT_EQ(LocaleFile::encode(fields, ListingFields::appInfo),
              "{\n  \"name\" : \"Foo\",\n  \"new\" : 1\n}\n");
}

TEST(LocaleFile, TextsOfOtherFieldsAreNotWritten) {
    const LocalizedFields fields({{ListingField::description, "x"}});
    EXPECT_EQ(LocaleFile::encode(fields, ListingFields::versionJSON), "{\n\n}\n");
    EXPECT_FALSE(LocaleFile::hasContent(fields, ListingFields::versionJSON));
}

TEST(LocaleFile, AnUnknownMemberIsContent) {
    EXPECT_TRUE(LocaleFile::hasContent(LocalizedFields({}, {{"new", 1}}), ListingFields::versionJSON));
    EXPECT_TRUE(
        LocaleFile::hasContent(LocalizedFields({{ListingField::keywords, "a"}}), ListingFields::versionJSON));
    EXPECT_FALSE(LocaleFile::hasContent(LocalizedFields(), ListingFields::versionJSON));
}

TEST(LocaleFile, AnythingButAnObjectIsAFault) {
    for (const char* bytes : {"", "[]", "\"x\"", "null", "{\"a\":}", "\xff{}"}) {
        EXPECT_THROW(LocaleFile::decode(bytes, ListingFields::appInfo), DecodingError) << bytes;
    }
}

}  // namespace
}  // namespace kestrin
