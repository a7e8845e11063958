// Images through libvips.
#pragma once

#include "AssetPipeline/MediaModule/MediaBackend.h"

namespace kestrin::ImageBackend {

// Only PNG, JPEG, HEIF, WebP, GIF and TIFF can be read from here on: what else libvips could open (documents,
// drawings, anything through ImageMagick) is no image for a store page, and no parser for a stranger's file.
bool initialise();

// Reads no more than the header.
bool read(const char* path, KestrinImageProperties* properties);

// The first image of the file in 8-bit sRGB over opaque black, as PNG. An image of more than 100 megapixels, far
// more than any slot takes, is unencodable.
KestrinFlattenOutcome flatten(const char* path, void** bytes, std::size_t* size);

void release(void* bytes);

}  // namespace kestrin::ImageBackend
