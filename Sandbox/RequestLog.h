// Every request that the sandbox got, in order: what the client really sent.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "Sandbox/HTTPMessage.h"
#include "Sandbox/JSON.h"

namespace kestrin::sandbox {

struct LoggedRequest {
    std::size_t number = 0;  // from 1
    std::string method;
    std::string target;
    HTTPHeaders headers;
    std::string body;          // "" for the bytes of an upload
    std::size_t bodySize = 0;  // of an upload too
    int connection = 0;
    int status = 0;  // of the reply; 0 when the connection was closed before the request was acted on
    bool strayToken = false;  // an Authorization header where none belongs
    std::string fault;        // what was done to the exchange, as Faults writes it; "" for nothing

    // "GET /v1/apps?limit=200"
    std::string line() const { return method + ' ' + target; }
};

class RequestLog {
 public:
    // The entry lives until the next one is begun.
    LoggedRequest& begin(const HTTPRequest& request);
    void clear() { entries_.clear(); }

    const std::vector<LoggedRequest>& entries() const { return entries_; }
    std::vector<std::string> lines() const;
    // Those with that method whose path starts so.
    std::size_t count(std::string_view method, std::string_view pathStart = "/") const;
    std::size_t connectionCount() const;

    Json toJSON() const;

 private:
    std::vector<LoggedRequest> entries_;
};

}  // namespace kestrin::sandbox
