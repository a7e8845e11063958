#include "KestrinModel/FastlaneDeliverImporter.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "KestrinCore/Files.h"
#include "KestrinCore/UnicodeText.h"
#include "KestrinModel/FastlaneDeliverExporter.h"
#include "KestrinModel/PackageFolder.h"
#include "KestrinModel/TextFile.h"

namespace kestrin::FastlaneDeliverImporter {
namespace {

namespace fs = std::filesystem;

// A package holds no more.
constexpr auto kFileLimit = PackageFolder::kMaximumFileSize;
constexpr auto kFolderLimit = PackageFolder::kMaximumTotalSize;
constexpr std::string_view kDefaultFolder = "default";
constexpr std::string_view kByteOrderMark = "\uFEFF";
constexpr std::string_view kGenrePrefix = "MZGenre.";

using Fields = std::map<ListingField, std::string>;
using ReviewField = std::optional<std::string> ReviewDetailContent::*;

// All that a deliver folder says; an empty text is one that it doesn't give.
struct DeliverFolder {
    std::vector<std::pair<StoreLocale, Fields>> locales;  // in the order of the folder names
    std::string copyright, primaryCategory, secondaryCategory;
    std::vector<std::pair<ReviewField, std::string>> review;
};

// "" for a file that gives no value.
std::string readText(const fs::path& file) {
    std::string bytes;
    try {
        bytes = files::readWhole(file, kFileLimit);
    } catch (const FileError&) {
        return {};
    } catch (const FileTooLargeError&) {
        return {};
    }
    if (!text::isValidUTF8(bytes)) return {};
    std::string_view content(bytes);
    if (content.starts_with(kByteOrderMark)) content.remove_prefix(kByteOrderMark.size());
    return TextFile::normalizeLineEndings(text::withoutTrailingWhitespace(content));
}

Fields readFields(const fs::path& folder) {
    Fields fields;
    for (const auto& row : fileNames) {
        auto value = readText(folder / row.name);
        if (!value.empty()) fields.emplace(row.field, std::move(value));
    }
    return fields;
}

bool isLowerCaseLetter(char c) {
    return c >= 'a' && c <= 'z';
}
bool isLetter(char c) {
    return isLowerCaseLetter(c) || (c >= 'A' && c <= 'Z');
}

// [a-z]{2,3}(-[A-Za-z]{2,4})?
bool isLocaleName(std::string_view name) {
    const auto language = name.substr(0, name.find('-'));
    if (language.size() < 2 || language.size() > 3 || !std::ranges::all_of(language, isLowerCaseLetter)) {
        return false;
    }
    if (language.size() == name.size()) return true;
    const auto region = name.substr(language.size() + 1);
    return region.size() >= 2 && region.size() <= 4 && std::ranges::all_of(region, isLetter);
}

std::vector<StoreLocale> localeFolders(const fs::path& folder) {
    std::vector<StoreLocale> locales;
    std::error_code error;
    fs::directory_iterator entry(folder, error);
    while (!error && entry != fs::directory_iterator()) {
        std::error_code unknownKind;  // then it is no folder that could be read
        auto name = entry->path().filename().string();
        if (isLocaleName(name) && entry->is_directory(unknownKind)) locales.push_back({std::move(name)});
        entry.increment(error);
    }
    if (error) throw FileError(FileError::Operation::list, folder, error);
    std::ranges::sort(locales);
    return locales;
}

std::uintmax_t totalSize(const Fields& fields) {
    std::uintmax_t size = 0;
    for (const auto& [field, value] : fields) size += value.size();
    return size;
}

// A default of some size in a folder of many locales multiplies, so what is held is counted, not what was read.
std::vector<std::pair<StoreLocale, Fields>> readLocales(const fs::path& folder) {
    const auto defaults = readFields(folder / kDefaultFolder);
    std::vector<std::pair<StoreLocale, Fields>> result;
    std::uintmax_t size = 0;
    for (auto& locale : localeFolders(folder)) {
        auto fields = readFields(folder / locale.rawValue);
        fields.insert(defaults.begin(), defaults.end());  // never over the locale's own
        size += totalSize(fields);
        if (size > kFolderLimit) throw FileTooLargeError(folder, kFolderLimit);
        result.emplace_back(std::move(locale), std::move(fields));
    }
    return result;
}

std::string categoryIdentifier(std::string_view value) {
    if (value.starts_with(kGenrePrefix)) value.remove_prefix(kGenrePrefix.size());
    std::string identifier(value);
    std::ranges::replace(identifier, ' ', '_');
    return text::uppercased(identifier);
}

DeliverFolder read(const fs::path& folder) {
    DeliverFolder result;
    result.locales = readLocales(folder);
    result.copyright = readText(folder / copyrightFile);
    result.primaryCategory = categoryIdentifier(readText(folder / primaryCategoryFile));
    result.secondaryCategory = categoryIdentifier(readText(folder / secondaryCategoryFile));
    for (const auto& row : FastlaneDeliverExporter::reviewFileNames) {
        auto value = readText(folder / reviewFolder / row.name);
        if (!value.empty()) result.review.emplace_back(row.field, std::move(value));
    }
    return result;
}

template <class Value>
void appendIfAbsent(std::vector<Value>& list, const Value& value) {
    if (std::ranges::find(list, value) == list.end()) list.push_back(value);
}

void addLocales(DeliverFolder& folder, Project& project, const StorePlatform& platform) {
    for (auto& [locale, fields] : folder.locales) {
        for (auto& [field, value] : fields) project.setValue(std::move(value), field, locale, platform);
        appendIfAbsent(project.manifest.locales, locale);
    }
}

void addSharedTexts(DeliverFolder& folder, Project& project, const StorePlatform& platform) {
    auto& info = project.app.info;
    if (!folder.copyright.empty())
        project.platforms[platform].version.copyright = std::move(folder.copyright);
    if (!folder.primaryCategory.empty()) info.primaryCategory = std::move(folder.primaryCategory);
    if (!folder.secondaryCategory.empty()) info.secondaryCategory = std::move(folder.secondaryCategory);
    for (auto& [field, value] : folder.review) project.platforms[platform].review.*field = std::move(value);
}

void addPlatform(ProjectManifest& manifest, const StorePlatform& platform) {
    if (std::ranges::find(manifest.platforms, platform) != manifest.platforms.end()) return;
    manifest.platforms.push_back(platform);
    std::ranges::sort(manifest.platforms);
}

}  // namespace

void importListing(const fs::path& folder, Project& project, const StorePlatform& platform) {
    std::error_code notThere;
    const auto metadata = folder / metadataFolder;
    auto content = read(fs::is_directory(metadata, notThere) ? metadata : folder);

    addLocales(content, project, platform);
    addSharedTexts(content, project, platform);
    addPlatform(project.manifest, platform);
}

}  // namespace kestrin::FastlaneDeliverImporter
