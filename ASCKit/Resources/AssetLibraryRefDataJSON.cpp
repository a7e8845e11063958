// The cached form of the reference data: exactly the names of the fields.
#include "ASCKit/Resources/AssetLibraryRefData.h"
#include "KestrinCore/JSONRecords.h"

namespace kestrin {
namespace {

using RefData = AssetLibraryRefData;
using JSONRecords::setOptional;

JSONValue listOf(const std::vector<std::string>& strings) {
    return JSONArray(strings.begin(), strings.end());
}

template <class Record>
JSONValue listOf(const std::vector<Record>& records, JSONValue (*encode)(const Record&)) {
    JSONArray array;
    for (const auto& record : records) array.push_back(encode(record));
    return array;
}

JSONValue encodeGroup(const RefData::Group& group) {
    return JSONObject{
        {"id", group.id}, {"storefront", group.storefront}, {"displayClassID", group.displayClassID}};
}

JSONValue encodePlacementType(const RefData::PlacementType& type) {
    JSONObject specIDs;
    for (const auto& [group, ids] : type.specIDsByGroup) specIDs.emplace(group, listOf(ids));
    return JSONObject{
        {"id", type.id}, {"assetCategories", listOf(type.assetCategories)}, {"specIDsByGroup", specIDs}};
}

JSONValue encodeSpec(const RefData::Spec& spec) {
    JSONObject members{
        {"id", spec.id},
        {"kind", spec.kind == RefData::Spec::Kind::video ? "video" : "image"},
        {"shortName", spec.shortName},
        {"fileExtensions", listOf(spec.fileExtensions)},
    };
    setOptional(members, "minWidth", spec.minWidth);
    setOptional(members, "maxWidth", spec.maxWidth);
    setOptional(members, "minHeight", spec.minHeight);
    setOptional(members, "maxHeight", spec.maxHeight);
    setOptional(members, "aspectRatio", spec.aspectRatio);
    setOptional(members, "alphaAllowed", spec.alphaAllowed);
    setOptional(members, "maxFileSize", spec.maxFileSize);
    return members;
}

JSONValue encodeDisplayClass(const RefData::DisplayClass& displayClass) {
    JSONObject members{{"id", displayClass.id}, {"screenDimensions", listOf(displayClass.screenDimensions)}};
    setOptional(members, "deviceFamily", displayClass.deviceFamily);
    return members;
}

const JSONArray& requiredArray(const ObjectDecoder& members, std::string_view key) {
    const auto* array = members.optionalArray(key);
    if (!array) ObjectDecoder::fail(key, "missing");
    return *array;
}

const JSONObject& requiredObject(const ObjectDecoder& members, std::string_view key) {
    const auto* object = members.optionalObject(key);
    if (!object) ObjectDecoder::fail(key, "missing");
    return *object;
}

std::vector<std::string> requiredStrings(const ObjectDecoder& members, std::string_view key) {
    requiredArray(members, key);
    return members.stringList(key);
}

RefData::Group decodeGroup(const JSONValue& value) {
    const ObjectDecoder members(value);
    return {members.string("id"), members.string("storefront"), members.string("displayClassID")};
}

RefData::PlacementType decodePlacementType(const JSONValue& value) {
    const ObjectDecoder members(value);
    RefData::PlacementType type{members.string("id"), requiredStrings(members, "assetCategories"), {}};
    const JSONValue byGroup(requiredObject(members, "specIDsByGroup"));
    const ObjectDecoder groups(byGroup);
    for (const auto& [group, ids] : *byGroup.objectValue()) {
        type.specIDsByGroup.emplace(group, requiredStrings(groups, group));
    }
    return type;
}

RefData::Spec::Kind decodeKind(const std::string& kind) {
    if (kind == "image") return RefData::Spec::Kind::image;
    if (kind == "video") return RefData::Spec::Kind::video;
    ObjectDecoder::fail("kind", "expected image or video");
}

RefData::Spec decodeSpec(const JSONValue& value) {
    const ObjectDecoder members(value);
    return {
        .id = members.string("id"),
        .kind = decodeKind(members.string("kind")),
        .shortName = members.string("shortName"),
        .minWidth = members.optionalInteger("minWidth"),
        .maxWidth = members.optionalInteger("maxWidth"),
        .minHeight = members.optionalInteger("minHeight"),
        .maxHeight = members.optionalInteger("maxHeight"),
        .aspectRatio = members.optionalString("aspectRatio"),
        .alphaAllowed = members.optionalBool("alphaAllowed"),
        .fileExtensions = requiredStrings(members, "fileExtensions"),
        .maxFileSize = members.optionalInteger("maxFileSize"),
    };
}

RefData::DisplayClass decodeDisplayClass(const JSONValue& value) {
    const ObjectDecoder members(value);
    return {members.string("id"), members.optionalString("deviceFamily"),
            requiredStrings(members, "screenDimensions")};
}

std::map<std::string, std::int64_t> decodeLimits(const JSONValue& value) {
    const ObjectDecoder members(value);
    std::map<std::string, std::int64_t> limits;
    for (const auto& [group, count] : *value.objectValue()) {
        const auto limit = members.optionalInteger(group);
        if (!limit) ObjectDecoder::fail(group, "expected an integer");
        limits.emplace(group, *limit);
    }
    return limits;
}

template <class Record>
std::vector<Record> decodeList(const JSONArray& array, Record (*decode)(const JSONValue&)) {
    std::vector<Record> records;
    for (const auto& item : array) records.push_back(decode(item));
    return records;
}

}  // namespace

JSONValue AssetLibraryRefData::toJSON() const {
    JSONObject specTable;
    for (const auto& [id, spec] : specs) specTable.emplace(id, encodeSpec(spec));
    JSONObject limits;
    for (const auto& [type, byGroup] : maxCounts) {
        JSONObject counts;
        for (const auto& [groupID, count] : byGroup) counts.emplace(groupID, count);
        limits.emplace(type, std::move(counts));
    }
    return JSONObject{
        {"groups", listOf(groups, encodeGroup)},
        {"placementTypes", listOf(placementTypes, encodePlacementType)},
        {"specs", std::move(specTable)},
        {"displayClasses", listOf(displayClasses, encodeDisplayClass)},
        {"maxCounts", std::move(limits)},
    };
}

AssetLibraryRefData AssetLibraryRefData::fromJSON(const JSONValue& value) {
    const ObjectDecoder members(value);
    AssetLibraryRefData data;
    data.groups = decodeList(requiredArray(members, "groups"), decodeGroup);
    data.placementTypes = decodeList(requiredArray(members, "placementTypes"), decodePlacementType);
    for (const auto& [id, spec] : requiredObject(members, "specs")) data.specs.emplace(id, decodeSpec(spec));
    data.displayClasses = decodeList(requiredArray(members, "displayClasses"), decodeDisplayClass);
    for (const auto& [type, limits] : requiredObject(members, "maxCounts")) {
        data.maxCounts.emplace(type, decodeLimits(limits));
    }
    return data;
}

}  // namespace kestrin
