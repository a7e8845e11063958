// Gives out the body of a request in pieces of whatever size, from its start as often as it has to be sent.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string_view>

#include "ASCKit/Transport/HTTPTransport.h"
#include "KestrinCore/Files.h"

namespace kestrin {

class BodyReader {
 public:
    // `body` must outlive the reader. A file is opened here and read piece by piece: FileError for one that can't be
    // opened, isn't a regular file, or is asked for a negative offset or length.
    explicit BodyReader(const HTTPBody& body);

    std::uint64_t length() const { return length_; }  // of a file's range, what of it lies within the file
    std::uint64_t position() const { return position_; }  // how many bytes have been read since the start
    bool isUntouched() const { return position_ == 0; }
    void rewind() { position_ = 0; }

    // Up to `capacity` bytes more; 0 at the end. FileError, also for a file that has become shorter since it was
    // opened: its length was announced by then.
    std::size_t read(char* out, std::size_t capacity);

 private:
    void open(const FileRange& range);
    std::size_t readFile(char* out, std::size_t wanted) const;
    [[noreturn]] void fail(int reason) const;

    std::string_view bytes_;
    std::filesystem::path path_;
    files::Descriptor file_;
    std::int64_t offset_ = 0;
    std::uint64_t length_ = 0;
    std::uint64_t position_ = 0;
};

}  // namespace kestrin
