#include "KestrinCLI/ProjectAccess.h"

#include <climits>
#include <deque>
#include <system_error>
#include <vector>

#include "KestrinCLI/CommandLine.h"
#include "KestrinCLI/Failure.h"
#include "KestrinCore/Files.h"
#include "KestrinModel/ProjectPackageFile.h"

namespace kestrin {
namespace {

namespace fs = std::filesystem;

// A path that can't be looked at isn't free.
bool isFree(const fs::path& path) {
    std::error_code ignored;
    return fs::status(path, ignored).type() == fs::file_type::not_found;
}

Project newProject(const std::string& bundleID) {
    Project project;
    project.manifest.projectID = UUID::random();
    project.manifest.app.bundleID = bundleID;
    project.manifest.platforms = {StorePlatform::iOS};
    project.manifest.primaryLocale = StoreLocale::englishUS;
    return project;
}

// Follows a path through a package name by name, as the system would, and sees whether it ever leaves it.
class PathWalk {
 public:
    explicit PathWalk(fs::path root) : root_(std::move(root)) {}

    bool staysInside(const fs::path& relative) {
        if (!enter(relative)) return false;
        while (!ahead_.empty()) {
            const auto name = std::move(ahead_.front());
            ahead_.pop_front();
            if (!step(name)) return false;
        }
        return true;
    }

 private:
    static constexpr int kMostLinks = 40;  // as on Linux; more are a loop

    // Puts the names of a path in front of those still to be walked. An absolute one, which only a link can bring,
    // is resolved outright: it must lead back into the package.
    bool enter(fs::path path) {
        if (path.is_absolute()) {
            std::error_code unreachable;
            const auto target = fs::canonical(path, unreachable);
            if (unreachable) return false;
            path = target.lexically_relative(root_);
            inside_.clear();
        }
        ahead_.insert(ahead_.begin(), path.begin(), path.end());
        return true;
    }

    bool step(const fs::path& name) {
        if (name.empty() || name == ".") return true;
        if (name == "..") return leaveFolder();
        const auto place = here() / name;
        std::error_code error;
        const auto status = fs::symlink_status(place, error);
        if (error || !fs::exists(status)) return false;
        if (status.type() != fs::file_type::symlink) {
            inside_.push_back(name);
            return true;
        }
        if (++links_ > kMostLinks) return false;
        const auto target = fs::read_symlink(place, error);
        return !error && enter(target);
    }

    bool leaveFolder() {
        if (inside_.empty()) return false;
        inside_.pop_back();
        return true;
    }

    fs::path here() const {
        fs::path place = root_;
        for (const auto& name : inside_) place /= name;
        return place;
    }

    fs::path root_;
    std::vector<fs::path> inside_;  // the folders walked into, from the root on
    std::deque<fs::path> ahead_;
    int links_ = 0;
};

bool leadsToAFileInside(const std::string& path, const fs::path& package) {
    if (path.empty() || path.size() >= PATH_MAX || path.find('\0') != std::string::npos) return false;
    if (fs::path(path).is_absolute()) return false;
    std::error_code error;
    const auto root = fs::canonical(package, error);
    if (error || !PathWalk(root).staysInside(path)) return false;
    const auto file = package / path;
    return fs::is_regular_file(file, error) && files::isReadable(file);
}

}  // namespace

Project loadProject(std::string_view word) {
    return ProjectPackageFile::load(fileURL(word));
}

Project loadOrCreate(const fs::path& path, const std::optional<std::string>& bundleID) {
    // Loading comes first: it also finds a package that a killed save has left beside its place.
    try {
        return ProjectPackageFile::load(path);
    } catch (const Error&) {
        if (!isFree(path)) throw;
    }
    if (!bundleID) fail(lastPathComponent(path) + " doesn't exist yet; pass --bundle-id to create it");
    return newProject(*bundleID);
}

MediaLocator mediaLocator(const fs::path& package) {
    return [package](const std::string& path) -> std::optional<fs::path> {
        if (!leadsToAFileInside(path, package)) return std::nullopt;
        return package / path;
    };
}

}  // namespace kestrin
