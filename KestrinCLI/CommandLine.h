// The words after the program's name, and what a command finds in them.
//
// All words of a run are looked through for options, positional ones included; an option isn't tied to a place.
#pragma once

#include <filesystem>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "KestrinModel/StoreLocale.h"
#include "KestrinModel/StorePlatform.h"

namespace kestrin {

using Arguments = std::vector<std::string>;

// The words of the process without the program's name, as text. A word that isn't UTF-8 names nothing that a
// project could hold: Failure.
Arguments argumentsOfProcess(std::span<const char* const> words);

// The word after the first `name`, as it stands: `--platform --yes` gives "--yes". Absent when `name` is, and when
// its first occurrence is the last word; a later occurrence is never looked at.
std::optional<std::string> option(std::string_view name, const Arguments& args);

bool hasFlag(std::string_view flag, const Arguments& args);

// `--platform`, else iOS. Any value is taken: one that nobody knows simply finds nothing in the project.
StorePlatform platformOption(const Arguments& args);

// `--locales a,b`: the pieces between the commas, empty ones dropped, each exactly as typed. Absent means no
// filter; `,,` is a filter that no locale passes.
std::optional<std::set<StoreLocale>> localesOption(const Arguments& args);

// The path that a word means. A leading "~" is the home folder (of the environment's HOME, else of the user's
// record), "~name" that of the user `name`; without such a user the word stays as it is. Whether anything is there
// isn't looked at. An empty word is a variable that a script forgot to set, and a Failure, rather than the
// current folder.
std::filesystem::path fileURL(std::string_view word);

// The name of what stands at `path`, for the user: "p.kestrin" of "a/p.kestrin/". Where the path doesn't end in a
// name (".", "a/.."), the name of the folder that it leads to. Bytes that aren't UTF-8 are repaired.
std::string lastPathComponent(const std::filesystem::path& path);

}  // namespace kestrin
