// What slots of a product page exist and what they accept, as App Store Connect publishes it.
//
// There is no table of device sizes in this program: every check of a size and every limit of a slot comes from
// this document. The published form is boiled down to five tables, and these are what the cache keeps.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "KestrinCore/JSONDecoding.h"

namespace kestrin {

class ASCClient;

struct AssetLibraryRefData {
    // A placement group: what a slot belongs to, such as one size of device.
    struct Group {
        std::string id;
        std::string storefront;      // may be empty
        std::string displayClassID;  // may be empty
        bool operator==(const Group&) const = default;
    };

    struct PlacementType {
        std::string id;
        std::vector<std::string> assetCategories;
        std::map<std::string, std::vector<std::string>> specIDsByGroup;  // by group id
        bool operator==(const PlacementType&) const = default;
    };

    // What one kind of image or video has to be like. An absent bound doesn't bind.
    struct Spec {
        enum class Kind { image, video };

        std::string id;
        Kind kind = Kind::image;
        std::string shortName;
        std::optional<std::int64_t> minWidth, maxWidth, minHeight, maxHeight;  // in pixels, inclusive
        std::optional<std::string> aspectRatio;                                // such as "16:9"
        std::optional<bool> alphaAllowed;
        std::vector<std::string> fileExtensions;  // with their dot; empty: any
        std::optional<std::int64_t> maxFileSize;  // in bytes
        bool operator==(const Spec&) const = default;
    };

    struct DisplayClass {
        std::string id;
        std::optional<std::string> deviceFamily;
        std::vector<std::string> screenDimensions;
        bool operator==(const DisplayClass&) const = default;
    };

    std::vector<Group> groups;  // in document order, as all lists here
    std::vector<PlacementType> placementTypes;
    std::map<std::string, Spec> specs;  // by spec id, images and videos alike
    std::vector<DisplayClass> displayClasses;
    std::map<std::string, std::map<std::string, std::int64_t>>
        maxCounts;  // by placement type id, by group id

    // From the attributes of the published resource. Forgiving: what has the wrong type or shape is passed over,
    // a missing list is empty. A video spec replaces an image spec of the same id. Of the limits only those of the
    // feature "APP_STORE_VERSIONS" count.
    static AssetLibraryRefData fromAttributes(const JSONObject& attributes);

    // The first group with this id; the first display class of the group; nothing where there is none.
    const Group* group(std::string_view id) const;
    const DisplayClass* displayClass(const Group& group) const;

    // The most assets that a slot may hold; absent where no limit is known.
    std::optional<std::int64_t> maxCount(const std::string& type, const std::string& group) const;

    // The cached form. Reading it back is strict: DecodingError for a table that is missing or malformed.
    JSONValue toJSON() const;
    static AssetLibraryRefData fromJSON(const JSONValue& value);

    bool operator==(const AssetLibraryRefData&) const = default;
};

namespace ASC {

// GET /v1/appAssetLibraryRefData. InvalidResponse for a reply without the resource.
AssetLibraryRefData assetLibraryRefData(ASCClient& client);

}  // namespace ASC
}  // namespace kestrin
