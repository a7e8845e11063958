// What a media file is, read from its bytes; and pictures made from nothing.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "Sandbox/Catalogue.h"

namespace kestrin::sandbox::MediaFile {

// Of a PNG (ISO/IEC 15948) or a JPEG (ITU-T T.81); nullopt for anything else.
std::optional<Catalogue::Picture> picture(std::string_view bytes);

// Of an MP4 or QuickTime film (ISO/IEC 14496-12), as it is shown: turned as its track says. nullopt for anything
// else, and for one without a video track.
std::optional<Catalogue::Film> film(std::string_view bytes);

// "image/png", "image/jpeg", "video/mp4", else "application/octet-stream".
std::string mimeType(std::string_view bytes);

// A PNG of that size without alpha: sky over sea, in colours and with a water line that follow from `name`.
std::string seascape(int width, int height, std::string_view name);

}  // namespace kestrin::sandbox::MediaFile
