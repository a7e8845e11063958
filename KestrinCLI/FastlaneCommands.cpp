#include "KestrinCLI/FastlaneCommands.h"

#include <fmt/format.h>

#include "KestrinCLI/Failure.h"
#include "KestrinCLI/ProjectAccess.h"
#include "KestrinModel/FastlaneDeliverExporter.h"
#include "KestrinModel/FastlaneDeliverImporter.h"
#include "KestrinModel/ProjectPackageFile.h"

namespace kestrin {
namespace {

constexpr std::string_view kDownload = "--download-screenshots";

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
    ProjectPackageFile::save(project, package);
    console.print(fmt::format("Imported {} locales into {}.", project.manifest.locales.size(),
                              lastPathComponent(package)));
    return 0;
}

int FastlaneCommands::exportFastlane(const Arguments& args, Console& console) {
    if (hasFlag(kDownload, args)) fail(fmt::format("{} isn't available in this version yet", kDownload));
    const auto package = fileURL(args[2]);
    const auto target = fileURL(option("--to", args).value());
    const auto project = ProjectPackageFile::load(package);
    const auto noRemoteFile = [](const std::string&) { return std::nullopt; };
    printSummary(FastlaneDeliverExporter::exportListing(project, platformOption(args), target,
                                                        mediaLocator(package), noRemoteFile),
                 console);
    return 0;
}

}  // namespace kestrin
