// Members of a xar archive (https://github.com/apple-oss-distributions/xar), the form of installer packages. Of the
// file nothing is read but its head, the table of contents, and the member that is asked for.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "AssetPipeline/BuildArchive/ByteReader.h"

namespace kestrin::XarArchive {

// A file of the table of contents.
struct FileRecord {
    std::string name;
    std::uint64_t offset = 0;  // of its data in the heap, which follows the table
    std::uint64_t length = 0;  // of its data as stored, in bytes
    std::uint64_t size = 0;    // as it was before
    std::optional<std::string> encoding = std::nullopt;
    bool operator==(const FileRecord&) const = default;
};

// Whether the file begins as such an archive does.
bool isArchive(const ByteReader& reader);

// The content of the file at `path`, whose components are joined by "/". A gzip-style encoding is undone; what has
// another one comes back as it is stored. BuildArchiveError: notAnArchive for another kind of file, malformed for a
// damaged archive, for one without that file, and for a table or a file that is larger than XMLElements takes.
std::string contents(std::string_view path, const ByteReader& reader);

// The first file with that path in a table of contents. nullopt without one; BuildArchiveError::malformed for a
// table that isn't XML as far as that file, or has a number that isn't one.
std::optional<FileRecord> find(std::string_view path, std::string_view tableOfContents);

}  // namespace kestrin::XarArchive
