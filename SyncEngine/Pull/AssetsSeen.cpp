#include "SyncEngine/Pull/AssetsSeen.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "KestrinCore/MapLookup.h"

namespace kestrin {
namespace {

// The first eight bytes as a number, zeros behind a shorter id: numbers in the order of the ids, as far as they go.
std::uint64_t startOf(std::string_view id) {
    std::uint64_t start = 0;
    for (std::size_t i = 0; i < sizeof start; ++i)
        start = start << 8 | (i < id.size() ? static_cast<unsigned char>(id[i]) : 0u);
    return start;
}

}  // namespace

void AssetsSeen::add(ASCLibraryAsset asset) {
    const auto start = startOf(asset.id);
    KnownAssets alone;
    auto id = asset.id;
    const auto added = alone.emplace(std::move(id), std::move(asset)).first;
    waiting_.push_back({start, alone.extract(added)});
}

std::string AssetsSeen::fileName(const std::string& id) {
    finish();
    const auto* asset = valueIn(std::as_const(assets_), id);
    return asset ? asset->fileName : "";
}

void AssetsSeen::finish() {
    std::stable_sort(waiting_.begin(), waiting_.end());
    for (auto& [start, node] : waiting_) {
        const auto place = assets_.insert(assets_.end(), std::move(node));
        // There was one with this id, which leaves the node as it is.
        if (node) place->second = std::move(node.mapped());
    }
    waiting_.clear();
}

}  // namespace kestrin
