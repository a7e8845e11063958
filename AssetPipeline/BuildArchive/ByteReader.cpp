#include "AssetPipeline/BuildArchive/ByteReader.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "AssetPipeline/BuildArchive/BuildArchiveError.h"

namespace kestrin {

ByteReader::ByteReader(std::filesystem::path file)
    : path_(std::move(file)), file_(files::openRegular(path_)), size_(files::sizeOf(file_, path_)) {}

std::string ByteReader::read(std::uint64_t offset, std::uint64_t count) const {
    const BuildArchiveError tooShort(BuildArchiveError::Kind::malformed);
    if (offset > size_ || count > size_ - offset) throw tooShort;
    std::string bytes(static_cast<std::size_t>(count), '\0');
    for (std::size_t done = 0; done < bytes.size();) {
        const auto got = pread(file_.number(), bytes.data() + done, bytes.size() - done,
                               static_cast<off_t>(offset + done));
        if (got == 0) throw tooShort;
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) throw FileError::fromErrno(FileError::Operation::read, path_);
        done += static_cast<std::size_t>(got);
    }
    return bytes;
}

std::string_view BufferedByteReader::read(std::uint64_t offset, std::uint64_t count) {
    constexpr std::uint64_t kPiece = 65'536;
    const bool isBuffered =
        offset >= start_ && offset - start_ <= buffer_.size() && count <= buffer_.size() - (offset - start_);
    if (!isBuffered) {
        const auto ahead = offset < end_ ? std::min(kPiece, end_ - offset) : 0;
        buffer_ = reader_.read(offset, std::max(count, ahead));
        start_ = offset;
    }
    return std::string_view(buffer_).substr(static_cast<std::size_t>(offset - start_),
                                            static_cast<std::size_t>(count));
}

}  // namespace kestrin
