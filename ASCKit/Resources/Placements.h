// Placements: which assets of the library stand in which slot of which localization.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "ASCKit/Resources/LibraryAssets.h"

namespace kestrin {

struct ASCPlacement {
    std::string id;
    std::string group;  // may be empty
    std::string type;   // may be empty
    std::optional<std::string> state;
    std::optional<std::string> assetID;

    explicit ASCPlacement(const ResourceObject& resource);
    static const ResourceFields& fields();  // all that is read of a resource
    bool operator==(const ASCPlacement&) const = default;
};

// The localization that holds a slot.
struct PlacementParent {
    enum class Kind { versionLocalization, customPageLocalization, treatmentLocalization };
    Kind kind;
    std::string id;

    const char* type() const;             // of the resource; also its segment in paths
    const char* relationshipKey() const;  // under which a placement names it

    bool operator==(const PlacementParent&) const = default;
};

namespace ASC {

struct NewPlacement {
    std::string type;
    std::string group;
    ASCLibraryAsset::Kind assetKind = ASCLibraryAsset::Kind::image;
    std::string assetID;
    PlacementParent parent;
};

struct PlacementList {
    std::vector<ASCPlacement> placements;  // in the order of the page
    std::vector<ASCLibraryAsset> assets;   // those the placements refer to, as far as the reply includes them
};

// GET /v1/{parent type}/{id}/placements, all pages.
PlacementList placements(ASCClient& client, const PlacementParent& parent);

// POST /v1/appAssetLibraryPlacements
ASCPlacement createPlacement(ASCClient& client, const NewPlacement& placement);

// DELETE /v1/appAssetLibraryPlacements/{id}: the one thing that this client ever deletes.
void deletePlacement(ASCClient& client, const std::string& id);

// POST /v1/appAssetLibraryPlacementOrderingRequests: the placements of one slot in the wanted order.
void orderPlacements(ASCClient& client, const std::vector<std::string>& placementIDs,
                     const std::string& group, const PlacementParent& parent);

}  // namespace ASC
}  // namespace kestrin
