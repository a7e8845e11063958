#include "KestrinModel/PackageNames.h"

#include <algorithm>
#include <array>
#include <set>

#include "KestrinCore/Split.h"
#include "KestrinCore/UnicodeText.h"
#include "KestrinModel/PackageNameError.h"
#include "KestrinModel/PlainName.h"

namespace kestrin::PackageNames {
namespace {

constexpr std::size_t kLongestName = 255;  // in bytes: NAME_MAX of every usual file system

constexpr std::array<std::string_view, 6> kReservedNames = {"App",          "Pages",        "Experiments",
                                                            "Kestrin.json", "Marquel.json", ".gitattributes"};

void require(std::string_view name) {
    if (!isPlain(name)) throw PackageNameError(PackageNameError::NotAName{std::string(name)});
}

template <class Keyed>
void requireKeys(const Keyed& map) {
    for (const auto& entry : map) require(entry.first.rawValue);
}

void requireAll(const std::vector<StoreLocale>& locales) {
    for (const auto& locale : locales) require(locale.rawValue);
}

void checkPlatforms(const Project& project) {
    text::TextSet folders;
    for (const auto& [platform, listing] : project.platforms) {
        const auto& folder = platform.folderName();
        require(folder);
        const auto isThisFolder = [&](std::string_view name) { return text::equal(name, folder); };
        if (std::any_of(kReservedNames.begin(), kReservedNames.end(), isThisFolder)) {
            throw PackageNameError(PackageNameError::ReservedName{folder});
        }
        if (!folders.insert(folder).second) throw PackageNameError(PackageNameError::SharedFolder{folder});
        requireKeys(listing.locales);
        requireKeys(listing.media);
    }
}

void checkPages(const Project& project) {
    requireKeys(project.pages);
    for (const auto& [slug, page] : project.pages) {
        requireAll(page.locales);
        requireKeys(page.promotionalText);
        requireKeys(page.media);
    }
}

void checkExperiments(const Project& project) {
    requireKeys(project.experiments);
    for (const auto& [slug, experiment] : project.experiments) {
        requireKeys(experiment.treatments);
        for (const auto& [treatmentSlug, treatment] : experiment.treatments) {
            requireAll(treatment.locales);
            requireKeys(treatment.media);
        }
    }
}

}  // namespace

bool isPlain(std::string_view name) {
    return isPlainPathComponent(name) && name.size() <= kLongestName && text::isValidUTF8(name);
}

void check(const Project& project) {
    for (const auto& entry : project.app.locales) {
        require(entry.first.rawValue);
        require(entry.first.rawValue + ".json");
    }
    checkPlatforms(project);
    checkPages(project);
    checkExperiments(project);
}

std::vector<std::string> pieces(std::string_view path) {
    std::vector<std::string> result;
    for (const auto piece : split(path, '/')) {
        if (!piece.empty()) result.emplace_back(piece);
    }
    if (result.empty() || !std::all_of(result.begin(), result.end(), isPlain)) {
        throw PackageNameError(PackageNameError::NotAPath{std::string(path)});
    }
    return result;
}

}  // namespace kestrin::PackageNames
