#include "SyncEngine/Push/MediaPushContext.h"

#include <algorithm>

#include "ASCKit/Resources/Placements.h"
#include "ASCKit/Resources/Uploads.h"
#include "AssetPipeline/AlphaFlattener.h"
#include "AssetPipeline/MediaHash.h"
#include "AssetPipeline/MediaInspector.h"
#include "AssetPipeline/ReferenceName.h"
#include "AssetPipeline/SpecMatcher.h"
#include "KestrinCore/MapLookup.h"
#include "KestrinCore/Message.h"
#include "SyncEngine/Media/AssetProcessing.h"
#include "SyncEngine/Push/MediaPushError.h"

namespace kestrin {
namespace {

using Asset = RunState::Asset;
using RefData = std::optional<AssetLibraryRefData>;

// What goes over the wire for a file.
struct Upload {
    UploadSource source;
    std::int64_t size;
};

bool needsFlattening(const MediaInfo& media, const PlacementSlot& slot, const RefData& refData) {
    if (media.kind != MediaInfo::Kind::image || !media.hasAlpha) return false;
    const auto* spec = refData ? SpecMatcher::matching(media, slot, *refData) : nullptr;
    return !spec || !spec->alphaAllowed.value_or(false);
}

Upload uploadOf(const std::filesystem::path& file, const MediaInfo& media, const PlacementSlot& slot,
                const RefData& refData) {
    if (!needsFlattening(media, slot, refData)) return {UploadSource::file(file), media.fileSize};
    auto png = AlphaFlattener::flattenedPNG(file);
    const auto size = static_cast<std::int64_t>(png.size());
    return {UploadSource::data(std::move(png)), size};
}

std::string categoryOf(const PlacementSlot& slot, const RefData& refData) {
    if (refData) {
        const auto& types = refData->placementTypes;
        const auto type =
            std::find_if(types.begin(), types.end(), [&](const auto& t) { return t.id == slot.type; });
        if (type != types.end() && !type->assetCategories.empty()) return type->assetCategories.front();
    }
    return slot.group == "DEFAULT_PROFILE" ? "CREATIVE_ASSETS" : "APP_SCREENSHOTS_AND_PREVIEWS";
}

ASCLibraryAsset::Kind kindOf(const MediaInfo& media) {
    return media.kind == MediaInfo::Kind::video ? ASCLibraryAsset::Kind::video : ASCLibraryAsset::Kind::image;
}

// The localization that a target stands for: the one it names, or else the one that this run has made.
std::optional<PlacementParent> parentOf(const SlotPlacement& placement, const RunState& state) {
    using Kind = PlacementParent::Kind;
    const auto parent = [](Kind kind, const std::optional<std::string>& known,
                           const text::TextMap<std::string>& made,
                           const std::string& key) -> std::optional<PlacementParent> {
        if (known) return PlacementParent{kind, *known};
        const auto* id = valueIn(made, key);
        return id ? std::optional(PlacementParent{kind, *id}) : std::nullopt;
    };
    return std::visit(
        Overloaded{
            [&](const PlacementTarget::Version& version) {
                return parent(Kind::versionLocalization, version.localizationID, state.versionLocalizations,
                              RunState::versionLocalizationKey(version.versionID, placement.locale));
            },
            [&](const PlacementTarget::Page& page) {
                return parent(Kind::customPageLocalization, page.localizationID, state.pageLocalizations,
                              RunState::pageLocalizationKey(page.page, placement.locale));
            },
            [&](const PlacementTarget::Treatment& treatment) {
                return parent(Kind::treatmentLocalization, treatment.localizationID,
                              state.treatmentLocalizations,
                              RunState::treatmentLocalizationKey(treatment.experiment, treatment.treatment,
                                                                 placement.locale));
            },
        },
        placement.target.kind);
}

// The requests that turn what one slot holds into what it is to hold.
class SlotUpdate {
 public:
    SlotUpdate(const SlotPlacement& placement, std::vector<Asset> wanted, PlacementParent parent,
               ASCClient& client)
        : placement_(placement), wanted_(std::move(wanted)), parent_(std::move(parent)), client_(client) {
        divide();
    }

    void run() {
        if (hasRoomForBoth()) {
            create();
            remove();
        } else {
            remove();
            create();
        }
        order();
    }

 private:
    // One placement of each wanted asset is kept, the first; the rest of the slot goes.
    void divide() {
        for (const auto& existing : placement_.existing) {
            const bool isWanted = std::any_of(wanted_.begin(), wanted_.end(), [&](const Asset& asset) {
                return asset.id == existing.assetID;
            });
            if (!isWanted || !kept_.emplace(existing.assetID, existing.placementID).second)
                toDelete_.push_back(existing.placementID);
        }
        for (const auto& asset : wanted_) {
            if (!kept_.contains(asset.id)) toCreate_.push_back(asset);
        }
    }

    bool hasRoomForBoth() const {
        const auto together = placement_.existing.size() + toCreate_.size();
        return !placement_.maxCount || static_cast<std::int64_t>(together) <= *placement_.maxCount;
    }

    void create() {
        for (const auto& asset : toCreate_) {
            const auto made = ASC::createPlacement(client_, {.type = placement_.slot.type,
                                                             .group = placement_.slot.group,
                                                             .assetKind = asset.kind,
                                                             .assetID = asset.id,
                                                             .parent = parent_});
            kept_.insert_or_assign(asset.id, made.id);
            created_.push_back(made.id);
        }
    }

    void remove() {
        for (const auto& id : toDelete_) ASC::deletePlacement(client_, id);
    }

    void order() {
        std::vector<std::string> wantedOrder;
        for (const auto& asset : wanted_) {
            if (const auto* id = valueIn(kept_, asset.id)) wantedOrder.push_back(*id);
        }
        if (wantedOrder.size() <= 1 || wantedOrder == presentOrder(wantedOrder)) return;
        ASC::orderPlacements(client_, wantedOrder, placement_.slot.group, parent_);
    }

    // New placements come to stand behind those that were there.
    std::vector<std::string> presentOrder(const std::vector<std::string>& among) const {
        std::vector<std::string> present;
        for (const auto& existing : placement_.existing) {
            if (std::find(among.begin(), among.end(), existing.placementID) != among.end())
                present.push_back(existing.placementID);
        }
        present.insert(present.end(), created_.begin(), created_.end());
        return present;
    }

    const SlotPlacement& placement_;
    std::vector<Asset> wanted_;
    PlacementParent parent_;
    ASCClient& client_;
    std::map<std::string, std::string> kept_;  // from asset id to placement id
    std::vector<std::string> toDelete_;
    std::vector<Asset> toCreate_;
    std::vector<std::string> created_;
};

std::string processing(const std::string& fileName) {
    return message::localized("waitProcessing", "App Store Connect is still processing {fileName}",
                              {{"fileName", fileName}});
}

// The wanted media of one slot as assets.
class WantedAssets {
 public:
    WantedAssets(const MediaPushContext& context, const RunState& state) : context_(context), state_(state) {}

    std::vector<Asset> operator()(const MediaItems& desired) const {
        std::vector<Asset> wanted;
        for (const auto& item : desired) wanted.push_back(std::visit(*this, item.kind()));
        return wanted;
    }

    Asset operator()(const MediaItem::Remote& item) const {
        const auto* asset = valueIn(context_.knownAssets, item.assetID);
        if (!asset) asset = valueIn(context_.index.assets(), item.assetID);
        return {item.assetID, asset ? asset->kind : ASCLibraryAsset::Kind::image};
    }

    Asset operator()(const MediaItem::File& item) const {
        const auto* hash = valueIn(context_.hashes, item.path);
        const auto* asset = hash ? valueIn(state_.assets, *hash) : nullptr;
        if (!asset) throw MediaPushError(MediaPushError::MissingFile{item.path});
        return *asset;
    }

 private:
    const MediaPushContext& context_;
    const RunState& state_;
};

}  // namespace

RunState::Asset MediaPushContext::ensureAsset(const std::string& path, const std::string& md5,
                                              const PlacementSlot& slot, ASCClient& client) const {
    if (const auto* found = md5.empty() ? nullptr : index.asset(md5)) {
        waitUntilProcessed(found->id, found->kind, found->fileName, client);
        return {found->id, found->kind};
    }
    const auto file = locate ? locate(path) : std::nullopt;
    if (!file) throw MediaPushError(MediaPushError::MissingFile{path});

    const auto media = MediaInspector::inspect(*file);
    const auto fileName = file->filename().string();
    const auto upload = uploadOf(*file, media, slot, refData);
    // An opaque copy goes by the digest of the file on disk too: that is what the next run will look for.
    const auto digest = md5.empty() ? MediaHash::md5(*file) : md5;
    const auto kind = kindOf(media);
    const auto reserved =
        ASC::reserveLibraryAsset(client, {.kind = kind,
                                          .libraryID = libraryID,
                                          .category = categoryOf(slot, refData),
                                          .fileName = fileName,
                                          .fileSize = upload.size,
                                          .referenceName = ReferenceName::make(fileName, digest)});
    if (reserved.operations.empty()) throw MediaPushError(MediaPushError::NoUploadOperations{fileName});
    ASC::upload(client, reserved.operations, upload.source);
    ASC::commitLibraryAsset(client, reserved.asset.id, kind);
    waitUntilProcessed(reserved.asset.id, kind, fileName, client);
    return {reserved.asset.id, kind};
}

void MediaPushContext::waitUntilProcessed(const std::string& id, ASCLibraryAsset::Kind kind,
                                          const std::string& fileName, ASCClient& client) const {
    LongWait wait(sleep, waitNotes);
    for (Seconds elapsed{0};; elapsed += pollInterval) {
        const auto asset = ASC::libraryAsset(client, id, kind);
        if (asset && AssetProcessing::isDead(asset->state))
            throw MediaPushError(MediaPushError::ProcessingFailed{fileName, *asset->state});
        if (asset && !AssetProcessing::isProcessing(asset->state)) return;
        if (elapsed >= processingTimeout) throw MediaPushError(MediaPushError::StillProcessing{fileName});
        wait.sleep(pollInterval, processing(fileName), stop);
    }
}

void MediaPushContext::place(const SlotPlacement& placement, const RunState& state, ASCClient& client) const {
    auto parent = parentOf(placement, state);
    if (!parent) throw MediaPushError(MediaPushError::MissingLocalization{placement.locale.rawValue});
    SlotUpdate(placement, WantedAssets(*this, state)(placement.desired), *std::move(parent), client).run();
}

}  // namespace kestrin
