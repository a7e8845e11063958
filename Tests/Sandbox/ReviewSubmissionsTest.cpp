#include "Tests/Sandbox/SandboxFixture.h"

namespace kestrin::sandbox {
namespace {

constexpr const char* kApp = "1234567890";

class ReviewSubmissions : public SandboxFixture {
 protected:
    const std::string version = idOf("appStoreVersions", {{"appVersionState", "PREPARE_FOR_SUBMISSION"}});
    const std::string page = idOf("appCustomProductPageVersions", {{"state", "PREPARE_FOR_SUBMISSION"}});
    const std::string test = idOf("appStoreVersionExperiments", {{"state", "PREPARE_FOR_SUBMISSION"}});

    Received create(const std::string& platform = "IOS") {
        return post("/v1/reviewSubmissions",
                    createBody("reviewSubmissions", {{"platform", platform}}, {{"app", {"apps", kApp}}}));
    }
    std::string made() { return create().json["data"]["id"]; }
    Received add(const std::string& submission, const std::vector<std::pair<std::string, Ref>>& things) {
        auto related = things;
        related.emplace_back("reviewSubmission", Ref{"reviewSubmissions", submission});
        return post("/v1/reviewSubmissionItems",
                    createBody("reviewSubmissionItems", Json::object(), related));
    }
    std::pair<std::string, Ref> versionItem() const {
        return {"appStoreVersion", {"appStoreVersions", version}};
    }
    std::pair<std::string, Ref> pageItem() const {
        return {"appCustomProductPageVersion", {"appCustomProductPageVersions", page}};
    }
    std::pair<std::string, Ref> testItem() const {
        return {"appStoreVersionExperimentV2", {"appStoreVersionExperiments", test}};
    }
    Received update(const std::string& submission, const Json& attributes) {
        return patch("/v1/reviewSubmissions/" + submission,
                     updateBody("reviewSubmissions", submission, attributes));
    }
    Received open(const std::string& query =
                      "filter[app]=1234567890&filter[platform]=IOS"
                      "&filter[state]=READY_FOR_REVIEW&limit=1") {
        return get("/v1/reviewSubmissions?" + query);
    }
    // As a build that can be shipped, and all the texts.
    void makeReady() {
        sandbox.service().with([&](State& state) {
            auto& build = *state.store.first("builds", {{"version", "241"}});
            build.attributes["usesNonExemptEncryption"] = false;
            state.store.relate(state.store.at("appStoreVersions", version), "build", build.ref);
            for (auto* localization :
                 state.store.pointing("appStoreVersionLocalizations", "appStoreVersion", version)) {
                for (const auto* name : {"description", "keywords"}) localization->attributes[name] = "text";
                localization->attributes["supportUrl"] = "https://example.com";
            }
        });
    }
    std::string stateOf(const std::string& type, const std::string& id, const std::string& name = "state") {
        return sandbox.service().with([&](State& state) { return state.store.at(type, id).text(name); });
    }
    std::string versionState() { return stateOf("appStoreVersions", version, "appVersionState"); }
};

TEST_F(ReviewSubmissions, AreFoundByAppPlatformAndState) {
    EXPECT_TRUE(open().ids().empty());
    const auto created = create();
    ASSERT_EQ(created.status, 201);
    EXPECT_EQ(created.attributes()["state"], "READY_FOR_REVIEW");
    EXPECT_EQ(open().ids(), std::vector{created.json["data"]["id"].get<std::string>()});
    EXPECT_TRUE(open("filter[app]=1234567890&filter[platform]=MAC_OS").ids().empty());
    EXPECT_TRUE(open("filter[app]=1234567890&filter[state]=COMPLETE").ids().empty());
    const auto unfiltered = open("limit=1");
    EXPECT_EQ(unfiltered.status, 400);
    EXPECT_EQ(unfiltered.code(), "PARAMETER_ERROR.REQUIRED");
}

TEST_F(ReviewSubmissions, AreOpenOnlyOnceForAPlatform) {
    made();
    EXPECT_EQ(create().status, 409);
    EXPECT_EQ(create("MAC_OS").status, 201);
}

TEST_F(ReviewSubmissions, TakeVersionsPagesAndTests) {
    const auto submission = made();
    EXPECT_EQ(add(submission, {versionItem()}).status, 201);
    EXPECT_EQ(add(submission, {pageItem()}).status, 201);
    EXPECT_EQ(add(submission, {testItem()}).status, 201);
    EXPECT_EQ(get("/v1/reviewSubmissions/" + submission + "/items?limit=200").ids().size(), 3u);
    EXPECT_EQ(versionState(), "READY_FOR_REVIEW");
    EXPECT_EQ(stateOf("appCustomProductPageVersions", page), "READY_FOR_REVIEW");
    EXPECT_EQ(stateOf("appStoreVersionExperiments", test), "READY_FOR_REVIEW");
}

TEST_F(ReviewSubmissions, TakeNothingTwiceNothingOfAnotherPlatformAndOneThingAtATime) {
    const auto submission = made();
    EXPECT_EQ(add(submission, {versionItem(), pageItem()}).code(), "ENTITY_ERROR.RELATIONSHIP.INVALID");
    EXPECT_EQ(add(submission, {}).code(), "ENTITY_ERROR.RELATIONSHIP.REQUIRED");
    EXPECT_EQ(add(create("MAC_OS").json["data"]["id"], {versionItem()}).code(),
              "ENTITY_ERROR.RELATIONSHIP.INVALID");
    const auto live = idOf("appStoreVersions", {{"platform", "IOS"}, {"versionString", "2.3"}});
    EXPECT_EQ(add(submission, {{"appStoreVersion", {"appStoreVersions", live}}}).code(),
              "STATE_ERROR.ENTITY_STATE_INVALID");
    EXPECT_EQ(add(submission, {versionItem()}).status, 201);
    EXPECT_EQ(add(submission, {versionItem()}).code(), "ENTITY_ERROR.RELATIONSHIP.INVALID.DUPLICATE");
}

TEST_F(ReviewSubmissions, AreSentWithAllThatIsInThem) {
    makeReady();
    const auto submission = made();
    add(submission, {versionItem()});
    add(submission, {pageItem()});
    const auto sent = update(submission, {{"submitted", true}});
    ASSERT_EQ(sent.status, 200);
    EXPECT_EQ(sent.attributes()["state"], "WAITING_FOR_REVIEW");
    EXPECT_FALSE(sent.attributes()["submittedDate"].is_null());
    EXPECT_EQ(versionState(), "WAITING_FOR_REVIEW");
    EXPECT_EQ(stateOf("appCustomProductPageVersions", page), "WAITING_FOR_REVIEW");
    EXPECT_TRUE(open().ids().empty());
    EXPECT_EQ(update(submission, {{"submitted", true}}).status, 409) << "once";
    EXPECT_EQ(add(submission, {testItem()}).status, 409) << "nothing joins it any more";
    EXPECT_EQ(create().status, 201) << "the next one can be put together";
}

TEST_F(ReviewSubmissions, AreNotSentEmpty) {
    EXPECT_EQ(update(made(), {{"submitted", true}}).code(), "STATE_ERROR.ENTITY_STATE_INVALID");
}

TEST_F(ReviewSubmissions, AreNotSentWithAVersionThatLacksSomething) {
    const auto submission = made();
    add(submission, {versionItem()});
    const auto refused = update(submission, {{"submitted", true}});
    EXPECT_EQ(refused.status, 409);
    const auto& missing =
        refused.json["errors"][0]["meta"]["associatedErrors"]["/v1/appStoreVersions/" + version];
    EXPECT_EQ(missing[0]["source"]["pointer"], "/data/attributes/build");
    EXPECT_EQ(versionState(), "READY_FOR_REVIEW");
}

TEST_F(ReviewSubmissions, AreCanceledWhileTheyWait) {
    makeReady();
    const auto submission = made();
    add(submission, {versionItem()});
    EXPECT_EQ(update(submission, {{"canceled", true}}).status, 409);
    update(submission, {{"submitted", true}});
    EXPECT_EQ(update(submission, {{"canceled", true}}).attributes()["state"], "CANCELING");
    EXPECT_EQ(versionState(), "DEVELOPER_REJECTED");
}

}  // namespace
}  // namespace kestrin::sandbox
