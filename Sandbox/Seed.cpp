#include "Sandbox/Seed.h"

#include <fmt/format.h>

#include <fstream>
#include <sstream>
#include <stdexcept>

#include "Sandbox/Catalogue.h"
#include "Sandbox/Resources/Placing.h"
#include "Sandbox/Resources/Processing.h"
#include "Sandbox/Resources/States.h"
#include "Sandbox/Resources/Values.h"
#include "Sandbox/Schema.h"
#include "Sandbox/SeedParts.h"

namespace kestrin::sandbox {
namespace {

using SeedParts::addApp;
using SeedParts::addCategories;
using SeedParts::addImage;
using SeedParts::textOrNull;

constexpr const char* kAppID = "1234567890";
constexpr const char* kEmptyAppID = "1234567891";
struct Wording {
    const char* locale;
    const char* name;
    const char* subtitle;
    const char* description;
    const char* keywords;
    const char* promotionalText;
    const char* whatsNew;
};

constexpr Wording kWordings[] = {
    {"en-US", "Tide Notes", "Notes by the sea",
     "Write down what the tide brings.\n\nTide Notes keeps up with you.", "notes,tide,sea,journal",
     "Now with moon phases.", "New: moon phases.\nFixed: a rare crash."},
    {"de-DE", "Gezeitennotizen", "Notizen am Meer", "Schreib auf, was die Flut bringt.",
     "notizen,gezeiten,meer,tagebuch", "Jetzt mit Mondphasen.", "Neu: Mondphasen."},
    {"ja", "潮のノート", "海辺のメモ", "潮が運んでくるものを書き留めよう。", "メモ,潮,海,日記", "", ""},
};

void addAppInfo(State& state, const Resource& app, const std::string& appInfoState,
                const std::string& suffix) {
    auto& info = state.store.add("appInfos", {{"appStoreAgeRating", "FOUR_PLUS"}},
                                 {{"app", app.ref},
                                  {"primaryCategory", {"appCategories", "PRODUCTIVITY"}},
                                  {"secondaryCategory", {"appCategories", "WEATHER"}}});
    setAppInfoState(info, appInfoState);
    for (const auto& wording : kWordings) {
        state.store.add("appInfoLocalizations",
                        {{"locale", wording.locale},
                         {"name", wording.name},
                         {"subtitle", wording.subtitle + suffix},
                         {"privacyPolicyUrl", fmt::format("https://example.com/{}/privacy", wording.locale)}},
                        {{"appInfo", info.ref}});
    }
}

Resource& addVersion(State& state, const Resource& app, const std::string& platform,
                     const std::string& versionString, const std::string& versionState) {
    auto& version = state.store.add("appStoreVersions",
                                    {{"platform", platform},
                                     {"versionString", versionString},
                                     {"copyright", "2026 Example Ltd"},
                                     {"reviewType", "APP_STORE"},
                                     {"releaseType", "AFTER_APPROVAL"},
                                     {"downloadable", true},
                                     {"createdDate", state.store.pacificDate()}},
                                    {{"app", app.ref}});
    setVersionState(version, versionState);
    for (const auto& wording : kWordings) {
        state.store.add("appStoreVersionLocalizations",
                        {{"locale", wording.locale},
                         {"description", wording.description},
                         {"keywords", wording.keywords},
                         {"supportUrl", fmt::format("https://example.com/{}/help", wording.locale)},
                         {"promotionalText", textOrNull(wording.promotionalText)},
                         {"whatsNew", textOrNull(wording.whatsNew)}},
                        {{"appStoreVersion", version.ref}});
    }
    return version;
}

void addReviewDetail(State& state, const Resource& version) {
    state.store.add("appStoreReviewDetails",
                    {{"contactFirstName", "Ada"},
                     {"contactLastName", "Sea"},
                     {"contactPhone", "+44 20 7946 0000"},
                     {"contactEmail", "ada@example.com"},
                     {"demoAccountName", "demo"},
                     {"demoAccountPassword", "low-tide"},
                     {"demoAccountRequired", true},
                     {"notes", "Tap the moon."}},
                    {{"appStoreVersion", version.ref}});
}

struct BuildRow {
    const char* platform;
    const char* versionString;
    const char* number;
    const char* processingState;
    bool expired;
    std::optional<bool> usesNonExemptEncryption;
};

constexpr BuildRow kBuilds[] = {
    {"IOS", "2.3", "230", "VALID", false, false},   {"MAC_OS", "2.3", "230", "VALID", false, false},
    {"IOS", "2.4", "240", "VALID", true, false},    {"IOS", "2.4", "241", "VALID", false, std::nullopt},
    {"IOS", "2.4", "242", "INVALID", false, false},
};

void addBuild(State& state, const Resource& app, const BuildRow& row) {
    auto* train =
        state.store.first("preReleaseVersions", {{"platform", row.platform}, {"version", row.versionString}});
    if (train == nullptr) {
        train = &state.store.add("preReleaseVersions",
                                 {{"platform", row.platform}, {"version", row.versionString}},
                                 {{"app", app.ref}});
    }
    state.store.add("builds",
                    {{"version", row.number},
                     {"uploadedDate", state.store.pacificDate()},
                     {"expirationDate", "2026-05-30T21:02:11-07:00"},
                     {"expired", row.expired},
                     {"minOsVersion", "17.0"},
                     {"processingState", row.processingState},
                     {"buildAudienceType", "APP_STORE_ELIGIBLE"},
                     {"usesNonExemptEncryption",
                      row.usesNonExemptEncryption ? Json(*row.usesNonExemptEncryption) : Json()}},
                    {{"app", app.ref}, {"preReleaseVersion", train->ref}});
}

void attachBuild(State& state, Resource& version, const std::string& number) {
    const auto* build = state.store.first(
        "builds", {{"version", number}, {"preReleaseVersion.platform", version.text("platform")}});
    state.store.relate(version, "build", build->ref);
}

constexpr const char* kScreenshots = "APP_SCREENSHOTS_AND_PREVIEWS";
constexpr const char* kPhone = "IPHONE_DYNAMIC_ISLAND_LARGE_PROFILE";

Resource& addPreview(State& state, const std::string& appID, const std::string& fileName) {
    constexpr int kWidth = 886, kHeight = 1920;
    std::string why;
    const auto date = state.store.date();
    return state.store.add(
        "appAssetLibraryVideos",
        {{"category", kScreenshots},
         {"createdDate", date},
         {"lastModifiedDate", date},
         {"fileName", fileName},
         {"fileSize", 18'350'080},
         {"referenceName", fileName},
         {"previewFrameImage", pixelSize(kWidth, kHeight)},
         {"previewFrameTimeCode", "00:00:05:00"},
         {"specId", Catalogue::specFor(Catalogue::Film{kWidth, kHeight, 20, 30, true}, kScreenshots, why)},
         {"state", "APPROVED"}},
        {{"assetLibrary", {"appAssetLibraries", appID}}});
}

void addVersionMedia(State& state, const std::vector<const Resource*>& phone, const Resource& pad,
                     const Resource& preview, const Resource& version) {
    for (const auto* localization :
         state.store.pointing("appStoreVersionLocalizations", "appStoreVersion", version.id())) {
        for (const auto* image : phone) place(state, *localization, "APP_SCREENSHOT", kPhone, image->ref);
        if (localization->text("locale") != "en-US") continue;
        place(state, *localization, "APP_SCREENSHOT", "IPAD_13_PROFILE", pad.ref);
        place(state, *localization, "APP_PREVIEW", kPhone, preview.ref);
    }
}

struct PageRow {
    const char* name;
    const char* versionState;
    bool isVisible;
    const char* deepLink;
};

constexpr PageRow kPages[] = {
    {"Autumn", "PREPARE_FOR_SUBMISSION", false, "https://example.com/autumn"},
    {"Night sky", "APPROVED", true, ""},
};

void addPage(State& state, const Resource& app, const PageRow& row, const Resource& image) {
    auto& page = state.store.add("appCustomProductPages", {{"name", row.name}, {"visible", row.isVisible}},
                                 {{"app", app.ref}});
    page.attributes["url"] = fmt::format("https://apps.apple.com/us/app/id{}?ppid={}", app.id(), page.id());
    const auto& version = state.store.add(
        "appCustomProductPageVersions",
        {{"version", "1"}, {"state", row.versionState}, {"deepLink", textOrNull(row.deepLink)}},
        {{"appCustomProductPage", page.ref}});
    for (const char* locale : {"en-US", "de-DE"}) {
        const auto& localization = state.store.add(
            "appCustomProductPageLocalizations",
            {{"locale", locale}, {"promotionalText", fmt::format("{} ({})", row.name, locale)}},
            {{"appCustomProductPageVersion", version.ref}});
        place(state, localization, "APP_SCREENSHOT", kPhone, image.ref);
    }
}

struct ExperimentRow {
    const char* name;
    const char* experimentState;
    std::vector<const char*> treatments;
};

const ExperimentRow kExperiments[] = {
    {"Moon icon", "PREPARE_FOR_SUBMISSION", {"Full moon", "Half moon"}},
    {"Last summer", "COMPLETED", {"Sunny"}},
};

void addExperiment(State& state, const Resource& app, const ExperimentRow& row, const Resource& image) {
    auto& experiment = state.store.add("appStoreVersionExperiments",
                                       {{"name", row.name},
                                        {"platform", "IOS"},
                                        {"trafficProportion", 50},
                                        {"state", row.experimentState},
                                        {"reviewRequired", true}},
                                       {{"app", app.ref}});
    if (row.experimentState == std::string_view("COMPLETED")) {
        experiment.attributes["startDate"] = state.store.date();
        experiment.attributes["endDate"] = state.store.date();
    }
    for (const auto* name : row.treatments) {
        const auto& treatment = state.store.add("appStoreVersionExperimentTreatments",
                                                {{"name", name}, {"appIconName", "MoonIcon"}},
                                                {{"appStoreVersionExperimentV2", experiment.ref}});
        const auto& localization =
            state.store.add("appStoreVersionExperimentTreatmentLocalizations", {{"locale", "en-US"}},
                            {{"appStoreVersionExperimentTreatment", treatment.ref}});
        place(state, localization, "APP_SCREENSHOT", kPhone, image.ref);
    }
}

// Media, pages and tests of an app that has versions.
void addShowcase(State& state, const Resource& app) {
    std::vector<const Resource*> phone;
    for (const char* fileName : {"tide-1.png", "tide-2.png", "tide-3.png"}) {
        phone.push_back(&addImage(state, app.id(), {fileName, 1290, 2796, kScreenshots}, "APPROVED"));
    }
    const auto& pad = addImage(state, app.id(), {"tide-pad.png", 2064, 2752, kScreenshots}, "APPROVED");
    const auto& preview = addPreview(state, app.id(), "tide.mp4");
    const auto& unused =
        addImage(state, app.id(), {"moon.png", 1290, 2796, kScreenshots}, "PREPARE_FOR_SUBMISSION");
    for (const auto* version : state.store.pointing("appStoreVersions", "app", app.id())) {
        if (version->text("platform") == "IOS") addVersionMedia(state, phone, pad, preview, *version);
    }
    for (const auto& row : kPages) addPage(state, app, row, *phone.back());
    for (const auto& row : kExperiments) addExperiment(state, app, row, unused);
}

void addFromJSON(State& state, const Json& resource) {
    Relations related;
    const auto relationships = resource.value("relationships", Json::object());
    for (const auto& [name, relationship] : relationships.items()) {
        const auto& data = relationship.at("data");
        related[name] = {data.at("type").get<std::string>(), data.at("id").get<std::string>()};
    }
    state.store.add(resource.at("type").get<std::string>(), resource.value("attributes", Json::object()),
                    std::move(related), resource.at("id").get<std::string>());
}

}  // namespace

namespace seeds {

void empty(State& state) {
    addCategories(state);
}

void everyday(State& state) {
    addCategories(state);
    const auto& app = addApp(state, kAppID, "Tide Notes", "com.example.tidenotes", "TIDE001");
    addApp(state, kEmptyAppID, "Lighthouse", "com.example.lighthouse", "LIGHT001");
    addAppInfo(state, app, "READY_FOR_DISTRIBUTION", "");
    addAppInfo(state, app, "PREPARE_FOR_SUBMISSION", "");
    for (const auto& row : kBuilds) addBuild(state, app, row);
    attachBuild(state, addVersion(state, app, "MAC_OS", "2.3", "READY_FOR_DISTRIBUTION"), "230");
    attachBuild(state, addVersion(state, app, "IOS", "2.3", "READY_FOR_DISTRIBUTION"), "230");
    addReviewDetail(state, addVersion(state, app, "IOS", "2.4", "PREPARE_FOR_SUBMISSION"));
    addShowcase(state, app);
}

void newApp(State& state) {
    addCategories(state);
    const auto& app = addApp(state, kAppID, "Tide Notes", "com.example.tidenotes", "TIDE001");
    auto& info = state.store.add("appInfos", Json::object(), {{"app", app.ref}});
    setAppInfoState(info, "PREPARE_FOR_SUBMISSION");
    state.store.add("appInfoLocalizations", {{"locale", "en-US"}, {"name", "Tide Notes"}},
                    {{"appInfo", info.ref}});
    auto& version = state.store.add("appStoreVersions",
                                    {{"platform", "IOS"},
                                     {"versionString", "1.0"},
                                     {"reviewType", "APP_STORE"},
                                     {"releaseType", "AFTER_APPROVAL"},
                                     {"downloadable", true},
                                     {"createdDate", state.store.pacificDate()}},
                                    {{"app", app.ref}});
    setVersionState(version, "PREPARE_FOR_SUBMISSION");
    state.store.add("appStoreVersionLocalizations", {{"locale", "en-US"}},
                    {{"appStoreVersion", version.ref}});
}

Seed fromDocument(Json document) {
    return [document = std::move(document)](State& state) {
        try {
            for (const auto& resource : document.at("resources")) addFromJSON(state, resource);
            if (document.contains("clock")) state.store.setClock(document["clock"].get<std::int64_t>());
        } catch (const std::exception& error) {
            throw std::runtime_error(fmt::format("the state can't be read: {}", error.what()));
        }
    };
}

Seed fromFile(const std::filesystem::path& path) {
    std::ifstream file(path);
    std::ostringstream text;
    text << file.rdbuf();
    const auto document = file ? parsedJSON(text.str()) : std::nullopt;
    if (!document) throw std::runtime_error(fmt::format("couldn't read a seed from {}", path.string()));
    return [seed = fromDocument(*document), path](State& state) {
        try {
            seed(state);
        } catch (const std::exception& error) {
            throw std::runtime_error(fmt::format("{}: {}", path.string(), error.what()));
        }
    };
}

}  // namespace seeds

Json resourceJSON(const Resource& resource) {
    Json relationships = Json::object();
    for (const auto& [name, other] : resource.related) {
        relationships[name] = {{"data", {{"type", other.type}, {"id", other.id}}}};
    }
    return {{"type", resource.type()},
            {"id", resource.id()},
            {"attributes", resource.attributes},
            {"relationships", relationships}};
}

Json stateJSON(const State& state) {
    Json resources = Json::array();
    for (const auto* resource : state.store.all()) resources.push_back(resourceJSON(*resource));
    return {{"clock", state.store.clock()}, {"resources", resources}};
}

}  // namespace kestrin::sandbox
