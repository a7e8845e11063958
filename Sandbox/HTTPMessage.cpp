#include "Sandbox/HTTPMessage.h"

#include <strings.h>

namespace kestrin::sandbox {

std::optional<std::string> headerValue(const HTTPHeaders& headers, std::string_view name) {
    const std::string wanted(name);
    for (const auto& [key, value] : headers) {
        if (::strcasecmp(key.c_str(), wanted.c_str()) == 0) return value;
    }
    return std::nullopt;
}

std::string HTTPRequest::path() const {
    return target.substr(0, target.find('?'));
}

std::string HTTPRequest::query() const {
    const auto mark = target.find('?');
    return mark == std::string::npos ? std::string() : target.substr(mark + 1);
}

}  // namespace kestrin::sandbox
