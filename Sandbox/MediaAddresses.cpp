#include "Sandbox/MediaAddresses.h"

#include <cstdio>
#include <string>

#include "Sandbox/MediaFile.h"

namespace kestrin::sandbox {
namespace {

constexpr int kLargestSide = 8192;

HTTPReply plain(int status, const char* text) {
    return {status, {}, "text/plain", text};
}

HTTPReply bytesReply(std::string bytes) {
    auto type = MediaFile::mimeType(bytes);
    return {200, {}, std::move(type), std::move(bytes)};
}

// "1290x2796bb.png"
bool readSize(const std::string& name, int& width, int& height) {
    char format[8]{};
    int end = 0;
    if (std::sscanf(name.c_str(), "%5dx%5dbb.%7[a-z]%n", &width, &height, format, &end) != 3) return false;
    return static_cast<std::size_t>(end) == name.size() && width >= 1 && height >= 1 &&
           width <= kLargestSide && height <= kLargestSide;
}

}  // namespace

HTTPReply answerMedia(const State& state, const HTTPRequest& request) {
    if (request.method != "GET") return plain(405, "Only GET");
    if (headerValue(request.headers, "Authorization")) return plain(400, "This address takes no token");
    const auto path = request.path().substr(kMediaPathStart.size());
    const auto slash = path.find('/');
    if (slash == std::string::npos) return plain(404, "No such asset");
    const auto id = path.substr(0, slash), name = path.substr(slash + 1);
    const auto bytes = state.media.find(id);
    const bool isImage = state.store.find("appAssetLibraryImages", id) != nullptr;
    if (name == "video" && !isImage)
        return bytes == state.media.end() ? plain(404, "No video") : bytesReply(bytes->second);
    if (!isImage && state.store.find("appAssetLibraryVideos", id) == nullptr)
        return plain(404, "No such asset");
    int width = 0, height = 0;
    if (!readSize(name, width, height)) return plain(400, "No such size");
    if (isImage && bytes != state.media.end()) return bytesReply(bytes->second);
    return bytesReply(MediaFile::seascape(width, height, id));
}

}  // namespace kestrin::sandbox
