// Which folder of this repository may include which: the arrows between the modules, as a table.
//
// Every include of ours is written from the root ("KestrinCore/UUID.h"), so that its first folder says where it
// goes. ICU has one door, KestrinCore/UnicodeText.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrin::ModuleArrows {

// Why the file at `path`, from the root, may not have this include, written as in the source with its quotes or
// angle brackets; nothing when it may.
std::optional<std::string> objection(std::string_view path, std::string_view include);

// The includes of a source text in their order, with their quotes or angle brackets.
std::vector<std::string> includes(std::string_view source);

struct Report {
    std::vector<std::string> problems;  // "path: include: why"
    std::size_t files = 0;              // how many source files were read
};

// Every .h and .cpp below `root`, folders whose names begin with "build" or "." left out.
Report check(const std::filesystem::path& root);

}  // namespace kestrin::ModuleArrows
