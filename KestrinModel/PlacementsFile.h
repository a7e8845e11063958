// "placements.json": the media of one locale, as {group: {type: [item, …]}}.
//
// A slot with an empty list is the same as no slot: it is neither read nor written, and a group left with nothing
// isn't written either.
#pragma once

#include <string>
#include <string_view>

#include "KestrinModel/MediaItem.h"

namespace kestrin::PlacementsFile {

// Throws DecodingError for anything that isn't an object of objects of lists of media items.
MediaBySlot decode(std::string_view bytes);

std::string encode(const MediaBySlot& media);

// Whether there is anything to write.
bool hasItems(const MediaBySlot& media);

}  // namespace kestrin::PlacementsFile
