#include "SyncEngine/Pull/PullService.h"

#include <gtest/gtest.h>

#include "KestrinCore/StableJSON.h"
#include "Tests/Support/ListingNames.h"
#include "Tests/Support/RoutedClient.h"

namespace kestrin {
namespace {

ProductPageSlugs noSlugs() {
    return {std::nullopt, Project{}};
}

// An app with one of everything.
struct FetchWorld : RoutedClient {
    FetchWorld() {
        answer("/v1/apps/7", R"({"data":{"type":"apps","id":"7","attributes":{"primaryLocale":"ja"}}})");
        answer("/v1/apps/7/appInfos", R"({"data":[
            {"type":"appInfos","id":"LIVE","attributes":{"state":"READY_FOR_DISTRIBUTION"}},
            {"type":"appInfos","id":"AI","attributes":{"state":"PREPARE_FOR_SUBMISSION"},"relationships":{
                "primaryCategory":{"data":{"type":"appCategories","id":"GAMES"}}}}]})");
        answer("/v1/appInfos/AI/appInfoLocalizations", R"({"data":[{"type":"l","id":"AL","attributes":
            {"locale":"de-DE","name":"Name","subtitle":"","privacyPolicyUrl":null,"description":"not of this level"}}]})");
        answer("/v1/apps/7/appStoreVersions", R"({"data":[
            {"type":"v","id":"OLD","attributes":{"platform":"IOS","appVersionState":"READY_FOR_SALE"}},
            {"type":"v","id":"V","attributes":{"platform":"IOS","appVersionState":"PREPARE_FOR_SUBMISSION",
             "versionString":"1.2","copyright":"© Me","releaseType":"MANUAL"}}]})");
        answer("/v1/appStoreVersions/V/appStoreVersionLocalizations", R"({"data":[
            {"type":"l","id":"L1","attributes":{"locale":"ja","description":"本文","name":"not of this level"}},
            {"type":"l","id":"L2","attributes":{"locale":"de-DE"}}]})");
        answer("/v1/appStoreVersionLocalizations/L1/placements", placements());
        answer("/v1/appStoreVersions/V/appStoreReviewDetail", R"({"data":{"type":"r","id":"R","attributes":
            {"contactFirstName":"Ada","contactLastName":"","contactPhone":7,"demoAccountRequired":false,
             "demoAccountPassword":"secret"}}})");
        answer("/v1/appStoreVersions/V", R"({"data":{"type":"v","id":"V","relationships":{
            "build":{"data":{"type":"builds","id":"B"}}}}})");
        answer("/v1/apps/7/appCustomProductPages", R"({"data":[
            {"type":"p","id":"P","attributes":{"name":"Summer","url":"https://p","visible":true}},
            {"type":"p","id":"EMPTY","attributes":{"name":"No version"}}]})");
        answer("/v1/appCustomProductPages/P/appCustomProductPageVersions", R"({"data":[
            {"type":"pv","id":"PV","attributes":{"version":"1","state":"APPROVED","deepLink":"app://s"}}]})");
        answer("/v1/appCustomProductPageVersions/PV/appCustomProductPageLocalizations", R"({"data":[
            {"type":"l","id":"PL1","attributes":{"locale":"ja","promotionalText":"夏"}},
            {"type":"l","id":"PL2","attributes":{"locale":"de-DE","promotionalText":""}}]})");
        answer("/v1/appCustomProductPageLocalizations/PL1/placements", placements());
        answer("/v1/apps/7/appStoreVersionExperimentsV2", R"({"data":[
            {"type":"e","id":"DONE","attributes":{"name":"Old","state":"COMPLETED"}},
            {"type":"e","id":"E","attributes":{"name":"Icons","platform":"MAC_OS","trafficProportion":30,"state":"REJECTED"}},
            {"type":"e","id":"STOPPED","attributes":{"name":"Old","state":"STOPPED"}}]})");
        answer("/v2/appStoreVersionExperiments/E/appStoreVersionExperimentTreatments", R"({"data":[
            {"type":"t","id":"T","attributes":{"name":"Blue","appIconName":"Icon2"}}]})");
        answer("/v1/appStoreVersionExperimentTreatments/T/appStoreVersionExperimentTreatmentLocalizations",
               R"({"data":[{"type":"l","id":"TL","attributes":{"locale":"ja"}}]})");
        answer("/v1/appStoreVersionExperimentTreatmentLocalizations/TL/placements", placements());
    }

    // Two placements of known assets around one without an asset, and one of an asset that isn't included.
    static std::string placements() {
        return R"({"data":[)" + placement("P2", R"({"image":{"data":{"type":"i","id":"A2"}}})") + "," +
               placement("P0", "{}") + "," + placement("P1", R"({"image":{"data":{"type":"i","id":"A1"}}})") +
               "," + placement("P3", R"({"video":{"data":{"type":"v","id":"A3"}}})") +
               R"(],"included":[{"type":"appAssetLibraryImages","id":"A1","attributes":{"fileName":"one.png"}},
                   {"type":"appAssetLibraryImages","id":"A2","attributes":{"fileName":"two.png"}}]})";
    }
    static std::string placement(const std::string& id, const std::string& relationships) {
        return R"({"type":"p","id":")" + id +
               R"(","attributes":{"placementGroup":"IPHONE_67","placementType":"APP_SCREENSHOT"},"relationships":)" +
               relationships + "}";
    }

    RemoteListing fetch() { return PullService(client).fetch("7", noSlugs()); }
};

TEST(PullService, AsksOneThingAfterAnotherInAFixedOrder) {
    FetchWorld world;
    world.fetch();
    EXPECT_EQ(world.paths(),
              (std::vector<std::string>{
                  "/v1/apps/7",
                  "/v1/apps/7/appInfos",
                  "/v1/appInfos/AI/appInfoLocalizations",
                  "/v1/apps/7/appStoreVersions",
                  "/v1/appStoreVersions/V/appStoreVersionLocalizations",
                  "/v1/appStoreVersionLocalizations/L1/placements",
                  "/v1/appStoreVersionLocalizations/L2/placements",
                  "/v1/appStoreVersions/V/appStoreReviewDetail",
                  "/v1/appStoreVersions/V",
                  "/v1/apps/7/appCustomProductPages",
                  "/v1/appCustomProductPages/P/appCustomProductPageVersions",
                  "/v1/appCustomProductPageVersions/PV/appCustomProductPageLocalizations",
                  "/v1/appCustomProductPageLocalizations/PL1/placements",
                  "/v1/appCustomProductPageLocalizations/PL2/placements",
                  "/v1/appCustomProductPages/EMPTY/appCustomProductPageVersions",
                  "/v1/apps/7/appStoreVersionExperimentsV2",
                  "/v2/appStoreVersionExperiments/E/appStoreVersionExperimentTreatments",
                  "/v1/appStoreVersionExperimentTreatments/T/appStoreVersionExperimentTreatmentLocalizations",
                  "/v1/appStoreVersionExperimentTreatmentLocalizations/TL/placements",
              }));
}

TEST(PullService, TheAppsPartHasTheEditableAppInfoAndItsTexts) {
    const auto listing = FetchWorld().fetch();
    EXPECT_EQ(listing.appID, "7");
    EXPECT_EQ(listing.primaryLocale, kJapanese);
    EXPECT_EQ(listing.app.info.primaryCategory, "GAMES");
    EXPECT_EQ(listing.app.info.secondaryCategory, std::nullopt);
    EXPECT_EQ(listing.app.locales,
              (LocalizedTexts{{kGerman, LocalizedFields({{ListingField::name, "Name"}})}}));
    EXPECT_EQ(listing.ids.appInfoID, "AI");
    EXPECT_EQ(listing.ids.appInfoState, "PREPARE_FOR_SUBMISSION");
    EXPECT_EQ(listing.ids.appInfoLocalizations, (LocalizationIDs{{kGerman, "AL"}}));
}

const MediaItems kItems = {MediaItem::remote("A2", "two.png"), MediaItem::remote("A1", "one.png"),
                           MediaItem::remote("A3", "")};
const std::vector<std::string> kPlacements = {"P2", "P1", "P3"};

TEST(PullService, APlatformHasItsCurrentVersionWithTextsMediaAndReviewDetails) {
    const auto listing = FetchWorld().fetch();
    ASSERT_EQ(listing.platforms.size(), 1u);
    const auto& content = listing.platforms.at(StorePlatform::iOS);
    EXPECT_EQ(content.version, (VersionContent{"1.2", "© Me", "MANUAL", {}}));
    EXPECT_EQ(content.locales,
              (LocalizedTexts{{kJapanese, LocalizedFields({{ListingField::description, "本文"}})}}));
    EXPECT_EQ(content.media, (LocalizedMedia{{kJapanese, {{kSlot, kItems}}}}));
    ReviewDetailContent review;
    review.contactFirstName = "Ada";
    review.demoAccountRequired = false;
    EXPECT_EQ(content.review, review) << "empty texts, other types and the password are left out";
    EXPECT_EQ(listing.ids.versions.at(StorePlatform::iOS),
              (RemoteVersion{"V",
                             "PREPARE_FOR_SUBMISSION",
                             {{kJapanese, "L1"}, {kGerman, "L2"}},
                             {{kJapanese, {{"IPHONE_67/APP_SCREENSHOT", kPlacements}}}, {kGerman, {}}},
                             "R",
                             "B"}));
}

TEST(PullService, EveryPlatformHasAnEntryOfItsOwn) {
    RoutedClient world;
    world.answer("/v1/apps/7", R"({"data":{"type":"apps","id":"7"}})");
    world.answer("/v1/apps/7/appStoreVersions", R"({"data":[
        {"type":"v","id":"M","attributes":{"platform":"MAC_OS","versionString":"3.0"}},
        {"type":"v","id":"I","attributes":{"platform":"IOS","versionString":"2.0","appVersionState":"IN_REVIEW"}},
        {"type":"v","id":"X","attributes":{"platform":"WATCH_OS","versionString":"1.0"}}]})");
    for (const auto* id : {"M", "I", "X"}) {
        world.answer(std::string("/v1/appStoreVersions/") + id,
                     R"({"data":{"type":"appStoreVersions","id":"M"}})");
        world.answer(std::string("/v1/appStoreVersions/") + id + "/appStoreReviewDetail", R"({"data":null})");
    }

    const auto listing = PullService(world.client).fetch("7", noSlugs());

    std::map<std::string, std::string> versions;
    for (const auto& [platform, content] : listing.platforms) {
        versions.emplace(platform.rawValue, content.version.versionString.value_or(""));
    }
    EXPECT_EQ(versions,
              (std::map<std::string, std::string>{{"IOS", "2.0"}, {"MAC_OS", "3.0"}, {"WATCH_OS", "1.0"}}));
    const auto& ids = listing.ids.versions;
    EXPECT_EQ(ids.at(StorePlatform::macOS), (RemoteVersion{"M", "", {}, {}, {}, {}}))
        << "no state is an empty one";
    EXPECT_EQ(ids.at(StorePlatform::iOS), (RemoteVersion{"I", "IN_REVIEW", {}, {}, {}, {}}));
}

TEST(PullService, WorksOnItsOwnCopyOfTheSlugs) {
    FetchWorld world;
    auto slugs = noSlugs();
    PullService(world.client).fetch("7", slugs);
    EXPECT_EQ(slugs.pages.slug("another page", "Summer"), Slug{"summer"}) << "still free";
}

TEST(PullService, CustomPagesAndTestsCanBeReadAlone) {
    FetchWorld world;
    RemoteListing listing;
    auto slugs = noSlugs();
    PullService(world.client).fetchProductPages("7", slugs, listing);
    EXPECT_EQ(listing.pages.size(), 1u);
    EXPECT_EQ(listing.experiments.size(), 1u);
    EXPECT_TRUE(listing.platforms.empty());
    EXPECT_EQ(world.paths().front(), "/v1/apps/7/appCustomProductPages");
}

TEST(PullService, ALaterAssetOfTheSameIdReplacesTheEarlierOne) {
    FetchWorld world;
    world.answer("/v1/appStoreVersionLocalizations/L2/placements",
                 R"({"data":[],"included":[{"type":"appAssetLibraryImages","id":"A1",
                     "attributes":{"fileName":"renamed.png"}}]})");
    world.answer("/v1/apps/7/appCustomProductPages", R"({"data":[]})");
    world.answer("/v1/apps/7/appStoreVersionExperimentsV2", R"({"data":[]})");
    EXPECT_EQ(world.fetch().assets.at("A1").fileName, "renamed.png");
}

TEST(PullService, APlacementWithoutAnAssetHasNeitherItemNorId) {
    FetchWorld world;
    RemoteListing listing;
    const auto slots =
        PullService(world.client).placements({PlacementParent::Kind::versionLocalization, "L1"}, listing);
    EXPECT_EQ(slots.items.at(kSlot), kItems);
    EXPECT_EQ(slots.ids.at("IPHONE_67/APP_SCREENSHOT"), kPlacements);
    EXPECT_EQ(listing.assets.size(), 2u);
}

TEST(PullService, APageHasItsCurrentVersionAndOneWithoutVersionsIsntThere) {
    const auto listing = FetchWorld().fetch();
    ASSERT_EQ(listing.pages.size(), 1u);
    const auto& page = listing.pages.at({"summer"});
    EXPECT_EQ(page.name, "Summer");
    EXPECT_EQ(page.visible, true);
    EXPECT_EQ(page.deepLink, "app://s");
    EXPECT_EQ(page.locales, (std::vector{kGerman, kJapanese})) << "ascending";
    EXPECT_EQ(page.promotionalText, (std::map<StoreLocale, std::string>{{kJapanese, "夏"}}));
    EXPECT_EQ(page.media, (LocalizedMedia{{kJapanese, {{kSlot, kItems}}}}));
    const auto& remote = listing.ids.pages.at({"summer"});
    EXPECT_EQ(remote.id, "P");
    EXPECT_EQ(remote.url, "https://p");
    EXPECT_EQ(remote.versionID, "PV");
    EXPECT_EQ(remote.versionState, "APPROVED");
    EXPECT_EQ(remote.localizations, (LocalizationIDs{{kGerman, "PL2"}, {kJapanese, "PL1"}}));
}

TEST(PullService, FinishedTestsDontExist) {
    const auto listing = FetchWorld().fetch();
    ASSERT_EQ(listing.experiments.size(), 1u);
    const auto& test = listing.experiments.at({"icons"});
    EXPECT_EQ(test.name, "Icons");
    EXPECT_EQ(test.platform, StorePlatform::macOS);
    EXPECT_EQ(test.trafficProportion, 30);
    const auto& treatment = test.treatments.at({"blue"});
    EXPECT_EQ(treatment.appIconName, "Icon2");
    EXPECT_EQ(treatment.locales, std::vector{kJapanese});
    EXPECT_EQ(treatment.media, (LocalizedMedia{{kJapanese, {{kSlot, kItems}}}}));
    const auto& remote = listing.ids.experiments.at({"icons"});
    EXPECT_EQ(remote.state, "REJECTED");
    EXPECT_EQ(remote.treatments.at({"blue"}).localizations, (LocalizationIDs{{kJapanese, "TL"}}));
}

TEST(PullService, ATestWithoutAPlatformIsForIOS) {
    FetchWorld world;
    world.answer("/v1/apps/7/appStoreVersionExperimentsV2", R"({"data":[{"type":"e","id":"E"}]})");
    EXPECT_EQ(world.fetch().experiments.at({"page"}).platform, StorePlatform::iOS);
}

TEST(PullService, AnAppWithNothingInItIsAnEmptyListing) {
    RoutedClient world;
    world.answer("/v1/apps/7", R"({"data":{"type":"apps","id":"7"}})");
    RemoteListing empty;
    empty.appID = "7";
    EXPECT_EQ(PullService(world.client).fetch("7", noSlugs()), empty);
}

TEST(PullService, AKeyWithoutTheRightToSeePagesOrTestsSeesNone) {
    for (const int status : {403, 404}) {
        for (const auto* path :
             {"/v1/apps/7/appCustomProductPages", "/v1/apps/7/appStoreVersionExperimentsV2"}) {
            SCOPED_TRACE(std::string(path) + " " + std::to_string(status));
            FetchWorld world;
            world.answer(path, "", status);
            const auto listing = world.fetch();
            EXPECT_EQ(listing.pages.size() + listing.experiments.size(), 1u)
                << "the other list is still read";
        }
    }
}

TEST(PullService, AnyOtherFailureEndsTheFetch) {
    struct Row {
        const char* path;
        int status;
    };
    for (const Row& row : {Row{"/v1/apps/7/appCustomProductPages", 400},
                           Row{"/v1/appCustomProductPages/P/appCustomProductPageVersions", 403},
                           Row{"/v2/appStoreVersionExperiments/E/appStoreVersionExperimentTreatments", 404},
                           Row{"/v1/apps/7/appInfos", 403}, Row{"/v1/apps/7", 404}}) {
        SCOPED_TRACE(row.path);
        FetchWorld world;
        world.answer(row.path, "", row.status);
        EXPECT_THROW(world.fetch(), ASCError);
    }
}

TEST(PullService, EstimatesTheRequestsOfOneFetch) {
    EXPECT_EQ(PullService::estimatedRequests({}), 6u);
    const auto listing = FetchWorld().fetch();
    // 6, a version with two localizations, a page with two, a test with a treatment of one.
    EXPECT_EQ(PullService::estimatedRequests(listing), 6u + (3 + 2) + (2 + 2) + (1 + (1 + 1)));
}

}  // namespace
}  // namespace kestrin
