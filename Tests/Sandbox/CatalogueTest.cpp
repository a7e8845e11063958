#include "Sandbox/Catalogue.h"

#include <set>

#include "Tests/Sandbox/SandboxFixture.h"

namespace kestrin::sandbox {
namespace {

constexpr const char* kPhone = "IPHONE_DYNAMIC_ISLAND_LARGE_PROFILE";

using Catalogue::Film;
using Catalogue::Picture;

// The item of a list whose member `id` has that value; null when there is none.
Json item(const char* list, const char* id, const std::string& value) {
    for (const auto& each : Catalogue::attributes().at(list)) {
        if (each.at(id) == value) return each;
    }
    return nullptr;
}

TEST(Catalogue, PublishesTheSpecificationsThatAppleShows) {
    const auto image = item("imageSpecs", "specId", "f56c777c-99ea-5760-97ae-27c5f8cbb884");
    EXPECT_EQ(image["shortName"], "i1290x2796a0");
    EXPECT_EQ(image["aspectRatio"], "6:13");
    EXPECT_EQ(image["alphaAllowed"], false);
    EXPECT_EQ(image["dimensions"],
              Json({{"minWidth", 1290}, {"maxWidth", 1290}, {"minHeight", 2796}, {"maxHeight", 2796}}));
    EXPECT_EQ(image["fileExtensions"], Json({".jpg", ".jpeg", ".png"}));
    const auto video = item("videoSpecs", "specId", "1861fdcb-eb99-59e6-8c6c-5a07479d9a84");
    EXPECT_EQ(video["shortName"], "v886x1920f23~30t15~30u1");
    EXPECT_EQ(video["aspectRatio"], "6:13");
    EXPECT_FALSE(video.contains("alphaAllowed"));
    EXPECT_EQ(video["duration"], Json({{"min", "PT15S"}, {"max", "PT30S"}}));
}

TEST(Catalogue, NamesEachSpecificationOnce) {
    std::set<std::string> ids;
    for (const char* list : {"imageSpecs", "videoSpecs"}) {
        for (const auto& spec : Catalogue::attributes()[list])
            EXPECT_TRUE(ids.insert(spec["specId"]).second) << spec;
    }
    EXPECT_GT(ids.size(), 50u);
}

TEST(Catalogue, MapsGroupsToSpecificationsThatExist) {
    std::set<std::string> specs, groups, classes;
    for (const char* list : {"imageSpecs", "videoSpecs"}) {
        for (const auto& spec : Catalogue::attributes()[list]) specs.insert(spec["specId"]);
    }
    for (const auto& each : Catalogue::attributes()["displayClasses"]) classes.insert(each["displayClassId"]);
    for (const auto& group : Catalogue::attributes()["placementProfileGroups"]) {
        EXPECT_TRUE(groups.insert(group["placementProfileGroupId"]).second);
        EXPECT_TRUE(classes.contains(group["displayClassId"])) << group;
    }
    for (const auto& type : Catalogue::attributes()["placementTypes"]) {
        for (const auto& mapping : type["specMappings"]) {
            EXPECT_TRUE(groups.contains(mapping["placementGroupId"])) << mapping;
            for (const auto& spec : mapping["specs"]) EXPECT_TRUE(specs.contains(spec)) << mapping;
        }
    }
}

TEST(Catalogue, LimitsSlotsByFeature) {
    EXPECT_EQ(Catalogue::maxCount("APP_STORE_VERSIONS", "APP_SCREENSHOT", kPhone), 10u);
    EXPECT_EQ(Catalogue::maxCount("APP_STORE_VERSIONS", "APP_PREVIEW", kPhone), 3u);
    EXPECT_EQ(Catalogue::maxCount("APP_STORE_VERSIONS", "PRODUCT_PAGE_HEADER_ASSET", "DEFAULT_PROFILE"), 1u);
    EXPECT_EQ(
        Catalogue::maxCount("PRODUCT_PAGE_OPTIMIZATIONS", "PRODUCT_PAGE_HEADER_ASSET", "DEFAULT_PROFILE"),
        std::nullopt);
    EXPECT_EQ(Catalogue::maxCount("APP_STORE_VERSIONS", "EVENT_CARD_ASSET", "DEFAULT_PROFILE"), std::nullopt);
    EXPECT_EQ(Catalogue::maxCount("APP_STORE_VERSIONS", "APP_PREVIEW", "WATCH_ULTRA_PROFILE"), std::nullopt);
}

TEST(Catalogue, KnowsWhichSlotTakesWhat) {
    const std::string phone = "f56c777c-99ea-5760-97ae-27c5f8cbb884";
    EXPECT_TRUE(Catalogue::hasGroup(kPhone));
    EXPECT_FALSE(Catalogue::hasGroup("FRIDGE_PROFILE"));
    EXPECT_TRUE(Catalogue::takesSpec("APP_SCREENSHOT", kPhone, phone));
    EXPECT_TRUE(Catalogue::takesSpec("IMESSAGE_APP_SCREENSHOT", std::string("IMESSAGE_") + kPhone, phone));
    EXPECT_FALSE(Catalogue::takesSpec("APP_SCREENSHOT", "IPAD_13_PROFILE", phone));
    EXPECT_FALSE(Catalogue::takesGroup("IMESSAGE_APP_SCREENSHOT", kPhone));
    EXPECT_TRUE(Catalogue::takesCategory("APP_PREVIEW", kScreenshots));
    EXPECT_FALSE(Catalogue::takesCategory("APP_PREVIEW", "CREATIVE_ASSETS"));
}

struct PictureRow {
    const char* when;
    Picture picture;
    const char* category;
    bool fits;
};

TEST(Catalogue, FindsTheSpecificationOfAPicture) {
    const PictureRow rows[] = {
        {"portrait", {1290, 2796, false}, kScreenshots, true},
        {"on its side", {2796, 1290, false}, kScreenshots, true},
        {"a pixel short", {1290, 2795, false}, kScreenshots, false},
        {"with alpha", {1290, 2796, true}, kScreenshots, false},
        {"a watch on its side", {514, 422, false}, kScreenshots, false},
        {"a header within its bounds", {2000, 1125, true}, "CREATIVE_ASSETS", true},
        {"a header of another ratio", {2000, 1300, false}, "CREATIVE_ASSETS", false},
        {"a screenshot as a creative asset", {1290, 2796, false}, "CREATIVE_ASSETS", false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.when);
        std::string why;
        EXPECT_EQ(!Catalogue::specFor(row.picture, row.category, why).empty(), row.fits);
        EXPECT_EQ(why.empty(), row.fits);
    }
}

struct FilmRow {
    const char* when;
    Film film;
    bool fits;
};

TEST(Catalogue, FindsTheSpecificationOfAFilm) {
    const FilmRow rows[] = {
        {"portrait", {886, 1920, 20, 30, true}, true},      {"shortest", {886, 1920, 15, 23, true}, true},
        {"too short", {886, 1920, 14, 30, true}, false},    {"too long", {886, 1920, 31, 30, true}, false},
        {"too fast", {886, 1920, 20, 60, true}, false},     {"silent", {886, 1920, 20, 30, false}, false},
        {"another size", {887, 1920, 20, 30, true}, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.when);
        std::string why;
        EXPECT_EQ(!Catalogue::specFor(row.film, kScreenshots, why).empty(), row.fits);
    }
}

class RefData : public SandboxFixture {};

TEST_F(RefData, IsAListOfOneWithoutALimit) {
    const auto reply = get("/v1/appAssetLibraryRefData");
    EXPECT_THAT(reply.ids(), testing::ElementsAre("1"));
    EXPECT_EQ(reply.attributes(), Catalogue::attributes());
    EXPECT_EQ(reply.json["meta"]["paging"], Json({{"total", 1}, {"limit", 50}}));
    EXPECT_EQ(get("/v1/appAssetLibraryRefData?limit=1").code(), "PARAMETER_ERROR.ILLEGAL");
}

TEST_F(RefData, CanBeCutToWhatIsAskedFor) {
    const auto reply =
        get("/v1/appAssetLibraryRefData?filter%5BplacementTypes%5D=APP_PREVIEW&filter%5Bspecs%5D="
            "f56c777c-99ea-5760-97ae-27c5f8cbb884&fields%5BappAssetLibraryRefData%5D=placementTypes,"
            "imageSpecs,videoSpecs");
    const auto attributes = reply.attributes();
    EXPECT_EQ(attributes.size(), 3u);
    EXPECT_EQ(attributes["placementTypes"].size(), 1u);
    EXPECT_EQ(attributes["imageSpecs"].size(), 1u);
    EXPECT_EQ(attributes["videoSpecs"].size(), 0u);
}

}  // namespace
}  // namespace kestrin::sandbox
