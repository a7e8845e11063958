// One request to the API, before it has an address and a token.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ASCKit/QueryEncoder.h"
#include "ASCKit/URL.h"

namespace kestrin {

enum class HTTPMethod { get, post, patch, remove };  // `remove` is DELETE: `delete` is taken in C++

std::string_view rawValue(HTTPMethod method);  // "GET", "POST", "PATCH", "DELETE"

struct ASCRequest {
    HTTPMethod method = HTTPMethod::get;
    std::string path;  // "/v1/apps": no root, no query; taken as it stands
    std::vector<QueryParameter> query;
    std::optional<std::string> body;

    // The root's text, the path and the encoded query behind a "?" where there is one. nullopt when that isn't an
    // address.
    std::optional<URL> url(const URL& root) const;

    bool operator==(const ASCRequest&) const = default;
};

}  // namespace kestrin
