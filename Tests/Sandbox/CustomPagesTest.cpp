#include "Tests/Sandbox/SandboxFixture.h"

namespace kestrin::sandbox {
namespace {

using testing::ElementsAre;

constexpr const char* kEmptyApp = "1234567891";

// A page with its first version and localizations, as a client makes it in one request.
Json pageBody(const std::string& name, const std::vector<std::string>& locales) {
    Json localizations = Json::array(), included = Json::array();
    for (const auto& locale : locales) {
        const auto id = "${localization-" + locale + "}";
        localizations.push_back({{"type", "appCustomProductPageLocalizations"}, {"id", id}});
        included.push_back(
            {{"type", "appCustomProductPageLocalizations"},
             {"id", id},
             {"attributes", {{"locale", locale}, {"promotionalText", "Leaves in " + locale}}}});
    }
    included.insert(
        included.begin(),
        Json{{"type", "appCustomProductPageVersions"},
             {"id", "${version}"},
             {"attributes", {{"deepLink", "https://example.com/autumn"}}},
             {"relationships", {{"appCustomProductPageLocalizations", {{"data", localizations}}}}}});
    Json body = createBody("appCustomProductPages", {{"name", name}}, {{"app", {"apps", kEmptyApp}}});
    body["data"]["relationships"]["appCustomProductPageVersions"]["data"] =
        Json::array({{{"type", "appCustomProductPageVersions"}, {"id", "${version}"}}});
    body["included"] = included;
    return body;
}

class CustomPages : public SandboxFixture {
 protected:
    Received createPage(const Json& body) { return post("/v1/appCustomProductPages", body); }
    std::string madePage(const std::string& name = "Autumn") {
        return createPage(pageBody(name, {"en-US", "de-DE"})).json["data"]["id"];
    }
    std::string versionOf(const std::string& page) {
        return idOf("appCustomProductPageVersions", {{"appCustomProductPage", page}});
    }
    void setState(const std::string& version, const std::string& value) {
        sandbox.service().with([&](State& state) {
            state.store.at("appCustomProductPageVersions", version).attributes["state"] = value;
        });
    }
};

TEST_F(CustomPages, ComeWithTheirFirstVersionAndItsLocalizations) {
    const auto reply = createPage(pageBody("Autumn", {"en-US", "de-DE"}));

    ASSERT_EQ(reply.status, 201);
    const auto page = reply.json["data"]["id"].get<std::string>();
    EXPECT_EQ(reply.attributes()["name"], "Autumn");
    EXPECT_EQ(reply.attributes()["visible"], false);
    EXPECT_TRUE(reply.attributes()["url"].get<std::string>().ends_with("?ppid=" + page));
    EXPECT_FALSE(reply.json.contains("included")) << "temporary ids aren't told back";
    const auto versions = get("/v1/appCustomProductPages/" + page + "/appCustomProductPageVersions");
    EXPECT_EQ(versions.attributes()["version"], "1");
    EXPECT_EQ(versions.attributes()["state"], "PREPARE_FOR_SUBMISSION");
    EXPECT_EQ(versions.attributes()["deepLink"], "https://example.com/autumn");
    const auto localizations =
        get("/v1/appCustomProductPageVersions/" + versions.ids()[0] + "/appCustomProductPageLocalizations");
    EXPECT_EQ(localizations.attributes(0)["locale"], "en-US");
    EXPECT_EQ(localizations.attributes(1)["promotionalText"], "Leaves in de-DE");
}

TEST_F(CustomPages, NeedNeitherLocalizationsNorADeepLink) {
    auto body = pageBody("Bare", {});
    body["included"][0].erase("attributes");
    EXPECT_EQ(createPage(body).status, 201);
    EXPECT_EQ(
        createPage(createBody("appCustomProductPages", {{"name", "Barer"}}, {{"app", {"apps", kEmptyApp}}}))
            .status,
        201);
    EXPECT_EQ(get(std::string("/v1/apps/") + kEmptyApp + "/appCustomProductPages").json["data"].size(), 2u);
}

struct BadPage {
    const char* when;
    std::function<void(Json&)> spoil;
    int status;
    const char* code;
};

const BadPage kBadPages[] = {
    {"no name", [](Json& b) { b["data"]["attributes"].erase("name"); }, 409,
     "ENTITY_ERROR.ATTRIBUTE.REQUIRED"},
    {"visible at the start", [](Json& b) { b["data"]["attributes"]["visible"] = true; }, 409,
     "ENTITY_ERROR.ATTRIBUTE.UNKNOWN"},
    {"a locale twice", [](Json& b) { b["included"][2]["attributes"]["locale"] = "en-US"; }, 409,
     "ENTITY_ERROR.ATTRIBUTE.INVALID.DUPLICATE"},
    {"an id twice", [](Json& b) { b["included"][2]["id"] = b["included"][1]["id"]; }, 409,
     "ENTITY_ERROR.INCLUDED.DUPLICATE"},
    {"no locale", [](Json& b) { b["included"][1]["attributes"].erase("locale"); }, 409,
     "ENTITY_ERROR.ATTRIBUTE.REQUIRED"},
    {"a deep link that is no URI", [](Json& b) { b["included"][0]["attributes"]["deepLink"] = "autumn"; },
     409, "ENTITY_ERROR.ATTRIBUTE.INVALID"},
    {"an id that is not a temporary one", [](Json& b) { b["included"][1]["id"] = "1"; }, 409,
     "ENTITY_ERROR.INCLUDED.INVALID_ID"},
    {"another type included", [](Json& b) { b["included"][1]["type"] = "apps"; }, 409,
     "ENTITY_ERROR.INCLUDED.INVALID_TYPE"},
    {"an inclusion that nothing names",
     [](Json& b) { b["included"][0]["relationships"]["appCustomProductPageLocalizations"]["data"].erase(1); },
     409, "ENTITY_ERROR.INCLUDED.UNUSED"},
    {"a name for nothing included", [](Json& b) { b["included"].erase(2); }, 409,
     "ENTITY_ERROR.RELATIONSHIP.INVALID"},
    {"included is an object", [](Json& b) { b["included"] = Json::object(); }, 422, "ENTITY_UNPROCESSABLE"},
    {"an included resource without a type", [](Json& b) { b["included"][1].erase("type"); }, 422,
     "ENTITY_UNPROCESSABLE"},
    {"a template",
     [](Json& b) {
         b["data"]["relationships"]["customProductPageTemplate"]["data"] = {{"type", "appCustomProductPages"},
                                                                            {"id", "1"}};
     },
     409, "ENTITY_ERROR.RELATIONSHIP.UNKNOWN"},
};

TEST_F(CustomPages, AreRefusedWhole) {
    const auto before = sandbox.service().with([](State& state) { return stateJSON(state); });
    for (const auto& row : kBadPages) {
        SCOPED_TRACE(row.when);
        auto body = pageBody("Autumn", {"en-US", "de-DE"});
        row.spoil(body);

        const auto reply = createPage(body);

        EXPECT_EQ(reply.status, row.status);
        EXPECT_EQ(reply.code(), row.code);
    }
    EXPECT_EQ(sandbox.service().with([](State& state) { return stateJSON(state); }), before);
}

TEST_F(CustomPages, HaveANameOfTheirOwn) {
    const auto first = madePage("Autumn"), second = madePage("Winter");
    EXPECT_EQ(createPage(pageBody("Autumn", {})).code(), "ENTITY_ERROR.ATTRIBUTE.INVALID.DUPLICATE");
    const auto rename = [&](const char* name) {
        return patch("/v1/appCustomProductPages/" + second,
                     updateBody("appCustomProductPages", second, {{"name", name}}));
    };
    EXPECT_EQ(rename("Autumn").code(), "ENTITY_ERROR.ATTRIBUTE.INVALID.DUPLICATE");
    EXPECT_EQ(rename("Winter").status, 200);
    EXPECT_EQ(rename("Spring").attributes()["name"], "Spring");
}

TEST_F(CustomPages, AreAtMostSeventy) {
    for (int i = 0; i < 70; ++i) ASSERT_EQ(createPage(pageBody("Page " + std::to_string(i), {})).status, 201);
    EXPECT_EQ(createPage(pageBody("One more", {})).code(), "ENTITY_ERROR.RELATIONSHIP.INVALID");
}

TEST_F(CustomPages, ChangeTheirVisibilityInAnyState) {
    const auto page = madePage();
    setState(versionOf(page), "APPROVED");
    const auto reply = patch("/v1/appCustomProductPages/" + page,
                             updateBody("appCustomProductPages", page, {{"visible", true}}));
    EXPECT_EQ(reply.attributes()["visible"], true);
    EXPECT_EQ(get(std::string("/v1/apps/") + kEmptyApp + "/appCustomProductPages?filter%5Bvisible%5D=true")
                  .ids()
                  .size(),
              1u);
}

TEST_F(CustomPages, ChangeTheirContentWhileItIsPrepared) {
    const auto version = versionOf(madePage());
    const auto localization = idOf("appCustomProductPageLocalizations",
                                   {{"appCustomProductPageVersion", version}, {"locale", "de-DE"}});
    const auto setLink = [&](const Json& link) {
        return patch("/v1/appCustomProductPageVersions/" + version,
                     updateBody("appCustomProductPageVersions", version, {{"deepLink", link}}));
    };
    const auto setText = [&](const Json& text) {
        return patch(
            "/v1/appCustomProductPageLocalizations/" + localization,
            updateBody("appCustomProductPageLocalizations", localization, {{"promotionalText", text}}));
    };
    const auto add = [&](const char* locale) {
        return post("/v1/appCustomProductPageLocalizations",
                    createBody("appCustomProductPageLocalizations", {{"locale", locale}},
                               {{"appCustomProductPageVersion", {"appCustomProductPageVersions", version}}}));
    };
    EXPECT_TRUE(setLink(nullptr).attributes()["deepLink"].is_null());
    EXPECT_EQ(setLink("autumn").code(), "ENTITY_ERROR.ATTRIBUTE.INVALID");
    EXPECT_TRUE(setText(nullptr).attributes()["promotionalText"].is_null());
    EXPECT_EQ(setText(std::string(171, 'x')).code(), "ENTITY_ERROR.ATTRIBUTE.INVALID");
    EXPECT_EQ(add("ja").status, 201);
    EXPECT_EQ(add("ja").code(), "ENTITY_ERROR.ATTRIBUTE.INVALID.DUPLICATE");

    setState(version, "IN_REVIEW");
    for (const auto& reply : {setLink(nullptr), setText("x"), add("fr-FR")}) {
        EXPECT_EQ(reply.code(), "STATE_ERROR.ENTITY_STATE_INVALID");
    }
}

TEST_F(CustomPages, OfAnUnknownAppAreNotFound) {
    EXPECT_EQ(get("/v1/apps/1/appCustomProductPages").status, 404);
    EXPECT_EQ(get("/v1/appCustomProductPages/1/appCustomProductPageVersions").status, 404);
    EXPECT_EQ(get("/v1/appCustomProductPageVersions/1/appCustomProductPageLocalizations").status, 404);
}

}  // namespace
}  // namespace kestrin::sandbox
