// What holds for the body of every write, shown on app info localizations.
#include "Sandbox/WriteForm.h"

#include <functional>

#include "Tests/Sandbox/SandboxFixture.h"

namespace kestrin::sandbox {
namespace {

class WriteFormTest : public SandboxFixture {
 protected:
    WriteFormTest() : info(idOf("appInfos", {{"state", "PREPARE_FOR_SUBMISSION"}})) {}

    Json goodCreate() const {
        return createBody("appInfoLocalizations", {{"locale", "fr-FR"}, {"name", "Notes de marée"}},
                          {{"appInfo", {"appInfos", info}}});
    }

    const std::string info;
};

struct BadBody {
    const char* when;
    std::function<void(Json&)> spoil;
    int status;
    const char* code;
    const char* pointer;
};

const BadBody kBadCreates[] = {
    {"no data", [](Json& b) { b.erase("data"); }, 422, "ENTITY_UNPROCESSABLE", "/data"},
    {"another member beside data", [](Json& b) { b["meta"] = 1; }, 422, "ENTITY_UNPROCESSABLE", "/meta"},
    {"included where nothing is", [](Json& b) { b["included"] = Json::array(); }, 422, "ENTITY_UNPROCESSABLE",
     "/included"},
    {"data is a list", [](Json& b) { b["data"] = Json::array(); }, 422, "ENTITY_UNPROCESSABLE", "/data/"},
    {"attributes misspelt", [](Json& b) { b["data"]["attribute"] = Json::object(); }, 422,
     "ENTITY_UNPROCESSABLE", "/data/attribute"},
    {"attributes is a list", [](Json& b) { b["data"]["attributes"] = Json::array(); }, 422,
     "ENTITY_UNPROCESSABLE", "/data/attributes"},
    {"relationship without data", [](Json& b) { b["data"]["relationships"]["appInfo"] = Json::object(); },
     422, "ENTITY_UNPROCESSABLE", "/data/relationships/appInfo"},
    {"relationship is a list", [](Json& b) { b["data"]["relationships"]["appInfo"]["data"] = Json::array(); },
     422, "ENTITY_UNPROCESSABLE", "/data/relationships/appInfo"},
    {"identifier without type", [](Json& b) { b["data"]["relationships"]["appInfo"]["data"].erase("type"); },
     422, "ENTITY_UNPROCESSABLE", "/data/relationships/appInfo"},
    {"no type", [](Json& b) { b["data"].erase("type"); }, 422, "ENTITY_UNPROCESSABLE", "/data/type"},
    {"another type", [](Json& b) { b["data"]["type"] = "apps"; }, 409, "ENTITY_ERROR.TYPE.INVALID",
     "/data/type"},
    {"an id of the client's", [](Json& b) { b["data"]["id"] = "1"; }, 409, "ENTITY_ERROR.ID.INVALID",
     "/data/id"},
    {"a required attribute missing", [](Json& b) { b["data"]["attributes"].erase("name"); }, 409,
     "ENTITY_ERROR.ATTRIBUTE.REQUIRED", "/data/attributes/name"},
    {"a required attribute null", [](Json& b) { b["data"]["attributes"]["name"] = nullptr; }, 409,
     "ENTITY_ERROR.ATTRIBUTE.REQUIRED", "/data/attributes/name"},
    {"a required attribute empty", [](Json& b) { b["data"]["attributes"]["name"] = ""; }, 409,
     "ENTITY_ERROR.ATTRIBUTE.INVALID", "/data/attributes/name"},
    {"no attributes at all", [](Json& b) { b["data"].erase("attributes"); }, 409,
     "ENTITY_ERROR.ATTRIBUTE.REQUIRED", "/data/attributes/name"},
    {"an unknown attribute", [](Json& b) { b["data"]["attributes"]["title"] = "x"; }, 409,
     "ENTITY_ERROR.ATTRIBUTE.UNKNOWN", "/data/attributes/title"},
    {"a number for a text", [](Json& b) { b["data"]["attributes"]["name"] = 5; }, 409,
     "ENTITY_ERROR.ATTRIBUTE.INVALID", "/data/attributes/name"},
    {"too long by one", [](Json& b) { b["data"]["attributes"]["name"] = std::string(31, 'x'); }, 409,
     "ENTITY_ERROR.ATTRIBUTE.INVALID", "/data/attributes/name"},
    {"no locale of that form", [](Json& b) { b["data"]["attributes"]["locale"] = "fr_FR"; }, 409,
     "ENTITY_ERROR.ATTRIBUTE.INVALID", "/data/attributes/locale"},
    {"a required relationship missing", [](Json& b) { b["data"]["relationships"].erase("appInfo"); }, 409,
     "ENTITY_ERROR.RELATIONSHIP.REQUIRED", "/data/relationships/appInfo"},
    {"a required relationship null", [](Json& b) { b["data"]["relationships"]["appInfo"]["data"] = nullptr; },
     409, "ENTITY_ERROR.RELATIONSHIP.INVALID", "/data/relationships/appInfo"},
    {"an unknown relationship",
     [](Json& b) {
         b["data"]["relationships"]["app"] = {{"data", {{"type", "apps"}, {"id", "1"}}}};
     },
     409, "ENTITY_ERROR.RELATIONSHIP.UNKNOWN", "/data/relationships/app"},
    {"a relationship of another type",
     [](Json& b) { b["data"]["relationships"]["appInfo"]["data"]["type"] = "apps"; }, 409,
     "ENTITY_ERROR.RELATIONSHIP.INVALID", "/data/relationships/appInfo"},
    {"a relationship to nothing", [](Json& b) { b["data"]["relationships"]["appInfo"]["data"]["id"] = "x"; },
     409, "ENTITY_ERROR.RELATIONSHIP.INVALID", "/data/relationships/appInfo"},
};

TEST_F(WriteFormTest, RefusesABodyThatIsNotOfTheForm) {
    const auto before = sandbox.service().with([](State& state) { return stateJSON(state); });
    for (const auto& row : kBadCreates) {
        SCOPED_TRACE(row.when);
        auto body = goodCreate();
        row.spoil(body);

        const auto reply = post("/v1/appInfoLocalizations", body);

        EXPECT_EQ(reply.status, row.status);
        EXPECT_EQ(reply.code(), row.code);
        EXPECT_EQ(reply.place(), row.pointer);
    }
    EXPECT_EQ(sandbox.service().with([](State& state) { return stateJSON(state); }), before);
}

TEST_F(WriteFormTest, NamesEveryMistake) {
    auto body = goodCreate();
    body["data"]["attributes"] = {{"name", 5}, {"title", "x"}, {"subtitle", std::string(31, 'x')}};
    EXPECT_EQ(post("/v1/appInfoLocalizations", body).json["errors"].size(), 4u);
}

TEST_F(WriteFormTest, RefusesWhatIsNoJSON) {
    const std::string deep = std::string(600, '[') + std::string(600, ']');
    for (const auto& body : {std::string("{"), std::string("data=1"), std::string("{} {}"), deep}) {
        const auto reply = send("POST", "/v1/appInfoLocalizations", body);
        EXPECT_EQ(reply.status, 400);
        EXPECT_EQ(reply.code(), "ENTITY_INVALID");
    }
    EXPECT_EQ(send("POST", "/v1/appInfoLocalizations", "[]").status, 422);
    EXPECT_EQ(send("POST", "/v1/appInfoLocalizations", "", {{"Content-Type", "application/json"}}).status,
              400);
}

TEST_F(WriteFormTest, AnswersACreateWithTheResourceAndItsPlace) {
    const auto reply = post("/v1/appInfoLocalizations", goodCreate());
    ASSERT_EQ(reply.status, 201);
    EXPECT_EQ(reply.attributes()["name"], "Notes de marée");
    EXPECT_TRUE(reply.attributes()["subtitle"].is_null());
    EXPECT_EQ(headerValue(reply.headers, "Location"), reply.json["data"]["links"]["self"]);
}

TEST_F(WriteFormTest, CountsCharactersAsAReaderDoes) {
    auto body = goodCreate();
    std::string family;
    for (int i = 0; i < 30; ++i) family += "👨‍👩‍👧";
    body["data"]["attributes"]["name"] = family;
    EXPECT_EQ(post("/v1/appInfoLocalizations", body).status, 201);
}

TEST_F(WriteFormTest, WantsTheIdOfThePathRepeatedInAnUpdate) {
    const auto id = idOf("appInfoLocalizations", {{"appInfo", info}, {"locale", "ja"}});
    const auto path = "/v1/appInfoLocalizations/" + id;
    EXPECT_EQ(patch(path, updateBody("appInfoLocalizations", "x", Json::object())).code(),
              "ENTITY_ERROR.ID.INVALID");
    EXPECT_EQ(patch(path, {{"data", {{"type", "appInfoLocalizations"}}}}).code(), "ENTITY_ERROR.ID.INVALID");
    EXPECT_EQ(
        patch("/v1/appInfoLocalizations/x", updateBody("appInfoLocalizations", "x", Json::object())).status,
        404);
}

TEST_F(WriteFormTest, TakesAnUpdateThatChangesNothing) {
    const auto id = idOf("appInfoLocalizations", {{"appInfo", info}, {"locale", "ja"}});
    const auto reply =
        patch("/v1/appInfoLocalizations/" + id, {{"data", {{"type", "appInfoLocalizations"}, {"id", id}}}});
    EXPECT_EQ(reply.status, 200);
    EXPECT_EQ(reply.attributes()["name"], "潮のノート");
}

TEST_F(WriteFormTest, ChangesOnlyWhatAnUpdateNames) {
    const auto id = idOf("appInfoLocalizations", {{"appInfo", info}, {"locale", "en-US"}});
    const auto reply =
        patch("/v1/appInfoLocalizations/" + id,
              updateBody("appInfoLocalizations", id, {{"subtitle", nullptr}, {"privacyPolicyText", "Hm."}}));
    EXPECT_EQ(reply.status, 200);
    EXPECT_EQ(reply.attributes()["name"], "Tide Notes");
    EXPECT_TRUE(reply.attributes()["subtitle"].is_null());
    EXPECT_EQ(reply.attributes()["privacyPolicyText"], "Hm.");
}

TEST_F(WriteFormTest, DoesNotLetARequiredAttributeBeEmptied) {
    const auto id = idOf("appInfoLocalizations", {{"appInfo", info}, {"locale", "en-US"}});
    const auto reply =
        patch("/v1/appInfoLocalizations/" + id, updateBody("appInfoLocalizations", id, {{"name", nullptr}}));
    EXPECT_EQ(reply.status, 409);
    EXPECT_EQ(reply.code(), "ENTITY_ERROR.ATTRIBUTE.REQUIRED");
}

TEST_F(WriteFormTest, DoesNotLetALocaleBeChanged) {
    const auto id = idOf("appInfoLocalizations", {{"appInfo", info}, {"locale", "en-US"}});
    const auto reply = patch("/v1/appInfoLocalizations/" + id,
                             updateBody("appInfoLocalizations", id, {{"locale", "en-GB"}}));
    EXPECT_EQ(reply.code(), "ENTITY_ERROR.ATTRIBUTE.UNKNOWN");
}

}  // namespace
}  // namespace kestrin::sandbox
