#include "KestrinCore/HomeFolder.h"

#include <pwd.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>

namespace kestrin {
namespace {

std::optional<std::filesystem::path> folderOf(const passwd* user) {
    if (!user || !user->pw_dir) return std::nullopt;
    return user->pw_dir;
}

}  // namespace

std::optional<std::filesystem::path> homeFolder() {
    const char* home = std::getenv("HOME");
    if (home && *home != '\0') return home;
    return homeOfAccount();
}

std::optional<std::filesystem::path> homeOfAccount() {
    return folderOf(getpwuid(getuid()));
}

std::optional<std::filesystem::path> homeFolder(const std::string& user) {
    return folderOf(getpwnam(user.c_str()));
}

std::filesystem::path expandingTilde(std::string_view path) {
    if (!path.starts_with('~')) return path;
    const auto nameEnd = std::min(path.find('/'), path.size());
    const std::string user(path.substr(1, nameEnd - 1));
    const auto home = user.empty() ? homeFolder() : homeFolder(user);
    if (!home) return path;
    return home->native() + std::string(path.substr(nameEnd));
}

}  // namespace kestrin
