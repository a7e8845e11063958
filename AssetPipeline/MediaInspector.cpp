#include "AssetPipeline/MediaInspector.h"

#include <cmath>

#include "AssetPipeline/MediaLibrary.h"
#include "KestrinCore/Message.h"
#include "KestrinCore/UnicodeText.h"

namespace kestrin {
namespace {

using std::filesystem::path;

std::string extensionOf(const path& file) {
    const auto extension = file.extension().native();
    return text::lowercased(extension.empty() ? "." : extension);
}

std::int64_t sizeOf(const path& file) {
    std::error_code ignored;
    const auto size = std::filesystem::file_size(file, ignored);
    return ignored ? 0 : static_cast<std::int64_t>(size);
}

void readImage(const path& file, MediaInfo& info) {
    KestrinImageProperties properties{};
    if (!MediaLibrary::backend().readImage(file.c_str(), &properties)) {
        throw MediaInspectorError(file.filename().native());
    }
    info.kind = MediaInfo::Kind::image;
    info.width = properties.width;
    info.height = properties.height;
    info.hasAlpha = properties.hasAlpha;
}

void readVideo(const path& file, MediaInfo& info) {
    KestrinVideoProperties properties{};
    if (!MediaLibrary::backend().readVideo(file.c_str(), &properties)) {
        throw MediaInspectorError(file.filename().native());
    }
    info.kind = MediaInfo::Kind::video;
    info.width = std::llround(std::abs(properties.a * properties.width + properties.c * properties.height));
    info.height = std::llround(std::abs(properties.b * properties.width + properties.d * properties.height));
    if (properties.frameRate >= 0) info.frameRate = properties.frameRate;
    if (properties.duration >= 0) info.duration = properties.duration;
}

}  // namespace

std::string MediaInspectorError::errorDescription() const {
    return message::localized("mediaInspectorErrorUnreadable",
                              "Couldn’t read “{fileName}” as an image or a video.", {{"fileName", fileName}});
}

namespace MediaInspector {

const std::set<std::string> videoExtensions = {".mp4", ".m4v", ".mov"};

MediaInfo inspect(const path& file) {
    std::error_code ignored;
    // A named pipe in the file's place would hold the program up.
    if (!std::filesystem::is_regular_file(file, ignored)) throw MediaInspectorError(file.filename().native());
    MediaInfo info;
    info.fileExtension = extensionOf(file);
    info.fileSize = sizeOf(file);
    if (videoExtensions.contains(info.fileExtension)) {
        readVideo(file, info);
    } else {
        readImage(file, info);
    }
    return info;
}

}  // namespace MediaInspector

}  // namespace kestrin
