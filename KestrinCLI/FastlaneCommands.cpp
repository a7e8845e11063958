#include "KestrinCLI/FastlaneCommands.h"

#include <fmt/format.h>

#include <atomic>
#include <filesystem>

#include "KestrinCLI/ProjectAccess.h"
#include "KestrinCLI/TransferLine.h"
#include "KestrinCore/MapLookup.h"
#include "KestrinModel/FastlaneDeliverExporter.h"
#include "KestrinModel/FastlaneDeliverImporter.h"
#include "KestrinModel/ProjectPackageFile.h"
#include "SyncEngine/Media/RemoteScreenshotDownloader.h"
#include "SyncEngine/State/ProjectStateStore.h"

namespace kestrin {
namespace {

constexpr std::size_t kDownloadsAtOnce = 4;

// A folder of this run's own, gone with all that is in it when the run is.
class DownloadFolder {
 public:
    DownloadFolder()
        : path_(std::filesystem::temp_directory_path() / ("kestrin-screenshots-" + UUID::random().text())) {}
    ~DownloadFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    DownloadFolder(const DownloadFolder&) = delete;
    DownloadFolder& operator=(const DownloadFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }

 private:
    std::filesystem::path path_;
};

// The screenshots of the platform that the last pull or push saw on App Store Connect. No client is made for them:
// their addresses are remembered, and open without a key.
RemoteScreenshotDownloader::FilesByAsset downloadedScreenshots(const Project& project,
                                                               const StorePlatform& platform,
                                                               const DownloadFolder& folder,
                                                               Console& console) {
    const auto cached = ProjectStateStore::commandLine().remoteAssets(project.manifest.projectID);
    const auto assets = RemoteScreenshotDownloader::assets(project, platform, cached);
    console.note(fmt::format("Downloading {} screenshots from App Store Connect…", assets.size()));
    // Workers count what they fetched; only this thread shows it.
    std::atomic<std::int64_t> bytes = 0;
    const RemoteScreenshotDownloader downloader(
        [&bytes, get = plainGet()](const URL& url, const std::stop_token& stop) {
            auto picture = get(url, stop);
            bytes += static_cast<std::int64_t>(picture.size());
            return picture;
        });
    TransferLine line(console);
    return downloader.download(assets, folder.path(), kDownloadsAtOnce,
                               [&](std::size_t done, std::size_t total) {
                                   line.show(fmt::format("downloading {} of {}", done, total), bytes);
                               });
}

void printSummary(const FastlaneExportSummary& summary, Console& console) {
    console.print(fmt::format("Exported {} locales, {} text files and {} screenshots.", summary.localeCount,
                              summary.textFileCount, summary.screenshotCount));
    if (summary.remoteScreenshotCount > 0) {
        console.print(fmt::format(
            "  {} screenshots are only on App Store Connect, so weren't copied (try --download-screenshots).",
            summary.remoteScreenshotCount));
    }
    if (summary.otherMediaCount > 0) {
        console.print(
            fmt::format("  {} previews and other media were left out: deliver only uploads screenshots.",
                        summary.otherMediaCount));
    }
    for (const auto& file : summary.missingFiles) console.print("  Missing: " + file);
}

}  // namespace

int FastlaneCommands::importFastlane(const Arguments& args, Console& console) {
    const auto package = fileURL(option("--into", args).value());
    auto project = loadOrCreate(package, option("--bundle-id", args));
    FastlaneDeliverImporter::importListing(fileURL(args[2]), project, StorePlatform::iOS);
    const auto name = lastPathComponent(package);  // a save may replace the folder that "." means
    ProjectPackageFile::save(project, package);
    console.print(fmt::format("Imported {} locales into {}.", project.manifest.locales.size(), name));
    return 0;
}

int FastlaneCommands::exportFastlane(const Arguments& args, Console& console) {
    const auto package = fileURL(args[2]);
    const auto target = fileURL(option("--to", args).value());
    const auto project = ProjectPackageFile::load(package);
    const auto platform = platformOption(args);
    const DownloadFolder folder;
    RemoteScreenshotDownloader::FilesByAsset downloaded;
    if (hasFlag("--download-screenshots", args)) {
        downloaded = downloadedScreenshots(project, platform, folder, console);
    }
    const auto remoteFile = [&](const std::string& assetID) {
        const auto* file = valueIn(downloaded, assetID);
        return file ? std::optional(*file) : std::nullopt;
    };
    printSummary(
        FastlaneDeliverExporter::exportListing(project, platform, target, mediaLocator(package), remoteFile),
        console);
    return 0;
}

}  // namespace kestrin
