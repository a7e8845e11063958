// The digest by which App Store Connect checks an upload, and by which this tool recognises its own.
#pragma once

#include <filesystem>
#include <string>

namespace kestrin::MediaHash {

// The MD5 (RFC 1321) of the file's content as 32 lower-case hexadecimal digits. A checksum that the service asks
// for, not a security measure. The file is read in pieces of a mebibyte and never whole. Throws FileError, also
// for what isn't a regular file.
std::string md5(const std::filesystem::path& file);

}  // namespace kestrin::MediaHash
