// One HTTP exchange, without the socket that carries it.
#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kestrin::sandbox {

using HTTPHeaders = std::vector<std::pair<std::string, std::string>>;

// The first header of that name, in any letter case; nullopt when there is none.
std::optional<std::string> headerValue(const HTTPHeaders& headers, std::string_view name);

struct HTTPRequest {
    std::string method;
    std::string target;  // path and query as they came, still percent-encoded
    HTTPHeaders headers;
    std::string body;
    int connection = 0;  // requests with the same number came over the same connection

    std::string path() const;   // of `target`, up to the "?"
    std::string query() const;  // of `target`, behind the "?"
};

struct HTTPReply {
    int status = 200;
    HTTPHeaders headers;  // without Content-Type and Content-Length
    std::string contentType;
    std::string body;
};

// What becomes of a reply on its way out.
struct Wire {
    std::chrono::milliseconds delay{};     // before the first byte
    std::optional<std::size_t> bodyLimit;  // close the connection after that many bytes of the body
    bool closeSilently = false;            // close the connection without a byte of the reply
    bool closeAfterwards = false;          // deliver the reply, then close
};

struct Answer {
    HTTPReply reply;
    Wire wire;
};

}  // namespace kestrin::sandbox
