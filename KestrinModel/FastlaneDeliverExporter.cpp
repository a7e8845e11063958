#include "KestrinModel/FastlaneDeliverExporter.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <vector>

#include "KestrinCore/Files.h"
#include "KestrinCore/UnicodeText.h"
#include "KestrinModel/FastlaneDeliverImporter.h"
#include "KestrinModel/PlainName.h"

namespace kestrin::FastlaneDeliverExporter {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kScreenshotsFolder = "screenshots";

void removeFile(const fs::path& file) {
    std::error_code unknown;
    const auto status = fs::symlink_status(file, unknown);
    if (!fs::exists(status) || fs::is_directory(status)) return;
    if (unlink(file.c_str()) != 0 && errno != ENOENT) {
        throw FileError::fromErrno(FileError::Operation::remove, file);
    }
}

bool holds(const fs::path& file, const std::string& bytes) {
    std::error_code notThere;
    if (!fs::is_regular_file(fs::symlink_status(file, notThere))) return false;
    if (fs::file_size(file, notThere) != bytes.size()) return false;
    try {
        return files::readWhole(file, bytes.size()) == bytes;
    } catch (const Error&) {  // then writing says why, or succeeds
        return false;
    }
}

// The one way in which a text file comes about, or goes. Whether there is one now.
bool write(const std::string& text, const fs::path& file) {
    if (text.empty()) {
        removeFile(file);
        return false;
    }
    const auto bytes = text + "\n";
    if (holds(file, bytes)) return true;
    files::createFolders(file.parent_path());
    files::writeAtomically(file, bytes, files::Flush::no);
    return true;
}

std::string withoutSeparators(std::string name) {
    std::ranges::replace(name, '/', '-');
    std::ranges::replace(name, '\0', '-');
    return name;
}

std::string fileName(const MediaItem& item, const fs::path& source) {
    const auto* remote = item.asRemote();
    if (!remote || remote->fileName.empty()) return source.filename().string();
    const fs::path name(withoutSeparators(remote->fileName));
    return name.stem().string() + source.extension().string();
}

class Export {
 public:
    Export(const Project& project, const StorePlatform& platform, const fs::path& target)
        : project_(project),
          platform_(platform),
          listing_(project[platform]),
          metadata_(target / FastlaneDeliverImporter::metadataFolder),
          screenshots_(target / kScreenshotsFolder) {}

    // Everything that could lead outside the target is refused before the first byte is written.
    void check() const {
        for (const auto& folder : folders()) {
            std::error_code notThere;
            if (fs::is_symlink(folder, notThere)) {
                throw FastlaneExportError(FastlaneExportError::LinkInTheWay{folder});
            }
        }
    }

    void writeTexts() {
        for (const auto& locale : project_.manifest.locales) {
            for (const auto& [field, name] : FastlaneDeliverImporter::fileNames) {
                put(project_.value(field, locale, platform_), metadata_ / locale.rawValue / name);
            }
            ++summary.localeCount;
        }
    }

    void writeSharedTexts() {
        const auto& info = project_.app.info;
        put(listing_.version.copyright, metadata_ / FastlaneDeliverImporter::copyrightFile);
        put(info.primaryCategory, metadata_ / FastlaneDeliverImporter::primaryCategoryFile);
        put(info.secondaryCategory, metadata_ / FastlaneDeliverImporter::secondaryCategoryFile);
    }

    void writeReviewDetails() {
        for (const auto& [field, name] : reviewFileNames) {
            put(listing_.review.*field, metadata_ / FastlaneDeliverImporter::reviewFolder / name);
        }
    }

    void copyScreenshots(const FileFinder& locate, const FileFinder& remoteFile) {
        for (const auto& [locale, slots] : listing_.media) {
            copyScreenshots(slots, screenshots_ / locale.rawValue, locate, remoteFile);
        }
    }

    FastlaneExportSummary summary;

 private:
    static fs::path folderOf(const fs::path& parent, const StoreLocale& locale) {
        if (!isPlainPathComponent(locale.rawValue)) {
            throw FastlaneExportError(FastlaneExportError::UnusableLocale{locale.rawValue});
        }
        return parent / locale.rawValue;
    }

    std::vector<fs::path> folders() const {
        std::vector<fs::path> result = {metadata_, metadata_ / FastlaneDeliverImporter::reviewFolder,
                                        screenshots_};
        for (const auto& locale : project_.manifest.locales) result.push_back(folderOf(metadata_, locale));
        for (const auto& [locale, slots] : listing_.media) result.push_back(folderOf(screenshots_, locale));
        return result;
    }

    void put(const std::string& text, const fs::path& file) {
        if (write(text, file)) ++summary.textFileCount;
    }
    void put(const std::optional<std::string>& text, const fs::path& file) { put(text.value_or(""), file); }

    void copyScreenshots(const MediaBySlot& slots, const fs::path& folder, const FileFinder& locate,
                         const FileFinder& remoteFile) {
        std::size_t number = 0;
        for (const auto& [slot, items] : slots) {
            if (slot.type != screenshotType) {
                summary.otherMediaCount += items.size();
                continue;
            }
            for (const auto& item : items) {
                const auto source = sourceOf(item, locate, remoteFile);
                if (source) copyScreenshot(item, slot, *source, ++number, folder);
            }
        }
    }

    // Nothing for an item that stays behind, which is then in the summary.
    std::optional<fs::path> sourceOf(const MediaItem& item, const FileFinder& locate,
                                     const FileFinder& remoteFile) {
        if (const auto* remote = item.asRemote()) {
            auto copy = remoteFile(remote->assetID);
            if (!copy) ++summary.remoteScreenshotCount;
            return copy;
        }
        const auto& path = item.asFile()->path;
        auto file = locate(path);
        std::error_code notThere;
        if (file && fs::is_regular_file(*file, notThere) && files::isReadable(*file)) return file;
        summary.missingFiles.push_back(path);
        return std::nullopt;
    }

    void copyScreenshot(const MediaItem& item, const PlacementSlot& slot, const fs::path& source,
                        std::size_t number, const fs::path& folder) {
        const auto group = text::lowercased(withoutSeparators(slot.group));
        files::createFolders(folder);
        const auto name = fmt::format("{:02}_{}_{}", number, group, fileName(item, source));
        files::copyAtomically(source, folder / name, files::Flush::no);
        ++summary.screenshotCount;
    }

    const Project& project_;
    const StorePlatform& platform_;
    const PlatformListing& listing_;
    const fs::path metadata_, screenshots_;
};

}  // namespace

FastlaneExportSummary exportListing(const Project& project, const StorePlatform& platform,
                                    const fs::path& target, const FileFinder& locate,
                                    const FileFinder& remoteFile) {
    Export listing(project, platform, target);
    listing.check();
    listing.writeTexts();
    listing.writeSharedTexts();
    listing.writeReviewDetails();
    listing.copyScreenshots(locate, remoteFile);
    return std::move(listing.summary);
}

}  // namespace kestrin::FastlaneDeliverExporter
