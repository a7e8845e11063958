#include "SyncEngine/Media/MediaResolver.h"

#include <algorithm>
#include <set>

#include "AssetPipeline/MediaHash.h"
#include "KestrinCore/FileError.h"
#include "KestrinCore/UnicodeText.h"

namespace kestrin::MediaResolver {
namespace {

class Resolver {
 public:
    Resolver(const LibraryIndex& library, const MediaLocator& finder) : index_(library), locate_(finder) {}

    MediaItem resolved(const MediaItem& item) {
        const auto* file = item.asFile();
        if (!file) return item;
        const auto hash = hashOf(file->path);
        const auto* asset = hash ? index_.asset(*hash) : nullptr;
        return asset ? MediaItem::remote(asset->id, asset->fileName) : item;
    }

    std::map<std::string, std::string> hashes;
    std::set<std::string> missing;  // told apart as the file system tells them apart

 private:
    std::optional<std::string> hashOf(const std::string& path) {
        if (const auto known = hashes.find(path); known != hashes.end()) return known->second;
        if (missing.contains(path)) return std::nullopt;
        const auto hash = read(path);
        if (hash) {
            hashes.emplace(path, *hash);
        } else {
            missing.insert(path);
        }
        return hash;
    }

    std::optional<std::string> read(const std::string& path) const {
        const auto file = locate_(path);
        if (!file) return std::nullopt;
        try {
            return MediaHash::md5(*file);
        } catch (const FileError&) {
            return std::nullopt;
        }
    }

    const LibraryIndex& index_;
    const MediaLocator& locate_;
};

template <class Use>
void forEachDefaultPageList(auto& platforms, Use&& use) {
    for (auto& [platform, listing] : platforms) {
        for (auto& [locale, slots] : listing.media) {
            for (auto& [slot, items] : slots) use(items);
        }
    }
}

}  // namespace

bool hasLocalFiles(const Project& project) {
    bool found = false;
    forEachDefaultPageList(project.platforms, [&](const MediaItems& items) {
        for (const auto& item : items) found = found || item.asFile();
    });
    return found;
}

MediaResolution resolve(const Project& project, LibraryIndex index, const MediaLocator& locate) {
    MediaResolution resolution;
    resolution.project = project;
    resolution.index = std::move(index);
    Resolver resolver(resolution.index, locate);
    forEachDefaultPageList(resolution.project.platforms, [&](MediaItems& items) {
        for (auto& item : items) item = resolver.resolved(item);
    });
    resolution.hashes = std::move(resolver.hashes);
    resolution.missing.assign(resolver.missing.begin(), resolver.missing.end());
    std::sort(resolution.missing.begin(), resolution.missing.end(), text::Less());
    return resolution;
}

}  // namespace kestrin::MediaResolver
