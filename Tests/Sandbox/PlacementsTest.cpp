#include "Sandbox/Resources/Placing.h"
#include "Tests/Sandbox/SandboxFixture.h"

namespace kestrin::sandbox {
namespace {

using testing::ElementsAre;

constexpr const char* kPhone = "IPHONE_DYNAMIC_ISLAND_LARGE_PROFILE";

class Placements : public SandboxFixture {
 protected:
    Placements()
        : prepared({"appStoreVersionLocalizations",
                    idOf("appStoreVersionLocalizations",
                         {{"locale", "de-DE"}, {"appStoreVersion.versionString", "2.4"}})}),
          live({"appStoreVersionLocalizations",
                idOf("appStoreVersionLocalizations", {{"locale", "de-DE"},
                                                      {"appStoreVersion.versionString", "2.3"},
                                                      {"appStoreVersion.platform", "IOS"}})}),
          moon({"appAssetLibraryImages", idOf("appAssetLibraryImages", {{"fileName", "moon.png"}})}) {}

    Received place(const Json& attributes, const std::vector<std::pair<std::string, Ref>>& related) {
        return post("/v1/appAssetLibraryPlacements",
                    createBody("appAssetLibraryPlacements", attributes, related));
    }
    Received placeMoon(const Ref& on) {
        return place({{"placementType", "APP_SCREENSHOT"}, {"placementGroup", kPhone}},
                     {{"image", moon}, {"appStoreVersionLocalization", on}});
    }
    Received list(const Ref& on,
                  const std::string& query = "sort=placementGroupPosition&include=image,video&limit=200") {
        return get("/v1/" + on.type + "/" + on.id + "/placements?" + query);
    }
    // File names of the placed assets, in the order of the list.
    std::vector<std::string> shown(const Ref& on) {
        const auto reply = list(on);
        std::vector<std::string> names;
        for (const auto& placement : reply.json["data"]) {
            const auto& relationships = placement["relationships"];
            const auto id = relationships[relationships.contains("image") ? "image" : "video"]["data"]["id"];
            for (const auto& asset : reply.json["included"]) {
                if (asset["id"] == id) names.push_back(asset["attributes"]["fileName"]);
            }
        }
        return names;
    }
    Received order(const std::vector<std::string>& ids, const std::string& query = "") {
        auto body = createBody("appAssetLibraryPlacementOrderingRequests", {{"placementGroup", kPhone}},
                               {{"appStoreVersionLocalization", prepared}});
        auto& data = body["data"]["relationships"]["orderedPlacements"]["data"] = Json::array();
        for (const auto& id : ids) data.push_back({{"type", "appAssetLibraryPlacements"}, {"id", id}});
        return post("/v1/appAssetLibraryPlacementOrderingRequests" + query, body);
    }
    void setAssetState(const std::string& value) {
        sandbox.service().with([&](State& state) { state.store.at(moon).attributes["state"] = value; });
    }

    const Ref prepared, live, moon;
};

TEST_F(Placements, StandBehindTheOthersOfTheirGroup) {
    const auto reply = placeMoon(prepared);

    ASSERT_EQ(reply.status, 201);
    EXPECT_EQ(reply.attributes()["mediaType"], "IMAGE");
    EXPECT_EQ(reply.attributes()["state"], "PARENT_PREPARE_FOR_SUBMISSION");
    EXPECT_FALSE(reply.attributes().contains("position"));
    EXPECT_EQ(reply.json["data"]["relationships"]["image"]["data"]["id"], moon.id);
    EXPECT_FALSE(reply.json["data"]["relationships"].contains("appStoreVersionLocalization"));
    EXPECT_THAT(shown(prepared), ElementsAre("tide-1.png", "tide-2.png", "tide-3.png", "moon.png"));
}

TEST_F(Placements, ShowTheirMediumWithoutBeingAsked) {
    const auto reply = list(prepared, "limit=1");
    EXPECT_EQ(reply.json["data"][0]["relationships"]["image"]["data"]["type"], "appAssetLibraryImages");
    EXPECT_FALSE(reply.json["data"][0]["relationships"]["image"].contains("links"));
    EXPECT_FALSE(reply.json.contains("included"));
}

TEST_F(Placements, MayHoldTheSameAssetTwice) {
    EXPECT_EQ(placeMoon(prepared).status, 201);
    EXPECT_EQ(placeMoon(prepared).status, 201);
    EXPECT_THAT(shown(prepared),
                ElementsAre("tide-1.png", "tide-2.png", "tide-3.png", "moon.png", "moon.png"));
}

TEST_F(Placements, AreAtMostAsManyAsTheSlotHolds) {
    for (int i = 0; i < 7; ++i) ASSERT_EQ(placeMoon(prepared).status, 201);
    const auto reply = placeMoon(prepared);
    EXPECT_EQ(reply.status, 409);
    EXPECT_EQ(reply.code(), "ENTITY_ERROR.RELATIONSHIP.INVALID.TOO_MANY");
}

struct BadPlacement {
    const char* when;
    Json attributes;
    const char* code;
    const char* pointer;
};

TEST_F(Placements, AreRefusedWhereTypeGroupAndAssetDoNotGoTogether) {
    const BadPlacement rows[] = {
        {"no type", {{"placementGroup", kPhone}}, "ENTITY_ERROR.ATTRIBUTE.REQUIRED", "placementType"},
        {"another type", {{"placementType", "POSTER"}}, "ENTITY_ERROR.ATTRIBUTE.INVALID", "placementType"},
        {"a group that there isn't",
         {{"placementType", "APP_SCREENSHOT"}, {"placementGroup", "FRIDGE_PROFILE"}},
         "ENTITY_ERROR.ATTRIBUTE.INVALID",
         "placementType"},
        {"no group",
         {{"placementType", "APP_SCREENSHOT"}},
         "ENTITY_ERROR.ATTRIBUTE.INVALID",
         "placementType"},
        {"a type of another category",
         {{"placementType", "PRODUCT_PAGE_HEADER_ASSET"}, {"placementGroup", "DEFAULT_PROFILE"}},
         "ENTITY_ERROR.ATTRIBUTE.INVALID",
         "placementType"},
        {"a group of another size",
         {{"placementType", "APP_SCREENSHOT"}, {"placementGroup", "IPAD_13_PROFILE"}},
         "ENTITY_ERROR.ATTRIBUTE.INVALID",
         "placementType"},
        {"a preview of an image",
         {{"placementType", "APP_PREVIEW"}, {"placementGroup", kPhone}},
         "ENTITY_ERROR.ATTRIBUTE.INVALID",
         "placementType"},
        {"a position",
         {{"placementType", "APP_SCREENSHOT"}, {"placementGroup", kPhone}, {"position", 1}},
         "ENTITY_ERROR.ATTRIBUTE.UNKNOWN",
         "position"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.when);
        const auto reply =
            place(row.attributes, {{"image", moon}, {"appStoreVersionLocalization", prepared}});
        EXPECT_EQ(reply.status, 409);
        EXPECT_EQ(reply.code(), row.code);
        EXPECT_EQ(reply.place(), std::string("/data/attributes/") + row.pointer);
    }
}

TEST_F(Placements, HaveOneMediumAndOneSurface) {
    const Json attributes{{"placementType", "APP_SCREENSHOT"}, {"placementGroup", kPhone}};
    const Ref video{"appAssetLibraryVideos", idOf("appAssetLibraryVideos", {{"fileName", "tide.mp4"}})};
    const Ref page{"appCustomProductPageLocalizations",
                   idOf("appCustomProductPageLocalizations", {{"locale", "de-DE"}})};
    EXPECT_EQ(place(attributes, {{"appStoreVersionLocalization", prepared}}).code(),
              "ENTITY_ERROR.RELATIONSHIP.REQUIRED");
    EXPECT_EQ(place(attributes, {{"image", moon}}).code(), "ENTITY_ERROR.RELATIONSHIP.REQUIRED");
    EXPECT_EQ(
        place(attributes, {{"image", moon}, {"video", video}, {"appStoreVersionLocalization", prepared}})
            .code(),
        "ENTITY_ERROR.RELATIONSHIP.INVALID");
    EXPECT_EQ(place(attributes, {{"image", moon},
                                 {"appStoreVersionLocalization", prepared},
                                 {"appCustomProductPageLocalization", page}})
                  .code(),
              "ENTITY_ERROR.RELATIONSHIP.INVALID");
    EXPECT_EQ(place(attributes, {{"image", moon}, {"appCustomProductPageLocalization", page}}).status, 201);
}

TEST_F(Placements, WantAVideoForAPreview) {
    const Ref video{"appAssetLibraryVideos", idOf("appAssetLibraryVideos", {{"fileName", "tide.mp4"}})};
    const auto reply = place({{"placementType", "APP_PREVIEW"}, {"placementGroup", kPhone}},
                             {{"video", video}, {"appStoreVersionLocalization", prepared}});
    EXPECT_EQ(reply.status, 201);
    EXPECT_EQ(reply.attributes()["mediaType"], "VIDEO");
}

TEST_F(Placements, AreRefusedOnASurfaceThatIsNotEdited) {
    const auto reply = placeMoon(live);
    EXPECT_EQ(reply.code(), "STATE_ERROR.INVALID_STATE");
    EXPECT_EQ(reply.json["errors"][0]["meta"]["feature"], "ASC_FEATURE_APP_STORE_VERSIONS");
    EXPECT_EQ(reply.json["errors"][0]["meta"]["state"], "ready_for_distribution");
    EXPECT_EQ(remove("/v1/appAssetLibraryPlacements/" + list(live).ids()[0]).code(),
              "STATE_ERROR.INVALID_STATE");
    EXPECT_EQ(list(live).attributes()["state"], "PARENT_APPROVED");
}

TEST_F(Placements, ShowTheStateOfTheirAsset) {
    setAssetState("UPLOAD_COMPLETE");
    EXPECT_EQ(placeMoon(prepared).attributes()["state"], "ASSET_PROCESSING");
    setAssetState("FAILED");
    EXPECT_EQ(placeMoon(prepared).code(), "STATE_ERROR.INVALID_ASSET_STATE");
    EXPECT_EQ(list(prepared, "filter%5Bstate%5D=FAILED").ids().size(), 1u);
    EXPECT_EQ(list(prepared, "filter%5Bstate%5D=PARENT_PREPARE_FOR_SUBMISSION").ids().size(), 3u);
}

TEST_F(Placements, AreOfAnAssetInTheLibraryOfTheApp) {
    sandbox.service().with([&](State& state) {
        state.store.relate(state.store.at(moon), "assetLibrary", Ref{"appAssetLibraries", "1234567891"});
    });
    EXPECT_EQ(placeMoon(prepared).code(), "ENTITY_ERROR.RELATIONSHIP.INVALID");
}

TEST_F(Placements, GoWhenTheyAreDeletedAndLeaveTheAsset) {
    const auto id = list(prepared).ids()[0];
    EXPECT_EQ(remove("/v1/appAssetLibraryPlacements/" + id).status, 204);
    EXPECT_EQ(remove("/v1/appAssetLibraryPlacements/" + id).status, 404);
    EXPECT_THAT(shown(prepared), ElementsAre("tide-2.png", "tide-3.png"));
    EXPECT_EQ(get("/v1/appAssetLibraryImages/" + idOf("appAssetLibraryImages", {{"fileName", "tide-1.png"}}))
                  .status,
              200);
}

TEST_F(Placements, StandInTheOrderThatIsAskedFor) {
    auto ids = list(prepared).ids();
    std::reverse(ids.begin(), ids.end());

    const auto reply = order(ids);

    ASSERT_EQ(reply.status, 201);
    EXPECT_FALSE(reply.json["data"].contains("attributes"));
    const auto ordered = reply.json["data"]["relationships"]["orderedPlacements"];
    EXPECT_EQ(ordered["data"].size(), 3u);
    EXPECT_EQ(ordered["meta"]["paging"]["total"], 3);
    EXPECT_THAT(shown(prepared), ElementsAre("tide-3.png", "tide-2.png", "tide-1.png"));
}

TEST_F(Placements, ThatAreNotNamedStayWhereTheyAre) {
    placeMoon(prepared);
    const auto ids = list(prepared).ids();
    EXPECT_EQ(order({ids[3], ids[0]}).status, 201);
    EXPECT_THAT(shown(prepared), ElementsAre("moon.png", "tide-2.png", "tide-3.png", "tide-1.png"));
}

TEST_F(Placements, MayBeNamedTwiceInAnOrder) {
    const auto ids = list(prepared).ids();
    EXPECT_EQ(order({ids[2], ids[0], ids[2], ids[1]}).status, 201);
    EXPECT_THAT(shown(prepared), ElementsAre("tide-3.png", "tide-1.png", "tide-2.png"));
}

TEST_F(Placements, OfAnotherLocalizationOrGroupCannotBeOrdered) {
    const auto ids = list(prepared).ids();
    EXPECT_EQ(order({ids[0], list(live).ids()[0]}).code(), "ENTITY_ERROR.RELATIONSHIP.INVALID");
    EXPECT_EQ(order({ids[0], "x"}).code(), "ENTITY_ERROR.RELATIONSHIP.INVALID");
    EXPECT_EQ(order({ids[1], ids[0]}, "?include=orderedPlacements&limit%5BorderedPlacements%5D=1")
                  .json["data"]["relationships"]["orderedPlacements"]["data"]
                  .size(),
              1u);
}

TEST_F(Placements, KeepTheirOrderWhenANewVersionCopiesThem) {
    sandbox.service().with([](State& state) {
        for (auto* version : state.store.all("appStoreVersions"))
            version->attributes["appVersionState"] = "READY_FOR_DISTRIBUTION";
    });
    const auto made = post("/v1/appStoreVersions",
                           createBody("appStoreVersions", {{"platform", "IOS"}, {"versionString", "2.5"}},
                                      {{"app", {"apps", kApp}}}));
    ASSERT_EQ(made.status, 201);
    const Ref copy{"appStoreVersionLocalizations",
                   idOf("appStoreVersionLocalizations",
                        {{"locale", "en-US"}, {"appStoreVersion.versionString", "2.5"}})};
    EXPECT_THAT(shown(copy),
                ElementsAre("tide-pad.png", "tide-1.png", "tide-2.png", "tide-3.png", "tide.mp4"));
}

TEST_F(Placements, CanBeSortedByDateAndFilteredByMedium) {
    placeMoon(prepared);
    EXPECT_EQ(
        list(prepared, "sort=-createdDate&limit=1").json["data"][0]["relationships"]["image"]["data"]["id"],
        moon.id);
    EXPECT_EQ(list(prepared, "filter%5Bimage%5D=" + moon.id).ids().size(), 1u);
    EXPECT_EQ(list(prepared, "filter%5BplacementType%5D=APP_PREVIEW").ids().size(), 0u);
    EXPECT_EQ(list(prepared, "filter%5BappStoreVersionLocalization%5D=x").code(), "PARAMETER_ERROR.ILLEGAL");
    EXPECT_EQ(list(prepared, "filter%5BappCustomProductPageLocalization%5D=x").ids().size(), 0u);
}

}  // namespace
}  // namespace kestrin::sandbox
