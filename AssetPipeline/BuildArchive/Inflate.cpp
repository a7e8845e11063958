#include "AssetPipeline/BuildArchive/Inflate.h"

#define ZLIB_CONST  // the input isn't written to
#include <zlib.h>

#include <limits>

#include "AssetPipeline/BuildArchive/BuildArchiveError.h"

namespace kestrin::Inflate {
namespace {

// A copy of 258 bytes takes two bits at least.
constexpr std::uint64_t kMostExpansion = 1032;

class Stream {
 public:
    Stream() {
        constexpr int kRawWithLargestWindow = -15;
        if (inflateInit2(&stream_, kRawWithLargestWindow) != Z_OK) throw std::bad_alloc();
    }
    ~Stream() { inflateEnd(&stream_); }
    Stream(const Stream&) = delete;
    Stream& operator=(const Stream&) = delete;

    // The number of bytes written, as many as fit or as the data has.
    std::size_t decode(std::string_view data, std::string& output) {
        stream_.next_in = reinterpret_cast<const Bytef*>(data.data());
        stream_.avail_in = static_cast<uInt>(data.size());
        stream_.next_out = reinterpret_cast<Bytef*>(output.data());
        stream_.avail_out = static_cast<uInt>(output.size());
        inflate(&stream_, Z_FINISH);  // how it ends doesn't matter when all the bytes are there
        return output.size() - stream_.avail_out;
    }

 private:
    z_stream stream_{};
};

}  // namespace

std::string raw(std::string_view data, std::uint64_t expectedSize) {
    if (expectedSize == 0) return "";
    constexpr std::uint64_t kMost = std::numeric_limits<uInt>::max();
    if (data.size() > kMost || expectedSize > kMost || expectedSize / kMostExpansion > data.size())
        failMalformed();
    std::string output(static_cast<std::size_t>(expectedSize), '\0');
    if (Stream().decode(data, output) != output.size()) failMalformed();
    return output;
}

std::string zlib(std::string_view data, std::uint64_t expectedSize) {
    constexpr std::size_t kHeader = 2;
    if (data.size() <= kHeader) failMalformed();
    return raw(data.substr(kHeader), expectedSize);
}

}  // namespace kestrin::Inflate
