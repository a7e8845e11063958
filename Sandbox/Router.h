// Which handler answers which method and path.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "Sandbox/HTTPMessage.h"
#include "Sandbox/Query.h"
#include "Sandbox/State.h"

namespace kestrin::sandbox {

// One request on its way to a handler: its token, media type and query have been found good.
struct Call {
    const HTTPRequest& request;
    std::string id;  // of the path; "" when it has none
    ReadOptions options;
};

using Handler = std::function<HTTPReply(State&, const Call&)>;

struct Endpoint {
    std::string method;
    std::string path;  // "/v1/apps/{id}/appInfos"
    QueryRules rules;
    Handler handler;
};

class Router {
 public:
    void add(Endpoint endpoint) { endpoints_.push_back(std::move(endpoint)); }

    struct Match {
        const Endpoint* endpoint;
        std::string id;
    };
    // `path` still percent-encoded. Throws Refusal: 404 for a path that there isn't, 405 for one that hasn't the
    // method.
    Match find(std::string_view method, std::string_view path) const;

    const std::vector<Endpoint>& endpoints() const { return endpoints_; }

 private:
    std::vector<Endpoint> endpoints_;
};

}  // namespace kestrin::sandbox
