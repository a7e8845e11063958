#include "ASCKit/Resources/AssetLibraryRefData.h"

#include <gtest/gtest.h>

#include "KestrinCore/StableJSON.h"

namespace kestrin {
namespace {

AssetLibraryRefData parsed(std::string_view attributes) {
    return AssetLibraryRefData::fromAttributes(*StableJSON::decode(attributes).objectValue());
}

constexpr std::string_view kDocument = R"({
  "placementProfileGroups": [
    {"placementProfileGroupId": "IPHONE_67", "platform": "IOS", "displayClassId": "PHONE"},
    {"placementProfileGroupId": "BARE"},
    {"platform": "no id"}, "not an object"
  ],
  "placementTypes": [
    {"placementTypeId": "APP_SCREENSHOT", "acceptsAssetCategories": ["SHOTS", 7],
     "specMappings": [
       {"placementGroupId": "IPHONE_67", "specs": ["replaced"]},
       {"placementGroupId": "IPHONE_67", "specs": ["s1", 2, "s2"]},
       {"placementGroupId": "NO_LIST", "specs": "s1"}, {"specs": ["s1"]}, 3
     ]},
    {"placementTypeId": "PLAIN"}, {"acceptsAssetCategories": []}
  ],
  "imageSpecs": [
    {"specId": "s1", "shortName": "6.7", "dimensions": {"minWidth": 1, "maxWidth": 2, "minHeight": 3, "maxHeight": 4},
     "aspectRatio": "16:9", "alphaAllowed": false, "fileExtensions": [".png", 1], "maxFileSize": 99},
    {"specId": "both", "shortName": "image"}, "not an object", {"shortName": "no id"},
    {"specId": "odd", "dimensions": [], "aspectRatio": 2, "alphaAllowed": "no", "fileExtensions": {}, "maxFileSize": "9"}
  ],
  "videoSpecs": [{"specId": "both", "shortName": "video"}],
  "displayClasses": [{"displayClassId": "PHONE", "deviceFamily": "IPHONE", "screenDimensions": ["1290x2796", 0]},
                     {"displayClassId": "ODD", "deviceFamily": 1}, {}],
  "features": [
    {"featureId": "CUSTOM_PRODUCT_PAGES", "placementPolicies": [
      {"placementType": "APP_SCREENSHOT", "groupLimits": [{"maxCount": 1, "groupIds": ["IPHONE_67"]}]}]},
    {"featureId": "APP_STORE_VERSIONS", "placementPolicies": [
      {"placementType": "APP_SCREENSHOT", "groupLimits": [
        {"maxCount": 10, "groupIds": ["IPHONE_67", "IPAD", 5]}, {"maxCount": "x", "groupIds": ["TV"]}, {"groupIds": []}]},
      {"groupLimits": []}]},
    {"featureId": "APP_STORE_VERSIONS", "placementPolicies": [
      {"placementType": "APP_SCREENSHOT", "groupLimits": [{"maxCount": 2, "groupIds": ["IPHONE_67"]}]}]}
  ]
})";

TEST(AssetLibraryRefData, AnEmptyAttributeMapGivesFiveEmptyTables) {
    EXPECT_EQ(parsed("{}"), AssetLibraryRefData{});
}

TEST(AssetLibraryRefData, KeysOfTheWrongTypeArePassedOver) {
    EXPECT_EQ(
        parsed(R"({"placementProfileGroups": {}, "placementTypes": 1, "imageSpecs": "x", "videoSpecs": null,
                         "displayClasses": true, "features": {"featureId": "APP_STORE_VERSIONS"}})"),
        AssetLibraryRefData{});
}

TEST(AssetLibraryRefData, GroupsNeedAnIdAndReadTheRestAsTextOrEmpty) {
    const auto data = parsed(kDocument);
    ASSERT_EQ(data.groups.size(), 2u);
    EXPECT_EQ(data.groups[0], (AssetLibraryRefData::Group{"IPHONE_67", "IOS", "PHONE"}));
    EXPECT_EQ(data.groups[1], (AssetLibraryRefData::Group{"BARE", "", ""}));
}

TEST(AssetLibraryRefData, ALaterMappingOfTheSameGroupOverwrites) {
    const auto data = parsed(kDocument);
    ASSERT_EQ(data.placementTypes.size(), 2u);
    EXPECT_EQ(data.placementTypes[0].assetCategories, std::vector<std::string>{"SHOTS"});
    EXPECT_EQ(data.placementTypes[0].specIDsByGroup,
              (std::map<std::string, std::vector<std::string>>{{"IPHONE_67", {"s1", "s2"}}}));
}

TEST(AssetLibraryRefData, APlacementTypeWithoutMappingsHasNone) {
    EXPECT_EQ(parsed(kDocument).placementTypes[1], (AssetLibraryRefData::PlacementType{"PLAIN", {}, {}}));
}

TEST(AssetLibraryRefData, SpecsReadTheirBoundsFromDimensionsAndTheRestFromTheItem) {
    const auto data = parsed(kDocument);
    const auto& spec = data.specs.at("s1");
    EXPECT_EQ(
        spec,
        (AssetLibraryRefData::Spec{
            "s1", AssetLibraryRefData::Spec::Kind::image, "6.7", 1, 2, 3, 4, "16:9", false, {".png"}, 99}));
    AssetLibraryRefData::Spec unbound;
    unbound.id = "odd";
    EXPECT_EQ(data.specs.at("odd"), unbound);
}

TEST(AssetLibraryRefData, AVideoSpecReplacesAnImageSpecOfTheSameId) {
    const auto data = parsed(kDocument);
    EXPECT_EQ(data.specs.at("both").kind, AssetLibraryRefData::Spec::Kind::video);
    EXPECT_EQ(data.specs.at("both").shortName, "video");
    EXPECT_EQ(data.specs.size(), 3u);
}

TEST(AssetLibraryRefData, DisplayClassesNeedAnId) {
    const auto data = parsed(kDocument);
    ASSERT_EQ(data.displayClasses.size(), 2u);
    EXPECT_EQ(data.displayClasses[0], (AssetLibraryRefData::DisplayClass{"PHONE", "IPHONE", {"1290x2796"}}));
    EXPECT_EQ(data.displayClasses[1], (AssetLibraryRefData::DisplayClass{"ODD", std::nullopt, {}}));
}

TEST(AssetLibraryRefData, OnlyTheLimitsOfTheFirstFeatureOfStoreVersionsCount) {
    const auto data = parsed(kDocument);
    EXPECT_EQ(data.maxCounts, (std::map<std::string, std::map<std::string, std::int64_t>>{
                                  {"APP_SCREENSHOT", {{"IPHONE_67", 10}, {"IPAD", 10}}}}));
    EXPECT_EQ(data.maxCount("APP_SCREENSHOT", "IPAD"), 10);
    EXPECT_EQ(data.maxCount("APP_SCREENSHOT", "TV"), std::nullopt);
    EXPECT_EQ(data.maxCount("APP_PREVIEW", "IPAD"), std::nullopt);
}

TEST(AssetLibraryRefData, OtherFeaturesAloneGiveNoLimits) {
    EXPECT_TRUE(parsed(R"({"features": [{"featureId": "X", "placementPolicies": [
        {"placementType": "T", "groupLimits": [{"maxCount": 1, "groupIds": ["G"]}]}]}]})")
                    .maxCounts.empty());
}

TEST(AssetLibraryRefData, FindsAGroupAndItsDisplayClass) {
    const auto data = parsed(kDocument);
    ASSERT_TRUE(data.group("IPHONE_67"));
    EXPECT_EQ(data.group("none"), nullptr);
    ASSERT_TRUE(data.displayClass(*data.group("IPHONE_67")));
    EXPECT_EQ(data.displayClass(*data.group("IPHONE_67"))->deviceFamily, "IPHONE");
    EXPECT_EQ(data.displayClass(*data.group("BARE")), nullptr) << "no class has the empty id";
}

TEST(AssetLibraryRefData, TheCachedFormReadsBackTheSame) {
    const auto data = parsed(kDocument);
    EXPECT_EQ(StableJSON::decode<AssetLibraryRefData>(StableJSON::encode(data)), data);
}

TEST(AssetLibraryRefData, TheCachedFormHasExactlyTheNamesOfTheFields) {
    AssetLibraryRefData data;
    data.groups = {{"g", "IOS", "c"}};
    data.placementTypes = {{"t", {"cat"}, {{"g", {"s"}}}}};
    AssetLibraryRefData::Spec spec;
    spec.id = "s";
    spec.kind = AssetLibraryRefData::Spec::Kind::video;
    spec.shortName = "n";
    spec.maxWidth = 1;
    data.specs.emplace("s", spec);
    data.displayClasses = {{"c", std::nullopt, {"1x2"}}};
    data.maxCounts = {{"t", {{"g", 3}}}};
    EXPECT_EQ(StableJSON::encodeCompact(data.toJSON()),
              R"({"displayClasses":[{"id":"c","screenDimensions":["1x2"]}],)"
              R"("groups":[{"displayClassID":"c","id":"g","storefront":"IOS"}],)"
              R"("maxCounts":{"t":{"g":3}},)"
              R"("placementTypes":[{"assetCategories":["cat"],"id":"t","specIDsByGroup":{"g":["s"]}}],)"
              R"("specs":{"s":{"fileExtensions":[],"id":"s","kind":"video","maxWidth":1,"shortName":"n"}}})");
}

TEST(AssetLibraryRefData, AMissingTableInTheCachedFormIsADecodingError) {
    for (const auto* table : {"groups", "placementTypes", "specs", "displayClasses", "maxCounts"}) {
        SCOPED_TRACE(table);
        auto document = AssetLibraryRefData{}.toJSON();
        document.objectValue()->erase(table);
        EXPECT_THROW(AssetLibraryRefData::fromJSON(document), DecodingError);
    }
}

}  // namespace
}  // namespace kestrin
