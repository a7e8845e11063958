#include "Tests/Repository/ModuleArrows.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <iterator>
#include <span>

namespace kestrin::ModuleArrows {

namespace {

// A module, or of a module only the one header.
struct Target {
    std::string_view folder;
    std::string_view header = {};
};

struct Row {
    std::string_view folder;
    std::span<const Target> mayInclude;  // besides itself
};

constexpr Target kCore[] = {{"KestrinCore"}};
constexpr Target kAssetPipeline[] = {
    {"KestrinCore"}, {"KestrinModel", "PlacementSlot.h"}, {"ASCKit", "AssetLibraryRefData.h"}};
constexpr Target kSyncEngine[] = {{"KestrinCore"}, {"KestrinModel"}, {"ASCKit"}, {"AssetPipeline"}};
constexpr Target kCLI[] = {{"KestrinCore"}, {"KestrinModel"}, {"ASCKit"}, {"AssetPipeline"}, {"SyncEngine"}};
constexpr Target kSandbox[] = {{"KestrinCore"}, {"KestrinModel"}, {"Benchmarks", "LargeListing.h"}};
constexpr Target kAll[] = {{"KestrinCore"}, {"KestrinModel"}, {"ASCKit"},  {"AssetPipeline"},
                           {"SyncEngine"},  {"KestrinCLI"},   {"Sandbox"}, {"Benchmarks", "LargeListing.h"},
                           {"Tests"}};

constexpr Row kRows[] = {
    // folder         may include
    {"KestrinCore", {}},         {"KestrinModel", kCore},
    {"ASCKit", kCore},           {"AssetPipeline", kAssetPipeline},
    {"SyncEngine", kSyncEngine}, {"KestrinCLI", kCLI},
    {"Sandbox", kSandbox},       {"Tests", kAll},
    {"Benchmarks", kAll},        {"Fuzz", kAll},
};

std::string_view firstFolder(std::string_view path) {
    return path.substr(0, path.find('/'));
}

std::string_view lastName(std::string_view path) {
    const auto slash = path.rfind('/');
    return slash == std::string_view::npos ? path : path.substr(slash + 1);
}

const Row* rowFor(std::string_view folder) {
    const auto row = std::ranges::find(kRows, folder, &Row::folder);
    return row == std::end(kRows) ? nullptr : row;
}

std::optional<std::string> objectionToOurs(std::string_view path, std::string_view included) {
    const Row* from = rowFor(firstFolder(path));
    if (!from) return "the folder has no row in the table of modules";
    const auto folder = firstFolder(included);
    if (!rowFor(folder) || folder == included) return "is not written from the root of the repository";
    const bool allowed =
        folder == from->folder || std::ranges::any_of(from->mayInclude, [&](const Target& to) {
            return to.folder == folder && (to.header.empty() || to.header == lastName(included));
        });
    if (allowed) return std::nullopt;
    return "goes against the arrows of the modules";
}

bool isSource(const std::filesystem::path& path) {
    return path.extension() == ".h" || path.extension() == ".cpp";
}

bool isOutside(const std::filesystem::path& folder) {
    const auto name = folder.filename().string();
    return name.starts_with("build") || name.starts_with(".");
}

std::string contents(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

std::optional<std::string> objection(std::string_view path, std::string_view include) {
    const auto name = include.substr(1, include.size() - 2);
    if (name.starts_with("unicode/")) {
        if (path == "KestrinCore/UnicodeText.cpp") return std::nullopt;
        return "only KestrinCore/UnicodeText.cpp asks ICU";
    }
    // In angle brackets a header of ours would slip past the arrows.
    if (include.front() == '"' || rowFor(firstFolder(name))) return objectionToOurs(path, name);
    return std::nullopt;
}

std::vector<std::string> includes(std::string_view source) {
    std::vector<std::string> found;
    constexpr std::string_view blanks = " \t";
    while (!source.empty()) {
        const auto end = std::min(source.find('\n'), source.size());
        auto line = source.substr(0, end);
        source.remove_prefix(std::min(end + 1, source.size()));

        const auto skipBlanks = [&] {
            line.remove_prefix(std::min(line.find_first_not_of(blanks), line.size()));
        };
        skipBlanks();
        if (!line.starts_with('#')) continue;
        line.remove_prefix(1);
        skipBlanks();
        if (!line.starts_with("include")) continue;
        line.remove_prefix(7);
        skipBlanks();
        const auto close = line.find_first_of("\">", 1);
        if (close != std::string_view::npos) found.emplace_back(line.substr(0, close + 1));
    }
    return found;
}

Report check(const std::filesystem::path& root) {
    Report report;
    for (auto entry = std::filesystem::recursive_directory_iterator(root); entry != end(entry); ++entry) {
        if (entry->is_directory() && isOutside(entry->path())) entry.disable_recursion_pending();
        if (!entry->is_regular_file() || !isSource(entry->path())) continue;
        ++report.files;
        const auto path = entry->path().lexically_relative(root).generic_string();
        for (const auto& include : includes(contents(entry->path()))) {
            if (const auto why = objection(path, include)) {
                report.problems.push_back(path + ": " + include + " " + *why);
            }
        }
    }
    return report;
}

}  // namespace kestrin::ModuleArrows
