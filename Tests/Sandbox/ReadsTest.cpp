// The everyday seed, read as a client reads it.
#include "Sandbox/Reads.h"

#include "KestrinCore/Files.h"

#include "Tests/Sandbox/SandboxFixture.h"

namespace kestrin::sandbox {
namespace {

using testing::ElementsAre;
using testing::UnorderedElementsAre;

class ReadsTest : public SandboxFixture {
 protected:
    std::vector<std::string> values(const std::string& target, const char* attribute) {
        std::vector<std::string> list;
        const auto reply = get(target);
        for (const auto& resource : reply.json.at("data")) list.push_back(resource["attributes"][attribute]);
        return list;
    }
};

TEST_F(ReadsTest, ListsApps) {
    EXPECT_THAT(values("/v1/apps?fields%5Bapps%5D=name,bundleId,sku,primaryLocale&limit=200", "bundleId"),
                ElementsAre("com.example.tidenotes", "com.example.lighthouse"));
    EXPECT_EQ(get("/v1/apps/1234567890?fields%5Bapps%5D=name").attributes()["name"], "Tide Notes");
}

TEST_F(ReadsTest, ListsTheAppInfoOnSaleAndTheOneInPreparation) {
    const auto path = "/v1/apps/1234567890/appInfos?include=primaryCategory,secondaryCategory&limit=200";
    EXPECT_THAT(values(path, "state"), ElementsAre("READY_FOR_DISTRIBUTION", "PREPARE_FOR_SUBMISSION"));
    EXPECT_THAT(values(path, "appStoreState"), ElementsAre("READY_FOR_SALE", "PREPARE_FOR_SUBMISSION"));
    EXPECT_EQ(get("/v1/apps/1234567891/appInfos").json["data"], Json::array());
}

TEST_F(ReadsTest, ListsLocalizationsOfAnAppInfo) {
    const auto info = idOf("appInfos", {{"state", "PREPARE_FOR_SUBMISSION"}});
    EXPECT_THAT(values("/v1/appInfos/" + info + "/appInfoLocalizations?limit=200", "locale"),
                ElementsAre("en-US", "de-DE", "ja"));
    EXPECT_THAT(values("/v1/appInfos/" + info + "/appInfoLocalizations?filter%5Blocale%5D=ja", "name"),
                ElementsAre("潮のノート"));
}

TEST_F(ReadsTest, ListsTheNewestVersionFirst) {
    const auto path = "/v1/apps/1234567890/appStoreVersions?limit=200";
    EXPECT_THAT(values(path, "versionString"), ElementsAre("2.4", "2.3", "2.3"));
    EXPECT_THAT(values(path, "platform"), ElementsAre("IOS", "IOS", "MAC_OS"));
    EXPECT_THAT(values(path, "appVersionState"),
                ElementsAre("PREPARE_FOR_SUBMISSION", "READY_FOR_DISTRIBUTION", "READY_FOR_DISTRIBUTION"));
    const auto dates = values(path, "createdDate");
    EXPECT_GT(dates[0], dates[1]);
    EXPECT_GT(dates[1], dates[2]);
    EXPECT_TRUE(dates[0].ends_with("-08:00"));
}

TEST_F(ReadsTest, ListsLocalizationsOfAVersion) {
    const auto version = idOf("appStoreVersions", {{"versionString", "2.4"}});
    const auto path = "/v1/appStoreVersions/" + version + "/appStoreVersionLocalizations?limit=200";
    EXPECT_THAT(values(path, "locale"), ElementsAre("en-US", "de-DE", "ja"));
    EXPECT_TRUE(get(path).attributes(2)["whatsNew"].is_null());
    EXPECT_EQ(get(path).attributes(1)["supportUrl"], "https://example.com/de-DE/help");
}

TEST_F(ReadsTest, ReadsReviewDetailsAndAnswers404WithoutThem) {
    const auto prepared = idOf("appStoreVersions", {{"versionString", "2.4"}});
    const auto live = idOf("appStoreVersions", {{"versionString", "2.3"}});
    EXPECT_EQ(
        get("/v1/appStoreVersions/" + prepared + "/appStoreReviewDetail").attributes()["contactFirstName"],
        "Ada");
    const auto none = get("/v1/appStoreVersions/" + live + "/appStoreReviewDetail");
    EXPECT_EQ(none.status, 404);
    EXPECT_EQ(none.code(), "NOT_FOUND");
}

TEST_F(ReadsTest, TellsWhichBuildAVersionHas) {
    const auto query = std::string("?include=build&fields%5BappStoreVersions%5D=build");
    const auto live = idOf("appStoreVersions", {{"versionString", "2.3"}, {"platform", "IOS"}});
    const auto prepared = idOf("appStoreVersions", {{"versionString", "2.4"}});
    EXPECT_EQ(
        get("/v1/appStoreVersions/" + live + query).json["data"]["relationships"]["build"]["data"]["id"],
        idOf("builds", {{"version", "230"}, {"preReleaseVersion.platform", "IOS"}}));
    EXPECT_TRUE(get("/v1/appStoreVersions/" + prepared + query)
                    .json["data"]["relationships"]["build"]["data"]
                    .is_null());
}

TEST_F(ReadsTest, ListsTheNewestBuildFirstWhenAsked) {
    const auto path =
        "/v1/builds?filter%5Bapp%5D=1234567890&sort=-uploadedDate&include=preReleaseVersion&limit=50"
        "&filter%5BpreReleaseVersion.version%5D=2.4&filter%5BpreReleaseVersion.platform%5D=IOS";
    EXPECT_THAT(values(path, "version"), ElementsAre("242", "241", "240"));
    const auto one = get("/v1/builds/" + idOf("builds", {{"version", "241"}}) + "?include=preReleaseVersion");
    EXPECT_EQ(one.json["included"][0]["attributes"]["platform"], "IOS");
    EXPECT_TRUE(one.attributes()["usesNonExemptEncryption"].is_null());
}

TEST(SeedTest, IsTheSameInEveryRun) {
    Sandbox a, b;
    const auto print = [](State& state) { return dumped(stateJSON(state)); };
    EXPECT_EQ(a.service().with(print), b.service().with(print));
}

TEST(SeedTest, ComesBackFromTheFileThatAStateWasPrintedTo) {
    Sandbox original;
    const auto print = [](State& state) { return stateJSON(state); };
    const auto state = original.service().with(print);
    const auto path = std::filesystem::path(testing::TempDir()) / "seed.json";
    files::writeAtomically(path, dumped(state));

    Sandbox copy({}, seeds::fromFile(path));

    EXPECT_EQ(copy.service().with(print), state);
}

TEST(SeedTest, NamesTheFileThatCannotBeRead) {
    EXPECT_THROW(seeds::fromFile("/nowhere/seed.json"), std::runtime_error);
    const auto path = std::filesystem::path(testing::TempDir()) / "bad-seed.json";
    files::writeAtomically(path, R"({"resources": [{"type": "apps"}]})");
    EXPECT_THROW(Sandbox({}, seeds::fromFile(path)), std::runtime_error);
}

}  // namespace
}  // namespace kestrin::sandbox
