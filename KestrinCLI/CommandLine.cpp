#include "KestrinCLI/CommandLine.h"

#include <algorithm>

#include "KestrinCLI/Failure.h"
#include "KestrinCore/HomeFolder.h"
#include "KestrinCore/Split.h"
#include "KestrinCore/UnicodeText.h"

namespace kestrin {
Arguments argumentsOfProcess(std::span<const char* const> words) {
    Arguments args;
    for (const char* word : words.subspan(std::min<std::size_t>(1, words.size()))) {
        if (!text::isValidUTF8(word)) fail("the argument “" + text::repaired(word) + "” isn't UTF-8 text");
        args.emplace_back(word);
    }
    return args;
}

std::optional<std::string> option(std::string_view name, const Arguments& args) {
    const auto found = std::find(args.begin(), args.end(), name);
    if (found == args.end() || found + 1 == args.end()) return std::nullopt;
    return *(found + 1);
}

bool hasFlag(std::string_view flag, const Arguments& args) {
    return std::find(args.begin(), args.end(), flag) != args.end();
}

StorePlatform platformOption(const Arguments& args) {
    auto value = option("--platform", args);
    return value ? StorePlatform{std::move(*value)} : StorePlatform::iOS;
}

std::optional<std::set<StoreLocale>> localesOption(const Arguments& args) {
    const auto value = option("--locales", args);
    if (!value) return std::nullopt;
    std::set<StoreLocale> locales;
    for (const auto locale : split(*value, ',')) {
        if (!locale.empty()) locales.insert({std::string(locale)});
    }
    return locales;
}

std::filesystem::path fileURL(std::string_view word) {
    if (word.empty()) fail("a path can't be empty");
    return expandingTilde(word);
}

std::string lastPathComponent(const std::filesystem::path& path) {
    auto name = path.has_filename() ? path.filename() : path.parent_path().filename();
    if (name.empty() || name == "." || name == "..") {
        std::error_code unreachable;
        const auto folder = std::filesystem::weakly_canonical(path, unreachable);
        const auto& resolved = unreachable ? path : folder;
        name = resolved.has_filename() ? resolved.filename() : resolved.root_path();
    }
    return text::repaired(name.native());
}

}  // namespace kestrin
