#include "Tests/Sandbox/SandboxFixture.h"

namespace kestrin::sandbox {
namespace {

class Experiments : public SandboxFixture {
 protected:
    Received create(const Json& attributes) {
        return post("/v2/appStoreVersionExperiments",
                    createBody("appStoreVersionExperiments", attributes, {{"app", {"apps", kApp}}}));
    }
    std::string made(const std::string& name = "Icons") {
        return create({{"name", name}, {"platform", "IOS"}, {"trafficProportion", 30}}).json["data"]["id"];
    }
    Received update(const std::string& id, const Json& attributes) {
        return patch("/v2/appStoreVersionExperiments/" + id,
                     updateBody("appStoreVersionExperiments", id, attributes));
    }
    Received addTreatment(const std::string& experiment, const Json& attributes,
                          const std::string& relationship = "appStoreVersionExperimentV2") {
        return post("/v1/appStoreVersionExperimentTreatments",
                    createBody("appStoreVersionExperimentTreatments", attributes,
                               {{relationship, {"appStoreVersionExperiments", experiment}}}));
    }
    Received addLocalization(const std::string& treatment, const std::string& locale) {
        return post("/v1/appStoreVersionExperimentTreatmentLocalizations",
                    createBody("appStoreVersionExperimentTreatmentLocalizations", {{"locale", locale}},
                               {{"appStoreVersionExperimentTreatment",
                                 {"appStoreVersionExperimentTreatments", treatment}}}));
    }
    void setState(const std::string& id, const std::string& value) {
        sandbox.service().with([&](State& state) {
            state.store.at("appStoreVersionExperiments", id).attributes["state"] = value;
        });
    }
};

TEST_F(Experiments, AreMadeAndListed) {
    const auto reply = create({{"name", "Icons"}, {"platform", "IOS"}, {"trafficProportion", 30}});
    ASSERT_EQ(reply.status, 201);
    EXPECT_EQ(reply.attributes()["state"], "PREPARE_FOR_SUBMISSION");
    EXPECT_EQ(reply.attributes()["reviewRequired"], true);
    EXPECT_TRUE(reply.attributes()["startDate"].is_null());
    EXPECT_NE(reply.json["data"]["links"]["self"].get<std::string>().find("/v2/appStoreVersionExperiments/"),
              std::string::npos);
    const auto list =
        get("/v1/apps/1234567890/appStoreVersionExperimentsV2?include=latestControlVersion&limit=200");
    EXPECT_EQ(list.attributes(list.ids().size() - 1)["trafficProportion"], 30);
    EXPECT_EQ(list.json["included"][0]["attributes"]["versionString"], "2.3");
}

struct BadExperiment {
    const char* when;
    Json attributes;
    const char* pointer;
};

TEST_F(Experiments, AreRefusedWithWrongValues) {
    const BadExperiment rows[] = {
        {"no name", {{"platform", "IOS"}, {"trafficProportion", 30}}, "name"},
        {"no platform", {{"name", "x"}, {"trafficProportion", 30}}, "platform"},
        {"no traffic", {{"name", "x"}, {"platform", "IOS"}}, "trafficProportion"},
        {"another platform", {{"name", "x"}, {"platform", "WATCH"}, {"trafficProportion", 30}}, "platform"},
        {"no traffic at all",
         {{"name", "x"}, {"platform", "IOS"}, {"trafficProportion", 0}},
         "trafficProportion"},
        {"more than everybody",
         {{"name", "x"}, {"platform", "IOS"}, {"trafficProportion", 101}},
         "trafficProportion"},
        {"a fraction",
         {{"name", "x"}, {"platform", "IOS"}, {"trafficProportion", 30.5}},
         "trafficProportion"},
        {"a text", {{"name", "x"}, {"platform", "IOS"}, {"trafficProportion", "30"}}, "trafficProportion"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.when);
        const auto reply = create(row.attributes);
        EXPECT_EQ(reply.status, 409);
        EXPECT_EQ(reply.place(), std::string("/data/attributes/") + row.pointer);
    }
}

TEST_F(Experiments, ChangeWhileTheyArePrepared) {
    const auto id = made();
    EXPECT_EQ(update(id, {{"name", "New icons"}, {"trafficProportion", 100}}).attributes()["name"],
              "New icons");
    EXPECT_EQ(update(id, Json::object()).status, 200);
    setState(id, "WAITING_FOR_REVIEW");
    EXPECT_EQ(update(id, {{"name", "x"}}).code(), "STATE_ERROR.ENTITY_STATE_INVALID");
    EXPECT_EQ(update(id, {{"platform", "MAC_OS"}}).code(), "ENTITY_ERROR.ATTRIBUTE.UNKNOWN");
}

TEST_F(Experiments, StartWhenTheyAreApprovedAndStopOnce) {
    const auto id = made();
    EXPECT_EQ(update(id, {{"started", true}}).code(), "STATE_ERROR.ENTITY_STATE_INVALID");
    setState(id, "ACCEPTED");
    EXPECT_EQ(update(id, {{"started", false}}).code(), "STATE_ERROR.ENTITY_STATE_INVALID");
    EXPECT_FALSE(update(id, {{"started", true}}).attributes()["startDate"].is_null());
    EXPECT_EQ(update(id, {{"started", true}}).code(), "STATE_ERROR.ENTITY_STATE_INVALID");
    const auto stopped = update(id, {{"started", false}});
    EXPECT_EQ(stopped.attributes()["state"], "STOPPED");
    EXPECT_FALSE(stopped.attributes()["endDate"].is_null());
}

TEST_F(Experiments, RunOneAtATimeOnAPlatform) {
    const auto first = made("One"), second = made("Two");
    setState(first, "APPROVED");
    setState(second, "APPROVED");
    EXPECT_EQ(update(first, {{"started", true}}).status, 200);
    EXPECT_EQ(update(second, {{"started", true}}).code(), "STATE_ERROR.ENTITY_STATE_INVALID");
    EXPECT_EQ(update(first, {{"started", false}}).status, 200);
    EXPECT_EQ(update(second, {{"started", true}}).status, 200);
}

TEST_F(Experiments, HaveUpToThreeTreatments) {
    const auto id = made();
    for (const char* name : {"A", "B"})
        EXPECT_EQ(addTreatment(id, {{"name", name}, {"appIconName", "Alt"}}).status, 201);
    EXPECT_EQ(addTreatment(id, {{"name", "C"}}, "appStoreVersionExperiment").status, 201);
    EXPECT_EQ(addTreatment(id, {{"name", "D"}}).code(), "ENTITY_ERROR.RELATIONSHIP.INVALID");
    const auto list =
        get("/v2/appStoreVersionExperiments/" + id + "/appStoreVersionExperimentTreatments?limit=200");
    EXPECT_EQ(list.ids().size(), 3u);
    EXPECT_EQ(list.attributes(0)["appIconName"], "Alt");
    EXPECT_TRUE(list.attributes(2)["appIconName"].is_null());
}

TEST_F(Experiments, AreNeededByATreatment) {
    const auto reply = post("/v1/appStoreVersionExperimentTreatments",
                            createBody("appStoreVersionExperimentTreatments", {{"name", "A"}}));
    EXPECT_EQ(reply.code(), "ENTITY_ERROR.RELATIONSHIP.REQUIRED");
    EXPECT_EQ(reply.place(), "/data/relationships/appStoreVersionExperimentV2");
}

TEST_F(Experiments, TakeNoChangesToTheirTreatmentsInReview) {
    const auto id = made();
    const auto treatment = addTreatment(id, {{"name", "A"}}).json["data"]["id"].get<std::string>();
    const auto rename = [&](const Json& attributes) {
        return patch("/v1/appStoreVersionExperimentTreatments/" + treatment,
                     updateBody("appStoreVersionExperimentTreatments", treatment, attributes));
    };
    EXPECT_EQ(addLocalization(treatment, "de-DE").status, 201);
    EXPECT_EQ(addLocalization(treatment, "de-DE").code(), "ENTITY_ERROR.ATTRIBUTE.INVALID.DUPLICATE");
    EXPECT_EQ(rename({{"name", "Blue"}, {"appIconName", nullptr}}).attributes()["name"], "Blue");

    setState(id, "IN_REVIEW");

    for (const auto& reply :
         {addTreatment(id, {{"name", "B"}}), rename({{"name", "x"}}), addLocalization(treatment, "ja")}) {
        EXPECT_EQ(reply.code(), "STATE_ERROR.ENTITY_STATE_INVALID");
    }
    const auto path = "/v1/appStoreVersionExperimentTreatments/" + treatment +
                      "/appStoreVersionExperimentTreatmentLocalizations?limit=200";
    EXPECT_EQ(get(path).attributes()["locale"], "de-DE");
}

}  // namespace
}  // namespace kestrin::sandbox
