// Reads pieces of an open file by their places.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

#include "KestrinCore/Files.h"

namespace kestrin {

class ByteReader {
 public:
    // FileError for what isn't a regular file or can't be opened. It is closed with the reader.
    explicit ByteReader(std::filesystem::path file);

    std::uint64_t size() const { return size_; }  // of the file when it was opened, in bytes

    // Exactly `count` bytes. BuildArchiveError::malformed when the file has fewer there; nothing is taken for them
    // then, however large a number an archive claims. FileError when they can't be read.
    std::string read(std::uint64_t offset, std::uint64_t count) const;

 private:
    std::filesystem::path path_;
    files::Descriptor file_;
    std::uint64_t size_;
};

// The same for many small pieces that follow one another: they come out of one larger read.
class BufferedByteReader {
 public:
    // Reads ahead up to `end`, and beyond it only what is asked for.
    BufferedByteReader(const ByteReader& reader, std::uint64_t end) : reader_(reader), end_(end) {}

    // Valid until the next call.
    std::string_view read(std::uint64_t offset, std::uint64_t count);

 private:
    const ByteReader& reader_;
    std::uint64_t end_;
    std::uint64_t start_ = 0;  // of what is in the buffer
    std::string buffer_;
};

}  // namespace kestrin
