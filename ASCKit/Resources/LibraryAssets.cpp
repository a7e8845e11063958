#include "ASCKit/Resources/LibraryAssets.h"

#include <algorithm>
#include <cmath>

#include "ASCKit/Resources/AttributeReading.h"
#include "ASCKit/Resources/ResourceLists.h"
#include "KestrinCore/JSONRecords.h"

namespace kestrin {
namespace {

using JSONRecords::setOptional;
using Kind = ASCLibraryAsset::Kind;

constexpr std::string_view kImageType = "appAssetLibraryImages";
constexpr std::string_view kVideoType = "appAssetLibraryVideos";

std::optional<ImageTemplate> thumbnailOf(const ResourceObject& resource, Kind kind) {
    if (kind == Kind::image)
        return ImageTemplate::fromAttribute(valueIn(resource.attributes, std::string("imageAsset")));
    const auto& frame = AttributeReading::objectOrEmpty(resource.attributes, "previewFrameImage");
    return ImageTemplate::fromAttribute(valueIn(frame, std::string("image")));
}

std::string replacingAll(std::string text, std::string_view what, const std::string& by) {
    for (auto at = text.find(what); at != std::string::npos; at = text.find(what, at + by.size())) {
        text.replace(at, what.size(), by);
    }
    return text;
}

std::string scaled(std::int64_t side, double scale) {
    return std::to_string(std::max<std::int64_t>(std::llround(scale * static_cast<double>(side)), 1));
}

std::int64_t requiredInteger(const ObjectDecoder& members, std::string_view key) {
    const auto integer = members.optionalInteger(key);
    if (!integer) ObjectDecoder::fail(key, "missing");
    return *integer;
}

Kind kindNamed(const std::string& name) {
    if (name == "image") return Kind::image;
    if (name == "video") return Kind::video;
    ObjectDecoder::fail("kind", "expected image or video");
}

}  // namespace

std::optional<URL> ImageTemplate::url(std::int64_t size, const std::string& format) const {
    const auto longest = std::max({width, height, std::int64_t{1}});
    const double scale = std::min(static_cast<double>(size) / static_cast<double>(longest), 1.0);
    auto text = replacingAll(templateURL, "{w}", scaled(width, scale));
    text = replacingAll(std::move(text), "{h}", scaled(height, scale));
    return URL::parse(replacingAll(std::move(text), "{f}", format));
}

std::optional<ImageTemplate> ImageTemplate::fromAttribute(const JSONValue* value) {
    const auto* object = value ? value->objectValue() : nullptr;
    if (!object) return std::nullopt;
    const auto pattern = AttributeReading::text(*object, "templateUrl");
    const auto width = AttributeReading::integer(*object, "width");
    const auto height = AttributeReading::integer(*object, "height");
    if (!pattern || !width || !height) return std::nullopt;
    return ImageTemplate{*pattern, *width, *height};
}

JSONValue ImageTemplate::toJSON() const {
    return JSONObject{{"templateURL", templateURL}, {"width", width}, {"height", height}};
}

ImageTemplate ImageTemplate::fromJSON(const JSONValue& value) {
    const ObjectDecoder members(value);
    return {members.string("templateURL"), requiredInteger(members, "width"),
            requiredInteger(members, "height")};
}

// What is read below, the members of an image template included.
const ResourceFields& ASCLibraryAsset::fields() {
    static const ResourceFields kFields = {
        "fileName",          "referenceName", "fileSize",    "state", "category", "imageAsset",
        "previewFrameImage", "image",         "templateUrl", "width", "height",
    };
    return kFields;
}

ASCLibraryAsset ASCLibraryAsset::fromResource(const ResourceObject& resource) {
    const auto kind = resource.type == kVideoType ? Kind::video : Kind::image;
    return {
        .id = resource.id,
        .kind = kind,
        .fileName = resource.string("fileName").value_or(""),
        .referenceName = resource.string("referenceName").value_or(""),
        .fileSize = AttributeReading::integer(resource.attributes, "fileSize"),
        .state = resource.string("state"),
        .category = resource.string("category"),
        .thumbnail = thumbnailOf(resource, kind),
    };
}

JSONValue ASCLibraryAsset::toJSON() const {
    JSONObject members{
        {"id", id},
        {"kind", kind == Kind::video ? "video" : "image"},
        {"fileName", fileName},
        {"referenceName", referenceName},
    };
    setOptional(members, "fileSize", fileSize);
    setOptional(members, "state", state);
    setOptional(members, "category", category);
    if (thumbnail) members.emplace("thumbnail", thumbnail->toJSON());
    return members;
}

ASCLibraryAsset ASCLibraryAsset::fromJSON(const JSONValue& value) {
    const ObjectDecoder members(value);
    return {
        .id = members.string("id"),
        .kind = kindNamed(members.string("kind")),
        .fileName = members.string("fileName"),
        .referenceName = members.string("referenceName"),
        .fileSize = members.optionalInteger("fileSize"),
        .state = members.optionalString("state"),
        .category = members.optionalString("category"),
        .thumbnail = members.optionalRecord<ImageTemplate>("thumbnail"),
    };
}

namespace ASC {

const char* assetType(ASCLibraryAsset::Kind kind) {
    return kind == Kind::video ? kVideoType.data() : kImageType.data();
}

bool isAssetType(std::string_view type) {
    return type == kImageType || type == kVideoType;
}

std::vector<ASCLibraryAsset> libraryAssets(ASCClient& client, const std::string& libraryID, Kind kind) {
    ASCRequest request;
    request.path = "/v1/appAssetLibraries/" + libraryID + (kind == Kind::video ? "/videos" : "/images");
    request.query = {QueryParameter::limit(kPageSize)};
    std::vector<ASCLibraryAsset> assets;
    for (const auto& resource : client.all(request))
        assets.push_back(ASCLibraryAsset::fromResource(resource));
    return assets;
}

std::optional<ASCLibraryAsset> libraryAsset(ASCClient& client, const std::string& id, Kind kind) {
    ASCRequest request;
    request.path = "/v1/";
    request.path.append(assetType(kind)).append("/").append(id);
    const auto resource = one(client, request);
    return resource ? std::optional(ASCLibraryAsset::fromResource(*resource)) : std::nullopt;
}

ReservedAsset reserveLibraryAsset(ASCClient& client, const NewLibraryAsset& asset) {
    JSONObject attributes{
        {"category", asset.category},
        {"fileName", asset.fileName},
        {"fileSize", asset.fileSize},
        {"referenceName", asset.referenceName},
    };
    if (asset.kind == Kind::video)
        setOptional(attributes, "previewFrameTimeCode", asset.previewFrameTimeCode);
    const auto created = create(
        client, {.type = assetType(asset.kind),
                 .attributes = std::move(attributes),
                 .relationships = {{"assetLibrary", relationship("appAssetLibraries", asset.libraryID)}}});
    return {ASCLibraryAsset::fromResource(created), UploadOperation::operations(created.attributes)};
}

void commitLibraryAsset(ASCClient& client, const std::string& id, Kind kind) {
    update(client, {.type = assetType(kind), .id = id, .attributes = {{"uploaded", true}}});
}

}  // namespace ASC
}  // namespace kestrin
