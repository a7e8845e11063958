// One screenshot, preview or other asset in a slot.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "KestrinCore/JSONValue.h"
#include "KestrinModel/PlacementSlot.h"
#include "KestrinModel/StoreLocale.h"

namespace kestrin {

class MediaItem {
 public:
    // An asset in the app's asset library on App Store Connect.
    struct Remote {
        std::string assetID;
        std::string fileName;  // may be empty
        bool operator==(const Remote&) const = default;
    };
    // A file of the project, by its path relative to the package.
    struct File {
        std::string path;
        bool operator==(const File&) const = default;
    };

    static MediaItem remote(std::string assetID, std::string fileName = {});
    static MediaItem file(std::string path);

    const std::variant<Remote, File>& kind() const { return kind_; }
    const Remote* asRemote() const { return std::get_if<Remote>(&kind_); }
    const File* asFile() const { return std::get_if<File>(&kind_); }

    // "asset:" and the asset ID, or "file:" and the path. The file name of an asset is no part of it.
    std::string token() const;

    // The same in its pieces, for whoever joins the tokens of many items. Valid as long as the item.
    struct TokenPieces {
        std::string_view prefix, rest;
    };
    TokenPieces tokenPieces() const;

    // The item with this token; nothing for a text that begins with neither "asset:" nor "file:". `fileName` is
    // for assets; a file's name is in its path.
    static std::optional<MediaItem> fromToken(std::string_view token, std::string fileName);

    // Of an asset its file name; of a file the last non-empty piece of its path, or "".
    std::string fileName() const;

    // {"asset", "name"} with the name left out when empty, or {"file"}. On reading "file" goes first.
    JSONValue toJSON() const;
    static MediaItem fromJSON(const JSONValue& value);  // DecodingError

    bool operator==(const MediaItem&) const = default;

 private:
    explicit MediaItem(std::variant<Remote, File> kind) : kind_(std::move(kind)) {}
    std::variant<Remote, File> kind_;
};

using MediaItems = std::vector<MediaItem>;
using MediaBySlot = std::map<PlacementSlot, MediaItems>;

// All media of a product page. No slot in it has an empty list, and no locale is without slots.
using LocalizedMedia = std::map<StoreLocale, MediaBySlot>;

namespace Media {

// The items of one slot; empty when there is no such locale or slot.
const MediaItems& items(const LocalizedMedia& media, const StoreLocale& locale, const PlacementSlot& slot);

// Stores the items of one slot. An empty list removes the slot, and a locale left without slots.
void setItems(LocalizedMedia& media, const StoreLocale& locale, const PlacementSlot& slot, MediaItems items);

}  // namespace Media

}  // namespace kestrin
