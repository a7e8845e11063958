#include "SyncEngine/Media/RemoteScreenshotDownloader.h"

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <exception>
#include <mutex>
#include <set>
#include <stop_token>
#include <thread>

#include "KestrinCore/Files.h"
#include "KestrinCore/MapLookup.h"
#include "KestrinCore/UnicodeText.h"
#include "KestrinModel/FastlaneDeliverExporter.h"
#include "KestrinModel/PackageNameError.h"
#include "KestrinModel/PlainName.h"

namespace kestrin {
namespace {

namespace fs = std::filesystem;

std::set<std::string> assetIDs(const LocalizedMedia& media) {
    std::set<std::string> ids;
    for (const auto& [locale, slots] : media) {
        for (const auto& [slot, items] : slots) {
            if (slot.type != FastlaneDeliverExporter::screenshotType) continue;
            for (const auto& item : items) {
                if (const auto* remote = item.asRemote()) ids.insert(remote->assetID);
            }
        }
    }
    return ids;
}

std::optional<URL> addressOf(const ASCLibraryAsset& asset) {
    const auto& picture = asset.thumbnail;
    if (!picture) return std::nullopt;
    return picture->url(std::max(picture->width, picture->height),
                        RemoteScreenshotDownloader::format(asset.fileName));
}

void requireFileNames(const std::vector<ASCLibraryAsset>& assets) {
    for (const auto& asset : assets) {
        if (!isPlainPathComponent(asset.id)) throw PackageNameError(PackageNameError::NotAName{asset.id});
    }
}

// How one asset came out.
struct Outcome {
    const ASCLibraryAsset* asset;
    std::optional<fs::path> file;
    std::exception_ptr failure;
};

// From the workers to the one that waits for them.
class Outcomes {
 public:
    void add(Outcome outcome) {
        {
            const std::lock_guard lock(mutex_);
            arrived_.push_back(std::move(outcome));
        }
        isThere_.notify_one();
    }

    Outcome next() {
        std::unique_lock lock(mutex_);
        isThere_.wait(lock, [this] { return !arrived_.empty(); });
        auto outcome = std::move(arrived_.front());
        arrived_.pop_front();
        return outcome;
    }

 private:
    std::mutex mutex_;
    std::condition_variable isThere_;
    std::deque<Outcome> arrived_;
};

class AssetQueue {
 public:
    explicit AssetQueue(const std::vector<ASCLibraryAsset>& assets) : assets_(assets) {}

    // nullptr when all are taken.
    const ASCLibraryAsset* next() {
        const std::lock_guard lock(mutex_);
        return taken_ == assets_.size() ? nullptr : &assets_[taken_++];
    }

 private:
    std::mutex mutex_;
    const std::vector<ASCLibraryAsset>& assets_;
    std::size_t taken_ = 0;
};

class Workers {
 public:
    Workers(const std::vector<ASCLibraryAsset>& assets, const fs::path& folder, const Fetch& fetch)
        : queue_(assets), folder_(folder), fetch_(fetch) {}
    ~Workers() { stop_.request_stop(); }  // all at once; then each is waited for
    Workers(const Workers&) = delete;
    Workers& operator=(const Workers&) = delete;

    void start(std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) threads_.emplace_back([this] { work(); });
    }
    Outcome next() { return outcomes_.next(); }

 private:
    void work() {
        while (!stop_.stop_requested()) {
            const auto* asset = queue_.next();
            if (!asset) return;
            auto outcome = outcomeOf(*asset);
            const bool hasFailed = outcome.failure != nullptr;
            outcomes_.add(std::move(outcome));
            // Only now: what the stop does to the others must not be taken for the first failure.
            if (hasFailed) stop_.request_stop();
        }
    }

    Outcome outcomeOf(const ASCLibraryAsset& asset) noexcept {
        try {
            return {&asset, download(asset), nullptr};
        } catch (...) {
            return {&asset, std::nullopt, std::current_exception()};
        }
    }

    std::optional<fs::path> download(const ASCLibraryAsset& asset) const {
        const auto address = addressOf(asset);
        if (!address) return std::nullopt;
        const auto bytes = fetch_(*address, stop_.get_token());
        auto file = folder_ / (asset.id + "." + RemoteScreenshotDownloader::format(asset.fileName));
        files::writeAtomically(file, bytes, files::Flush::no);
        return file;
    }

    AssetQueue queue_;
    const fs::path& folder_;
    const Fetch& fetch_;
    Outcomes outcomes_;
    std::stop_source stop_;
    std::vector<std::jthread> threads_;  // last: gone before what they work on
};

}  // namespace

std::vector<ASCLibraryAsset> RemoteScreenshotDownloader::assets(const Project& project,
                                                                const StorePlatform& platform,
                                                                const KnownAssets& cached) {
    std::vector<ASCLibraryAsset> found;
    for (const auto& id : assetIDs(project[platform].media)) {
        const auto* asset = valueIn(cached, id);
        if (asset && asset->kind == ASCLibraryAsset::Kind::image && asset->thumbnail) found.push_back(*asset);
    }
    return found;
}

std::string RemoteScreenshotDownloader::format(std::string_view fileName) {
    const auto extension = text::lowercased(fs::path(fileName).extension().native());
    return extension == ".jpg" || extension == ".jpeg" ? "jpg" : "png";
}

auto RemoteScreenshotDownloader::download(const std::vector<ASCLibraryAsset>& assets, const fs::path& folder,
                                          std::size_t concurrency, const Progress& progress) const
    -> FilesByAsset {
    requireFileNames(assets);
    files::createFolders(folder);
    FilesByAsset written;
    Workers workers(assets, folder, fetch_);
    workers.start(std::min(std::max<std::size_t>(concurrency, 1), assets.size()));
    for (std::size_t done = 1; done <= assets.size(); ++done) {
        const auto outcome = workers.next();
        if (outcome.failure) std::rethrow_exception(outcome.failure);
        if (outcome.file) written.emplace(outcome.asset->id, *outcome.file);
        if (progress) progress(done, assets.size());
    }
    return written;
}

}  // namespace kestrin
