// The addresses below /sandbox/: looking at a running sandbox and changing it behind the client's back.
#include "Sandbox/Control.h"

#include "Tests/Sandbox/SandboxFixture.h"

namespace kestrin::sandbox {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class ControlTest : public SandboxFixture {
 protected:
    // Without a token, as a script sends it.
    Received control(const std::string& method, const std::string& target, const std::string& body = {}) {
        return sendBare({method, "/sandbox/" + target, {}, body, 1});
    }
};

constexpr const char* kGerman =
    "resources/appStoreVersionLocalizations?locale=de-DE&appStoreVersion.versionString=2.4";

TEST_F(ControlTest, ChangesAnAttributeOfTheResourcesThatTheConditionsName) {
    const auto changed = control("PATCH", kGerman, R"({"attributes": {"whatsNew": "Von anderswo."}})");

    EXPECT_EQ(changed.status, 200);
    EXPECT_THAT(changed.json["resources"], SizeIs(1));
    const auto version =
        idOf("appStoreVersions", {{"versionString", "2.4"}, {"appVersionState", "PREPARE_FOR_SUBMISSION"}});
    const auto read = get("/v1/appStoreVersions/" + version + "/appStoreVersionLocalizations");
    EXPECT_EQ(read.attributes(1)["whatsNew"], "Von anderswo.");
    EXPECT_EQ(read.attributes(0)["whatsNew"], "New: moon phases.\nFixed: a rare crash.");
}

TEST_F(ControlTest, ChangesAndClearsARelationship) {
    const auto build = idOf("builds", {{"version", "241"}});
    const std::string version = "resources/appStoreVersions?versionString=2.4";
    const auto link = [](const Json& data) {
        return dumped({{"relationships", {{"build", {{"data", data}}}}}});
    };

    control("PATCH", version, link({{"type", "builds"}, {"id", build}}));
    EXPECT_EQ(idOf("appStoreVersions", {{"build", build}}),
              idOf("appStoreVersions", {{"versionString", "2.4"}}));
    control("PATCH", version, link(nullptr));

    EXPECT_THAT(control("GET", "resources/appStoreVersions?build=" + build).json["resources"], IsEmpty());
}

TEST_F(ControlTest, KeepsBothSpellingsOfAVersionsState) {
    control("PATCH", "resources/appStoreVersions?versionString=2.4",
            R"({"attributes": {"appVersionState": "READY_FOR_DISTRIBUTION"}})");
    control("PATCH", "resources/appInfos?state=PREPARE_FOR_SUBMISSION",
            R"({"attributes": {"state": "PENDING_RELEASE"}})");

    EXPECT_FALSE(
        idOf("appStoreVersions", {{"versionString", "2.4"}, {"appStoreState", "READY_FOR_SALE"}}).empty());
    EXPECT_FALSE(idOf("appInfos", {{"appStoreState", "PENDING_DEVELOPER_RELEASE"}}).empty());
}

TEST_F(ControlTest, AddsAndRemovesResources) {
    const auto added =
        control("POST", "resources/apps",
                R"({"id": "77", "attributes": {"name": "Buoy", "bundleId": "com.example.b"}})");
    EXPECT_EQ(added.status, 200);
    EXPECT_EQ(get("/v1/apps/77").attributes()["name"], "Buoy");

    EXPECT_EQ(control("DELETE", "resources/apps?id=77").status, 204);
    EXPECT_EQ(get("/v1/apps/77").status, 404);
    EXPECT_EQ(control("DELETE", kGerman).status, 204);
    EXPECT_EQ(control("GET", kGerman).json["resources"].size(), 0u);
}

struct Mistake {
    const char* method;
    const char* target;
    const char* body;
    int status;
};

const Mistake kMistakes[] = {
    {"GET", "nothing", "", 404},
    {"GET", "resources/colours", "", 404},
    {"PUT", "resources/apps", "{}", 404},
    {"DELETE", "state", "", 404},
    {"PATCH", "resources/apps?id=1", "{}", 404},
    {"DELETE", "resources/apps?id=1", "", 404},
    {"DELETE", "keys/NOSUCHKEY1", "", 404},
    {"PATCH", "resources/apps", "no JSON", 400},
    {"PATCH", "resources/apps", "[]", 400},
    {"PATCH", "resources/apps", R"({"attribute": {}})", 400},
    {"PATCH", "resources/apps", R"({"attributes": 1})", 400},
    {"PATCH", "resources/apps", R"({"attributes": {"colour": "red"}})", 400},
    {"PATCH", "resources/apps", R"({"relationships": {"builds": {"data": null}}})", 400},
    {"PATCH", "resources/builds", R"({"relationships": {"app": {"data": "1"}}})", 400},
    {"PATCH", "resources/builds", R"({"relationships": {"app": {"data": {"type": "apps", "id": "1"}}}})",
     404},
    {"POST", "resources/apps", R"({"id": "1234567890"})", 400},
    {"PUT", "state", R"({"resources": [{"type": "colours", "id": "1"}]})", 400},
    {"PUT", "state", "{}", 400},
    {"POST", "faults", "GET *=explode", 400},
    {"PATCH", "settings", R"({"colour": 1})", 400},
    {"PATCH", "settings", R"({"processingReads": -1})", 400},
    {"PATCH", "settings", R"({"processingReads": "2"})", 400},
};

TEST_F(ControlTest, TellsWhatCannotBeDoneAndChangesNothing) {
    const auto before = control("GET", "state").body;
    for (const auto& row : kMistakes) {
        SCOPED_TRACE(std::string(row.method) + " " + row.target + " " + row.body);
        const auto reply = control(row.method, row.target, row.body);
        EXPECT_EQ(reply.status, row.status);
        EXPECT_EQ(reply.code(), "SANDBOX_CONTROL");
    }
    EXPECT_EQ(control("GET", "state").body, before);
}

TEST_F(ControlTest, TakesAndGivesTheWholeState) {
    const auto saved = control("GET", "state").body;
    control("DELETE", "resources/apps?id=1234567890");
    EXPECT_EQ(get("/v1/apps/1234567890").status, 404);

    EXPECT_EQ(control("PUT", "state", saved).status, 204);

    EXPECT_EQ(control("GET", "state").body, saved);
    EXPECT_EQ(get("/v1/apps/1234567890").status, 200);
}

TEST_F(ControlTest, GoesOnAfterAStateThatWasReadAgain) {
    const auto page = [&](const std::string& name) {
        return post("/v1/appCustomProductPages",
                    createBody("appCustomProductPages", {{"name", name}}, {{"app", {"apps", kApp}}}));
    };
    page("Winter");
    control("PUT", "state", control("GET", "state").body);

    const auto created = page("Spring");

    EXPECT_EQ(created.status, 201) << "its identifier is a new one";
    EXPECT_EQ(get("/v1/apps/1234567890/appCustomProductPages").json["data"].size(), 4u);
}

TEST_F(ControlTest, KeepsTheClockOfAStateSoThatNewThingsAreNewer) {
    const auto clock = control("GET", "state").json.at("clock").get<std::int64_t>();
    control("PUT", "state", control("GET", "state").body);
    EXPECT_EQ(control("GET", "state").json.at("clock"), clock);
}

TEST_F(ControlTest, ArmsFaultsAndTakesThemAway) {
    EXPECT_EQ(control("POST", "faults", "GET /v1/apps#1=status:500\n*=latency:5\n").status, 200);
    EXPECT_EQ(control("GET", "faults").body, "GET /v1/apps#1=status:500\n*=latency:5\n");
    EXPECT_EQ(get("/v1/apps").status, 500);
    EXPECT_EQ(get("/v1/apps").wire.delay, std::chrono::milliseconds(5));

    control("DELETE", "faults");

    EXPECT_EQ(get("/v1/apps").wire.delay, std::chrono::milliseconds(0));
}

TEST_F(ControlTest, IsNeitherLoggedNorCountedNorStruck) {
    sandbox.service().addFault("*=status:500");
    EXPECT_EQ(control("GET", "state").status, 200);
    EXPECT_EQ(control("GET", "log").json["count"], 0);
    sandbox.service().clearFaults();
    EXPECT_EQ(headerValue(get("/v1/apps").headers, "X-Rate-Limit"), "user-hour-lim:3600;user-hour-rem:3599;");
}

TEST_F(ControlTest, ShowsAndClearsTheLog) {
    get("/v1/apps");
    remove("/v1/apps");
    EXPECT_EQ(control("GET", "log").json["deletes"], 1);
    EXPECT_EQ(control("DELETE", "log").json["count"], 0);
}

TEST_F(ControlTest, SetsTheHourAndTheReadingsOfProcessing) {
    control("PATCH", "settings", R"({"requestsPerHour": 100, "requestsMade": 99, "processingReads": 7})");
    EXPECT_EQ(headerValue(get("/v1/apps").headers, "X-Rate-Limit"), "user-hour-lim:100;user-hour-rem:0;");
    EXPECT_EQ(get("/v1/apps").status, 429);
    EXPECT_EQ(sandbox.service().with([](State& state) { return state.settings.processingReads; }), 7);
}

TEST_F(ControlTest, RevokesAKey) {
    EXPECT_EQ(control("DELETE", "keys/" + sandbox.credential().keyID).status, 204);
    EXPECT_EQ(get("/v1/apps").status, 403);
}

}  // namespace
}  // namespace kestrin::sandbox
