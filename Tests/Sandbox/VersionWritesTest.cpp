#include "Sandbox/Resources/States.h"
#include "Tests/Sandbox/SandboxFixture.h"

namespace kestrin::sandbox {
namespace {

using testing::ElementsAre;

class VersionWrites : public SandboxFixture {
 protected:
    VersionWrites()
        : prepared(idOf("appStoreVersions", {{"versionString", "2.4"}})),
          live(idOf("appStoreVersions", {{"versionString", "2.3"}, {"platform", "IOS"}})) {}

    Received create(const Json& attributes, const std::string& app = kApp) {
        return post("/v1/appStoreVersions",
                    createBody("appStoreVersions", attributes, {{"app", {"apps", app}}}));
    }
    Received update(const std::string& id, const Json& attributes) {
        return patch("/v1/appStoreVersions/" + id, updateBody("appStoreVersions", id, attributes));
    }
    Received createLocalization(const std::string& version, const Json& attributes) {
        return post("/v1/appStoreVersionLocalizations",
                    createBody("appStoreVersionLocalizations", attributes,
                               {{"appStoreVersion", {"appStoreVersions", version}}}));
    }
    Received updateLocalization(const std::string& version, const std::string& locale,
                                const Json& attributes) {
        const auto id =
            idOf("appStoreVersionLocalizations", {{"appStoreVersion", version}, {"locale", locale}});
        return patch("/v1/appStoreVersionLocalizations/" + id,
                     updateBody("appStoreVersionLocalizations", id, attributes));
    }
    Received attach(const std::string& version, const std::string& build,
                    const std::string& type = "builds") {
        return patch("/v1/appStoreVersions/" + version + "/relationships/build",
                     {{"data", {{"type", type}, {"id", build}}}});
    }
    std::vector<std::string> localesOf(const std::string& version) {
        const auto reply = get("/v1/appStoreVersions/" + version + "/appStoreVersionLocalizations");
        std::vector<std::string> locales;
        for (const auto& each : reply.json["data"]) locales.push_back(each["attributes"]["locale"]);
        return locales;
    }

    const std::string prepared, live;
};

TEST_F(VersionWrites, MakeAVersionWithTheTextsOfTheOneBeforeIt) {
    const auto reply =
        create({{"platform", "MAC_OS"}, {"versionString", "2.4"}, {"copyright", "2027 Example"}});
    ASSERT_EQ(reply.status, 201);
    EXPECT_EQ(reply.attributes()["appVersionState"], "PREPARE_FOR_SUBMISSION");
    EXPECT_EQ(reply.attributes()["appStoreState"], "PREPARE_FOR_SUBMISSION");
    EXPECT_EQ(reply.attributes()["releaseType"], "AFTER_APPROVAL");
    const auto id = reply.json["data"]["id"].get<std::string>();
    EXPECT_THAT(localesOf(id), ElementsAre("en-US", "de-DE", "ja"));
    const auto first = get("/v1/appStoreVersions/" + id + "/appStoreVersionLocalizations").attributes();
    EXPECT_EQ(first["keywords"], "notes,tide,sea,journal");
    EXPECT_TRUE(first["whatsNew"].is_null());
}

TEST_F(VersionWrites, MakeTheFirstVersionOfAPlatformWithThePrimaryLocaleAlone) {
    const auto reply = create({{"platform", "TV_OS"}, {"versionString", "1.0"}});
    ASSERT_EQ(reply.status, 201);
    EXPECT_THAT(localesOf(reply.json["data"]["id"]), ElementsAre("en-US"));
}

TEST_F(VersionWrites, BringANewAppInfoWhenAllIsOnSale) {
    sandbox.service().with([](State& state) {
        setAppInfoState(*state.store.first("appInfos", {{"state", "PREPARE_FOR_SUBMISSION"}}),
                        "READY_FOR_DISTRIBUTION");
    });
    ASSERT_EQ(create({{"platform", "MAC_OS"}, {"versionString", "2.4"}}).status, 201);

    const auto info = idOf("appInfos", {{"state", "PREPARE_FOR_SUBMISSION"}});

    EXPECT_EQ(get("/v1/appInfos/" + info + "/appInfoLocalizations").json["data"].size(), 3u);
    EXPECT_EQ(get("/v1/apps/1234567890/appInfos?include=primaryCategory")
                  .json["data"][2]["relationships"]["primaryCategory"]["data"]["id"],
              "PRODUCTIVITY");
}

TEST_F(VersionWrites, RefuseASecondVersionOnItsWay) {
    const auto reply = create({{"platform", "IOS"}, {"versionString", "2.5"}});
    EXPECT_EQ(reply.status, 409);
    EXPECT_EQ(reply.code(), "STATE_ERROR.ENTITY_STATE_INVALID");
}

TEST_F(VersionWrites, RefuseAVersionStringThatWasUsed) {
    const auto reply = create({{"platform", "MAC_OS"}, {"versionString", "2.3"}});
    EXPECT_EQ(reply.code(), "ENTITY_ERROR.ATTRIBUTE.INVALID.DUPLICATE");
    EXPECT_EQ(update(prepared, {{"versionString", "2.3"}}).code(),
              "ENTITY_ERROR.ATTRIBUTE.INVALID.DUPLICATE");
    EXPECT_EQ(update(prepared, {{"versionString", "2.4"}}).status, 200) << "its own";
}

TEST_F(VersionWrites, RefuseValuesThatArentOfTheService) {
    EXPECT_EQ(create({{"platform", "ANDROID"}, {"versionString", "1"}}).place(), "/data/attributes/platform");
    EXPECT_EQ(update(prepared, {{"releaseType", "TOMORROW"}}).place(), "/data/attributes/releaseType");
    EXPECT_EQ(update(prepared, {{"earliestReleaseDate", "tomorrow"}}).place(),
              "/data/attributes/earliestReleaseDate");
    EXPECT_EQ(update(prepared, {{"platform", "MAC_OS"}}).code(), "ENTITY_ERROR.ATTRIBUTE.UNKNOWN");
    EXPECT_EQ(create({{"platform", "TV_OS"}, {"versionString", "1"}}, "1").code(),
              "ENTITY_ERROR.RELATIONSHIP.INVALID");
}

TEST_F(VersionWrites, WantADateForAScheduledRelease) {
    EXPECT_EQ(update(prepared, {{"releaseType", "SCHEDULED"}}).code(), "ENTITY_ERROR.ATTRIBUTE.REQUIRED");
    EXPECT_EQ(
        update(prepared, {{"releaseType", "SCHEDULED"}, {"earliestReleaseDate", "2026-12-01T08:00:00Z"}})
            .status,
        200);
    EXPECT_EQ(update(prepared, {{"releaseType", "SCHEDULED"}}).status, 200) << "the date is there already";
}

TEST_F(VersionWrites, ChangeAVersionInPreparationAlone) {
    EXPECT_EQ(update(prepared, {{"copyright", nullptr}, {"releaseType", "MANUAL"}}).attributes()["copyright"],
              Json());
    EXPECT_EQ(update(live, {{"copyright", "x"}}).code(), "STATE_ERROR.ENTITY_STATE_INVALID");
}

TEST_F(VersionWrites, AddALocalizationAndRefuseItTwice) {
    EXPECT_EQ(createLocalization(prepared, {{"locale", "fr-FR"}, {"description", "Des notes."}}).status, 201);
    EXPECT_EQ(createLocalization(prepared, {{"locale", "fr-FR"}}).code(),
              "ENTITY_ERROR.ATTRIBUTE.INVALID.DUPLICATE");
    EXPECT_EQ(createLocalization(live, {{"locale", "fr-FR"}}).code(), "STATE_ERROR.ENTITY_STATE_INVALID");
}

struct BadText {
    const char* attribute;
    std::string value;
};

TEST_F(VersionWrites, RefuseTextsThatAreTooLongAndAddressesThatAreNone) {
    const BadText rows[] = {{"description", std::string(4001, 'x')},
                            {"keywords", std::string(101, 'x')},
                            {"promotionalText", std::string(171, 'x')},
                            {"whatsNew", std::string(4001, 'x')},
                            {"marketingUrl", "example.com"},
                            {"supportUrl", ""}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.attribute);
        const auto reply = updateLocalization(prepared, "ja", {{row.attribute, row.value}});
        EXPECT_EQ(reply.code(), "ENTITY_ERROR.ATTRIBUTE.INVALID");
        EXPECT_EQ(reply.place(), std::string("/data/attributes/") + row.attribute);
    }
    EXPECT_EQ(
        updateLocalization(prepared, "ja", {{"keywords", std::string(100, 'x')}, {"supportUrl", nullptr}})
            .status,
        200);
}

TEST_F(VersionWrites, ChangeThePromotionalTextAtAnyTime) {
    EXPECT_EQ(updateLocalization(live, "ja", {{"promotionalText", "新しい"}}).status, 200);
    EXPECT_EQ(updateLocalization(live, "ja", {{"promotionalText", "新しい"}, {"whatsNew", "x"}}).code(),
              "STATE_ERROR.ENTITY_STATE_INVALID");
}

TEST_F(VersionWrites, AttachABuildOfTheVersion) {
    const auto build = idOf("builds", {{"version", "241"}});
    const auto reply = attach(prepared, build);
    EXPECT_EQ(reply.status, 204);
    EXPECT_EQ(reply.body, "");
    EXPECT_EQ(get("/v1/appStoreVersions/" + prepared + "?include=build").json["included"][0]["id"], build);
    EXPECT_EQ(get("/v1/builds/" + build + "?include=appStoreVersion").json["included"][0]["id"], prepared);
}

TEST_F(VersionWrites, RefuseABuildThatDoesNotFit) {
    for (const char* number : {"230", "240", "242"}) {  // of another version, expired, invalid
        SCOPED_TRACE(number);
        EXPECT_EQ(attach(prepared, idOf("builds", {{"version", number}})).code(),
                  "ENTITY_ERROR.RELATIONSHIP.INVALID");
    }
    EXPECT_EQ(attach(prepared, "x").code(), "ENTITY_ERROR.RELATIONSHIP.INVALID");
    EXPECT_EQ(attach(prepared, kApp, "apps").code(), "ENTITY_ERROR.RELATIONSHIP.INVALID");
    EXPECT_EQ(
        attach(live, idOf("builds", {{"version", "230"}, {"preReleaseVersion.platform", "IOS"}})).code(),
        "STATE_ERROR.ENTITY_STATE_INVALID");
    EXPECT_EQ(patch("/v1/appStoreVersions/" + prepared + "/relationships/build", {{"data", nullptr}}).status,
              422);
}

TEST_F(VersionWrites, SayOnceWhetherABuildUsesEncryption) {
    const auto id = idOf("builds", {{"version", "241"}});
    const auto say = [&](const Json& attributes) {
        return patch("/v1/builds/" + id, updateBody("builds", id, attributes));
    };
    EXPECT_EQ(say({{"usesNonExemptEncryption", "no"}}).code(), "ENTITY_ERROR.ATTRIBUTE.INVALID");
    EXPECT_EQ(say({{"usesNonExemptEncryption", false}}).attributes()["usesNonExemptEncryption"], false);
    EXPECT_EQ(say({{"usesNonExemptEncryption", false}}).status, 200);
    EXPECT_EQ(say({{"usesNonExemptEncryption", true}}).code(),
              "ENTITY_ERROR.ATTRIBUTE.INVALID.INVALID_STATE");
    EXPECT_EQ(say({{"expired", true}}).attributes()["expired"], true);
    EXPECT_EQ(say({{"expired", false}}).code(), "ENTITY_ERROR.ATTRIBUTE.INVALID");
}

TEST_F(VersionWrites, GiveAVersionItsReviewDetailsOnce) {
    const auto version =
        create({{"platform", "TV_OS"}, {"versionString", "1.0"}}).json["data"]["id"].get<std::string>();
    const auto make = [&](const std::string& of) {
        return post("/v1/appStoreReviewDetails",
                    createBody("appStoreReviewDetails",
                               {{"contactEmail", "a@example.com"}, {"demoAccountRequired", false}},
                               {{"appStoreVersion", {"appStoreVersions", of}}}));
    };
    const auto made = make(version);
    ASSERT_EQ(made.status, 201);
    EXPECT_EQ(make(version).code(), "ENTITY_ERROR.RELATIONSHIP.INVALID.DUPLICATE");
    EXPECT_EQ(make(live).code(), "STATE_ERROR.ENTITY_STATE_INVALID");

    const auto id = made.json["data"]["id"].get<std::string>();
    const auto changed = patch("/v1/appStoreReviewDetails/" + id,
                               updateBody("appStoreReviewDetails", id,
                                          {{"demoAccountPassword", "x"}, {"demoAccountRequired", nullptr}}));
    EXPECT_EQ(changed.attributes()["demoAccountPassword"], "x");
    EXPECT_TRUE(changed.attributes()["demoAccountRequired"].is_null());
    EXPECT_EQ(get("/v1/appStoreVersions/" + version + "/appStoreReviewDetail").attributes()["contactEmail"],
              "a@example.com");
}

}  // namespace
}  // namespace kestrin::sandbox
