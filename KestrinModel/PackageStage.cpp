#include "KestrinModel/PackageStage.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <system_error>

#include "KestrinCore/Error.h"
#include "KestrinCore/UUID.h"
#include "KestrinModel/DiskEntries.h"

namespace kestrin::PackageStage {
namespace {

using files::Descriptor;
using std::filesystem::path;
using Folder = std::unique_ptr<PackageFolder>;

constexpr std::string_view kStageInfix = ".kestrin-stage-";
constexpr std::string_view kOldInfix = ".kestrin-old-";
constexpr std::size_t kLongestName = 255;
constexpr std::size_t kUUIDLength = 36;

// Of a name that would get too long by what stands around it only the beginning is used; a UUID tells them apart.
std::string prefix(const std::string& packageName, std::string_view infix) {
    const auto room = kLongestName - 1 - infix.size() - kUUIDLength;
    auto length = std::min(packageName.size(), room);
    while (length < packageName.size() && length > 0 && (packageName[length] & 0xC0) == 0x80) --length;
    std::string result = ".";
    return result.append(packageName, 0, length).append(infix);
}

bool isOf(const std::string& name, const std::string& prefix) {
    if (!name.starts_with(prefix)) return false;
    const auto id = UUID::parse(std::string_view(name).substr(prefix.size()));
    return id && name == prefix + id->text();
}

[[noreturn]] void fail(const path& where) {
    throw FileError::fromErrno(FileError::Operation::write, where);
}

[[noreturn]] void refuse(const path& where, std::errc why) {
    throw FileError(FileError::Operation::write, where, std::make_error_code(why));
}

// Each level takes two open folders and some stack. No listing comes near it.
constexpr std::size_t kDeepest = 100;

// The tree as it is written: from the package in memory, and on disk as far as it is there, into open folders of the
// stage.
class TreeWriter {
 public:
    // The root has been made; `target` is its descriptor, `name` is for messages.
    void writeRoot(const PackageFolder& package, int target, const path& name) {
        fill(package, target, {});
        finish(package, target, name);
    }

    // Relative to the root, the files whose content is new.
    const std::vector<path>& written() const { return written_; }

 private:
    void fill(const PackageFolder& folder, int target, const path& at) {
        if (folder.disk() && folder.hasChangedEntries()) requireWritable(*folder.disk());
        for (const auto& child : folder.children()) {
            const auto& name = child.first;
            const auto where = at / name;
            const auto keep = [&] { keepEntry(folder, target, name, where); };
            std::visit(
                Overloaded{
                    [&](const PackageFolder::OnDisk&) { keep(); },
                    [&](const PackageFolder::Special&) { keep(); },
                    [&](const PackageFolder::New& file) { writeFile(folder, target, name, file, where); },
                    [&](const Folder& subfolder) { writeFolder(*subfolder, target, name, where); },
                },
                child.second);
        }
    }

    // Nothing is written into the old folder, so nothing else would keep this user from changing what they may not.
    static void requireWritable(DiskFolder& folder) {
        if (faccessat(folder.descriptor(), ".", W_OK, AT_EACCESS) != 0) fail(folder.path());
    }

    static void keepEntry(const PackageFolder& folder, int target, const std::string& name,
                          const path& where) {
        try {
            DiskEntries::linkOrCopy(folder.disk()->descriptor(), target, name);
        } catch (const std::system_error& error) {
            throw FileError(FileError::Operation::write, where, error.code());
        } catch (const FileError& error) {
            throw FileError(FileError::Operation::write, where, error.reason);
        }
    }

    // A folder that is there may have closer permissions than a new one would get; at no time has its copy wider ones.
    void writeFolder(const PackageFolder& folder, int parent, const std::string& name, const path& where) {
        const mode_t mode = folder.disk() ? (folder.disk()->status().st_mode & 0777) | 0700 : 0777;
        if (mkdirat(parent, name.c_str(), mode) != 0) fail(where);
        const auto target = DiskEntries::openFolder(parent, name);
        if (!target) fail(where);
        if (++depth_ > kDeepest) refuse(where, std::errc::filename_too_long);
        fill(folder, target.number(), where);
        --depth_;
        finish(folder, target.number(), where);
    }

    static void finish(const PackageFolder& folder, int target, const path& where) {
        if (!folder.disk()) return;
        const int source = folder.disk()->descriptor();
        try {
            DiskEntries::handOnPermissions(source, target);
            if (!folder.hasChangedEntries()) DiskEntries::handOnTimes(source, target);
        } catch (const std::system_error& error) {
            throw FileError(FileError::Operation::write, where, error.code());
        }
    }

    void writeFile(const PackageFolder& folder, int target, const std::string& name,
                   const PackageFolder::New& file, const path& where) {
        const mode_t mode = file.replacesFile ? 0600 : 0666;
        const Descriptor to(openat(target, name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode));
        if (!to) fail(where);
        try {
            writeContent(to, file, where);
            if (file.replacesFile) handOnPermissions(folder.disk()->descriptor(), name, to);
        } catch (const std::system_error& error) {
            throw FileError(FileError::Operation::write, where, error.code());
        }
        written_.push_back(where);
    }

    static void handOnPermissions(int source, const std::string& name, const Descriptor& to) {
        const Descriptor from(openat(source, name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
        if (!from) throw std::system_error(errno, std::generic_category());
        DiskEntries::handOnPermissions(from.number(), to.number());
    }

    static void writeContent(const Descriptor& to, const PackageFolder::New& file, const path& where) {
        if (const auto* bytes = std::get_if<std::string>(&file.content))
            return files::writeAll(to, *bytes, where);
        const auto& source = std::get<path>(file.content);
        const Descriptor from(open(source.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
        if (!from) throw FileError::fromErrno(FileError::Operation::read, source);
        files::copyAll(from, source, to, where);
    }

    std::vector<path> written_;
    std::size_t depth_ = 0;
};

// The hidden folder beside the package; whatever stands under its name goes when this does.
class Stage {
 public:
    explicit Stage(const PackageLocation& location) : location_(location) {
        while (!makeAndLock()) {
        }
    }
    ~Stage() { DiskEntries::remove(location_.parent.number(), name_); }
    Stage(const Stage&) = delete;
    Stage& operator=(const Stage&) = delete;

    void write(const PackageFolder& package) {
        TreeWriter writer;
        writer.writeRoot(package, folder_.number(), location_.given);
        if (!package.disk()) makeUsual();
        flush(writer.written());
    }

    // A save of another program that replaced the package has taken the old tree apart, perhaps while the stage was
    // made of it: then files may be missing. As long as the package is the folder that was read, none can be.
    void requireUnmoved(const PackageFolder& package) const {
        if (!package.disk()) return;
        const auto read = package.disk()->status();
        struct stat now {};
        if (fstatat(parent(), location_.name.c_str(), &now, AT_SYMLINK_NOFOLLOW) != 0) fail(location_.given);
        if (now.st_ino != read.st_ino || now.st_dev != read.st_dev) {
            refuse(location_.given, std::errc::device_or_resource_busy);
        }
    }

    void takePlace() {
        const auto& place = location_.name;
        if (location_.exists) {
            exchange();
        } else if (!renameTo(place, RENAME_NOREPLACE)) {
            // rename(2) replaces nothing but an empty folder.
            if (!isUnsupported(errno) || renameat(parent(), name_.c_str(), parent(), place.c_str()) != 0) {
                fail(location_.given);
            }
        }
        fsync(parent());  // not every file system can flush a folder; the rename has happened either way
    }

 private:
    int parent() const { return location_.parent.number(); }

    // false: a sweeper took the folder away between its making and its locking.
    bool makeAndLock() {
        name_ = prefix(location_.name, kStageInfix) + UUID::random().text();
        if (mkdirat(parent(), name_.c_str(), 0700) != 0) fail(location_.given);
        folder_ = DiskEntries::openFolder(parent(), name_);
        if (!folder_ && errno == ENOENT) return false;
        if (!folder_) {
            const int why = errno;
            unlinkat(parent(), name_.c_str(), AT_REMOVEDIR);
            errno = why;
            fail(location_.given);
        }
        // Where there are no locks a sweeper gets none either, and leaves the folder alone.
        if (flock(folder_.number(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) return false;
        struct stat status {};
        return fstat(folder_.number(), &status) == 0 && status.st_nlink > 0;
    }

    // A new package has the permissions of any new folder.
    void makeUsual() {
        const mode_t mask = umask(0);
        umask(mask);
        if (fchmod(folder_.number(), 0777 & ~mask) != 0) fail(location_.given);
    }

    void flush(const std::vector<path>& written) {
        if (syncfs(folder_.number()) == 0) return;
        if (errno != ENOSYS) fail(location_.given);
        for (const auto& file : written) {
            const Descriptor open(openat(folder_.number(), file.c_str(), O_RDONLY | O_CLOEXEC));
            if (!open || fsync(open.number()) != 0) fail(file);
        }
        if (fsync(folder_.number()) != 0) fail(location_.given);
    }

    static bool isUnsupported(int error) {
        return error == EINVAL || error == ENOSYS || error == EOPNOTSUPP || error == ENOTSUP;
    }

    bool renameTo(const std::string& name, unsigned flags) {
        return renameat2(parent(), name_.c_str(), parent(), name.c_str(), flags) == 0;
    }

    void exchange() {
        if (renameTo(location_.name, RENAME_EXCHANGE)) return;
        if (!isUnsupported(errno)) fail(location_.given);
        const auto old = prefix(location_.name, kOldInfix) + UUID::random().text();
        const auto* place = location_.name.c_str();
        if (renameat(parent(), place, parent(), old.c_str()) != 0) fail(location_.given);
        if (renameat(parent(), name_.c_str(), parent(), place) != 0) {
            const int why = errno;
            renameat(parent(), old.c_str(), parent(), place);
            errno = why;
            fail(location_.given);
        }
        DiskEntries::remove(parent(), old);
    }

    const PackageLocation& location_;
    std::string name_;
    Descriptor folder_;  // holds the lock
};

void sweepStage(int parent, const std::string& name) {
    const auto folder = DiskEntries::openFolder(parent, name);
    if (folder && flock(folder.number(), LOCK_EX | LOCK_NB) == 0) DiskEntries::remove(parent, name);
}

std::vector<DiskEntries::Entry> foldersBeside(const PackageLocation& location) {
    try {
        auto entries = DiskEntries::list(location.parent.number());
        std::erase_if(entries, [](const auto& entry) { return entry.kind != DiskEntries::Kind::folder; });
        return entries;
    } catch (const std::system_error&) {
        return {};
    }
}

}  // namespace

void replace(const PackageLocation& location, const PackageFolder& package) {
    Stage stage(location);
    stage.write(package);
    stage.requireUnmoved(package);
    stage.takePlace();
}

void sweep(const PackageLocation& location) {
    const int parent = location.parent.number();
    const auto stages = prefix(location.name, kStageInfix);
    const auto old = prefix(location.name, kOldInfix);
    for (const auto& entry : foldersBeside(location)) {
        if (isOf(entry.name, stages)) sweepStage(parent, entry.name);
        if (location.exists && isOf(entry.name, old)) DiskEntries::remove(parent, entry.name);
    }
}

bool restore(PackageLocation& location) {
    if (location.exists) return true;
    const int parent = location.parent.number();
    const auto old = prefix(location.name, kOldInfix);
    for (const auto& entry : foldersBeside(location)) {
        if (!isOf(entry.name, old)) continue;
        if (renameat(parent, entry.name.c_str(), parent, location.name.c_str()) == 0) location.exists = true;
        if (location.exists) break;
    }
    return location.exists;
}

}  // namespace kestrin::PackageStage
