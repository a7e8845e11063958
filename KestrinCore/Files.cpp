#include "KestrinCore/Files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <optional>
#include <utility>

#include "KestrinCore/UUID.h"

namespace kestrin::files {
namespace {

using std::filesystem::path;

struct stat statusOf(const Descriptor& file, const path& name) {
    struct stat status {};
    if (fstat(file.number(), &status) != 0) throw FileError::fromErrno(FileError::Operation::read, name);
    return status;
}

// A rename is on the disk only once its folder is. Not every file system can flush a folder; the rename itself
// has happened either way, so a refusal isn't a failure.
void flushFolderOf(const path& target) {
    const path parent = target.has_parent_path() ? target.parent_path() : path(".");
    const Descriptor folder(open(parent.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder) fsync(folder.number());
}

constexpr mode_t kPermissions = 0777;

struct stat statusOfTarget(const path& target, bool& exists) {
    struct stat status {};
    exists = lstat(target.c_str(), &status) == 0;
    if (!exists && errno != ENOENT) throw FileError::fromErrno(FileError::Operation::write, target);
    return status;
}

// The permissions of the file that will be replaced, if there is one. What isn't a file isn't replaced by one: a
// folder can't be, and a device or a pipe is there for another purpose.
std::optional<mode_t> modeOfReplaced(const path& target) {
    bool exists = false;
    const auto status = statusOfTarget(target, exists);
    if (!exists || S_ISLNK(status.st_mode)) return std::nullopt;
    if (S_ISREG(status.st_mode)) return status.st_mode & kPermissions;
    const auto reason = S_ISDIR(status.st_mode) ? std::errc::is_a_directory : std::errc::invalid_argument;
    throw FileError(FileError::Operation::write, target, std::make_error_code(reason));
}

// Removes a temporary file unless it has found its place.
class TemporaryFile {
 public:
    // Not named after the target: that name may be as long as names can be. With `mode` it has those permissions
    // before anything is in it, without it those that any new file gets.
    TemporaryFile(const path& target, std::optional<mode_t> mode)
        : name_((target.parent_path() / (".kestrin-" + UUID::random().text())).native()),
          file_(open(name_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode ? 0600 : 0666)) {
        if (!file_) throw FileError::fromErrno(FileError::Operation::write, target);
        if (mode && fchmod(file_.number(), *mode) != 0) {
            const auto error = FileError::fromErrno(FileError::Operation::write, target);
            unlink(name_.c_str());
            throw error;
        }
    }
    ~TemporaryFile() {
        if (!placed_) unlink(name_.c_str());
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    const Descriptor& file() const { return file_; }

    void placeAt(const path& target, Flush flush) {
        const bool isFlushed = flush == Flush::no || fsync(file_.number()) == 0;
        if (!isFlushed || rename(name_.c_str(), target.c_str()) != 0) {
            throw FileError::fromErrno(FileError::Operation::write, target);
        }
        placed_ = true;
        if (flush == Flush::yes) flushFolderOf(target);
    }

 private:
    std::string name_;
    Descriptor file_;
    bool placed_ = false;
};

Descriptor openForReading(const path& name) {
    // O_NONBLOCK: a named pipe in the way must not hold the program up.
    Descriptor file(open(name.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!file) throw FileError::fromErrno(FileError::Operation::read, name);
    return file;
}

struct stat statusOfRegular(const Descriptor& file, const path& name) {
    const auto status = statusOf(file, name);
    if (S_ISREG(status.st_mode)) return status;
    const auto reason = S_ISDIR(status.st_mode) ? std::errc::is_a_directory : std::errc::invalid_argument;
    throw FileError(FileError::Operation::read, name, std::make_error_code(reason));
}

// The number of bytes read, 0 at the end.
std::size_t readSome(const Descriptor& file, char* buffer, std::size_t size, const path& name) {
    for (;;) {
        const auto got = read(file.number(), buffer, size);
        if (got >= 0) return static_cast<std::size_t>(got);
        if (errno != EINTR) throw FileError::fromErrno(FileError::Operation::read, name);
    }
}

constexpr std::size_t kCopyPiece = std::size_t{256} << 10;

}  // namespace

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept {
    std::swap(number_, other.number_);
    return *this;
}

Descriptor::~Descriptor() {
    if (number_ >= 0) close(number_);
}

Descriptor openRegular(const path& name) {
    auto file = openForReading(name);
    statusOfRegular(file, name);
    return file;
}

std::uint64_t sizeOf(const Descriptor& file, const path& name) {
    return static_cast<std::uint64_t>(statusOf(file, name).st_size);
}

std::string readWhole(const Descriptor& file, const path& name, std::uintmax_t limit) {
    const auto status = statusOfRegular(file, name);
    if (static_cast<std::uintmax_t>(status.st_size) > limit) throw FileTooLargeError(name, limit);

    // One byte more than the size, so that the end is seen without another growth; a file that grows while it is
    // read is followed up to the limit.
    std::string bytes(static_cast<std::size_t>(status.st_size) + 1, '\0');
    std::size_t length = 0;
    while (const auto got = readSome(file, bytes.data() + length, bytes.size() - length, name)) {
        length += got;
        if (length > limit) throw FileTooLargeError(name, limit);
        if (length == bytes.size()) bytes.resize(2 * bytes.size());
    }
    bytes.resize(length);
    return bytes;
}

std::string readWhole(const path& name, std::uintmax_t limit) {
    return readWhole(openForReading(name), name, limit);
}

bool areSameFile(const Descriptor& a, const Descriptor& b) {
    struct stat first {};
    struct stat second {};
    if (fstat(a.number(), &first) != 0 || fstat(b.number(), &second) != 0) return false;
    return first.st_ino == second.st_ino && first.st_dev == second.st_dev;
}

void writeAll(const Descriptor& file, std::string_view bytes, const path& name) {
    while (!bytes.empty()) {
        const auto written = write(file.number(), bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) throw FileError::fromErrno(FileError::Operation::write, name);
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
}

void copyAll(const Descriptor& source, const path& sourcePath, const Descriptor& target,
             const path& targetPath) {
    std::string piece(kCopyPiece, '\0');
    while (const auto got = readSome(source, piece.data(), piece.size(), sourcePath)) {
        writeAll(target, std::string_view(piece).substr(0, got), targetPath);
    }
}

void writeAtomically(const path& target, std::string_view bytes, Flush flush) {
    writeAtomically(
        target, [&](const TakePiece& take) { take(bytes); }, flush);
}

void writeAtomically(const path& target, const std::function<void(const TakePiece&)>& makeContent,
                     Flush flush) {
    TemporaryFile temporary(target, modeOfReplaced(target));
    makeContent([&](std::string_view piece) { writeAll(temporary.file(), piece, target); });
    temporary.placeAt(target, flush);
}

void copyAtomically(const path& source, const path& target, Flush flush) {
    copyAtomically(openForReading(source), source, target, flush);
}

void copyAtomically(const Descriptor& source, const path& sourcePath, const path& target, Flush flush) {
    const auto status = statusOfRegular(source, sourcePath);
    modeOfReplaced(target);
    TemporaryFile temporary(target, status.st_mode & kPermissions);
    if (lseek(source.number(), 0, SEEK_SET) < 0)
        throw FileError::fromErrno(FileError::Operation::read, sourcePath);
    copyAll(source, sourcePath, temporary.file(), target);
    temporary.placeAt(target, flush);
}

void createFolders(const path& folder) {
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error) throw FileError(FileError::Operation::create, folder, error);
}

bool isReadable(const path& name) {
    return faccessat(AT_FDCWD, name.c_str(), R_OK, AT_EACCESS) == 0;
}

}  // namespace kestrin::files
