#include "ASCKit/Resources/AssetLibraryRefData.h"

#include <algorithm>

#include "ASCKit/Resources/AttributeReading.h"
#include "ASCKit/Resources/ResourceRequests.h"

namespace kestrin {
namespace {

using namespace AttributeReading;
using RefData = AssetLibraryRefData;

std::vector<RefData::Group> readGroups(const JSONObject& attributes) {
    std::vector<RefData::Group> groups;
    forEachObject(attributes, "placementProfileGroups", [&](const JSONObject& item) {
        const auto id = text(item, "placementProfileGroupId");
        if (id) groups.push_back({*id, textOrEmpty(item, "platform"), textOrEmpty(item, "displayClassId")});
    });
    return groups;
}

RefData::PlacementType readPlacementType(const std::string& id, const JSONObject& item) {
    RefData::PlacementType type{id, strings(item, "acceptsAssetCategories"), {}};
    forEachObject(item, "specMappings", [&](const JSONObject& mapping) {
        const auto group = text(mapping, "placementGroupId");
        if (group && isList(mapping, "specs")) type.specIDsByGroup[*group] = strings(mapping, "specs");
    });
    return type;
}

std::vector<RefData::PlacementType> readPlacementTypes(const JSONObject& attributes) {
    std::vector<RefData::PlacementType> types;
    forEachObject(attributes, "placementTypes", [&](const JSONObject& item) {
        if (const auto id = text(item, "placementTypeId")) types.push_back(readPlacementType(*id, item));
    });
    return types;
}

RefData::Spec readSpec(const std::string& id, RefData::Spec::Kind kind, const JSONObject& item) {
    const auto& dimensions = objectOrEmpty(item, "dimensions");
    return {
        .id = id,
        .kind = kind,
        .shortName = textOrEmpty(item, "shortName"),
        .minWidth = integer(dimensions, "minWidth"),
        .maxWidth = integer(dimensions, "maxWidth"),
        .minHeight = integer(dimensions, "minHeight"),
        .maxHeight = integer(dimensions, "maxHeight"),
        .aspectRatio = text(item, "aspectRatio"),
        .alphaAllowed = boolean(item, "alphaAllowed"),
        .fileExtensions = strings(item, "fileExtensions"),
        .maxFileSize = integer(item, "maxFileSize"),
    };
}

std::map<std::string, RefData::Spec> readSpecs(const JSONObject& attributes) {
    std::map<std::string, RefData::Spec> specs;
    const auto read = [&](const char* key, RefData::Spec::Kind kind) {
        forEachObject(attributes, key, [&](const JSONObject& item) {
            if (const auto id = text(item, "specId")) specs.insert_or_assign(*id, readSpec(*id, kind, item));
        });
    };
    read("imageSpecs", RefData::Spec::Kind::image);
    read("videoSpecs", RefData::Spec::Kind::video);
    return specs;
}

std::vector<RefData::DisplayClass> readDisplayClasses(const JSONObject& attributes) {
    std::vector<RefData::DisplayClass> classes;
    forEachObject(attributes, "displayClasses", [&](const JSONObject& item) {
        const auto id = text(item, "displayClassId");
        if (id) classes.push_back({*id, text(item, "deviceFamily"), strings(item, "screenDimensions")});
    });
    return classes;
}

// The limits of custom pages and tests stand in features of their own, which don't count.
const JSONObject* storeVersionsFeature(const JSONObject& attributes) {
    const JSONObject* found = nullptr;
    forEachObject(attributes, "features", [&](const JSONObject& item) {
        if (!found && text(item, "featureId") == "APP_STORE_VERSIONS") found = &item;
    });
    return found;
}

void readGroupLimits(const JSONObject& policy, std::map<std::string, std::int64_t>& limits) {
    forEachObject(policy, "groupLimits", [&](const JSONObject& limit) {
        const auto maxCount = integer(limit, "maxCount");
        if (!maxCount) return;
        for (const auto& group : strings(limit, "groupIds")) limits[group] = *maxCount;
    });
}

std::map<std::string, std::map<std::string, std::int64_t>> readMaxCounts(const JSONObject& attributes) {
    std::map<std::string, std::map<std::string, std::int64_t>> maxCounts;
    const auto* feature = storeVersionsFeature(attributes);
    if (!feature) return maxCounts;
    forEachObject(*feature, "placementPolicies", [&](const JSONObject& policy) {
        const auto type = text(policy, "placementType");
        if (!type) return;
        std::map<std::string, std::int64_t> limits;
        readGroupLimits(policy, limits);
        for (const auto& [group, maxCount] : limits) maxCounts[*type][group] = maxCount;
    });
    return maxCounts;
}

}  // namespace

AssetLibraryRefData AssetLibraryRefData::fromAttributes(const JSONObject& attributes) {
    return {
        .groups = readGroups(attributes),
        .placementTypes = readPlacementTypes(attributes),
        .specs = readSpecs(attributes),
        .displayClasses = readDisplayClasses(attributes),
        .maxCounts = readMaxCounts(attributes),
    };
}

const AssetLibraryRefData::Group* AssetLibraryRefData::group(std::string_view id) const {
    const auto found = std::find_if(groups.begin(), groups.end(), [&](const Group& g) { return g.id == id; });
    return found == groups.end() ? nullptr : &*found;
}

const AssetLibraryRefData::DisplayClass* AssetLibraryRefData::displayClass(const Group& group) const {
    const auto found = std::find_if(displayClasses.begin(), displayClasses.end(),
                                    [&](const DisplayClass& c) { return c.id == group.displayClassID; });
    return found == displayClasses.end() ? nullptr : &*found;
}

std::optional<std::int64_t> AssetLibraryRefData::maxCount(const std::string& type,
                                                          const std::string& group) const {
    const auto* limit = valueIn(valueOrEmpty(maxCounts, type), group);
    return limit ? std::optional(*limit) : std::nullopt;
}

AssetLibraryRefData ASC::assetLibraryRefData(ASCClient& client) {
    ASCRequest request;
    request.path = "/v1/appAssetLibraryRefData";
    const auto resource = one(client, request);
    if (!resource) throw ASCError(ASCError::InvalidResponse{request.path});
    return AssetLibraryRefData::fromAttributes(resource->attributes);
}

}  // namespace kestrin
