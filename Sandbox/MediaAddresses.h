// The addresses of thumbnails and videos: they belong to the image store, not to the API, and take no token.
#pragma once

#include <string_view>

#include "Sandbox/HTTPMessage.h"
#include "Sandbox/State.h"

namespace kestrin::sandbox {

inline constexpr std::string_view kMediaPathStart = "/media/";

// GET /media/{asset}/{width}x{height}bb.{format}: the picture as it was uploaded, or one made up in that size for an
// asset that a seed brought. GET /media/{asset}/video: the uploaded bytes.
HTTPReply answerMedia(const State& state, const HTTPRequest& request);

}  // namespace kestrin::sandbox
