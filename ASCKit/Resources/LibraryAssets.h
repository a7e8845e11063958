// An app's asset library: images and videos that are uploaded once and placed any number of times.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "ASCKit/Resources/ResourceRequests.h"
#include "ASCKit/Resources/Uploads.h"
#include "KestrinCore/JSONDecoding.h"

namespace kestrin {

// Where the service serves an image in any size and format, as a pattern.
struct ImageTemplate {
    std::string templateURL;  // with "{w}", "{h}" and "{f}" for width, height and format
    std::int64_t width = 0;   // of the image itself, in pixels
    std::int64_t height = 0;

    // The address of the image whose longer side has at most `size` pixels; never larger than the image is.
    // nullopt where the pattern gives no address.
    std::optional<URL> url(std::int64_t size, const std::string& format) const;

    // From an attribute with all three members of their types; nullopt for any other value.
    static std::optional<ImageTemplate> fromAttribute(const JSONValue* value);

    JSONValue toJSON() const;
    static ImageTemplate fromJSON(const JSONValue& value);  // DecodingError

    bool operator==(const ImageTemplate&) const = default;
};

struct ASCLibraryAsset {
    enum class Kind { image, video };

    std::string id;
    Kind kind = Kind::image;
    std::string fileName;       // may be empty
    std::string referenceName;  // may be empty
    std::optional<std::int64_t> fileSize;
    std::optional<std::string> state;
    std::optional<std::string> category;
    std::optional<ImageTemplate> thumbnail;  // of a video its preview frame

    static ASCLibraryAsset fromResource(const ResourceObject& resource);
    static const ResourceFields& fields();  // all that is read of a resource

    JSONValue toJSON() const;
    static ASCLibraryAsset fromJSON(const JSONValue& value);  // DecodingError

    bool operator==(const ASCLibraryAsset&) const = default;
};

namespace ASC {

// The type of a resource of this kind: "appAssetLibraryImages" or "appAssetLibraryVideos".
const char* assetType(ASCLibraryAsset::Kind kind);
bool isAssetType(std::string_view type);

struct NewLibraryAsset {
    ASCLibraryAsset::Kind kind = ASCLibraryAsset::Kind::image;
    std::string libraryID;
    std::string category;
    std::string fileName;
    std::int64_t fileSize = 0;
    std::string referenceName;
    std::optional<std::string> previewFrameTimeCode = std::nullopt;  // of a video; not sent for an image
};

struct ReservedAsset {
    ASCLibraryAsset asset;
    std::vector<UploadOperation> operations;
};

// GET /v1/appAssetLibraries/{id}/images or …/videos, all pages.
std::vector<ASCLibraryAsset> libraryAssets(ASCClient& client, const std::string& libraryID,
                                           ASCLibraryAsset::Kind kind);

// GET /v1/appAssetLibraryImages/{id} or /v1/appAssetLibraryVideos/{id}
std::optional<ASCLibraryAsset> libraryAsset(ASCClient& client, const std::string& id,
                                            ASCLibraryAsset::Kind kind);

// POST /v1/appAssetLibraryImages or /v1/appAssetLibraryVideos: the first of the three steps of an upload. The reply
// says where each byte range goes.
ReservedAsset reserveLibraryAsset(ASCClient& client, const NewLibraryAsset& asset);

// PATCH of the asset: the last step; the service then processes what it received. The reply isn't read.
void commitLibraryAsset(ASCClient& client, const std::string& id, ASCLibraryAsset::Kind kind);

}  // namespace ASC
}  // namespace kestrin
