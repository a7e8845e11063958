#include <fmt/format.h>

#include "Sandbox/Catalogue.h"
#include "Sandbox/Document.h"
#include "Sandbox/Reads.h"
#include "Sandbox/Refusal.h"
#include "Sandbox/Resources/Endpoints.h"
#include "Sandbox/Resources/Placing.h"
#include "Sandbox/Resources/Values.h"
#include "Sandbox/WriteForm.h"

namespace kestrin::sandbox {
namespace {

constexpr const char* kPlacements = "appAssetLibraryPlacements";
constexpr std::size_t kShownInOrder = 10;  // of an ordering reply, unless the query says otherwise

// A relationship of a placement and the type at its other end.
struct SurfaceType {
    const char* relationship;
    const char* type;
};
constexpr SurfaceType kSurfaceTypes[] = {
    {"appStoreVersionLocalization", "appStoreVersionLocalizations"},
    {"appCustomProductPageLocalization", "appCustomProductPageLocalizations"},
    {"appStoreVersionExperimentTreatmentLocalization", "appStoreVersionExperimentTreatmentLocalizations"},
};

QueryRules placementListRules(const SurfaceType& below) {
    QueryRules rules;
    rules.filters = {{"placementType", kPlacementTypes},
                     {"placementGroup"},
                     {"state", kPlacementStates},
                     {"image"},
                     {"video"},
                     {"appEventLocalization"},
                     {"id"}};
    rules.sorts = {"createdDate", "lastModifiedDate", "placementGroupPosition"};
    rules.includes = {"image", "video", "appEventLocalization"};
    rules.fields = {kPlacements, "appAssetLibraryImages", "appAssetLibraryVideos", "appEventLocalizations"};
    for (const auto& surface : kSurfaceTypes) {
        if (&surface != &below) rules.filters.push_back({surface.relationship});
        rules.includes.emplace_back(surface.relationship);
        rules.fields.emplace_back(surface.type);
    }
    return rules;
}

std::vector<RelationshipRule> surfaceRules() {
    std::vector<RelationshipRule> rules;
    for (const auto& surface : kSurfaceTypes)
        rules.push_back({.name = surface.relationship, .type = surface.type});
    return rules;
}

[[noreturn]] void refuseSlot(std::string detail) {
    throw Refusal(refusals::attribute("INVALID", "placementType", std::move(detail)));
}

void checkAsset(const Resource& asset, const Resource& localization, const State& state) {
    for (const char* path : {"appStoreVersion.app", "appCustomProductPageVersion.appCustomProductPage.app",
                             "appStoreVersionExperimentTreatment.appStoreVersionExperimentV2.app"}) {
        const auto apps = state.store.valuesAt(localization, path);
        if (!apps.empty() && apps.front() != asset.relatedID("assetLibrary")) {
            throw Refusal(
                refusals::relationship("INVALID", "image", "The asset is in the library of another app"));
        }
    }
    const auto assetState = asset.text("state");
    if (assetState != "FAILED" && assetState != "REJECTED" && assetState != "ARCHIVED") return;
    throw Refusal(
        refusals::state("INVALID_ASSET_STATE", fmt::format("The asset can't be placed: {}", assetState)));
}

// Category, type, group and specification must go together; a specification is known only after processing.
void checkSlot(const State& state, const Resource& asset, const std::string& type, const std::string& group) {
    if (!Catalogue::takesCategory(type, asset.text("category"))) {
        refuseSlot(fmt::format("'{}' and '{}' don't go together", type, asset.text("category")));
    }
    if (!Catalogue::takesGroup(type, group))
        refuseSlot(fmt::format("'{}' and '{}' don't go together", type, group));
    const auto spec = asset.text("specId");
    if (spec.empty() || !state.settings.inspectsMedia || Catalogue::takesSpec(type, group, spec)) return;
    refuseSlot(fmt::format("The asset doesn't fit '{}' of '{}'", type, group));
}

void checkRoom(State& state, const Resource& localization, const Surface& surface, const std::string& type,
               const std::string& group) {
    const auto limit = Catalogue::maxCount(surface.feature, type, group);
    if (!limit) refuseSlot(fmt::format("'{}' isn't offered here", type));
    std::size_t held = 0;
    for (const auto* other : placementsOn(state, localization)) {
        held += other->text("placementType") == type && other->text("placementGroup") == group;
    }
    if (held < *limit) return;
    throw Refusal(ErrorItem{409, "ENTITY_ERROR.RELATIONSHIP.INVALID.TOO_MANY",
                            fmt::format("'{}' of '{}' holds at most {}", type, group, *limit),
                            "/data/attributes/placementGroup"});
}

HTTPReply createPlacement(State& state, const Call& call) {
    static const auto form = [] {
        WriteForm making{
            .type = kPlacements,
            .attributes = {{.name = "placementType", .need = Need::required, .values = kPlacementTypes},
                           {.name = "placementGroup"}},
            .relationships = surfaceRules()};
        making.relationships.push_back({.name = "image", .type = "appAssetLibraryImages"});
        making.relationships.push_back({.name = "video", .type = "appAssetLibraryVideos"});
        return making;
    }();
    const auto write = readCreate(call.request.body, form, state.store);
    const auto& asset = state.store.at(write.onlyRef({"image", "video"}));
    const auto& localization = state.store.at(write.onlyRef(surfaceRelationships()));
    const auto type = write.text("placementType"), group = write.text("placementGroup");
    const auto surface = surfaceOf(state, localization);
    requireEditableSurface(surface);
    checkAsset(asset, localization, state);
    checkSlot(state, asset, type, group);
    checkRoom(state, localization, surface, type, group);
    return createdReply(state, call, place(state, localization, type, group, asset.ref));
}

HTTPReply deletePlacement(State& state, const Call& call) {
    const auto& placement = named(state, kPlacements, call);
    requireEditableSurface(surfaceOf(state, localizationOf(state, placement)));
    state.store.remove(placement.ref);
    return noContent();
}

void checkOrdered(const State& state, const std::vector<Ref>& order, const Resource& localization,
                  const std::string& group) {
    for (const auto& ref : order) {
        const auto& placement = *state.store.find(ref);
        if (&localizationOf(state, placement) == &localization && placement.text("placementGroup") == group)
            continue;
        throw Refusal(refusals::relationship(
            "INVALID", "orderedPlacements",
            fmt::format("The placement '{}' isn't in '{}' of this localization", ref.id, group)));
    }
}

Json orderingDocument(State& state, const Call& call, const std::vector<Ref>& order) {
    const auto limits = call.options.relationshipLimits;
    const auto given = limits.find("orderedPlacements");
    const auto limit = given == limits.end() ? kShownInOrder : given->second;
    Json data = Json::array();
    for (std::size_t i = 0; i < std::min(limit, order.size()); ++i) {
        data.push_back({{"type", kPlacements}, {"id", order[i].id}});
    }
    const auto id = state.store.makeID("appAssetLibraryPlacementOrderingRequests");
    const auto self = state.root + "/v1/appAssetLibraryPlacementOrderingRequests/" + id;
    const Json paging{{"total", order.size()}, {"limit", limit}};
    return {{"data",
             {{"type", "appAssetLibraryPlacementOrderingRequests"},
              {"id", id},
              {"relationships", {{"orderedPlacements", {{"data", data}, {"meta", {{"paging", paging}}}}}}}}},
            {"links", {{"self", self}}}};
}

HTTPReply orderPlacements(State& state, const Call& call) {
    static const auto form = [] {
        WriteForm ordering{.type = "appAssetLibraryPlacementOrderingRequests",
                           .attributes = {{.name = "placementGroup", .need = Need::required}},
                           .relationships = surfaceRules()};
        ordering.relationships.push_back(
            {.name = "orderedPlacements", .type = kPlacements, .need = Need::required, .many = true});
        return ordering;
    }();
    const auto write = readCreate(call.request.body, form, state.store);
    const auto& localization = state.store.at(write.onlyRef(surfaceRelationships()));
    requireEditableSurface(surfaceOf(state, localization));
    const auto& order = write.many.at("orderedPlacements");
    checkOrdered(state, order, localization, write.text("placementGroup"));
    arrange(state, order);
    return jsonReply(201, orderingDocument(state, call, order));
}

}  // namespace

void addPlacementEndpoints(Router& router) {
    for (const auto& surface : kSurfaceTypes) {
        router.add(listEndpoint(fmt::format("/v1/{}/{{id}}/placements", surface.type),
                                placementListRules(surface),
                                {.type = kPlacements,
                                 .parent = surface.type,
                                 .via = surface.relationship,
                                 .specialSort = "placementGroupPosition",
                                 .specialLess = [](const State&, const Resource& a, const Resource& b) {
                                     return standsBefore(a, b);
                                 }}));
    }
    QueryRules orderingRules;
    orderingRules.includes = {"orderedPlacements"};
    orderingRules.relationshipLimits = {"orderedPlacements"};
    orderingRules.fields = {"appAssetLibraryPlacementOrderingRequests", kPlacements};
    router.add({"POST", "/v1/appAssetLibraryPlacements", {}, createPlacement});
    router.add({"DELETE", "/v1/appAssetLibraryPlacements/{id}", {}, deletePlacement});
    router.add({"POST", "/v1/appAssetLibraryPlacementOrderingRequests", orderingRules, orderPlacements});
}

}  // namespace kestrin::sandbox
