// Videos through libavformat.
#pragma once

#include "AssetPipeline/MediaModule/MediaBackend.h"

namespace kestrin::VideoBackend {

bool initialise();

// The first video track of a QuickTime or MPEG-4 file (ISO/IEC 14496-12). No other container is opened, and no
// other file that one refers to: a playlist under the name of a clip must not make the program fetch anything.
bool read(const char* path, KestrinVideoProperties* properties);

}  // namespace kestrin::VideoBackend
