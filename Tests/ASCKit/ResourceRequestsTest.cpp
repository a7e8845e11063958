// The wire form of every typed read and write: one table, a row per operation.
#include <gtest/gtest.h>

#include <functional>

#include "ASCKit/Resources/AppStoreVersions.h"
#include "ASCKit/Resources/Apps.h"
#include "ASCKit/Resources/AssetLibraryRefData.h"
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

constexpr const char* kEmptyList = R"({"data":[]})";
constexpr const char* kResource = R"({"data":{"type":"t","id":"new"}})";

// A body as compact JSON, so that a row of the table stays readable; what goes out is the stable form.
std::string compact(const std::string& body) {
    if (body.empty()) return "";
    const auto value = StableJSON::decode(body);
    EXPECT_EQ(body, StableJSON::encode(value)) << "bodies are stable JSON";
    return StableJSON::encodeCompact(value);
}

TEST(ResourceRequests, ReadsAskForExactlyTheirPathAndQuery) {
    struct Row {
        const char* operation;
        std::function<void(ASCClient&)> read;
        const char* line;
    };
    using Kind = ASCLibraryAsset::Kind;
    using Parent = PlacementParent::Kind;
    const Row rows[] = {
        {"apps", [](auto& c) { ASC::apps(c); },
         "GET /v1/apps?fields%5Bapps%5D=name,bundleId,sku,primaryLocale&limit=200"},
        {"app by bundle ID", [](auto& c) { ASC::appWithBundleID(c, "a.b"); },
         "GET /v1/apps?filter%5BbundleId%5D=a.b&fields%5Bapps%5D=name,bundleId,sku,primaryLocale"},
        {"app by id", [](auto& c) { ASC::appWithID(c, "7"); },
         "GET /v1/apps/7?fields%5Bapps%5D=name,bundleId,sku,primaryLocale"},
        {"validate", [](auto& c) { ASC::validate(c); }, "GET /v1/apps?fields%5Bapps%5D=name&limit=1"},
        {"app infos", [](auto& c) { ASC::appInfos(c, "7"); },
         "GET /v1/apps/7/appInfos?include=primaryCategory,secondaryCategory&limit=200"},
        {"app info localizations", [](auto& c) { ASC::appInfoLocalizations(c, "7"); },
         "GET /v1/appInfos/7/appInfoLocalizations?limit=200"},
        {"versions", [](auto& c) { ASC::appStoreVersions(c, "7"); },
         "GET /v1/apps/7/appStoreVersions?limit=200"},
        {"version localizations", [](auto& c) { ASC::appStoreVersionLocalizations(c, "7"); },
         "GET /v1/appStoreVersions/7/appStoreVersionLocalizations?limit=200"},
        {"attached build", [](auto& c) { ASC::attachedBuildID(c, "7"); },
         "GET /v1/appStoreVersions/7?include=build&fields%5BappStoreVersions%5D=build"},
        {"builds of an app", [](auto& c) { ASC::builds(c, {.appID = "7"}); },
         "GET /v1/builds?filter%5Bapp%5D=7&sort=-uploadedDate&include=preReleaseVersion&limit=50"},
        {"builds of a version on a platform",
         [](auto& c) { ASC::builds(c, {.appID = "7", .versionString = "1.2", .platform = "IOS"}); },
         "GET /v1/builds?filter%5Bapp%5D=7&sort=-uploadedDate&include=preReleaseVersion&limit=50"
         "&filter%5BpreReleaseVersion.version%5D=1.2&filter%5BpreReleaseVersion.platform%5D=IOS"},
        {"builds on a platform", [](auto& c) { ASC::builds(c, {.appID = "7", .platform = "IOS"}); },
         "GET /v1/builds?filter%5Bapp%5D=7&sort=-uploadedDate&include=preReleaseVersion&limit=50"
         "&filter%5BpreReleaseVersion.platform%5D=IOS"},
        {"build", [](auto& c) { ASC::build(c, "7"); }, "GET /v1/builds/7?include=preReleaseVersion"},
        {"custom pages", [](auto& c) { ASC::customProductPages(c, "7"); },
         "GET /v1/apps/7/appCustomProductPages?limit=200"},
        {"custom page versions", [](auto& c) { ASC::customProductPageVersions(c, "7"); },
         "GET /v1/appCustomProductPages/7/appCustomProductPageVersions?limit=200"},
        {"custom page localizations", [](auto& c) { ASC::customProductPageLocalizations(c, "7"); },
         "GET /v1/appCustomProductPageVersions/7/appCustomProductPageLocalizations?limit=200"},
        {"tests are listed as v2 under v1", [](auto& c) { ASC::experiments(c, "7"); },
         "GET /v1/apps/7/appStoreVersionExperimentsV2?limit=200"},
        {"treatments are listed under v2", [](auto& c) { ASC::treatments(c, "7"); },
         "GET /v2/appStoreVersionExperiments/7/appStoreVersionExperimentTreatments?limit=200"},
        {"treatment localizations", [](auto& c) { ASC::treatmentLocalizations(c, "7"); },
         "GET "
         "/v1/appStoreVersionExperimentTreatments/7/"
         "appStoreVersionExperimentTreatmentLocalizations?limit=200"},
        {"library images", [](auto& c) { ASC::libraryAssets(c, "7", Kind::image); },
         "GET /v1/appAssetLibraries/7/images?limit=200"},
        {"library videos", [](auto& c) { ASC::libraryAssets(c, "7", Kind::video); },
         "GET /v1/appAssetLibraries/7/videos?limit=200"},
        {"library image", [](auto& c) { ASC::libraryAsset(c, "7", Kind::image); },
         "GET /v1/appAssetLibraryImages/7"},
        {"library video", [](auto& c) { ASC::libraryAsset(c, "7", Kind::video); },
         "GET /v1/appAssetLibraryVideos/7"},
        {"placements of a version",
         [](auto& c) {
             ASC::placements(c, {Parent::versionLocalization, "7"});
         },
         "GET "
         "/v1/appStoreVersionLocalizations/7/"
         "placements?include=image,video&sort=placementGroupPosition&limit=200"},
        {"placements of a page",
         [](auto& c) {
             ASC::placements(c, {Parent::customPageLocalization, "7"});
         },
         "GET /v1/appCustomProductPageLocalizations/7/placements"
         "?include=image,video&sort=placementGroupPosition&limit=200"},
        {"placements of a treatment",
         [](auto& c) {
             ASC::placements(c, {Parent::treatmentLocalization, "7"});
         },
         "GET /v1/appStoreVersionExperimentTreatmentLocalizations/7/placements"
         "?include=image,video&sort=placementGroupPosition&limit=200"},
        {"build upload", [](auto& c) { ASC::buildUpload(c, "7"); }, "GET /v1/buildUploads/7?include=build"},
        {"review detail", [](auto& c) { ASC::reviewDetail(c, "7"); },
         "GET /v1/appStoreVersions/7/appStoreReviewDetail"},
        {"open submission", [](auto& c) { ASC::openReviewSubmission(c, "7", "IOS"); },
         "GET /v1/reviewSubmissions?filter%5Bapp%5D=7&filter%5Bplatform%5D=IOS"
         "&filter%5Bstate%5D=READY_FOR_REVIEW&limit=1"},
        {"items of a submission", [](auto& c) { ASC::reviewSubmissionItemCount(c, "7"); },
         "GET /v1/reviewSubmissions/7/items?limit=200"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.operation);
        ScriptedClient world({reply(200, kEmptyList)});
        row.read(world.client);
        ASSERT_EQ(world.server->sent.size(), 1u);
        EXPECT_EQ(world.line(0), row.line);
        EXPECT_FALSE(world.server->sent[0].body);
    }
}

TEST(ResourceRequests, ReferenceDataAreAskedForWithoutAQuery) {
    ScriptedClient world({reply(200, R"({"data":[{"type":"t","id":"1","attributes":{}}]})")});
    EXPECT_EQ(ASC::assetLibraryRefData(world.client), AssetLibraryRefData{});
    EXPECT_EQ(world.line(0), "GET /v1/appAssetLibraryRefData");
}

TEST(ResourceRequests, ReferenceDataWithoutTheResourceAreAnInvalidResponse) {
    for (const auto* body : {kEmptyList, "", "nonsense"}) {
        SCOPED_TRACE(body);
        ScriptedClient world({reply(200, body)});
        try {
            ASC::assetLibraryRefData(world.client);
            ADD_FAILURE() << "no error";
        } catch (const ASCError& error) {
            EXPECT_EQ(error, ASCError(ASCError::InvalidResponse{"/v1/appAssetLibraryRefData"}));
        }
    }
}

TEST(ResourceRequests, WritesSendExactlyTheirPathAndBody) {
    struct Row {
        const char* operation;
        std::function<void(ASCClient&)> write;
        const char* line;
        const char* body;
    };
    using Kind = ASCLibraryAsset::Kind;
    using Item = ReviewSubmissionItem::Kind;
    const PlacementParent page{PlacementParent::Kind::customPageLocalization, "L"};
    const Row rows[] = {
        {"encryption", [](auto& c) { ASC::setUsesNonExemptEncryption(c, false, "7"); }, "PATCH /v1/builds/7",
         R"({"data":{"attributes":{"usesNonExemptEncryption":false},"id":"7","type":"builds"}})"},
        {"attach a build", [](auto& c) { ASC::attachBuild(c, "B", "V"); },
         "PATCH /v1/appStoreVersions/V/relationships/build", R"({"data":{"id":"B","type":"builds"}})"},
        {"a version with no more than it needs",
         [](auto& c) {
             ASC::createAppStoreVersion(c, {.appID = "7", .platform = "IOS", .versionString = "1.2"});
         },
         "POST /v1/appStoreVersions",
         R"({"data":{"attributes":{"platform":"IOS","versionString":"1.2"},)"
         R"("relationships":{"app":{"data":{"id":"7","type":"apps"}}},"type":"appStoreVersions"}})"},
        {"a version with all it can have",
         [](auto& c) {
             ASC::createAppStoreVersion(c, {.appID = "7",
                                            .platform = "IOS",
                                            .versionString = "1.2",
                                            .copyright = "©",
                                            .releaseType = "MANUAL"});
         },
         "POST /v1/appStoreVersions",
         R"({"data":{"attributes":{"copyright":"©","platform":"IOS","releaseType":"MANUAL","versionString":"1.2"},)"
         R"("relationships":{"app":{"data":{"id":"7","type":"apps"}}},"type":"appStoreVersions"}})"},
        {"a page without localizations and deep link",
         [](auto& c) { ASC::createCustomProductPage(c, {.appID = "7", .name = "Summer"}); },
         "POST /v1/appCustomProductPages",
         R"({"data":{"attributes":{"name":"Summer"},"relationships":{"app":{"data":{"id":"7","type":"apps"}},)"
         R"("appCustomProductPageVersions":{"data":[{"id":"${version}","type":"appCustomProductPageVersions"}]}},)"
         R"("type":"appCustomProductPages"},"included":[{"id":"${version}",)"
         R"("relationships":{"appCustomProductPageLocalizations":{"data":[]}},"type":"appCustomProductPageVersions"}]})"},
        {"a page with everything, in one request",
         [](auto& c) {
             ASC::createCustomProductPage(c, {.appID = "7",
                                              .name = "S",
                                              .deepLink = "a://b",
                                              .localizations = {{"en-US", "Hi"}, {"de-DE"}}});
         },
         "POST /v1/appCustomProductPages",
         R"({"data":{"attributes":{"name":"S"},"relationships":{"app":{"data":{"id":"7","type":"apps"}},)"
         R"("appCustomProductPageVersions":{"data":[{"id":"${version}","type":"appCustomProductPageVersions"}]}},)"
         R"("type":"appCustomProductPages"},"included":[{"attributes":{"deepLink":"a://b"},"id":"${version}",)"
         R"("relationships":{"appCustomProductPageLocalizations":{"data":[)"
         R"({"id":"${localization-en-US}","type":"appCustomProductPageLocalizations"},)"
         R"({"id":"${localization-de-DE}","type":"appCustomProductPageLocalizations"}]}},)"
         R"("type":"appCustomProductPageVersions"},{"attributes":{"locale":"en-US","promotionalText":"Hi"},)"
         R"("id":"${localization-en-US}","type":"appCustomProductPageLocalizations"},)"
         R"({"attributes":{"locale":"de-DE"},"id":"${localization-de-DE}",)"
         R"("type":"appCustomProductPageLocalizations"}]})"},
        {"a page localization",
         [](auto& c) {
             ASC::createCustomProductPageLocalization(c, "V", {"de-DE", "Hallo"});
         },
         "POST /v1/appCustomProductPageLocalizations",
         R"({"data":{"attributes":{"locale":"de-DE","promotionalText":"Hallo"},)"
         R"("relationships":{"appCustomProductPageVersion":{"data":{"id":"V","type":"appCustomProductPageVersions"}}},)"
         R"("type":"appCustomProductPageLocalizations"}})"},
        {"a page localization without text",
         [](auto& c) { ASC::createCustomProductPageLocalization(c, "V", {"de-DE"}); },
         "POST /v1/appCustomProductPageLocalizations",
         R"({"data":{"attributes":{"locale":"de-DE"},)"
         R"("relationships":{"appCustomProductPageVersion":{"data":{"id":"V","type":"appCustomProductPageVersions"}}},)"
         R"("type":"appCustomProductPageLocalizations"}})"},
        {"a test is created under v2",
         [](auto& c) {
             ASC::createExperiment(
                 c, {.appID = "7", .name = "Icon", .platform = "IOS", .trafficProportion = 30});
         },
         "POST /v2/appStoreVersionExperiments",
         R"({"data":{"attributes":{"name":"Icon","platform":"IOS","trafficProportion":30},)"
         R"("relationships":{"app":{"data":{"id":"7","type":"apps"}}},"type":"appStoreVersionExperiments"}})"},
        {"a test with nothing changed", [](auto& c) { ASC::updateExperiment(c, "E", {}); },
         "PATCH /v2/appStoreVersionExperiments/E",
         R"({"data":{"id":"E","type":"appStoreVersionExperiments"}})"},
        {"a test with everything changed",
         [](auto& c) {
             ASC::updateExperiment(c, "E", {.name = "N", .trafficProportion = 5, .started = true});
         },
         "PATCH /v2/appStoreVersionExperiments/E",
         R"({"data":{"attributes":{"name":"N","started":true,"trafficProportion":5},)"
         R"("id":"E","type":"appStoreVersionExperiments"}})"},
        {"a treatment is created under v1 for a test of v2",
         [](auto& c) {
             ASC::createTreatment(c, {.experimentID = "E", .name = "Blue", .appIconName = "Icon2"});
         },
         "POST /v1/appStoreVersionExperimentTreatments",
         R"({"data":{"attributes":{"appIconName":"Icon2","name":"Blue"},"relationships":{)"
         R"("appStoreVersionExperimentV2":{"data":{"id":"E","type":"appStoreVersionExperiments"}}},)"
         R"("type":"appStoreVersionExperimentTreatments"}})"},
        {"a treatment localization", [](auto& c) { ASC::createTreatmentLocalization(c, "T", "ja"); },
         "POST /v1/appStoreVersionExperimentTreatmentLocalizations",
         R"({"data":{"attributes":{"locale":"ja"},"relationships":{"appStoreVersionExperimentTreatment":)"
         R"({"data":{"id":"T","type":"appStoreVersionExperimentTreatments"}}},)"
         R"("type":"appStoreVersionExperimentTreatmentLocalizations"}})"},
        {"an image is reserved without a time code",
         [](auto& c) {
             ASC::reserveLibraryAsset(c, {.kind = Kind::image,
                                          .libraryID = "7",
                                          .category = "C",
                                          .fileName = "a.png",
                                          .fileSize = 9,
                                          .referenceName = "mq-a",
                                          .previewFrameTimeCode = "00:01"});
         },
         "POST /v1/appAssetLibraryImages",
         R"({"data":{"attributes":{"category":"C","fileName":"a.png","fileSize":9,"referenceName":"mq-a"},)"
         R"("relationships":{"assetLibrary":{"data":{"id":"7","type":"appAssetLibraries"}}},)"
         R"("type":"appAssetLibraryImages"}})"},
        {"a video is reserved with the time code that is given",
         [](auto& c) {
             ASC::reserveLibraryAsset(c, {.kind = Kind::video,
                                          .libraryID = "7",
                                          .category = "C",
                                          .fileName = "a.mp4",
                                          .fileSize = 9,
                                          .referenceName = "mq-a",
                                          .previewFrameTimeCode = "00:01"});
         },
         "POST /v1/appAssetLibraryVideos",
         R"({"data":{"attributes":{"category":"C","fileName":"a.mp4","fileSize":9,"previewFrameTimeCode":"00:01",)"
         R"("referenceName":"mq-a"},"relationships":{"assetLibrary":{"data":{"id":"7","type":"appAssetLibraries"}}},)"
         R"("type":"appAssetLibraryVideos"}})"},
        {"an asset is committed without a checksum",
         [](auto& c) { ASC::commitLibraryAsset(c, "A", Kind::video); }, "PATCH /v1/appAssetLibraryVideos/A",
         R"({"data":{"attributes":{"uploaded":true},"id":"A","type":"appAssetLibraryVideos"}})"},
        {"a placement of an image",
         [&](auto& c) {
             ASC::createPlacement(c, {"APP_SCREENSHOT", "IPHONE", Kind::image, "A", page});
         },
         "POST /v1/appAssetLibraryPlacements",
         R"({"data":{"attributes":{"placementGroup":"IPHONE","placementType":"APP_SCREENSHOT"},"relationships":{)"
         R"("appCustomProductPageLocalization":{"data":{"id":"L","type":"appCustomProductPageLocalizations"}},)"
         R"("image":{"data":{"id":"A","type":"appAssetLibraryImages"}}},"type":"appAssetLibraryPlacements"}})"},
        {"a placement of a video",
         [](auto& c) {
             ASC::createPlacement(c, {"APP_PREVIEW",
                                      "IPHONE",
                                      Kind::video,
                                      "A",
                                      {PlacementParent::Kind::versionLocalization, "L"}});
         },
         "POST /v1/appAssetLibraryPlacements",
         R"({"data":{"attributes":{"placementGroup":"IPHONE","placementType":"APP_PREVIEW"},"relationships":{)"
         R"("appStoreVersionLocalization":{"data":{"id":"L","type":"appStoreVersionLocalizations"}},)"
         R"("video":{"data":{"id":"A","type":"appAssetLibraryVideos"}}},"type":"appAssetLibraryPlacements"}})"},
        {"a placement is deleted", [](auto& c) { ASC::deletePlacement(c, "P"); },
         "DELETE /v1/appAssetLibraryPlacements/P", ""},
        {"placements are ordered",
         [](auto& c) {
             ASC::orderPlacements(c, {"2", "1"}, "IPHONE",
                                  {PlacementParent::Kind::treatmentLocalization, "L"});
         },
         "POST /v1/appAssetLibraryPlacementOrderingRequests",
         R"({"data":{"attributes":{"placementGroup":"IPHONE"},"relationships":{)"
         R"("appStoreVersionExperimentTreatmentLocalization":)"
         R"({"data":{"id":"L","type":"appStoreVersionExperimentTreatmentLocalizations"}},)"
         R"("orderedPlacements":{"data":[{"id":"2","type":"appAssetLibraryPlacements"},)"
         R"({"id":"1","type":"appAssetLibraryPlacements"}]}},"type":"appAssetLibraryPlacementOrderingRequests"}})"},
        {"a build upload",
         [](auto& c) {
             ASC::createBuildUpload(c, {"7", "1.2", "34", "IOS"});
         },
         "POST /v1/buildUploads",
         R"({"data":{"attributes":{"cfBundleShortVersionString":"1.2","cfBundleVersion":"34","platform":"IOS"},)"
         R"("relationships":{"app":{"data":{"id":"7","type":"apps"}}},"type":"buildUploads"}})"},
        {"a build file",
         [](auto& c) {
             ASC::reserveBuildUploadFile(c, {"U", "a.ipa", 99, "com.apple.ipa"});
         },
         "POST /v1/buildUploadFiles",
         R"({"data":{"attributes":{"assetType":"ASSET","fileName":"a.ipa","fileSize":99,"uti":"com.apple.ipa"},)"
         R"("relationships":{"buildUpload":{"data":{"id":"U","type":"buildUploads"}}},"type":"buildUploadFiles"}})"},
        {"a build file is committed with its checksum",
         [](auto& c) { ASC::commitBuildUploadFile(c, "F", "abc"); }, "PATCH /v1/buildUploadFiles/F",
         R"({"data":{"attributes":{"sourceFileChecksums":{"file":{"algorithm":"MD5","hash":"abc"}},"uploaded":true},)"
         R"("id":"F","type":"buildUploadFiles"}})"},
        {"a submission", [](auto& c) { ASC::createReviewSubmission(c, "7", "IOS"); },
         "POST /v1/reviewSubmissions",
         R"({"data":{"attributes":{"platform":"IOS"},"relationships":{"app":{"data":{"id":"7","type":"apps"}}},)"
         R"("type":"reviewSubmissions"}})"},
        {"a version in a submission, with empty attributes",
         [](auto& c) {
             ASC::addToReviewSubmission(c, "S", {Item::appStoreVersion, "V"});
         },
         "POST /v1/reviewSubmissionItems",
         R"({"data":{"attributes":{},"relationships":{"appStoreVersion":{"data":{"id":"V","type":"appStoreVersions"}},)"
         R"("reviewSubmission":{"data":{"id":"S","type":"reviewSubmissions"}}},"type":"reviewSubmissionItems"}})"},
        {"a page version in a submission",
         [](auto& c) {
             ASC::addToReviewSubmission(c, "S", {Item::customProductPageVersion, "V"});
         },
         "POST /v1/reviewSubmissionItems",
         R"({"data":{"attributes":{},"relationships":{"appCustomProductPageVersion":)"
         R"({"data":{"id":"V","type":"appCustomProductPageVersions"}},)"
         R"("reviewSubmission":{"data":{"id":"S","type":"reviewSubmissions"}}},"type":"reviewSubmissionItems"}})"},
        {"a test in a submission",
         [](auto& c) {
             ASC::addToReviewSubmission(c, "S", {Item::experiment, "E"});
         },
         "POST /v1/reviewSubmissionItems",
         R"({"data":{"attributes":{},"relationships":{"appStoreVersionExperimentV2":)"
         R"({"data":{"id":"E","type":"appStoreVersionExperiments"}},)"
         R"("reviewSubmission":{"data":{"id":"S","type":"reviewSubmissions"}}},"type":"reviewSubmissionItems"}})"},
        {"a submission is sent", [](auto& c) { ASC::submitReviewSubmission(c, "S"); },
         "PATCH /v1/reviewSubmissions/S",
         R"({"data":{"attributes":{"submitted":true},"id":"S","type":"reviewSubmissions"}})"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.operation);
        ScriptedClient world({reply(200, kResource)});
        row.write(world.client);
        ASSERT_EQ(world.server->sent.size(), 1u);
        EXPECT_EQ(world.line(0), row.line);
        EXPECT_EQ(compact(world.body(0)), row.body);
    }
}

TEST(ResourceRequests, UpdateLeavesOutEmptyMapsAndCreateNeverDoes) {
    ScriptedClient world({reply(200, kResource), reply(201, kResource)});
    ASC::update(world.client, {.type = "things", .id = "7"});
    ASC::create(world.client, {.type = "things"});
    EXPECT_EQ(compact(world.body(0)), R"({"data":{"id":"7","type":"things"}})");
    EXPECT_EQ(compact(world.body(1)), R"({"data":{"attributes":{},"relationships":{},"type":"things"}})");
}

TEST(ResourceRequests, UpdateTakesAReplyWithoutABodyForASuccess) {
    ScriptedClient world({reply(204)});
    EXPECT_EQ(ASC::update(world.client, {.type = "things", .id = "7"}), std::nullopt);
}

TEST(ResourceRequests, WhatWasCreatedMustComeBack) {
    for (const auto* body : {"", kEmptyList}) {
        SCOPED_TRACE(body);
        ScriptedClient world({reply(201, body)});
        try {
            ASC::create(world.client, {.type = "things", .apiVersion = "v2"});
            ADD_FAILURE() << "no error";
        } catch (const ASCError& error) {
            EXPECT_EQ(error, ASCError(ASCError::InvalidResponse{"/v2/things"}));
        }
    }
}

TEST(ResourceRequests, AnUnreadableReplyToAWriteIsAnInvalidResponse) {
    ScriptedClient world({reply(200, "nonsense")});
    EXPECT_THROW(ASC::update(world.client, {.type = "things", .id = "7"}), ASCError);
}

TEST(ResourceRequests, ARelationshipWithoutAnIdIsCleared) {
    EXPECT_EQ(StableJSON::encodeCompact(ASC::relationship("builds", std::nullopt)), R"({"data":null})");
    EXPECT_EQ(StableJSON::encodeCompact(ASC::relationship("builds", std::vector<std::string>{"2", "1"})),
              R"({"data":[{"id":"2","type":"builds"},{"id":"1","type":"builds"}]})");
}

TEST(ResourceRequests, AnUnknownAppIsTheServersNotFound) {
    ScriptedClient world({reply(404)});
    EXPECT_THROW(ASC::appWithID(world.client, "7"), ASCError);
}

}  // namespace
}  // namespace kestrin
