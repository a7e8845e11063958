#include "KestrinModel/PackageLayout.h"

#include "KestrinCore/UnicodeText.h"
#include "KestrinModel/PackageNameError.h"
#include "KestrinModel/PackageNames.h"

namespace kestrin::PackageLayout {
namespace {

[[noreturn]] void refuse(const std::string& name, const PackageFolder& folder) {
    throw PackageNameError(PackageNameError::UnusableOnDisk{folder.pathOf(name)});
}

}  // namespace

bool isPlatformFolder(std::string_view name, const PackageFolder& folder) {
    for (const auto own : {kApp, kPages, kExperiments}) {
        if (text::equal(name, own)) return false;
    }
    return folder.contains(kVersion) || folder.folder(kLocales) != nullptr;
}

const std::string& usable(const std::string& name, const PackageFolder& folder) {
    if (!PackageNames::isPlain(name)) refuse(name, folder);
    return name;
}

std::optional<std::string> localeOfFile(const std::string& fileName, const PackageFolder& folder) {
    if (!fileName.ends_with(kJSON)) return std::nullopt;
    auto locale = fileName.substr(0, fileName.size() - kJSON.size());
    if (!PackageNames::isPlain(locale)) refuse(fileName, folder);
    return locale;
}

}  // namespace kestrin::PackageLayout
