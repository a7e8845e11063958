#include "SyncEngine/Pull/AssetsSeen.h"

#include <algorithm>
#include <utility>

#include "KestrinCore/MapLookup.h"

namespace kestrin {

void AssetsSeen::add(ASCLibraryAsset asset) {
    KnownAssets alone;
    const auto added = alone.emplace(asset.id, std::move(asset)).first;
    waiting_.push_back(alone.extract(added));
}

std::string AssetsSeen::fileName(const std::string& id) {
    finish();
    const auto* asset = valueIn(std::as_const(assets_), id);
    return asset ? asset->fileName : "";
}

void AssetsSeen::finish() {
    std::stable_sort(waiting_.begin(), waiting_.end(),
                     [](const auto& one, const auto& other) { return one.key() < other.key(); });
    for (auto& node : waiting_) {
        const auto place = assets_.insert(assets_.end(), std::move(node));
        // There was one with this id, which leaves the node as it is.
        if (node) place->second = std::move(node.mapped());
    }
    waiting_.clear();
}

}  // namespace kestrin
