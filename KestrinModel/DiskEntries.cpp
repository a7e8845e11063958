#include "KestrinModel/DiskEntries.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <system_error>

#include "KestrinCore/Handle.h"

namespace kestrin::DiskEntries {
namespace {

using files::Descriptor;

[[noreturn]] void fail() {
    throw std::system_error(errno, std::generic_category());
}

struct stat statusAt(int folder, const std::string& name) {
    struct stat status {};
    if (fstatat(folder, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) fail();
    return status;
}

struct stat statusOf(int file) {
    struct stat status {};
    if (fstat(file, &status) != 0) fail();
    return status;
}

Kind kindOf(int folder, const dirent& entry) {
    switch (entry.d_type) {
        case DT_REG:
            return Kind::file;
        case DT_DIR:
            return Kind::folder;
        case DT_UNKNOWN: {
            const auto mode = statusAt(folder, entry.d_name).st_mode;
            return S_ISREG(mode) ? Kind::file : S_ISDIR(mode) ? Kind::folder : Kind::other;
        }
        default:
            return Kind::other;
    }
}

bool isDotName(const char* name) {
    return name[0] == '.' && (name[1] == '\0' || (name[1] == '.' && name[2] == '\0'));
}

// What link(2) answers where it can't make a link that would otherwise be fine: another file system, one without
// hard links, a file with as many links as there can be, a file of somebody else's that the kernel protects.
bool isUnlinkable(int error) {
    return error == EXDEV || error == EPERM || error == EMLINK || error == EOPNOTSUPP || error == ENOTSUP ||
           error == ENOSYS;
}

void handOnAttributes(int source, int target) {
    const auto length = flistxattr(source, nullptr, 0);
    if (length <= 0) return;
    std::string names(static_cast<std::size_t>(length), '\0');
    const auto listed = flistxattr(source, names.data(), names.size());
    if (listed <= 0) return;
    names.resize(static_cast<std::size_t>(listed));
    for (std::size_t at = 0; at < names.size(); at += std::strlen(names.c_str() + at) + 1) {
        const auto* name = names.c_str() + at;
        std::string value(std::size_t{64} << 10, '\0');  // XATTR_SIZE_MAX
        const auto size = fgetxattr(source, name, value.data(), value.size());
        if (size >= 0) fsetxattr(target, name, value.data(), static_cast<std::size_t>(size), 0);
    }
}

void copyFile(int source, int target, const std::string& name) {
    const Descriptor from(openat(source, name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!from) fail();
    const Descriptor to(openat(target, name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    if (!to) fail();
    files::copyAll(from, name, to, name);
    handOnPermissions(from.number(), to.number());
    handOnTimes(from.number(), to.number());
}

void copySymbolicLink(int source, int target, const std::string& name, const struct stat& status) {
    std::string destination(static_cast<std::size_t>(status.st_size) + 1, '\0');
    const auto length = readlinkat(source, name.c_str(), destination.data(), destination.size());
    if (length < 0) fail();
    destination.resize(static_cast<std::size_t>(length));
    if (symlinkat(destination.c_str(), target, name.c_str()) != 0) fail();
    const std::array<timespec, 2> times = {status.st_atim, status.st_mtim};
    utimensat(target, name.c_str(), times.data(), AT_SYMLINK_NOFOLLOW);
}

void copy(int source, int target, const std::string& name) {
    const auto status = statusAt(source, name);
    if (S_ISREG(status.st_mode)) return copyFile(source, target, name);
    if (S_ISLNK(status.st_mode)) return copySymbolicLink(source, target, name, status);
    if (mknodat(target, name.c_str(), status.st_mode, status.st_rdev) != 0) fail();
}

void removeAllIn(int parent, const std::string& name);

void removeAllIn(int folder) {
    for (const auto& entry : list(folder)) {
        const bool isFolder = entry.kind == Kind::folder;
        if (isFolder) removeAllIn(folder, entry.name);
        const auto removeEntry = [&] {
            return unlinkat(folder, entry.name.c_str(), isFolder ? AT_REMOVEDIR : 0);
        };
        // A folder without write permission keeps its entries; this one is to go, so it may have it.
        if (removeEntry() != 0 && errno == EACCES && fchmod(folder, 0700) == 0) removeEntry();
    }
}

void removeAllIn(int parent, const std::string& name) {
    auto folder = openFolder(parent, name);
    if (!folder && errno == EACCES && fchmodat(parent, name.c_str(), 0700, 0) == 0) {
        folder = openFolder(parent, name);
    }
    if (folder) removeAllIn(folder.number());
}

}  // namespace

Descriptor openFolder(int parent, const std::string& name) {
    return Descriptor(openat(parent, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
}

std::vector<Entry> list(int folder) {
    // The stream closes its descriptor; the caller's stays open.
    const int own = fcntl(folder, F_DUPFD_CLOEXEC, 0);
    if (own < 0) fail();
    const Handle<DIR, closedir> stream(fdopendir(own));
    if (!stream) {
        close(own);
        fail();
    }
    rewinddir(stream.get());
    std::vector<Entry> entries;
    for (;;) {
        errno = 0;
        const auto* entry = readdir(stream.get());
        if (!entry && errno != 0) fail();
        if (!entry) return entries;
        if (!isDotName(entry->d_name)) entries.push_back({entry->d_name, kindOf(folder, *entry)});
    }
}

void linkOrCopy(int source, int target, const std::string& name) {
    if (linkat(source, name.c_str(), target, name.c_str(), 0) == 0) return;
    if (!isUnlinkable(errno)) fail();
    copy(source, target, name);
}

void handOnPermissions(int source, int target) {
    const auto from = statusOf(source);
    const auto to = statusOf(target);
    const bool isOthers = to.st_uid != from.st_uid || to.st_gid != from.st_gid;
    if (isOthers && fchown(target, from.st_uid, from.st_gid) != 0) {
        // Only root may give files away, but the group may still be one of ours.
        [[maybe_unused]] const int ignored = fchown(target, static_cast<uid_t>(-1), from.st_gid);
    }
    // A change of owner may have taken bits away.
    const bool differ = isOthers || (to.st_mode & 07777) != (from.st_mode & 07777);
    if (differ && fchmod(target, from.st_mode & 07777) != 0) fail();
    handOnAttributes(source, target);
}

void handOnTimes(int source, int target) {
    const auto from = statusOf(source);
    const std::array<timespec, 2> times = {from.st_atim, from.st_mtim};
    futimens(target, times.data());
}

void remove(int parent, const std::string& name) {
    try {
        removeAllIn(parent, name);
        unlinkat(parent, name.c_str(), AT_REMOVEDIR);
    } catch (const std::system_error&) {  // a folder that can't be listed can't be emptied either
    }
}

}  // namespace kestrin::DiskEntries
