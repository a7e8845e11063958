#include "Sandbox/Catalogue.h"

#include <fmt/format.h>

#include <cmath>
#include <map>
#include <numeric>
#include <set>
#include <vector>

namespace kestrin::sandbox::Catalogue {
namespace {

constexpr std::int64_t kMaximumFileSize = 524'288'000;
constexpr double kMinimumFPS = 23, kMaximumFPS = 30, kMinimumSeconds = 15, kMaximumSeconds = 30;
constexpr double kMeasuringError = 0.1;  // of rates and durations read from a film

struct Size {
    int width, height;
};
using Sizes = std::vector<Size>;
using Words = std::vector<const char*>;

enum class Turns { both, never };  // whether a size may lie on its side as well

struct Group {
    const char* id;
    const char* platform;
    const char* displayClass;
    const char* family;
    Words inches;
    Turns turns;
    Sizes screenshots;
    Sizes previews;
    bool hasMessages;  // a group of iMessage screenshots beside it
};

const std::vector<Group>& groups() {
    static const std::vector<Group> rows{
        {"IPHONE_DYNAMIC_ISLAND_LARGE_PROFILE",
         "IPHONE_APP_STORE",
         "IPHONE_DYNAMIC_ISLAND_LARGE_DISPLAY",
         "IPHONE",
         {"6.9"},
         Turns::both,
         {{1320, 2868}, {1290, 2796}, {1260, 2736}},
         {{886, 1920}},
         true},
        {"IPHONE_DYNAMIC_ISLAND_MEDIUM_PROFILE",
         "IPHONE_APP_STORE",
         "IPHONE_DYNAMIC_ISLAND_MEDIUM_DISPLAY",
         "IPHONE",
         {"6.3", "6.1"},
         Turns::both,
         {{1206, 2622}, {1179, 2556}},
         {{886, 1920}},
         true},
        {"IPHONE_FACE_ID_LARGE_PROFILE",
         "IPHONE_APP_STORE",
         "IPHONE_FACE_ID_LARGE_DISPLAY",
         "IPHONE",
         {"6.5"},
         Turns::both,
         {{1284, 2778}, {1242, 2688}},
         {{886, 1920}},
         true},
        {"IPHONE_FACE_ID_MEDIUM_PROFILE",
         "IPHONE_APP_STORE",
         "IPHONE_FACE_ID_MEDIUM_DISPLAY",
         "IPHONE",
         {"6.1", "5.8"},
         Turns::both,
         {{1170, 2532}, {1125, 2436}, {1080, 2340}},
         {{886, 1920}},
         true},
        {"IPHONE_HOME_BUTTON_LARGE_PROFILE",
         "IPHONE_APP_STORE",
         "IPHONE_HOME_BUTTON_LARGE_DISPLAY",
         "IPHONE",
         {"5.5"},
         Turns::both,
         {{1242, 2208}},
         {{1080, 1920}},
         true},
        {"IPHONE_HOME_BUTTON_MEDIUM_PROFILE",
         "IPHONE_APP_STORE",
         "IPHONE_HOME_BUTTON_MEDIUM_DISPLAY",
         "IPHONE",
         {"4.7"},
         Turns::both,
         {{750, 1334}},
         {{750, 1334}},
         true},
        {"IPHONE_HOME_BUTTON_40_PROFILE",
         "IPHONE_APP_STORE",
         "IPHONE_HOME_BUTTON_40_DISPLAY",
         "IPHONE",
         {"4"},
         Turns::both,
         {{640, 1136}, {640, 1096}},
         {{1080, 1920}},
         true},
        {"IPHONE_HOME_BUTTON_35_PROFILE",
         "IPHONE_APP_STORE",
         "IPHONE_HOME_BUTTON_35_DISPLAY",
         "IPHONE",
         {"3.5"},
         Turns::both,
         {{640, 960}, {640, 920}},
         {},
         false},
        {"IPAD_13_PROFILE",
         "IPAD_APP_STORE",
         "IPAD_13_DISPLAY",
         "IPAD",
         {"13"},
         Turns::both,
         {{2064, 2752}, {2048, 2732}},
         {{1200, 1600}},
         true},
        {"IPAD_11_PROFILE",
         "IPAD_APP_STORE",
         "IPAD_11_DISPLAY",
         "IPAD",
         {"11"},
         Turns::both,
         {{1668, 2420}, {1668, 2388}, {1640, 2360}, {1488, 2266}},
         {{1200, 1600}},
         true},
        {"IPAD_129_PROFILE",
         "IPAD_APP_STORE",
         "IPAD_129_DISPLAY",
         "IPAD",
         {"12.9"},
         Turns::both,
         {{2048, 2732}},
         {{900, 1200}, {1200, 1600}},
         true},
        {"IPAD_105_PROFILE",
         "IPAD_APP_STORE",
         "IPAD_105_DISPLAY",
         "IPAD",
         {"10.5"},
         Turns::both,
         {{1668, 2224}},
         {{1200, 1600}},
         true},
        {"IPAD_97_PROFILE",
         "IPAD_APP_STORE",
         "IPAD_97_DISPLAY",
         "IPAD",
         {"9.7"},
         Turns::both,
         {{1536, 2048}, {768, 1024}},
         {{900, 1200}},
         true},
        {"WATCH_ULTRA_PROFILE",
         "WATCH_APP_STORE",
         "WATCH_ULTRA",
         "APPLE_WATCH",
         {"49 mm"},
         Turns::never,
         {{422, 514}, {410, 502}},
         {},
         false},
        {"WATCH_SERIES_10_PROFILE",
         "WATCH_APP_STORE",
         "WATCH_SERIES_10",
         "APPLE_WATCH",
         {"46 mm"},
         Turns::never,
         {{416, 496}},
         {},
         false},
        {"WATCH_SERIES_7_PROFILE",
         "WATCH_APP_STORE",
         "WATCH_SERIES_7",
         "APPLE_WATCH",
         {"45 mm"},
         Turns::never,
         {{396, 484}},
         {},
         false},
        {"WATCH_SERIES_4_PROFILE",
         "WATCH_APP_STORE",
         "WATCH_SERIES_4",
         "APPLE_WATCH",
         {"44 mm"},
         Turns::never,
         {{368, 448}},
         {},
         false},
        {"WATCH_SERIES_3_PROFILE",
         "WATCH_APP_STORE",
         "WATCH_SERIES_3",
         "APPLE_WATCH",
         {"42 mm"},
         Turns::never,
         {{312, 390}},
         {},
         false},
        {"MAC_PROFILE",
         "MAC_APP_STORE",
         "DEFAULT",
         "MAC",
         {},
         Turns::never,
         {{1280, 800}, {1440, 900}, {2560, 1600}, {2880, 1800}},
         {{1920, 1080}},
         false},
        {"TV_PROFILE",
         "TV_APP_STORE",
         "DEFAULT",
         "APPLE_TV",
         {},
         Turns::never,
         {{1920, 1080}, {3840, 2160}},
         {{1920, 1080}},
         false},
        {"VISION_PRO_PROFILE",
         "VISION_PRO_APP_STORE",
         "DEFAULT",
         "VISION",
         {},
         Turns::never,
         {{3840, 2160}},
         {{3840, 2160}},
         false},
    };
    return rows;
}

constexpr const char* kCreativeGroup = "DEFAULT_PROFILE";
constexpr const char* kScreenshots = "APP_SCREENSHOTS_AND_PREVIEWS";
constexpr const char* kCreative = "CREATIVE_ASSETS";

// What stands in DEFAULT_PROFILE: a picture, or a film, of a fixed ratio within bounds.
struct CreativeSpec {
    const char* placementType;
    Size smallest, largest;
    bool hasFilm;
};

const CreativeSpec kCreativeSpecs[] = {
    {"PRODUCT_PAGE_HEADER_ASSET", {1280, 720}, {3840, 2160}, true},
    {"APP_STORE_SEARCH_RESULTS_ASSET", {1024, 1024}, {2048, 2048}, true},
    {"SEARCH_RESULTS_ADS_ASSET", {1200, 900}, {2400, 1800}, false},
    {"TODAY_TAB_ADS_ASSET", {900, 1200}, {1800, 2400}, false},
    {"RETENTION_MESSAGE_ASSET", {1600, 1000}, {3200, 2000}, false},
    {"EVENT_CARD_ASSET", {1920, 1080}, {3840, 2160}, true},
    {"EVENT_DETAILS_PAGE_ASSET", {1080, 1920}, {2160, 3840}, true},
};

// How many of a type a slot holds, by feature; a type that isn't named has no slot there.
struct Policy {
    const char* feature;
    const char* placementType;
    std::size_t maxCount;
};

constexpr Policy kPolicies[] = {
    {"APP_STORE_VERSIONS", "APP_SCREENSHOT", 10},
    {"APP_STORE_VERSIONS", "IMESSAGE_APP_SCREENSHOT", 10},
    {"APP_STORE_VERSIONS", "APP_PREVIEW", 3},
    {"APP_STORE_VERSIONS", "PRODUCT_PAGE_HEADER_ASSET", 1},
    {"APP_STORE_VERSIONS", "APP_STORE_SEARCH_RESULTS_ASSET", 1},
    {"CUSTOM_PRODUCT_PAGES", "APP_SCREENSHOT", 10},
    {"CUSTOM_PRODUCT_PAGES", "IMESSAGE_APP_SCREENSHOT", 10},
    {"CUSTOM_PRODUCT_PAGES", "APP_PREVIEW", 3},
    {"CUSTOM_PRODUCT_PAGES", "PRODUCT_PAGE_HEADER_ASSET", 1},
    {"PRODUCT_PAGE_OPTIMIZATIONS", "APP_SCREENSHOT", 10},
    {"PRODUCT_PAGE_OPTIMIZATIONS", "APP_PREVIEW", 3},
    {"IN_APP_EVENTS", "EVENT_CARD_ASSET", 1},
    {"IN_APP_EVENTS", "EVENT_DETAILS_PAGE_ASSET", 1},
    {"APPLE_ADS", "SEARCH_RESULTS_ADS_ASSET", 1},
    {"APPLE_ADS", "TODAY_TAB_ADS_ASSET", 1},
    {"RETENTION_MESSAGING", "RETENTION_MESSAGE_ASSET", 1},
};

struct Spec {
    std::string id;
    std::string shortName;
    bool isFilm = false;
    Size smallest{}, largest{};
    std::string ratio;
    bool alphaAllowed = false;
    std::string category;
    std::set<std::string> placementTypes;
};

// Ids look like Apple's; the two that Apple's documents show are theirs.
std::string specID(const std::string& shortName) {
    if (shortName == "i1290x2796a0") return "f56c777c-99ea-5760-97ae-27c5f8cbb884";
    if (shortName == "v886x1920f23~30t15~30u1") return "1861fdcb-eb99-59e6-8c6c-5a07479d9a84";
    std::uint64_t hash = 14695981039346656037u;  // FNV-1a
    for (const char c : shortName) hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211u;
    return fmt::format("{:08x}-{:04x}-5{:03x}-8000-{:012x}", hash >> 32, hash >> 16 & 0xffff, hash & 0xfff,
                       hash & 0xffffffffffff);
}

// The fraction of smallest numbers that is within a thousandth of the true ratio.
std::string nominalRatio(Size size) {
    const double ratio = static_cast<double>(size.width) / size.height;
    for (int denominator = 1; denominator < size.height; ++denominator) {
        const auto numerator = static_cast<int>(std::lround(ratio * denominator));
        if (numerator > 0 && std::abs(static_cast<double>(numerator) / denominator / ratio - 1) < 0.001) {
            return fmt::format("{}:{}", numerator, denominator);
        }
    }
    return fmt::format("{}:{}", size.width, size.height);
}

// All tables in the form in which they are asked.
class Tables {
 public:
    Tables() {
        for (const auto& group : groups()) addGroup(group);
        for (const auto& creative : kCreativeSpecs) addCreative(creative);
    }

    std::vector<Spec> specs;  // pictures and films in the order of the groups
    // By placement type, by group: the ids of the specifications, in order.
    std::map<std::string, std::map<std::string, std::vector<std::string>, std::less<>>, std::less<>> mappings;
    std::map<std::string, std::string, std::less<>> categories;  // by placement type

 private:
    void addGroup(const Group& group) {
        for (const auto size : group.screenshots) {
            for (const auto turned : turns(size, group.turns)) {
                map("APP_SCREENSHOT", group.id, addFixed(turned, false));
                if (group.hasMessages) {
                    map("IMESSAGE_APP_SCREENSHOT", "IMESSAGE_" + std::string(group.id),
                        addFixed(turned, false));
                }
            }
        }
        for (const auto size : group.previews) {
            for (const auto turned : turns(size, group.turns))
                map("APP_PREVIEW", group.id, addFixed(turned, true));
        }
    }

    static Sizes turns(Size size, Turns turns) {
        if (turns == Turns::never) return {size};
        return {size, {size.height, size.width}};
    }

    void map(const std::string& placementType, const std::string& group, Spec& spec) {
        mappings[placementType][group].push_back(spec.id);
        spec.placementTypes.insert(placementType);
        categories[placementType] = spec.category;
    }

    Spec& addFixed(Size size, bool isFilm) {
        return add(isFilm ? fmt::format("v{}x{}f23~30t15~30u1", size.width, size.height)
                          : fmt::format("i{}x{}a0", size.width, size.height),
                   isFilm, size, size, kScreenshots, false);
    }

    void addCreative(const CreativeSpec& creative) {
        const auto name = fmt::format("{}x{}~{}x{}", creative.smallest.width, creative.smallest.height,
                                      creative.largest.width, creative.largest.height);
        map(creative.placementType, kCreativeGroup,
            add("i" + name + "a1", false, creative.smallest, creative.largest, kCreative, true));
        if (!creative.hasFilm) return;
        map(creative.placementType, kCreativeGroup,
            add("v" + name + "f23~30t15~30u1", true, creative.smallest, creative.largest, kCreative, false));
    }

    Spec& add(const std::string& shortName, bool isFilm, Size smallest, Size largest, const char* category,
              bool alphaAllowed) {
        for (auto& spec : specs) {
            if (spec.shortName == shortName) return spec;
        }
        return specs.emplace_back(Spec{specID(shortName),
                                       shortName,
                                       isFilm,
                                       smallest,
                                       largest,
                                       nominalRatio(smallest),
                                       alphaAllowed,
                                       category,
                                       {}});
    }
};

const Tables& tables() {
    static const Tables all;
    return all;
}

Json specJSON(const Spec& spec) {
    Json json{{"specId", spec.id},
              {"shortName", spec.shortName},
              {"dimensions",
               {{"minWidth", spec.smallest.width},
                {"maxWidth", spec.largest.width},
                {"minHeight", spec.smallest.height},
                {"maxHeight", spec.largest.height}}},
              {"aspectRatio", spec.ratio},
              {"compatiblePlacementTypes", spec.placementTypes},
              {"maxFileSize", kMaximumFileSize},
              {"universalAsset", false}};
    if (spec.isFilm) {
        json["frameRates"] = Json::array({{{"minFps", kMinimumFPS}, {"maxFps", kMaximumFPS}}});
        json["duration"] = {{"min", "PT15S"}, {"max", "PT30S"}};
        json["audioRequired"] = true;
        json["fileExtensions"] = {".mp4", ".m4v", ".mov"};
        json["mimeTypes"] = {"video/quicktime", "video/mp4", "video/x-m4v"};
    } else {
        json["alphaAllowed"] = spec.alphaAllowed;
        json["fileExtensions"] = {".jpg", ".jpeg", ".png"};
        json["mimeTypes"] = {"image/jpeg", "image/png"};
    }
    return json;
}

Json groupJSON(const std::string& id, const char* platform, const char* displayClass) {
    return {{"placementProfileGroupId", id}, {"platform", platform}, {"displayClassId", displayClass}};
}

Json groupsJSON() {
    Json list = Json::array();
    for (const auto& group : groups())
        list.push_back(groupJSON(group.id, group.platform, group.displayClass));
    for (const auto& group : groups()) {
        if (!group.hasMessages) continue;
        list.push_back(
            groupJSON("IMESSAGE_" + std::string(group.id), "IMESSAGE_APP_STORE", group.displayClass));
    }
    list.push_back(groupJSON(kCreativeGroup, "ANY", "DEFAULT"));
    return list;
}

Json displayClassesJSON() {
    Json list = Json::array();
    for (const auto& group : groups()) {
        if (std::string_view(group.displayClass) == "DEFAULT") continue;
        list.push_back({{"displayClassId", group.displayClass},
                        {"deviceFamily", group.family},
                        {"screenDimensions", group.inches}});
    }
    list.push_back(
        {{"displayClassId", "DEFAULT"}, {"deviceFamily", nullptr}, {"screenDimensions", Json::array()}});
    return list;
}

Json placementTypesJSON() {
    Json list = Json::array();
    for (const auto& [type, byGroup] : tables().mappings) {
        Json mappings = Json::array();
        for (const auto& [group, specs] : byGroup) {
            mappings.push_back({{"placementGroupId", group}, {"specs", specs}});
        }
        list.push_back({{"placementTypeId", type},
                        {"acceptsAssetCategories", {tables().categories.find(type)->second}},
                        {"specMappings", mappings}});
    }
    return list;
}

Json featuresJSON() {
    std::map<std::string, Json> byFeature;
    for (const auto& policy : kPolicies) {
        Json groupIDs = Json::array();
        for (const auto& [group, specs] : tables().mappings.find(policy.placementType)->second) {
            groupIDs.push_back(group);
        }
        auto& policies = byFeature[policy.feature];
        if (policies.is_null()) policies = Json::array();
        policies.push_back(
            {{"placementType", policy.placementType},
             {"groupLimits", Json::array({{{"groupIds", groupIDs}, {"maxCount", policy.maxCount}}})}});
    }
    Json list = Json::array();
    for (const auto& [feature, policies] : byFeature) {
        list.push_back({{"featureId", feature}, {"placementPolicies", policies}});
    }
    return list;
}

Json specsJSON(bool films) {
    Json list = Json::array();
    for (const auto& spec : tables().specs) {
        if (spec.isFilm == films) list.push_back(specJSON(spec));
    }
    return list;
}

bool holds(const Spec& spec, int width, int height) {
    if (width < spec.smallest.width || width > spec.largest.width) return false;
    if (height < spec.smallest.height || height > spec.largest.height) return false;
    const double ratio = static_cast<double>(spec.smallest.width) / spec.smallest.height;
    return std::abs(static_cast<double>(width) / height / ratio - 1) <= 0.01;
}

// The first specification of the kind and category that the size meets; nullptr when there is none.
const Spec* specOfSize(bool isFilm, std::string_view category, int width, int height, std::string& why) {
    for (const auto& spec : tables().specs) {
        if (spec.isFilm == isFilm && spec.category == category && holds(spec, width, height)) return &spec;
    }
    why = fmt::format("No specification takes {}×{}.", width, height);
    return nullptr;
}

}  // namespace

const Json& attributes() {
    static const Json all{{"features", featuresJSON()},
                          {"placementProfileGroups", groupsJSON()},
                          {"imageSpecs", specsJSON(false)},
                          {"videoSpecs", specsJSON(true)},
                          {"placementTypes", placementTypesJSON()},
                          {"displayClasses", displayClassesJSON()}};
    return all;
}

bool hasGroup(std::string_view group) {
    for (const auto& [type, byGroup] : tables().mappings) {
        if (byGroup.contains(group)) return true;
    }
    return false;
}

bool takesCategory(std::string_view placementType, std::string_view category) {
    const auto found = tables().categories.find(placementType);
    return found != tables().categories.end() && found->second == category;
}

bool takesGroup(std::string_view placementType, std::string_view group) {
    const auto found = tables().mappings.find(placementType);
    return found != tables().mappings.end() && found->second.contains(group);
}

bool takesSpec(std::string_view placementType, std::string_view group, std::string_view specID) {
    if (!takesGroup(placementType, group)) return false;
    const auto& specs = tables().mappings.find(placementType)->second.find(group)->second;
    return std::find(specs.begin(), specs.end(), specID) != specs.end();
}

std::optional<std::size_t> maxCount(std::string_view feature, std::string_view placementType,
                                    std::string_view group) {
    for (const auto& policy : kPolicies) {
        if (policy.feature == feature && policy.placementType == placementType &&
            takesGroup(placementType, group)) {
            return policy.maxCount;
        }
    }
    return std::nullopt;
}

std::string specFor(const Picture& picture, std::string_view category, std::string& why) {
    const auto* spec = specOfSize(false, category, picture.width, picture.height, why);
    if (spec == nullptr) return {};
    if (picture.hasAlpha && !spec->alphaAllowed) {
        why = "The picture has an alpha channel.";
        return {};
    }
    return spec->id;
}

std::string specFor(const Film& film, std::string_view category, std::string& why) {
    const auto* spec = specOfSize(true, category, film.width, film.height, why);
    if (spec == nullptr) return {};
    const auto outside = [](double value, double least, double most) {
        return value < least - kMeasuringError || value > most + kMeasuringError;
    };
    if (outside(film.seconds, kMinimumSeconds, kMaximumSeconds)) {
        why = fmt::format("The video is {:.1f} seconds long.", film.seconds);
    } else if (outside(film.framesPerSecond, kMinimumFPS, kMaximumFPS)) {
        why = fmt::format("The video has {:.1f} frames per second.", film.framesPerSecond);
    } else if (!film.hasAudio) {
        why = "The video has no audio.";
    } else {
        return spec->id;
    }
    return {};
}

}  // namespace kestrin::sandbox::Catalogue
