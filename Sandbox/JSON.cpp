#include "Sandbox/JSON.h"

#include <algorithm>

namespace kestrin::sandbox {
namespace {

constexpr int kMaximumDepth = 512;

// Copies of a value recurse, so depth must be known before there is a value.
int nestingDepth(std::string_view text) {
    int depth = 0, deepest = 0;
    bool inString = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (inString) {
            if (c == '\\') ++i;
            if (c == '"') inString = false;
        } else if (c == '"') {
            inString = true;
        } else if (c == '[' || c == '{') {
            deepest = std::max(deepest, ++depth);
        } else if (c == ']' || c == '}') {
            --depth;
        }
    }
    return deepest;
}

}  // namespace

std::string dumped(const Json& value) {
    return value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

std::optional<Json> parsedJSON(std::string_view text) {
    if (nestingDepth(text) > kMaximumDepth) return std::nullopt;
    auto value = Json::parse(text, nullptr, false);
    if (value.is_discarded()) return std::nullopt;
    return value;
}

}  // namespace kestrin::sandbox
