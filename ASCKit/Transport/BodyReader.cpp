#include "ASCKit/Transport/BodyReader.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "KestrinCore/Error.h"

namespace kestrin {

BodyReader::BodyReader(const HTTPBody& body) {
    std::visit(Overloaded{
                   [&](const std::string& bytes) { bytes_ = bytes, length_ = bytes_.size(); },
                   [&](const FileRange& range) { open(range); },
               },
               body);
}

std::size_t BodyReader::read(char* out, std::size_t capacity) {
    const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(capacity, length_ - position_));
    if (wanted == 0) return 0;
    const auto got =
        file_ ? readFile(out, wanted) : bytes_.copy(out, wanted, static_cast<std::size_t>(position_));
    position_ += got;
    return got;
}

void BodyReader::open(const FileRange& range) {
    path_ = range.file;
    // O_NONBLOCK: a named pipe in the file's place must not hold the program up.
    file_ = files::Descriptor(::open(path_.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status {};
    if (!file_ || fstat(file_.number(), &status) != 0) fail(errno);
    if (!S_ISREG(status.st_mode) || range.offset < 0 || range.length < 0) fail(EINVAL);
    offset_ = range.offset;
    const std::int64_t available = std::max<std::int64_t>(status.st_size - range.offset, 0);
    length_ = static_cast<std::uint64_t>(std::min(range.length, available));
}

std::size_t BodyReader::readFile(char* out, std::size_t wanted) const {
    for (;;) {
        const auto got = pread(file_.number(), out, wanted, offset_ + static_cast<off_t>(position_));
        if (got > 0) return static_cast<std::size_t>(got);
        if (got == 0) fail(EIO);
        if (errno != EINTR) fail(errno);
    }
}

void BodyReader::fail(int reason) const {
    throw FileError(FileError::Operation::read, path_, std::error_code(reason, std::generic_category()));
}

}  // namespace kestrin
