#include "ASCKit/Resources/Placements.h"

#include "ASCKit/Resources/ResourceLists.h"

namespace kestrin {
namespace {

constexpr const char* kPlacements = "appAssetLibraryPlacements";

struct ParentNames {
    const char* type;
    const char* relationshipKey;
};

ParentNames namesOf(PlacementParent::Kind kind) {
    switch (kind) {
        case PlacementParent::Kind::versionLocalization:
            return {"appStoreVersionLocalizations", "appStoreVersionLocalization"};
        case PlacementParent::Kind::customPageLocalization:
            return {"appCustomProductPageLocalizations", "appCustomProductPageLocalization"};
        case PlacementParent::Kind::treatmentLocalization:
            return {"appStoreVersionExperimentTreatmentLocalizations",
                    "appStoreVersionExperimentTreatmentLocalization"};
    }
    return {};
}

}  // namespace

// What is read below.
const ResourceFields& ASCPlacement::fields() {
    static const ResourceFields kFields = {"placementGroup", "placementType", "state", "image", "video"};
    return kFields;
}

ASCPlacement::ASCPlacement(const ResourceObject& resource)
    : id(resource.id),
      group(resource.string("placementGroup").value_or("")),
      type(resource.string("placementType").value_or("")),
      state(resource.string("state")),
      assetID(resource.relatedID("image")) {
    if (!assetID) assetID = resource.relatedID("video");
}

const char* PlacementParent::type() const {
    return namesOf(kind).type;
}

const char* PlacementParent::relationshipKey() const {
    return namesOf(kind).relationshipKey;
}

namespace ASC {

PlacementList placements(ASCClient& client, const PlacementParent& parent) {
    ASCRequest request;
    request.path = std::string("/v1/") + parent.type() + "/" + parent.id + "/placements";
    request.query = {QueryParameter::include({"image", "video"}),
                     QueryParameter::sort({"placementGroupPosition"}), QueryParameter::limit(kPageSize)};
    static const ResourceFields kFields = ResourceFields(ASCPlacement::fields()) += ASCLibraryAsset::fields();
    PlacementList list;
    for (const auto& page : client.pages(request, kFields)) {
        for (const auto& resource : page.data) list.placements.emplace_back(resource);
        for (const auto& resource : page.included) {
            if (isAssetType(resource.type)) list.assets.push_back(ASCLibraryAsset::fromResource(resource));
        }
    }
    return list;
}

ASCPlacement createPlacement(ASCClient& client, const NewPlacement& placement) {
    const bool isVideo = placement.assetKind == ASCLibraryAsset::Kind::video;
    return ASCPlacement(create(
        client,
        {.type = kPlacements,
         .attributes = {{"placementType", placement.type}, {"placementGroup", placement.group}},
         .relationships = {
             {isVideo ? "video" : "image", relationship(assetType(placement.assetKind), placement.assetID)},
             {placement.parent.relationshipKey(), relationship(placement.parent.type(), placement.parent.id)},
         }}));
}

void deletePlacement(ASCClient& client, const std::string& id) {
    ASCRequest request;
    request.method = HTTPMethod::remove;
    request.path = std::string("/v1/") + kPlacements + "/" + id;
    client.data(request);
}

void orderPlacements(ASCClient& client, const std::vector<std::string>& placementIDs,
                     const std::string& group, const PlacementParent& parent) {
    create(client, {.type = "appAssetLibraryPlacementOrderingRequests",
                    .attributes = {{"placementGroup", group}},
                    .relationships = {{"orderedPlacements", relationship(kPlacements, placementIDs)},
                                      {parent.relationshipKey(), relationship(parent.type(), parent.id)}}});
}

}  // namespace ASC
}  // namespace kestrin
