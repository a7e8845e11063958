#include "ASCKit/ASCRequest.h"

#include <cstdlib>

namespace kestrin {

std::string_view rawValue(HTTPMethod method) {
    switch (method) {
        case HTTPMethod::get:
            return "GET";
        case HTTPMethod::post:
            return "POST";
        case HTTPMethod::patch:
            return "PATCH";
        case HTTPMethod::remove:
            return "DELETE";
    }
    std::abort();
}

std::optional<URL> ASCRequest::url(const URL& root) const {
    auto text = root.absoluteString() + path;
    if (!query.empty()) text.append(1, '?').append(QueryEncoder::encode(query));
    return URL::parse(text);
}

}  // namespace kestrin
