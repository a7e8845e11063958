#include "KestrinModel/MediaItem.h"

#include "KestrinCore/JSONDecoding.h"
#include "KestrinCore/MapLookup.h"

namespace kestrin {
namespace {

constexpr std::string_view kAssetPrefix = "asset:";
constexpr std::string_view kFilePrefix = "file:";

std::string lastPiece(std::string_view path) {
    const auto end = path.find_last_not_of('/');
    if (end == std::string_view::npos) return {};
    path = path.substr(0, end + 1);
    return std::string(path.substr(path.find_last_of('/') + 1));  // npos + 1 is 0
}

}  // namespace

MediaItem MediaItem::remote(std::string assetID, std::string fileName) {
    return MediaItem(Remote{std::move(assetID), std::move(fileName)});
}

MediaItem MediaItem::file(std::string path) {
    return MediaItem(File{std::move(path)});
}

std::string MediaItem::token() const {
    const auto [prefix, rest] = tokenPieces();
    return std::string(prefix).append(rest);
}

MediaItem::TokenPieces MediaItem::tokenPieces() const {
    return std::visit(Overloaded{
                          [](const Remote& remote) {
                              return TokenPieces{kAssetPrefix, remote.assetID};
                          },
                          [](const File& file) {
                              return TokenPieces{kFilePrefix, file.path};
                          },
                      },
                      kind_);
}

std::optional<MediaItem> MediaItem::fromToken(std::string_view token, std::string fileName) {
    if (token.starts_with(kAssetPrefix)) {
        return remote(std::string(token.substr(kAssetPrefix.size())), std::move(fileName));
    }
    if (token.starts_with(kFilePrefix)) return file(std::string(token.substr(kFilePrefix.size())));
    return std::nullopt;
}

std::string MediaItem::fileName() const {
    return std::visit(Overloaded{
                          [](const Remote& remote) { return remote.fileName; },
                          [](const File& file) { return lastPiece(file.path); },
                      },
                      kind_);
}

JSONValue MediaItem::toJSON() const {
    return std::visit(Overloaded{
                          [](const Remote& remote) {
                              JSONObject members{{"asset", remote.assetID}};
                              if (!remote.fileName.empty()) members.emplace("name", remote.fileName);
                              return JSONValue(std::move(members));
                          },
                          [](const File& file) {
                              return JSONValue(JSONObject{{"file", file.path}});
                          },
                      },
                      kind_);
}

MediaItem MediaItem::fromJSON(const JSONValue& value) {
    const ObjectDecoder members(value);
    if (auto path = members.optionalString("file")) return file(*std::move(path));
    return remote(members.string("asset"), members.optionalString("name").value_or(""));
}

namespace Media {

const MediaItems& items(const LocalizedMedia& media, const StoreLocale& locale, const PlacementSlot& slot) {
    return valueOrEmpty(valueOrEmpty(media, locale), slot);
}

void setItems(LocalizedMedia& media, const StoreLocale& locale, const PlacementSlot& slot, MediaItems items) {
    if (!items.empty()) {
        media[locale].insert_or_assign(slot, std::move(items));
        return;
    }
    const auto slots = media.find(locale);
    if (slots == media.end()) return;
    slots->second.erase(slot);
    if (slots->second.empty()) media.erase(slots);
}

}  // namespace Media

}  // namespace kestrin
