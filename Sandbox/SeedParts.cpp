#include "Sandbox/SeedParts.h"

#include "Sandbox/Catalogue.h"
#include "Sandbox/Resources/Processing.h"
#include "Sandbox/Resources/Values.h"

namespace kestrin::sandbox::SeedParts {
namespace {

constexpr const char* kCategories[] = {"BOOKS",
                                       "BUSINESS",
                                       "DEVELOPER_TOOLS",
                                       "EDUCATION",
                                       "ENTERTAINMENT",
                                       "FINANCE",
                                       "FOOD_AND_DRINK",
                                       "GAMES",
                                       "GRAPHICS_AND_DESIGN",
                                       "HEALTH_AND_FITNESS",
                                       "LIFESTYLE",
                                       "MAGAZINES_AND_NEWSPAPERS",
                                       "MEDICAL",
                                       "MUSIC",
                                       "NAVIGATION",
                                       "NEWS",
                                       "PHOTO_AND_VIDEO",
                                       "PRODUCTIVITY",
                                       "REFERENCE",
                                       "SHOPPING",
                                       "SOCIAL_NETWORKING",
                                       "SPORTS",
                                       "STICKERS",
                                       "TRAVEL",
                                       "UTILITIES",
                                       "WEATHER"};

}  // namespace

void addCategories(State& state) {
    for (const auto* category : kCategories) {
        state.store.add("appCategories", {{"platforms", kPlatforms}}, {}, category);
    }
}

Resource& addApp(State& state, const std::string& id, const std::string& name, const std::string& bundleID,
                 const std::string& sku) {
    auto& app = state.store.add("apps",
                                {{"name", name},
                                 {"bundleId", bundleID},
                                 {"sku", sku},
                                 {"primaryLocale", "en-US"},
                                 {"isOrEverWasMadeForKids", false}},
                                {}, id);
    state.store.add("appAssetLibraries", Json::object(), {{"app", app.ref}}, id);
    return app;
}

Json textOrNull(const std::string& text) {
    return text.empty() ? Json() : Json(text);
}

Resource& addImage(State& state, const std::string& appID, const ImageRow& row, const std::string& assetState,
                   std::string id) {
    std::string why;
    const auto date = state.store.date();
    return state.store.add(
        "appAssetLibraryImages",
        {{"category", row.category},
         {"createdDate", date},
         {"lastModifiedDate", date},
         {"fileName", row.fileName},
         {"fileSize", row.width * row.height / 3},
         {"referenceName", row.fileName},
         {"imageAsset", pixelSize(row.width, row.height)},
         {"specId", Catalogue::specFor(Catalogue::Picture{row.width, row.height, false}, row.category, why)},
         {"state", assetState}},
        {{"assetLibrary", {"appAssetLibraries", appID}}}, std::move(id));
}

}  // namespace kestrin::sandbox::SeedParts
