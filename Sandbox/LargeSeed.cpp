// The large listing as the service would hold it.
#include <fmt/format.h>

#include "Benchmarks/LargeListing.h"
#include "Sandbox/Resources/Placing.h"
#include "Sandbox/Resources/States.h"
#include "Sandbox/Seed.h"
#include "Sandbox/SeedParts.h"

namespace kestrin::sandbox {
namespace {

constexpr const char* kAppID = "1234567890";
constexpr const char* kScreenshots = "APP_SCREENSHOTS_AND_PREVIEWS";
constexpr const char* kPrepared = "PREPARE_FOR_SUBMISSION";

Json textOrNull(const std::optional<std::string>& text) {
    return text ? Json(*text) : Json();
}

Json attributesOf(const StoreLocale& locale, const LocalizedFields& fields) {
    Json attributes{{"locale", locale.rawValue}};
    for (const auto& [field, text] : fields.values()) attributes[std::string(rawValue(field))] = text;
    return attributes;
}

void placeMedia(State& state, const Resource& localization, const LocalizedMedia& media,
                const StoreLocale& locale) {
    const auto slots = media.find(locale);
    if (slots == media.end()) return;
    for (const auto& [slot, items] : slots->second) {
        const bool isTablet = slot.group.starts_with("IPAD");
        const int width = isTablet ? 2064 : 1290, height = isTablet ? 2752 : 2796;
        for (const auto& item : items) {
            const auto& asset =
                SeedParts::addImage(state, kAppID, {item.fileName(), width, height, kScreenshots}, "APPROVED",
                                    item.asRemote()->assetID);
            place(state, localization, slot.type, slot.group, asset.ref);
        }
    }
}

void addAppInfo(State& state, const Resource& app, const AppListing& listing) {
    auto& info = state.store.add("appInfos", Json::object(),
                                 {{"app", app.ref},
                                  {"primaryCategory", {"appCategories", *listing.info.primaryCategory}},
                                  {"secondaryCategory", {"appCategories", *listing.info.secondaryCategory}}});
    setAppInfoState(info, kPrepared);
    for (const auto& [locale, fields] : listing.locales) {
        state.store.add("appInfoLocalizations", attributesOf(locale, fields), {{"appInfo", info.ref}});
    }
}

void addVersion(State& state, const Resource& app, const StorePlatform& platform,
                const PlatformListing& listing) {
    auto& version = state.store.add("appStoreVersions",
                                    {{"platform", platform.rawValue},
                                     {"versionString", textOrNull(listing.version.versionString)},
                                     {"copyright", textOrNull(listing.version.copyright)},
                                     {"reviewType", "APP_STORE"},
                                     {"releaseType", textOrNull(listing.version.releaseType)},
                                     {"downloadable", true},
                                     {"createdDate", state.store.pacificDate()}},
                                    {{"app", app.ref}});
    setVersionState(version, kPrepared);
    for (const auto& [locale, fields] : listing.locales) {
        const auto& localization = state.store.add(
            "appStoreVersionLocalizations", attributesOf(locale, fields), {{"appStoreVersion", version.ref}});
        placeMedia(state, localization, listing.media, locale);
    }
    const auto& review = listing.review;
    state.store.add("appStoreReviewDetails",
                    {{"contactFirstName", textOrNull(review.contactFirstName)},
                     {"contactEmail", textOrNull(review.contactEmail)},
                     {"demoAccountRequired", review.demoAccountRequired.value_or(false)}},
                    {{"appStoreVersion", version.ref}});
}

void addPage(State& state, const Resource& app, const CustomProductPage& content) {
    auto& page = state.store.add("appCustomProductPages",
                                 {{"name", content.name}, {"visible", content.visible.value_or(false)}},
                                 {{"app", app.ref}});
    page.attributes["url"] = fmt::format("https://apps.apple.com/us/app/id{}?ppid={}", app.id(), page.id());
    const auto& version =
        state.store.add("appCustomProductPageVersions",
                        {{"version", "1"}, {"state", kPrepared}, {"deepLink", textOrNull(content.deepLink)}},
                        {{"appCustomProductPage", page.ref}});
    for (const auto& locale : content.locales) {
        const auto& localization = state.store.add(
            "appCustomProductPageLocalizations",
            {{"locale", locale.rawValue}, {"promotionalText", content.promotionalText.at(locale)}},
            {{"appCustomProductPageVersion", version.ref}});
        placeMedia(state, localization, content.media, locale);
    }
}

void addTreatment(State& state, const Resource& experiment, const Treatment& content) {
    const auto& treatment =
        state.store.add("appStoreVersionExperimentTreatments",
                        {{"name", content.name}, {"appIconName", textOrNull(content.appIconName)}},
                        {{"appStoreVersionExperimentV2", experiment.ref}});
    for (const auto& locale : content.locales) {
        const auto& localization =
            state.store.add("appStoreVersionExperimentTreatmentLocalizations", {{"locale", locale.rawValue}},
                            {{"appStoreVersionExperimentTreatment", treatment.ref}});
        placeMedia(state, localization, content.media, locale);
    }
}

void addExperiment(State& state, const Resource& app, const Experiment& content) {
    const auto& experiment = state.store.add("appStoreVersionExperiments",
                                             {{"name", content.name},
                                              {"platform", content.platform.rawValue},
                                              {"trafficProportion", content.trafficProportion.value_or(50)},
                                              {"state", kPrepared},
                                              {"reviewRequired", true}},
                                             {{"app", app.ref}});
    for (const auto& [slug, treatment] : content.treatments) addTreatment(state, experiment, treatment);
}

}  // namespace

void seeds::large(State& state) {
    const auto project = LargeListing::make();
    SeedParts::addCategories(state);
    const auto& app = SeedParts::addApp(state, kAppID, "Walks", "com.example.walks", "WALKS001");
    addAppInfo(state, app, project.app);
    for (const auto& [platform, listing] : project.platforms) addVersion(state, app, platform, listing);
    for (const auto& [slug, page] : project.pages) addPage(state, app, page);
    for (const auto& [slug, experiment] : project.experiments) addExperiment(state, app, experiment);
}

}  // namespace kestrin::sandbox
