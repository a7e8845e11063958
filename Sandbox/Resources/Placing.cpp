#include "Sandbox/Resources/Placing.h"

#include <algorithm>
#include <cctype>
#include <stdexcept>
#include <tuple>

#include "Sandbox/Refusal.h"
#include "Sandbox/Resources/States.h"

namespace kestrin::sandbox {
namespace {

constexpr const char* kPlacements = "appAssetLibraryPlacements";
constexpr const char* kPosition = "position";  // kept inside: the service never shows it

// How the reviewed thing of a localization is reached.
struct SurfaceKind {
    const char* relationship;
    const char* localizationType;
    const char* feature;
    std::vector<std::string> way;  // from the localization
    const char* stateAttribute;
};

const SurfaceKind kSurfaces[] = {
    {"appStoreVersionLocalization",
     "appStoreVersionLocalizations",
     "APP_STORE_VERSIONS",
     {"appStoreVersion"},
     "appVersionState"},
    {"appCustomProductPageLocalization",
     "appCustomProductPageLocalizations",
     "CUSTOM_PRODUCT_PAGES",
     {"appCustomProductPageVersion"},
     "state"},
    {"appStoreVersionExperimentTreatmentLocalization",
     "appStoreVersionExperimentTreatmentLocalizations",
     "PRODUCT_PAGE_OPTIMIZATIONS",
     {"appStoreVersionExperimentTreatment", "appStoreVersionExperimentV2"},
     "state"},
};

const SurfaceKind& kindOf(const Resource& localization) {
    for (const auto& kind : kSurfaces) {
        if (localization.type() == kind.localizationType) return kind;
    }
    throw std::logic_error("no surface: " + localization.type());
}

std::string lowercased(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char c) { return static_cast<char>(std::tolower(static_cast<unsigned char>(c))); });
    return text;
}

std::int64_t positionOf(const Resource& placement) {
    return placement.attributes.value(kPosition, std::int64_t{0});
}

}  // namespace

const std::vector<std::string>& surfaceRelationships() {
    static const auto names = [] {
        std::vector<std::string> list;
        for (const auto& kind : kSurfaces) list.emplace_back(kind.relationship);
        return list;
    }();
    return names;
}

Surface surfaceOf(const State& state, const Resource& localization) {
    const auto& kind = kindOf(localization);
    const auto* reviewed = &localization;
    for (const auto& step : kind.way) reviewed = state.store.find(reviewed->related.at(step));
    return {kind.relationship, kind.localizationType, kind.feature, reviewed->ref,
            reviewed->text(kind.stateAttribute)};
}

const Resource& localizationOf(const State& state, const Resource& placement) {
    for (const auto& relationship : surfaceRelationships()) {
        const auto found = placement.related.find(relationship);
        if (found != placement.related.end()) return *state.store.find(found->second);
    }
    throw std::logic_error("a placement on nothing");
}

void requireEditableSurface(const Surface& surface) {
    if (isEditableState(surface.state)) return;
    auto refusal =
        refusals::state("INVALID_STATE", "Media can't be changed in the current state, " + surface.state);
    refusal.meta = {{"state", lowercased(surface.state)}, {"feature", "ASC_FEATURE_" + surface.feature}};
    throw Refusal(refusal);
}

bool standsBefore(const Resource& placement, const Resource& other) {
    const auto place = [](const Resource& each) {
        return std::tuple(each.text("placementGroup"), positionOf(each));
    };
    return place(placement) < place(other);
}

std::vector<Resource*> placementsOn(State& state, const Resource& localization) {
    auto list = state.store.pointing(kPlacements, kindOf(localization).relationship, localization.id());
    std::stable_sort(list.begin(), list.end(), [](Resource* a, Resource* b) { return standsBefore(*a, *b); });
    return list;
}

Resource& place(State& state, const Resource& localization, const std::string& placementType,
                const std::string& placementGroup, const Ref& asset) {
    const auto& kind = kindOf(localization);
    const bool isVideo = asset.type == "appAssetLibraryVideos";
    std::int64_t position = 0;
    for (const auto* other : state.store.pointing(kPlacements, kind.relationship, localization.id())) {
        if (other->text("placementGroup") == placementGroup)
            position = std::max(position, positionOf(*other));
    }
    const auto date = state.store.date();
    return state.store.add(kPlacements,
                           {{"mediaType", isVideo ? "VIDEO" : "IMAGE"},
                            {"placementType", placementType},
                            {"placementGroup", placementGroup.empty() ? Json() : Json(placementGroup)},
                            {"createdDate", date},
                            {"lastModifiedDate", date},
                            {kPosition, position + 1}},
                           {{isVideo ? "video" : "image", asset}, {kind.relationship, localization.ref}});
}

void arrange(State& state, const std::vector<Ref>& order) {
    std::vector<Resource*> placements;
    std::vector<std::int64_t> positions;
    for (const auto& ref : order) {
        auto* placement = &state.store.at(ref);
        if (std::find(placements.begin(), placements.end(), placement) != placements.end()) continue;
        placements.push_back(placement);
        positions.push_back(positionOf(*placement));
    }
    std::sort(positions.begin(), positions.end());
    for (std::size_t i = 0; i < placements.size(); ++i) {
        if (positionOf(*placements[i]) == positions[i]) continue;
        placements[i]->attributes[kPosition] = positions[i];
        placements[i]->attributes["lastModifiedDate"] = state.store.date();
    }
}

void copyPlacements(State& state, const Resource& from, const Resource& to) {
    for (const auto* placement : placementsOn(state, from)) {
        for (const char* medium : {"image", "video"}) {
            const auto asset = placement->related.find(medium);
            if (asset == placement->related.end()) continue;
            place(state, to, placement->text("placementType"), placement->text("placementGroup"),
                  asset->second);
        }
    }
}

}  // namespace kestrin::sandbox
