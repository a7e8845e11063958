// The directory of a zip archive (PKWARE's APPNOTE), zip64 included. Of the file nothing is read but its end, the
// directory, and the members that are asked for.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "AssetPipeline/BuildArchive/ByteReader.h"

namespace kestrin {

class ZipArchive {
 public:
    struct Entry {
        std::string name = {};  // UTF-8; ill-formed sequences are repaired
        std::uint16_t method = 0;
        std::uint64_t compressedSize = 0, uncompressedSize = 0;
        std::uint64_t localHeaderOffset = 0;
        bool operator==(const Entry&) const = default;
    };

    static constexpr std::uint16_t kStored = 0, kDeflated = 8;

    // Finds the directory. BuildArchiveError: notAnArchive without an end record where one may be, malformed when what
    // it refers to isn't there. The reader must outlive the archive.
    explicit ZipArchive(const ByteReader& reader);

    std::uint64_t entryCount() const { return entryCount_; }

    // Goes through the whole directory and gives the first entry of a wanted name. The entries aren't kept: a directory
    // may have as many as fit in the file, and may claim even more. BuildArchiveError::malformed for a damaged one,
    // also behind the wanted entry.
    std::optional<Entry> first(const std::function<bool(const std::string& name)>& isWanted) const;

    // A member as it came to be stored: the name and extra field in front of it may be longer or shorter than those in
    // the directory. BuildArchiveError: unsupportedCompression for a method that is neither of the two, malformed for
    // damaged content and for more than `limit` bytes of it, compressed or not.
    std::string contents(const Entry& entry, std::uint64_t limit) const;

 private:
    struct EndRecord;

    const ByteReader& reader_;
    std::uint64_t entryCount_ = 0;
    std::uint64_t directoryOffset_ = 0;
    std::uint64_t directoryEnd_ = 0;  // where the end record or its zip64 form begins
};

}  // namespace kestrin
