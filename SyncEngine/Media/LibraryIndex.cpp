#include "SyncEngine/Media/LibraryIndex.h"

#include <algorithm>
#include <tuple>

#include "AssetPipeline/ReferenceName.h"
#include "KestrinCore/UnicodeText.h"
#include "SyncEngine/Media/AssetProcessing.h"

namespace kestrin {
namespace {

constexpr std::size_t kHashLength = 12;

bool isBetter(const ASCLibraryAsset& a, const ASCLibraryAsset& b) {
    const bool aWaits = AssetProcessing::isProcessing(a.state);
    const bool bWaits = AssetProcessing::isProcessing(b.state);
    return aWaits != bWaits ? bWaits : text::compare(a.id, b.id) < 0;
}

}  // namespace

LibraryIndex::LibraryIndex(const std::vector<ASCLibraryAsset>& assets) {
    for (const auto& asset : assets) {
        assets_.insert_or_assign(asset.id, asset);
        if (const auto hash = ReferenceName::hashSuffix(asset.referenceName))
            byHash_[*hash].push_back(asset.id);
    }
}

LibraryIndex LibraryIndex::fetch(ASCClient& client, const std::string& libraryID) {
    auto assets = ASC::libraryAssets(client, libraryID, ASCLibraryAsset::Kind::image);
    const auto videos = ASC::libraryAssets(client, libraryID, ASCLibraryAsset::Kind::video);
    assets.insert(assets.end(), videos.begin(), videos.end());
    return LibraryIndex(assets);
}

const ASCLibraryAsset* LibraryIndex::asset(std::string_view matchingMD5) const {
    const auto candidates = byHash_.find(std::string(matchingMD5.substr(0, kHashLength)));
    if (candidates == byHash_.end()) return nullptr;
    const ASCLibraryAsset* best = nullptr;
    for (const auto& id : candidates->second) {
        const auto& candidate = assets_.at(id);
        if (AssetProcessing::isDead(candidate.state)) continue;
        if (!best || isBetter(candidate, *best)) best = &candidate;
    }
    return best;
}

}  // namespace kestrin
