#include "KestrinModel/ProjectPackageFile.h"

#include "KestrinCore/FileError.h"
#include "KestrinModel/PackageStage.h"
#include "KestrinModel/ProjectFormatError.h"
#include "KestrinModel/ProjectPackageCodec.h"

namespace kestrin::ProjectPackageFile {
namespace {

using std::filesystem::path;

PackageFolder tree(const path& package) {
    return PackageFolder(std::make_unique<DiskFolder>(package));
}

PackageFolder openPackage(const path& package) {
    try {
        return tree(package);
    } catch (const FileError& error) {
        std::error_code notThere;  // such as what would lie behind a file
        if (error.reason == std::errc::not_a_directory && std::filesystem::exists(package, notThere)) {
            throw ProjectFormatError(ProjectFormatError::NotAPackage{});
        }
        throw;
    }
}

constexpr int kAttempts = 10;

// nullopt when a save of another program has replaced the package meanwhile: its old folder is being removed, so
// what was missing from it, and what seemed to be missing, says nothing.
std::optional<Project> readUnmoved(const path& package) {
    const auto opened = openPackage(package);
    try {
        auto project = ProjectPackageCodec::read(opened);
        if (opened.disk()->isAt(package)) return project;
    } catch (const Error&) {
        if (opened.disk()->isAt(package)) throw;
    }
    return std::nullopt;
}

void restoreMovedAside(const path& package) {
    try {
        auto location = PackageLocation::of(package);
        PackageStage::restore(location);
    } catch (const FileError&) {  // the load will say it better
    }
}

}  // namespace

Project load(const path& package) {
    std::error_code error;
    if (!std::filesystem::exists(package, error) && !error) restoreMovedAside(package);
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        if (auto project = readUnmoved(package)) return *std::move(project);
    }
    throw FileError(FileError::Operation::read, package,
                    std::make_error_code(std::errc::device_or_resource_busy));
}

void save(const Project& project, const path& package) {
    auto location = PackageLocation::of(package);
    PackageStage::restore(location);
    PackageStage::sweep(location);
    auto previous = location.exists ? tree(package) : PackageFolder();
    const auto changed = ProjectPackageCodec::write(project, std::move(previous));
    if (changed.isChanged() || !location.exists) PackageStage::replace(location, changed);
}

}  // namespace kestrin::ProjectPackageFile
