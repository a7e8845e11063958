// The plan's part for media.
#include <algorithm>
#include <set>

#include "KestrinCore/Error.h"
#include "KestrinCore/MapLookup.h"
#include "KestrinCore/UnicodeText.h"
#include "SyncEngine/Content/ProductPageContent.h"
#include "SyncEngine/Push/PushPlanner.h"

namespace kestrin::PushPlanner {
namespace {

using Steps = std::vector<PushStep>;

// Where the media of one key go, and what stands there.
struct PlacementContext {
    PlacementTarget target;
    StoreLocale locale;
    PlacementSlot slot;
    std::vector<std::string> placementIDs;
    MediaItems items;
};

std::vector<std::string> placementIDs(const PlacementIDs& placements, const StoreLocale& locale,
                                      const PlacementSlot& slot) {
    const auto* slots = valueIn(placements, locale);
    if (!slots) return {};
    const auto* ids = valueIn(*slots, slot.description());
    return ids ? *ids : std::vector<std::string>{};
}

std::optional<std::string> localizationID(const LocalizationIDs& localizations, const StoreLocale& locale) {
    const auto* id = valueIn(localizations, locale);
    return id ? std::optional(*id) : std::nullopt;
}

class Contexts {
 public:
    explicit Contexts(const RemoteListing& remote) : listing(remote) {}

    // A platform without a version has nowhere to put media.
    std::optional<PlacementContext> operator()(const ContentKey::Placements& key) const {
        const auto* version = valueIn(listing.ids.versions, key.platform);
        if (!version) return std::nullopt;
        const auto* content = valueIn(listing.platforms, key.platform);
        return PlacementContext{
            {PlacementTarget::Version{key.platform, version->id,
                                      localizationID(version->localizations, key.locale)}},
            key.locale,
            key.slot,
            placementIDs(version->placements, key.locale, key.slot),
            content ? Media::items(content->media, key.locale, key.slot) : MediaItems{}};
    }

    // A page or treatment that doesn't exist yet is made by steps ahead of its media.
    std::optional<PlacementContext> operator()(const ContentKey::PagePlacements& key) const {
        const auto* page = valueIn(listing.ids.pages, key.page);
        const auto* content = valueIn(listing.pages, key.page);
        return PlacementContext{
            {PlacementTarget::Page{key.page,
                                   page ? localizationID(page->localizations, key.locale) : std::nullopt}},
            key.locale,
            key.slot,
            page ? placementIDs(page->placements, key.locale, key.slot) : std::vector<std::string>{},
            content ? Media::items(content->media, key.locale, key.slot) : MediaItems{}};
    }

    std::optional<PlacementContext> operator()(const ContentKey::TreatmentPlacements& key) const {
        const auto* experiment = valueIn(listing.ids.experiments, key.experiment);
        const auto* treatment = experiment ? valueIn(experiment->treatments, key.treatment) : nullptr;
        const auto* experimentContent = valueIn(listing.experiments, key.experiment);
        const auto* content =
            experimentContent ? valueIn(experimentContent->treatments, key.treatment) : nullptr;
        return PlacementContext{
            {PlacementTarget::Treatment{
                key.experiment, key.treatment,
                treatment ? localizationID(treatment->localizations, key.locale) : std::nullopt}},
            key.locale,
            key.slot,
            treatment ? placementIDs(treatment->placements, key.locale, key.slot)
                      : std::vector<std::string>{},
            content ? Media::items(content->media, key.locale, key.slot) : MediaItems{}};
    }

    std::optional<PlacementContext> operator()(const auto&) const { return std::nullopt; }

 private:
    const RemoteListing& listing;
};

// Nothing for a key that isn't one of media, and for media that have nowhere to go.
std::optional<PlacementContext> placementContext(const ContentKey& key, const RemoteListing& listing) {
    return std::visit(Contexts(listing), key.kind());
}

// Placements and items side by side, to the end of the shorter list.
std::vector<ExistingPlacement> existing(const PlacementContext& context) {
    std::vector<ExistingPlacement> found;
    const auto count = std::min(context.placementIDs.size(), context.items.size());
    for (std::size_t i = 0; i < count; ++i) {
        const auto* asset = context.items[i].asRemote();
        if (asset) found.push_back({context.placementIDs[i], asset->assetID});
    }
    return found;
}

std::string hashOf(const std::string& path, const MediaHashes& hashes) {
    const auto* hash = valueIn(hashes, path);
    return hash && !hash->empty() ? *hash : "missing:" + path;
}

}  // namespace

Steps mediaSteps(const std::vector<Change>& changes, const RemoteListing& listing, const MediaHashes& hashes,
                 const std::optional<AssetLibraryRefData>& refData) {
    auto sorted = changes;
    std::stable_sort(sorted.begin(), sorted.end(),
                     [](const auto& a, const auto& b) { return a.key < b.key; });
    Steps assets;
    Steps slots;
    std::set<std::string> seen;
    for (const auto& change : sorted) {
        auto context = placementContext(change.key, listing);
        if (!context) continue;
        auto desired = ContentGraph::mediaItems(change.local, {});
        for (const auto& item : desired) {
            const auto* file = item.asFile();
            if (!file) continue;
            const auto md5 = hashOf(file->path, hashes);
            if (seen.insert(md5).second)
                assets.push_back({PushStep::EnsureAsset{file->path, md5, context->slot}, {}});
        }
        const auto limit =
            refData ? refData->maxCount(context->slot.type, context->slot.group) : std::nullopt;
        slots.push_back({PushStep::PlaceMedia{{context->target, context->locale, context->slot,
                                               std::move(desired), existing(*context), limit}},
                         {change.key}});
    }
    std::move(slots.begin(), slots.end(), std::back_inserter(assets));
    return assets;
}

}  // namespace kestrin::PushPlanner
