// Where the user's own files are.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace kestrin {

// The home folder of the one who runs the program: the environment's HOME, else the user record's. nullopt when
// neither says.
std::optional<std::filesystem::path> homeFolder();

// The home folder in the record of the user who runs the program, whatever the environment says.
std::optional<std::filesystem::path> homeOfAccount();

// The home folder in the record of the user of this name; nullopt when there is none.
std::optional<std::filesystem::path> homeFolder(const std::string& user);

// A path as a shell would take it: a leading "~" is the home folder, "~name" that of the user `name`. Any other
// path, and one whose user nobody knows, stays as it is.
std::filesystem::path expandingTilde(std::string_view path);

}  // namespace kestrin
