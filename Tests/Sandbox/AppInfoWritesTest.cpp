#include "Tests/Sandbox/SandboxFixture.h"

namespace kestrin::sandbox {
namespace {

class AppInfoWrites : public SandboxFixture {
 protected:
    AppInfoWrites()
        : editable(idOf("appInfos", {{"state", "PREPARE_FOR_SUBMISSION"}})),
          live(idOf("appInfos", {{"state", "READY_FOR_DISTRIBUTION"}})) {}

    Received create(const std::string& info, const Json& attributes) {
        return post("/v1/appInfoLocalizations",
                    createBody("appInfoLocalizations", attributes, {{"appInfo", {"appInfos", info}}}));
    }
    // {"data": null} for an empty category.
    Received setCategory(const std::string& info, const std::string& relationship,
                         const std::string& category) {
        auto body =
            updateBody("appInfos", info, Json::object(), {{relationship, {"appCategories", category}}});
        if (category.empty()) body["data"]["relationships"][relationship]["data"] = nullptr;
        body["data"].erase("attributes");
        return patch("/v1/appInfos/" + info, body);
    }
    std::string category(const std::string& relationship) {
        return sandbox.service().with(
            [&](State& state) { return state.store.at("appInfos", editable).relatedID(relationship); });
    }

    const std::string editable, live;
};

TEST_F(AppInfoWrites, AddALocalization) {
    EXPECT_EQ(create(editable, {{"locale", "fr-FR"}, {"name", "Notes"}, {"subtitle", "À la mer"}}).status,
              201);
    EXPECT_EQ(get("/v1/appInfos/" + editable + "/appInfoLocalizations").json["data"].size(), 4u);
}

TEST_F(AppInfoWrites, RefuseASecondLocalizationOfALocale) {
    const auto reply = create(editable, {{"locale", "de-DE"}, {"name", "Noch eine"}});
    EXPECT_EQ(reply.status, 409);
    EXPECT_EQ(reply.code(), "ENTITY_ERROR.ATTRIBUTE.INVALID.DUPLICATE");
    EXPECT_EQ(reply.place(), "/data/attributes/locale");
}

TEST_F(AppInfoWrites, WantAName) {
    const auto reply = create(editable, {{"locale", "fr-FR"}});
    EXPECT_EQ(reply.code(), "ENTITY_ERROR.ATTRIBUTE.REQUIRED");
    EXPECT_EQ(reply.place(), "/data/attributes/name");
}

TEST_F(AppInfoWrites, TakeAnyTextForAPrivacyAddress) {
    EXPECT_EQ(
        create(editable, {{"locale", "fr-FR"}, {"name", "N"}, {"privacyPolicyUrl", "no address"}}).status,
        201);
}

TEST_F(AppInfoWrites, RefuseToTouchWhatIsOnSale) {
    const auto localization = idOf("appInfoLocalizations", {{"appInfo", live}, {"locale", "ja"}});
    const Received replies[] = {create(live, {{"locale", "fr-FR"}, {"name", "Notes"}}),
                                setCategory(live, "primaryCategory", "GAMES"),
                                patch("/v1/appInfoLocalizations/" + localization,
                                      updateBody("appInfoLocalizations", localization, {{"name", "x"}}))};
    for (const auto& reply : replies) {
        EXPECT_EQ(reply.status, 409);
        EXPECT_EQ(reply.code(), "STATE_ERROR.ENTITY_STATE_INVALID");
    }
}

TEST_F(AppInfoWrites, SetAndClearCategories) {
    EXPECT_EQ(setCategory(editable, "primaryCategory", "UTILITIES").status, 200);
    EXPECT_EQ(category("primaryCategory"), "UTILITIES");
    EXPECT_EQ(category("secondaryCategory"), "WEATHER");
    EXPECT_EQ(setCategory(editable, "secondaryCategory", "").status, 200);
    EXPECT_EQ(category("secondaryCategory"), "");
    EXPECT_EQ(setCategory(editable, "primaryCategory", "GARDENING").code(),
              "ENTITY_ERROR.RELATIONSHIP.INVALID");
}

TEST_F(AppInfoWrites, HaveNoAttributes) {
    const auto reply = patch("/v1/appInfos/" + editable, updateBody("appInfos", editable, {{"state", "x"}}));
    EXPECT_EQ(reply.code(), "ENTITY_ERROR.ATTRIBUTE.UNKNOWN");
    EXPECT_EQ(patch("/v1/appInfos/" + editable, updateBody("appInfos", editable, Json::object())).status,
              200);
}

class LinkedLocales : public SandboxFixture {
 protected:
    static Settings linked(bool isLinked) {
        Settings settings;
        settings.linksLocales = isLinked;
        return settings;
    }
    explicit LinkedLocales(bool isLinked = true) : SandboxFixture(linked(isLinked)) {}

    void addFrench() {
        const auto info = idOf("appInfos", {{"state", "PREPARE_FOR_SUBMISSION"}});
        EXPECT_EQ(post("/v1/appInfoLocalizations",
                       createBody("appInfoLocalizations", {{"locale", "fr-FR"}, {"name", "Marées"}},
                                  {{"appInfo", {"appInfos", info}}}))
                      .status,
                  201);
    }
    Received addFrenchToVersion() {
        return post("/v1/appStoreVersionLocalizations",
                    createBody("appStoreVersionLocalizations", {{"locale", "fr-FR"}},
                               {{"appStoreVersion", {"appStoreVersions", version}}}));
    }
    std::size_t localizationCount(const std::string& id) {
        return get("/v1/appStoreVersions/" + id + "/appStoreVersionLocalizations").ids().size();
    }

    const std::string version = idOf("appStoreVersions", {{"versionString", "2.4"}});
};

TEST_F(LinkedLocales, AddALanguageToTheVersionsInPreparation) {
    const auto onSale = idOf("appStoreVersions", {{"versionString", "2.3"}, {"platform", "IOS"}});
    addFrench();
    EXPECT_EQ(localizationCount(version), 4u);
    EXPECT_EQ(localizationCount(onSale), 3u);
    EXPECT_EQ(addFrenchToVersion().code(), "ENTITY_ERROR.ATTRIBUTE.INVALID.DUPLICATE");
}

TEST_F(LinkedLocales, LeaveALanguageAloneThatAVersionHasAlready) {
    EXPECT_EQ(addFrenchToVersion().status, 201);
    addFrench();
    EXPECT_EQ(localizationCount(version), 4u);
}

class UnlinkedLocales : public LinkedLocales {
 protected:
    UnlinkedLocales() : LinkedLocales(false) {}
};

TEST_F(UnlinkedLocales, AreTheDefault) {
    EXPECT_FALSE(Settings().linksLocales);
    addFrench();
    EXPECT_EQ(localizationCount(version), 3u);
}

}  // namespace
}  // namespace kestrin::sandbox
