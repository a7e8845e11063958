// What the typed records take from a resource, and what they make of what isn't there.
#include <gtest/gtest.h>

#include "ASCKit/Resources/AppStoreVersions.h"
#include "ASCKit/Resources/Apps.h"
#include "ASCKit/Resources/BuildUploads.h"
#include "ASCKit/Resources/Builds.h"
#include "ASCKit/Resources/CustomProductPages.h"
#include "ASCKit/Resources/Experiments.h"
#include "ASCKit/Resources/LibraryAssets.h"
#include "ASCKit/Resources/Placements.h"
#include "ASCKit/Resources/ReviewDetails.h"
#include "ASCKit/Resources/ReviewSubmissions.h"
#include "KestrinCore/StableJSON.h"
#include "Tests/Support/ScriptedClient.h"

namespace kestrin {
namespace {

ResourceObject resource(std::string_view json) {
    return ResourceObject::fromJSON(StableJSON::decode(json));
}

const ResourceObject kBare = resource(R"({"type":"t","id":"1"})");

TEST(ResourceRecords, AResourceWithoutAttributesGivesEmptyTextsAndAbsentOptionals) {
    EXPECT_EQ(ASCApp(kBare).name, "");
    EXPECT_EQ(ASCApp(kBare).sku, std::nullopt);
    EXPECT_EQ(ASCAppInfo(kBare).state, std::nullopt);
    EXPECT_EQ(ASCAppStoreVersion(kBare).platform, "");
    EXPECT_EQ(ASCLocalization(kBare).locale, "");
    EXPECT_EQ(ASCBuild(kBare, {}).buildNumber, "");
    EXPECT_EQ(ASCCustomProductPageVersion(kBare).state, "");
    EXPECT_EQ(ASCExperiment(kBare).trafficProportion, std::nullopt);
    EXPECT_EQ(ASCTreatment(kBare).appIconName, std::nullopt);
    EXPECT_EQ(ASCTreatmentLocalization(kBare).locale, "");
    EXPECT_EQ(ASCLibraryAsset::fromResource(kBare).thumbnail, std::nullopt);
    EXPECT_EQ(ASCPlacement(kBare).assetID, std::nullopt);
    EXPECT_EQ(ASCReviewSubmission(kBare).state, std::nullopt);
}

// A resource each of whose attributes is its own name.
ResourceObject named(const std::vector<std::string>& attributes) {
    ResourceObject made{"t", "1", {}, {}, {}};
    for (const auto& attribute : attributes) made.attributes.emplace(attribute, attribute);
    return made;
}

TEST(ResourceRecords, EachFieldIsTheAttributeOfItsName) {
    using Texts = std::vector<std::optional<std::string>>;

    const ASCApp app(named({"name", "bundleId", "sku", "primaryLocale"}));
    EXPECT_EQ((Texts{app.name, app.bundleID, app.sku, app.primaryLocale}),
              (Texts{"name", "bundleId", "sku", "primaryLocale"}));

    const ASCAppStoreVersion version(
        named({"platform", "versionString", "copyright", "releaseType", "createdDate"}));
    EXPECT_EQ((Texts{version.platform, version.versionString, version.copyright, version.releaseType,
                     version.createdDate}),
              (Texts{"platform", "versionString", "copyright", "releaseType", "createdDate"}));

    auto pageResource = named({"name", "url"});
    pageResource.attributes.emplace("visible", false);
    const ASCCustomProductPage page(pageResource);
    EXPECT_EQ((Texts{page.name, page.url}), (Texts{"name", "url"}));
    EXPECT_EQ(page.visible, false);
    const ASCCustomProductPageVersion pageVersion(named({"version", "state", "deepLink"}));
    EXPECT_EQ((Texts{pageVersion.version, pageVersion.state, pageVersion.deepLink}),
              (Texts{"version", "state", "deepLink"}));
    const ASCCustomProductPageLocalization pageLocalization(named({"locale", "promotionalText"}));
    EXPECT_EQ((Texts{pageLocalization.locale, pageLocalization.promotionalText}),
              (Texts{"locale", "promotionalText"}));

    auto testResource = named({"name", "platform", "state", "startDate", "endDate"});
    testResource.attributes.emplace("trafficProportion", 30);
    const ASCExperiment test(testResource);
    EXPECT_EQ((Texts{test.name, test.platform, test.state, test.startDate, test.endDate}),
              (Texts{"name", "platform", "state", "startDate", "endDate"}));
    EXPECT_EQ(test.trafficProportion, 30);
    const ASCTreatment treatment(named({"name", "appIconName"}));
    EXPECT_EQ((Texts{treatment.name, treatment.appIconName}), (Texts{"name", "appIconName"}));
    EXPECT_EQ(ASCTreatmentLocalization(named({"locale"})).locale, "locale");

    const ASCPlacement placement(named({"placementGroup", "placementType", "state"}));
    EXPECT_EQ((Texts{placement.group, placement.type, placement.state}),
              (Texts{"placementGroup", "placementType", "state"}));
    const auto asset =
        ASCLibraryAsset::fromResource(named({"fileName", "referenceName", "state", "category"}));
    EXPECT_EQ((Texts{asset.fileName, asset.referenceName, asset.state, asset.category}),
              (Texts{"fileName", "referenceName", "state", "category"}));

    const ASCReviewSubmission submission(named({"state", "platform"}));
    EXPECT_EQ((Texts{submission.state, submission.platform}), (Texts{"state", "platform"}));
    EXPECT_EQ(ASCReviewDetail(named({"notes", "odd"})).attributes, named({"notes", "odd"}).attributes);
}

TEST(ResourceRecords, AnEmptyListIsNoResource) {
    ScriptedClient world(times(7, reply(200, R"({"data":[]})")));
    auto& client = world.client;
    EXPECT_FALSE(ASC::appWithID(client, "7"));
    EXPECT_FALSE(ASC::appWithBundleID(client, "a.b"));
    EXPECT_FALSE(ASC::build(client, "7"));
    EXPECT_FALSE(ASC::libraryAsset(client, "7", ASCLibraryAsset::Kind::image));
    EXPECT_FALSE(ASC::buildUpload(client, "7"));
    EXPECT_FALSE(ASC::openReviewSubmission(client, "7", "IOS"));
    EXPECT_NO_THROW(ASC::validate(client));
}

TEST(ResourceRecords, WhatWasCreatedIsTheResourceThatCameBack) {
    constexpr const char* kCreated = R"({"data":{"type":"t","id":"new","attributes":{"name":"N","locale":"ja",
        "uploadOperations":[{"url":"https://up/1","offset":0,"length":5}]}}})";
    ScriptedClient world(times(4, reply(201, kCreated)));
    EXPECT_EQ(ASC::createCustomProductPage(world.client, {}).name, "N");
    EXPECT_EQ(ASC::createTreatmentLocalization(world.client, "T", "ja").locale, "ja");

    const auto asset = ASC::reserveLibraryAsset(world.client, {});
    EXPECT_EQ(asset.asset.id, "new");
    EXPECT_EQ(asset.operations,
              (std::vector<UploadOperation>{{"PUT", *URL::parse("https://up/1"), 0, 5, {}}}));
    const auto file = ASC::reserveBuildUploadFile(world.client, {});
    EXPECT_EQ(file.id, "new");
    EXPECT_EQ(file.operations, asset.operations);
}

TEST(ResourceRecords, TheItemsOfASubmissionAreCountedOnAllPages) {
    ScriptedClient world({reply(200, R"({"data":[{"type":"i","id":"1"},{"type":"i","id":"2"}],
                                         "links":{"next":"https://api.example.test/next"}})"),
                          reply(200, R"({"data":[{"type":"i","id":"3"}]})")});
    EXPECT_EQ(ASC::reviewSubmissionItemCount(world.client, "S"), 3u);
}

TEST(ResourceRecords, AnAttributeOfAnotherTypeIsNone) {
    const auto odd =
        resource(R"({"type":"t","id":"1","attributes":{"name":7,"visible":"yes","trafficProportion":"9",
                                  "expired":"true","usesNonExemptEncryption":1}})");
    EXPECT_EQ(ASCCustomProductPage(odd).name, "");
    EXPECT_EQ(ASCCustomProductPage(odd).visible, std::nullopt);
    EXPECT_EQ(ASCExperiment(odd).trafficProportion, std::nullopt);
    EXPECT_FALSE(ASCBuild(odd, {}).isExpired);
    EXPECT_EQ(ASCBuild(odd, {}).usesNonExemptEncryption, std::nullopt);
}

TEST(ResourceRecords, TheNewNameOfAStateWinsOverTheOld) {
    const auto both = resource(R"({"type":"t","id":"1","attributes":
        {"state":"A","appVersionState":"B","appStoreState":"C"}})");
    EXPECT_EQ(ASCAppInfo(both).state, "A");
    EXPECT_EQ(ASCAppStoreVersion(both).state, "B");
    const auto old = resource(R"({"type":"t","id":"1","attributes":{"appStoreState":"C"}})");
    EXPECT_EQ(ASCAppInfo(old).state, "C");
    EXPECT_EQ(ASCAppStoreVersion(old).state, "C");
}

TEST(ResourceRecords, EditableIsAStateOfTheSetAndNeverAnAbsentOne) {
    const auto version = [](const std::string& state) {
        return ASCAppStoreVersion(
            resource(R"({"type":"t","id":"1","attributes":{"appVersionState":")" + state + "\"}}"));
    };
    for (const auto* state : {"PREPARE_FOR_SUBMISSION", "DEVELOPER_REJECTED", "REJECTED", "METADATA_REJECTED",
                              "INVALID_BINARY", "READY_FOR_REVIEW"}) {
        EXPECT_TRUE(version(state).isEditable()) << state;
    }
    for (const auto* state : {"READY_FOR_SALE", "WAITING_FOR_REVIEW", "IN_REVIEW", ""}) {
        EXPECT_FALSE(version(state).isEditable()) << state;
    }
    EXPECT_FALSE(ASCAppStoreVersion(kBare).isEditable());
    EXPECT_FALSE(ASCAppInfo(kBare).isEditable());
}

TEST(ResourceRecords, AnAppInfoHasItsCategoriesByRelationship) {
    const ASCAppInfo info(resource(R"({"type":"appInfos","id":"1","relationships":{
        "primaryCategory":{"data":{"type":"appCategories","id":"GAMES"}},"secondaryCategory":{"data":null}}})"));
    EXPECT_EQ(info.primaryCategoryID, "GAMES");
    EXPECT_EQ(info.secondaryCategoryID, std::nullopt);
}

TEST(ResourceRecords, ALocalizationKeepsAllAttributesItsLocaleIncluded) {
    const ASCLocalization localization(
        resource(R"({"type":"t","id":"1","attributes":{"locale":"de-DE","name":"N","odd":[1]}})"));
    EXPECT_EQ(localization.locale, "de-DE");
    EXPECT_EQ(localization.attributes.size(), 3u);
    EXPECT_EQ(localization.string("name"), "N");
    EXPECT_EQ(localization.string("odd"), std::nullopt);
}

constexpr const char* kBuild =
    R"({"type":"builds","id":"1","attributes":{"version":"34","processingState":"VALID",
    "usesNonExemptEncryption":false,"uploadedDate":"2026-01-01","expired":true},
    "relationships":{"preReleaseVersion":{"data":{"type":"preReleaseVersions","id":"P"}}}})";

TEST(ResourceRecords, ABuildHasTheVersionOfItsIncludedPreReleaseVersion) {
    const auto decoy = resource(R"({"type":"builds","id":"P","attributes":{"version":"no"}})");
    const auto version = resource(R"({"type":"preReleaseVersions","id":"P","attributes":{"version":"1.2"}})");
    const ASCBuild build(resource(kBuild), {decoy, version});
    EXPECT_EQ(build.buildNumber, "34");
    EXPECT_EQ(build.versionString, "1.2");
    EXPECT_EQ(build.processingState, "VALID");
    EXPECT_EQ(build.usesNonExemptEncryption, false);
    EXPECT_EQ(build.uploadedDate, "2026-01-01");
    EXPECT_TRUE(build.isExpired);
}

TEST(ResourceRecords, ABuildWhosePreReleaseVersionIsntIncludedHasNoVersion) {
    EXPECT_EQ(ASCBuild(resource(kBuild), {}).versionString, std::nullopt);
}

TEST(ResourceRecords, TheFirstPageOfBuildsIsAllThatIsRead) {
    ScriptedClient world({reply(200, R"({"data":[{"type":"builds","id":"1"}],
                                         "links":{"next":"https://api.example.test/v1/builds?cursor=2"}})")});
    EXPECT_EQ(ASC::builds(world.client, {.appID = "7"}).size(), 1u);
    EXPECT_EQ(world.server->sent.size(), 1u);
}

TEST(ResourceRecords, PagesAndTestsAreEditableInTheSameThreeStates) {
    const std::set<std::string> states = {"PREPARE_FOR_SUBMISSION", "READY_FOR_REVIEW", "REJECTED"};
    EXPECT_EQ(ASCCustomProductPageVersion::editableStates, states);
    EXPECT_EQ(ASCExperiment::editableStates, states);
    EXPECT_FALSE(ASCCustomProductPageVersion(kBare).isEditable());
}

TEST(ResourceRecords, ImagesAndVideosHaveTheirThumbnailsInDifferentPlaces) {
    const auto image =
        ASCLibraryAsset::fromResource(resource(R"({"type":"appAssetLibraryImages","id":"1","attributes":
        {"fileName":"a.png","referenceName":"mq-a","fileSize":9,"state":"COMPLETE","category":"C",
         "imageAsset":{"templateUrl":"https://i/{w}x{h}.{f}","width":10,"height":20}}})"));
    EXPECT_EQ(image.kind, ASCLibraryAsset::Kind::image);
    EXPECT_EQ(image.fileSize, 9);
    EXPECT_EQ(image.thumbnail, (ImageTemplate{"https://i/{w}x{h}.{f}", 10, 20}));
    const auto video =
        ASCLibraryAsset::fromResource(resource(R"({"type":"appAssetLibraryVideos","id":"1","attributes":
        {"previewFrameImage":{"image":{"templateUrl":"https://v","width":1,"height":2}}}})"));
    EXPECT_EQ(video.kind, ASCLibraryAsset::Kind::video);
    EXPECT_EQ(video.thumbnail, (ImageTemplate{"https://v", 1, 2}));
}

TEST(ResourceRecords, AnAssetThatIsNoVideoIsAnImage) {
    const auto asset =
        ASCLibraryAsset::fromResource(resource(R"({"type":"appAssetLibraryAnimations","id":"1"})"));
    EXPECT_EQ(asset.kind, ASCLibraryAsset::Kind::image);
}

TEST(ResourceRecords, AThumbnailOfAnotherShapeIsNone) {
    for (const auto* attributes : {
             R"({"imageAsset":"https://i"})",
             R"({"imageAsset":{"templateUrl":"https://i","width":1}})",
             R"({"imageAsset":{"templateUrl":"https://i","width":"1","height":2}})",
             R"({"imageAsset":null})",
         }) {
        SCOPED_TRACE(attributes);
        const auto json =
            std::string(R"({"type":"appAssetLibraryImages","id":"1","attributes":)") + attributes + "}";
        EXPECT_EQ(ASCLibraryAsset::fromResource(resource(json)).thumbnail, std::nullopt);
    }
    EXPECT_EQ(
        ASCLibraryAsset::fromResource(
            resource(R"({"type":"appAssetLibraryVideos","id":"1","attributes":{"previewFrameImage":[]}})"))
            .thumbnail,
        std::nullopt);
}

TEST(ResourceRecords, AnAssetReadsBackFromItsStoredForm) {
    ASCLibraryAsset asset;
    asset.id = "1";
    asset.kind = ASCLibraryAsset::Kind::video;
    asset.fileName = "a.mp4";
    asset.thumbnail = ImageTemplate{"https://v", 1, 2};
    EXPECT_EQ(StableJSON::encodeCompact(asset.toJSON()),
              R"({"fileName":"a.mp4","id":"1","kind":"video","referenceName":"",)"
              R"("thumbnail":{"height":2,"templateURL":"https://v","width":1}})");
    EXPECT_EQ(ASCLibraryAsset::fromJSON(asset.toJSON()), asset);
    asset.fileSize = 3;
    asset.state = "S";
    asset.category = "C";
    asset.thumbnail = std::nullopt;
    EXPECT_EQ(ASCLibraryAsset::fromJSON(asset.toJSON()), asset);
}

TEST(ResourceRecords, AThumbnailIsNeverLargerThanTheImageAndNeverEmpty) {
    struct Row {
        const char* when;
        ImageTemplate image;
        std::int64_t size;
        std::optional<std::string> url;
    };
    const char* pattern = "https://i/{w}x{h}.{f}?{w}";
    const Row rows[] = {
        {"scaled to the longer side", {pattern, 1000, 2000}, 500, "https://i/250x500.png?250"},
        {"not beyond the image's own size", {pattern, 1000, 2000}, 4000, "https://i/1000x2000.png?1000"},
        {"a size of nothing gives one pixel", {pattern, 0, 0}, 500, "https://i/1x1.png?1"},
        {"rounded to nearest", {pattern, 3, 1000}, 500, "https://i/2x500.png?2"},
        {"at least one pixel a side", {pattern, 1, 10000}, 100, "https://i/1x100.png?1"},
        {"a pattern that gives no address", {"not an address {w}", 1, 1}, 1, std::nullopt},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.when);
        const auto url = row.image.url(row.size, "png");
        EXPECT_EQ(url ? std::optional(url->absoluteString()) : std::nullopt, row.url);
    }
}

TEST(ResourceRecords, APlacementsAssetIsItsImageOrElseItsVideo) {
    const auto with = [](const std::string& relationships) {
        return ASCPlacement(resource(R"({"type":"t","id":"1","relationships":)" + relationships + "}"))
            .assetID;
    };
    EXPECT_EQ(with(R"({"image":{"data":{"type":"i","id":"A"}},"video":{"data":{"type":"v","id":"B"}}})"),
              "A");
    EXPECT_EQ(with(R"({"image":{"data":null},"video":{"data":{"type":"v","id":"B"}}})"), "B");
}

TEST(ResourceRecords, PlacementsComeFromAllPagesWithTheAssetsTheyInclude) {
    ScriptedClient world({
        reply(200, R"({"data":[{"type":"p","id":"2"}],"included":[{"type":"appAssetLibraryImages","id":"A"},
                       {"type":"apps","id":"7"}],"links":{"next":"https://api.example.test/next"}})"),
        reply(200,
              R"({"data":[{"type":"p","id":"1"}],"included":[{"type":"appAssetLibraryVideos","id":"B"}]})"),
    });
    const auto list = ASC::placements(world.client, {PlacementParent::Kind::versionLocalization, "7"});
    ASSERT_EQ(list.placements.size(), 2u);
    EXPECT_EQ(list.placements[0].id, "2");
    ASSERT_EQ(list.assets.size(), 2u);
    EXPECT_EQ(list.assets[1].kind, ASCLibraryAsset::Kind::video);
}

// Of a page of placements only the fields that are read are decoded: here each of them has a value.
TEST(ResourceRecords, APlacementAndItsAssetAreReadAsFromTheirWholeResources) {
    const std::string placement = R"({"type":"appAssetLibraryPlacements","id":"1","attributes":{
        "placementGroup":"IPHONE_67","placementType":"APP_SCREENSHOT","state":"APPROVED","stateDetails":[]},
        "relationships":{"image":{"data":{"type":"appAssetLibraryImages","id":"A"},"links":{"self":"x"}}},
        "links":{"self":"x"}})";
    const std::string ofVideo = R"({"type":"appAssetLibraryPlacements","id":"2","attributes":{},
        "relationships":{"video":{"data":{"type":"appAssetLibraryVideos","id":"B"}}}})";
    const std::string image = R"({"type":"appAssetLibraryImages","id":"A","attributes":{"fileName":"a.png",
        "referenceName":"A","fileSize":7,"state":"APPROVED","category":"APP_SCREENSHOTS_AND_PREVIEWS",
        "createdDate":"2026-01-01","imageAsset":{"templateUrl":"https://x.test/{w}x{h}bb.{f}","width":2,"height":3}}})";
    const std::string video = R"({"type":"appAssetLibraryVideos","id":"B","attributes":{"fileName":"b.mov",
        "previewFrameImage":{"image":{"templateUrl":"https://x.test/{w}x{h}bb.{f}","width":4,"height":5}}}})";
    ScriptedClient world({reply(
        200, R"({"data":[)" + placement + "," + ofVideo + R"(],"included":[)" + image + "," + video + "]}")});

    const auto list = ASC::placements(world.client, {PlacementParent::Kind::versionLocalization, "7"});

    EXPECT_EQ(list.placements,
              (std::vector{ASCPlacement(resource(placement)), ASCPlacement(resource(ofVideo))}));
    EXPECT_EQ(list.placements[0].assetID, "A");
    EXPECT_EQ(list.placements[1].assetID, "B");
    EXPECT_EQ(list.assets, (std::vector{ASCLibraryAsset::fromResource(resource(image)),
                                        ASCLibraryAsset::fromResource(resource(video))}));
    EXPECT_EQ(list.assets[0].thumbnail->width, 2);
    EXPECT_EQ(list.assets[1].thumbnail->height, 5);
}

TEST(ResourceRecords, ABuildUploadsMessagesAreDescriptionsOrElseCodes) {
    const ASCBuildUpload upload(resource(R"({"type":"buildUploads","id":"1","attributes":{"state":{
        "state":"FAILED","errors":[{"code":"90001","description":"Too old."},{"code":"90002"},{},7],
        "warnings":[{"description":"Hm."}]}},
        "relationships":{"build":{"data":{"type":"builds","id":"B"}}}})"));
    EXPECT_EQ(upload.state, "FAILED");
    EXPECT_EQ(upload.errors, (std::vector<std::string>{"Too old.", "90002"}));
    EXPECT_EQ(upload.warnings, std::vector<std::string>{"Hm."});
    EXPECT_EQ(upload.buildID, "B");
}

TEST(ResourceRecords, ABuildUploadWhoseStateIsNoObjectHasNone) {
    const ASCBuildUpload upload(
        resource(R"({"type":"buildUploads","id":"1","attributes":{"state":"FAILED"}})"));
    EXPECT_EQ(upload.state, std::nullopt);
    EXPECT_TRUE(upload.errors.empty());
}

TEST(ResourceRecords, ABuildUploadsStateWithoutANameStillHasItsErrors) {
    const ASCBuildUpload upload(
        resource(R"({"type":"buildUploads","id":"1","attributes":{"state":{"errors":[{"code":"1"}]}}})"));
    EXPECT_EQ(upload.state, std::nullopt);
    EXPECT_EQ(upload.errors, std::vector<std::string>{"1"});
}

TEST(ResourceRecords, AVersionWithoutReviewDetailHasNoneHoweverTheServiceSaysSo) {
    for (const auto& answer :
         {reply(404), reply(200, R"({"data":null})"), reply(200, R"({"data":[]})"), reply(200)}) {
        ScriptedClient world({answer});
        EXPECT_EQ(ASC::reviewDetail(world.client, "7"), std::nullopt);
    }
}

TEST(ResourceRecords, EveryOtherFailureOfAReviewDetailIsThrown) {
    for (const auto& answer : {reply(403), reply(200, "nonsense"), reply(200, "{}")}) {
        ScriptedClient world({answer});
        EXPECT_THROW(ASC::reviewDetail(world.client, "7"), ASCError);
    }
}

TEST(ResourceRecords, AVersionWithoutABuildHasNoAttachedBuild) {
    ScriptedClient world({reply(200, R"({"data":{"type":"appStoreVersions","id":"7"}})"),
                          reply(200, R"({"data":{"type":"appStoreVersions","id":"7",
                                        "relationships":{"build":{"data":{"type":"builds","id":"B"}}}}})")});
    EXPECT_EQ(ASC::attachedBuildID(world.client, "7"), std::nullopt);
    EXPECT_EQ(ASC::attachedBuildID(world.client, "7"), "B");
}

TEST(ResourceRecords, ASubmissionIsSentEvenWhenTheReplyIsEmpty) {
    ScriptedClient world({reply(204)});
    EXPECT_EQ(ASC::submitReviewSubmission(world.client, "S"), std::nullopt);
}

}  // namespace
}  // namespace kestrin
