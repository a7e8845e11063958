#include "Tests/Support/DiskSnapshot.h"

#include <fstream>
#include <iterator>
#include <sstream>
#include <system_error>

namespace kestrin {
namespace {

DiskEntry entryAt(const std::filesystem::path& path) {
    struct stat status {};
    if (lstat(path.c_str(), &status) != 0) throw std::system_error(errno, std::generic_category(), path);
    DiskEntry entry;
    entry.inode = status.st_ino;
    entry.mode = status.st_mode & 07777;
    entry.changedAt = std::int64_t{status.st_mtim.tv_sec} * 1'000'000'000 + status.st_mtim.tv_nsec;
    if (S_ISREG(status.st_mode)) {
        std::ifstream file(path, std::ios::binary);
        entry.kind = 'f';
        entry.content.assign(std::istreambuf_iterator<char>(file), {});
    } else if (S_ISDIR(status.st_mode)) {
        entry.kind = 'd';
    } else if (S_ISLNK(status.st_mode)) {
        entry.kind = 'l';
        entry.content = std::filesystem::read_symlink(path);
    } else {
        entry.kind = 'o';
    }
    return entry;
}

std::string described(const DiskEntry& entry) {
    std::ostringstream text;
    text << entry.kind << " " << std::oct << entry.mode << std::dec << " inode " << entry.inode << " changed "
         << entry.changedAt << " \"" << entry.content.substr(0, 200) << "\"";
    return text.str();
}

}  // namespace

DiskSnapshot snapshotOf(const std::filesystem::path& folder) {
    DiskSnapshot snapshot{{".", entryAt(folder)}};
    constexpr auto kOptions = std::filesystem::directory_options::skip_permission_denied;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder, kOptions)) {
        snapshot.emplace(entry.path().lexically_relative(folder), entryAt(entry.path()));
    }
    return snapshot;
}

DiskSnapshot contentOf(const std::filesystem::path& folder) {
    auto snapshot = snapshotOf(folder);
    for (auto& item : snapshot) {
        item.second.inode = 0;
        item.second.changedAt = 0;
    }
    return snapshot;
}

std::map<std::string, std::string> filesOf(const std::filesystem::path& folder) {
    std::map<std::string, std::string> files;
    for (const auto& [path, entry] : snapshotOf(folder)) {
        if (entry.kind == 'f') files.emplace(path, entry.content);
    }
    return files;
}

std::string changes(const DiskSnapshot& before, const DiskSnapshot& after) {
    std::string lines;
    for (const auto& [path, entry] : before) {
        const auto now = after.find(path);
        if (now == after.end()) lines += path + " is gone: " + described(entry) + "\n";
        if (now == after.end() || now->second == entry) continue;
        lines += path + " was " + described(entry) + "\n" + path + " is  " + described(now->second) + "\n";
    }
    for (const auto& [path, entry] : after) {
        if (!before.contains(path)) lines += path + " is new: " + described(entry) + "\n";
    }
    return lines;
}

}  // namespace kestrin
