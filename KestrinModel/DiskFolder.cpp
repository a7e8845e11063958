#include "KestrinModel/DiskFolder.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "KestrinModel/PackageTooLargeError.h"

namespace kestrin {
namespace {

using files::Descriptor;

// Reads until the buffer is full or the file has ended.
std::size_t readUpTo(const Descriptor& file, std::string& buffer, const std::filesystem::path& name) {
    std::size_t length = 0;
    while (length < buffer.size()) {
        const auto got = read(file.number(), buffer.data() + length, buffer.size() - length);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) throw FileError::fromErrno(FileError::Operation::read, name);
        if (got == 0) break;
        length += static_cast<std::size_t>(got);
    }
    return length;
}

}  // namespace

DiskFolder::DiskFolder(std::filesystem::path root)
    : root_(std::move(root)), descriptor_(open(root_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    if (!descriptor_) throw FileError::fromErrno(FileError::Operation::read, root_);
}

DiskFolder::DiskFolder(DiskFolder& parent, std::string name, std::string path)
    : parent_(&parent), name_(std::move(name)), path_(std::move(path)) {}

DiskFolder::~DiskFolder() {
    if (parent_ && parent_->open_ == this) parent_->open_ = nullptr;
}

std::vector<DiskEntries::Entry> DiskFolder::entries() {
    try {
        return DiskEntries::list(descriptor());
    } catch (const std::system_error& error) {
        throw FileError(FileError::Operation::list, path(), error.code());
    }
}

std::string DiskFolder::contents(const std::string& name, std::uintmax_t limit) {
    auto bytes = files::readWhole(openFile(name), pathOf(name), limit);
    auto& read = top().read_;
    read += bytes.size();
    if (read > kMaximumTotalSize) throw PackageTooLargeError(kMaximumTotalSize);
    return bytes;
}

bool DiskFolder::holds(const std::string& name, std::string_view bytes) {
    const auto file = openFile(name);
    struct stat status {};
    if (fstat(file.number(), &status) != 0) {
        throw FileError::fromErrno(FileError::Operation::read, pathOf(name));
    }
    if (!S_ISREG(status.st_mode) || static_cast<std::uintmax_t>(status.st_size) != bytes.size()) return false;
    std::string buffer(bytes.size(), '\0');
    return readUpTo(file, buffer, pathOf(name)) == bytes.size() && buffer == bytes;
}

struct stat DiskFolder::status(const std::string& name) {
    struct stat status {};
    if (fstatat(descriptor(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
        throw FileError::fromErrno(FileError::Operation::read, pathOf(name));
    }
    return status;
}

struct stat DiskFolder::status() {
    struct stat status {};
    if (fstat(descriptor(), &status) != 0) throw FileError::fromErrno(FileError::Operation::read, path());
    return status;
}

bool DiskFolder::isAt(const std::filesystem::path& place) const {
    struct stat own {};
    struct stat there {};
    if (fstat(descriptor_.number(), &own) != 0 || stat(place.c_str(), &there) != 0) return false;
    return own.st_ino == there.st_ino && own.st_dev == there.st_dev;
}

int DiskFolder::descriptor() {
    if (!descriptor_ && parent_) {
        const int parent = parent_->descriptor();
        parent_->makeWay(*this);
        descriptor_ = DiskEntries::openFolder(parent, name_);
        if (!descriptor_) throw FileError::fromErrno(FileError::Operation::list, path());
    }
    return descriptor_.number();
}

std::filesystem::path DiskFolder::pathOf(std::string_view name) const {
    return std::filesystem::path(path_) / name;
}

std::filesystem::path DiskFolder::path() const {
    return parent_ ? std::filesystem::path(path_) : root_;
}

void DiskFolder::makeWay(DiskFolder& child) {
    if (open_ && open_ != &child) open_->close();
    open_ = &child;
}

void DiskFolder::close() {
    if (open_) open_->close();
    open_ = nullptr;
    descriptor_ = Descriptor();
}

Descriptor DiskFolder::openFile(const std::string& name) {
    // O_NONBLOCK: a named pipe in the way must not hold the program up.
    Descriptor file(openat(descriptor(), name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!file) throw FileError::fromErrno(FileError::Operation::read, pathOf(name));
    return file;
}

}  // namespace kestrin
