// All that a file system says of a folder and of what is in it, for tests that nothing was touched.
#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>

namespace kestrin {

struct DiskEntry {
    char kind = '?';      // 'f' file, 'd' folder, 'l' link, 'o' other
    std::string content;  // of a file its bytes, of a link where it leads
    std::uint64_t inode = 0;
    unsigned mode = 0;
    std::int64_t changedAt = 0;  // its content, in nanoseconds

    bool operator==(const DiskEntry&) const = default;
};
// By the path relative to the folder, which is "." itself. No link is followed; of a folder
// that this user can't list only itself is there.
using DiskSnapshot = std::map<std::string, DiskEntry>;

DiskSnapshot snapshotOf(const std::filesystem::path& folder);

// What differs, one entry a line; "" when nothing does.
std::string changes(const DiskSnapshot& before, const DiskSnapshot& after);

// Kinds, contents and permissions alone: whether two trees hold the same.
DiskSnapshot contentOf(const std::filesystem::path& folder);

// The bytes of every regular file by its path relative to the folder.
std::map<std::string, std::string> filesOf(const std::filesystem::path& folder);

}  // namespace kestrin
