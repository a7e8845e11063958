#include <fmt/format.h>

#include "Sandbox/Document.h"
#include "Sandbox/Reads.h"
#include "Sandbox/Refusal.h"
#include "Sandbox/Resources/Endpoints.h"
#include "Sandbox/Resources/Localizations.h"
#include "Sandbox/Resources/Processing.h"
#include "Sandbox/Resources/Values.h"
#include "Sandbox/WriteForm.h"

namespace kestrin::sandbox {
namespace {

constexpr std::int64_t kMaximumFileSize = 524'288'000;

struct AssetKind {
    std::string type;
    std::string listName;  // below the library
    std::string placedAs;  // the relationship of a placement
    bool isVideo;
};

const AssetKind kImages{"appAssetLibraryImages", "images", "image", false};
const AssetKind kVideos{"appAssetLibraryVideos", "videos", "video", true};

QueryRules assetRules(const AssetKind& kind) {
    QueryRules rules;
    rules.includes = {"placements"};
    rules.fields = {kind.type, "appAssetLibraryPlacements"};
    rules.relationshipLimits = {"placements"};
    return rules;
}

QueryRules assetListRules(const AssetKind& kind) {
    auto rules = assetRules(kind);
    rules.filters = {
        {"category", kAssetCategories}, {"state", kAssetStates}, {"referenceName"}, {"specId"}, {"id"}};
    rules.sorts = {"createdDate", "lastModifiedDate", "referenceName"};
    return rules;
}

WriteForm reserveForm(const AssetKind& kind) {
    WriteForm form{
        .type = kind.type,
        .attributes = {{.name = "category", .need = Need::required, .values = kAssetCategories},
                       {.name = "fileName", .need = Need::required},
                       {.name = "fileSize", .kind = Kind::integer, .need = Need::required},
                       {.name = "referenceName"}},
        .relationships = {{.name = "assetLibrary", .type = "appAssetLibraries", .need = Need::required}}};
    if (kind.isVideo) form.attributes.push_back({.name = "previewFrameTimeCode"});
    return form;
}

WriteForm changeForm(const AssetKind& kind) {
    WriteForm form{.type = kind.type,
                   .attributes = {{.name = "uploaded", .kind = Kind::truth},
                                  {.name = "archived", .kind = Kind::truth},
                                  {.name = "referenceName"}}};
    if (kind.isVideo) form.attributes.push_back({.name = "previewFrameTimeCode"});
    return form;
}

void checkFileSize(std::int64_t size) {
    if (size >= 1 && size <= kMaximumFileSize) return;
    throw Refusal(refusals::attribute("INVALID", "fileSize",
                                      fmt::format("The value must be from 1 to {}", kMaximumFileSize)));
}

std::string contentType(const AssetKind& kind, const std::string& fileName) {
    if (kind.isVideo) return fileName.ends_with(".mov") ? "video/quicktime" : "video/mp4";
    return fileName.ends_with(".png") ? "image/png" : "image/jpeg";
}

HTTPReply reserve(State& state, const Call& call, const AssetKind& kind) {
    const auto write = readCreate(call.request.body, reserveForm(kind), state.store);
    const auto size = write.attributes["fileSize"].get<std::int64_t>();
    checkFileSize(size);
    auto& asset = state.store.add(kind.type, write.attributes, {{"assetLibrary", write.ref("assetLibrary")}});
    asset.attributes["state"] = "AWAITING_UPLOAD";
    asset.attributes["createdDate"] = asset.attributes["lastModifiedDate"] = state.store.date();
    state.uploads.open(asset.ref, static_cast<std::uint64_t>(size), state.settings.uploadPartSize,
                       contentType(kind, write.text("fileName")), state.settings.now());
    return createdReply(state, call, asset);
}

HTTPReply readAsset(State& state, const Call& call, const AssetKind& kind) {
    auto& asset = named(state, kind.type, call);
    processAsset(state, asset);
    return singleReply(state, call, asset);
}

// Takes the bytes over when they are as many as were reserved for.
void commit(State& state, Resource& asset) {
    if (asset.text("state") != "AWAITING_UPLOAD") {
        throw Refusal(refusals::state(
            "INVALID_ASSET_STATE", fmt::format("The asset is committed already: {}", asset.text("state"))));
    }
    auto content = state.uploads.content(asset.ref);
    if (!content) {
        throw Refusal(
            refusals::attribute("INVALID", "uploaded", "The bytes that were sent aren't the whole file"));
    }
    state.uploads.close(asset.ref);
    state.media[asset.id()] = *std::move(content);
    asset.attributes["state"] = "UPLOAD_COMPLETE";
    beginProcessing(asset);
}

void archive(Resource& asset) {
    if (asset.text("state") != "APPROVED") {
        throw Refusal(refusals::state("INVALID_ASSET_STATE", "Only an approved asset can be archived"));
    }
    asset.attributes["state"] = "ARCHIVED";
}

HTTPReply changeAsset(State& state, const Call& call, const AssetKind& kind) {
    auto& asset = named(state, kind.type, call);
    auto write = readUpdate(call.request.body, changeForm(kind), state.store, asset.id());
    if (write.attributes.value("uploaded", Json()) == true) commit(state, asset);
    if (write.attributes.value("archived", Json()) == true) archive(asset);
    write.attributes.erase("uploaded");
    write.attributes.erase("archived");
    applyAttributes(write.attributes, asset);
    asset.attributes["lastModifiedDate"] = state.store.date();
    return singleReply(state, call, asset);
}

HTTPReply deleteAsset(State& state, const Call& call, const AssetKind& kind) {
    const auto& asset = named(state, kind.type, call);
    if (!state.store.pointing("appAssetLibraryPlacements", kind.placedAs, asset.id()).empty()) {
        throw Refusal(
            refusals::state("ASSET_HAS_PLACEMENTS", "The asset is placed; remove its placements first"));
    }
    state.media.erase(asset.id());
    state.store.remove(asset.ref);
    return noContent();
}

void addKind(Router& router, const AssetKind& kind) {
    const auto bind = [&kind](HTTPReply (*handler)(State&, const Call&, const AssetKind&)) {
        return [&kind, handler](State& state, const Call& call) { return handler(state, call, kind); };
    };
    const auto all = "/v1/" + kind.type, one = all + "/{id}";
    router.add(listEndpoint("/v1/appAssetLibraries/{id}/" + kind.listName, assetListRules(kind),
                            {.type = kind.type, .parent = "appAssetLibraries", .via = "assetLibrary"}));
    router.add({"POST", all, {}, bind(reserve)});
    router.add({"GET", one, assetRules(kind), bind(readAsset)});
    router.add({"PATCH", one, {}, bind(changeAsset)});
    router.add({"DELETE", one, {}, bind(deleteAsset)});
}

}  // namespace

void addAssetLibraryEndpoints(Router& router) {
    addKind(router, kImages);
    addKind(router, kVideos);
}

}  // namespace kestrin::sandbox
