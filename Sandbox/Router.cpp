#include "Sandbox/Router.h"

#include <fmt/format.h>

#include <optional>

#include "Sandbox/Refusal.h"

namespace kestrin::sandbox {
namespace {

// What stands in the place of "{id}"; "" for a template without one; nullopt when the path isn't of the template.
std::optional<std::string> captured(std::string_view pathTemplate, std::string_view path) {
    constexpr std::string_view kPlace = "{id}";
    const auto place = pathTemplate.find(kPlace);
    if (place == std::string_view::npos) return pathTemplate == path ? std::optional("") : std::nullopt;
    const auto head = pathTemplate.substr(0, place), tail = pathTemplate.substr(place + kPlace.size());
    if (path.size() <= head.size() + tail.size()) return std::nullopt;
    if (!path.starts_with(head) || !path.ends_with(tail)) return std::nullopt;
    const auto id = path.substr(head.size(), path.size() - head.size() - tail.size());
    if (id.find('/') != std::string_view::npos) return std::nullopt;
    return percentDecoded(id);
}

}  // namespace

Router::Match Router::find(std::string_view method, std::string_view path) const {
    bool pathExists = false;
    for (const auto& endpoint : endpoints_) {
        auto id = captured(endpoint.path, path);
        if (!id) continue;
        pathExists = true;
        if (endpoint.method == method) return {&endpoint, *std::move(id)};
    }
    if (pathExists) {
        throw Refusal(ErrorItem{405, "METHOD_NOT_ALLOWED",
                                fmt::format("The method {} is not defined for {}", method, path)});
    }
    throw Refusal(ErrorItem{404, "PATH_ERROR", fmt::format("There is no path {}", path)});
}

}  // namespace kestrin::sandbox
