#include "Sandbox/Resources/Views.h"

#include <fmt/format.h>

#include "Sandbox/Resources/Placing.h"
#include "Sandbox/Schema.h"

namespace kestrin::sandbox {
namespace {

bool tellsOperations(std::string_view assetState) {
    return assetState == "AWAITING_UPLOAD" || assetState == "UPLOAD_COMPLETE" || assetState == "FAILED";
}

// An image object as the service gives it: its size is kept, its address made here.
Json imageObject(const State& state, const Resource& asset, const Json& size) {
    if (size.is_null()) return nullptr;
    return {{"templateUrl", fmt::format("{}/media/{}/{{w}}x{{h}}bb.{{f}}", state.root, asset.id())},
            {"width", size.value("width", 0)},
            {"height", size.value("height", 0)}};
}

bool isProcessed(const Resource& asset) {
    const auto assetState = asset.text("state");
    return assetState != "AWAITING_UPLOAD" && assetState != "UPLOAD_COMPLETE" && assetState != "FAILED";
}

void viewAsset(const State& state, const Resource& asset, Json& shown) {
    if (tellsOperations(asset.text("state"))) {
        shown["uploadOperations"] = state.uploads.operations(asset.ref, state.root, false);
    } else {
        shown.erase("uploadOperations");
    }
    if (asset.type() == "appAssetLibraryImages") {
        shown["imageAsset"] = imageObject(state, asset, shown["imageAsset"]);
        return;
    }
    auto frame = imageObject(state, asset, shown["previewFrameImage"]);
    shown["previewFrameImage"] = nullptr;
    if (frame.is_null()) return;
    const Json frameState{{"state", "COMPLETE"}, {"errors", Json::array()}, {"warnings", Json::array()}};
    shown["previewFrameImage"] = {{"image", std::move(frame)}, {"state", frameState}};
    if (isProcessed(asset)) shown["videoAsset"] = fmt::format("{}/media/{}/video", state.root, asset.id());
}

// The state of what it stands on, once its asset can be shown.
std::string placementState(const State& state, const Resource& placement) {
    for (const char* medium : {"image", "video"}) {
        const auto related = placement.related.find(medium);
        if (related == placement.related.end()) continue;
        const auto& asset = *state.store.find(related->second);
        if (asset.text("state") == "FAILED") return "FAILED";
        if (!isProcessed(asset)) return "ASSET_PROCESSING";
    }
    const auto parent = surfaceOf(state, localizationOf(state, placement)).state;
    for (const char* same : {"READY_FOR_REVIEW", "WAITING_FOR_REVIEW", "IN_REVIEW"}) {
        if (parent == same) return "PARENT_" + parent;
    }
    const bool isPrepared = parent == "PREPARE_FOR_SUBMISSION" || parent == "REJECTED" ||
                            parent == "DEVELOPER_REJECTED" || parent == "METADATA_REJECTED" ||
                            parent == "INVALID_BINARY";
    return isPrepared ? "PARENT_PREPARE_FOR_SUBMISSION" : "PARENT_APPROVED";
}

void viewBuildFile(const State& state, const Resource& file, Json& shown) {
    const auto delivery = file.attributes.value("assetDeliveryState", Json::object()).value("state", "");
    shown["uploadOperations"] =
        delivery == "AWAITING_UPLOAD" ? state.uploads.operations(file.ref, state.root, true) : Json();
}

}  // namespace

Json shownAttributes(const State& state, const Resource& resource) {
    Json shown = Json::object();
    for (const auto& name : resourceType(resource.type()).attributes) {
        shown[name] = resource.attributes.value(name, Json());
    }
    const auto& type = resource.type();
    if (type == "appAssetLibraryImages" || type == "appAssetLibraryVideos") viewAsset(state, resource, shown);
    if (type == "appAssetLibraryPlacements") shown["state"] = placementState(state, resource);
    if (type == "buildUploadFiles") viewBuildFile(state, resource, shown);
    return shown;
}

}  // namespace kestrin::sandbox
