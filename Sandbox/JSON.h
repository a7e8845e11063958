// The JSON of the sandbox: a document in memory that handlers take apart and put together.
#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>

namespace kestrin::sandbox {

using Json = nlohmann::json;

// One line, members in byte order; text that isn't UTF-8 is repaired.
std::string dumped(const Json& value);

// nullopt for what isn't one JSON document, and for nesting deeper than anything sensible.
std::optional<Json> parsedJSON(std::string_view text);

}  // namespace kestrin::sandbox
