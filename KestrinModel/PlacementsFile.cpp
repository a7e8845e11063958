#include "KestrinModel/PlacementsFile.h"

#include <algorithm>

#include "KestrinCore/StableJSON.h"

namespace kestrin::PlacementsFile {
namespace {

const JSONObject& object(const JSONValue& value) {
    if (const auto* members = value.objectValue()) return *members;
    throw DecodingError({}, "expected an object");
}

MediaItems items(const JSONValue& value) {
    const auto* array = value.arrayValue();
    if (!array) throw DecodingError({}, "expected an array");
    MediaItems result;
    result.reserve(array->size());
    for (const auto& element : *array) result.push_back(MediaItem::fromJSON(element));
    return result;
}

}  // namespace

MediaBySlot decode(std::string_view bytes) {
    MediaBySlot media;
    const auto document = StableJSON::decode(bytes);
    for (const auto& [group, types] : object(document)) {
        for (const auto& [type, list] : object(types)) {
            auto read = items(list);
            if (!read.empty()) media.insert_or_assign({group, type}, std::move(read));
        }
    }
    return media;
}

std::string encode(const MediaBySlot& media) {
    JSONObject groups;
    for (const auto& [slot, list] : media) {
        if (list.empty()) continue;
        JSONArray array;
        array.reserve(list.size());
        for (const auto& item : list) array.push_back(item.toJSON());
        auto& types = groups.try_emplace(slot.group, JSONObject()).first->second;
        types.objectValue()->insert_or_assign(slot.type, std::move(array));
    }
    return StableJSON::encode(groups);
}

bool hasItems(const MediaBySlot& media) {
    return std::any_of(media.begin(), media.end(), [](const auto& entry) { return !entry.second.empty(); });
}

}  // namespace kestrin::PlacementsFile
