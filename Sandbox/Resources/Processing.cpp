#include "Sandbox/Resources/Processing.h"

#include <algorithm>

#include "Sandbox/MediaFile.h"

namespace kestrin::sandbox {
namespace {

constexpr const char* kReadings = "readings";  // kept inside

void fail(Resource& asset, const std::string& why) {
    asset.attributes["state"] = "FAILED";
    asset.attributes["stateDetails"] =
        Json::array({{{"code", "MEDIA_PROCESSING_FAILED"}, {"description", why}}});
}

bool holdsOneOf(const std::string& text, const std::vector<std::string>& parts) {
    return std::any_of(parts.begin(), parts.end(),
                       [&](const std::string& part) { return text.find(part) != std::string::npos; });
}

// The specification that the bytes meet; "" with the reason when there is none.
std::string inspectImage(Resource& asset, const std::string& bytes, std::string& why) {
    const auto picture = MediaFile::picture(bytes);
    if (!picture) {
        why = "The file is no PNG and no JPEG.";
        return {};
    }
    asset.attributes["imageAsset"] = pixelSize(picture->width, picture->height);
    return Catalogue::specFor(*picture, asset.text("category"), why);
}

std::string inspectVideo(Resource& asset, const std::string& bytes, std::string& why) {
    const auto film = MediaFile::film(bytes);
    if (!film) {
        why = "The file is no film.";
        return {};
    }
    asset.attributes["previewFrameImage"] = pixelSize(film->width, film->height);
    return Catalogue::specFor(*film, asset.text("category"), why);
}

}  // namespace

Json pixelSize(int width, int height) {
    return {{"width", width}, {"height", height}};
}

bool isDue(const State& state, Resource& resource) {
    const auto readings = resource.attributes.value(kReadings, 0);
    resource.attributes[kReadings] = readings + 1;
    return readings >= state.settings.processingReads;
}

void beginProcessing(Resource& resource) {
    resource.attributes[kReadings] = 0;
}

bool isUnprocessable(const State& state, const std::string& fileName) {
    return holdsOneOf(fileName, state.settings.unprocessableNames);
}

bool isQuestionable(const State& state, const std::string& fileName) {
    return holdsOneOf(fileName, state.settings.questionableNames);
}

void processBuild(const State& state, Resource& build) {
    if (build.text("processingState") != "PROCESSING" || !isDue(state, build)) return;
    build.attributes["processingState"] = "VALID";
}

void processAsset(State& state, Resource& asset) {
    if (asset.text("state") != "UPLOAD_COMPLETE" || !isDue(state, asset)) return;
    asset.attributes["lastModifiedDate"] = state.store.date();
    if (isUnprocessable(state, asset.text("fileName"))) return fail(asset, "The file can't be processed.");

    std::string why;
    const auto& bytes = state.media[asset.id()];
    const bool isVideo = asset.type() == "appAssetLibraryVideos";
    const auto spec = isVideo ? inspectVideo(asset, bytes, why) : inspectImage(asset, bytes, why);
    if (spec.empty() && state.settings.inspectsMedia) return fail(asset, why);
    asset.attributes["specId"] = spec.empty() ? Json() : Json(spec);
    asset.attributes["state"] = "PREPARE_FOR_SUBMISSION";
}

}  // namespace kestrin::sandbox
