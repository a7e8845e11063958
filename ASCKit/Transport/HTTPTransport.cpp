#include "ASCKit/Transport/HTTPTransport.h"

namespace kestrin {

std::optional<std::string_view> HTTPResponse::header(std::string_view name) const {
    const auto field = headers.find(name);
    if (field == headers.end()) return std::nullopt;
    return field->second;
}

}  // namespace kestrin
