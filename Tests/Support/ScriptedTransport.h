// A transport without a network: answers from a script, in order, and remembers what was sent.
#pragma once

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "ASCKit/Transport/HTTPTransport.h"

namespace kestrin {

class ScriptedTransport final : public HTTPTransport {
 public:
    // What happens to one request.
    using Step = std::function<HTTPResponse(const HTTPRequest&, const std::stop_token&)>;

    explicit ScriptedTransport(std::vector<Step> script = {}) : script_(std::move(script)) {}

    std::vector<HTTPRequest> sent;  // in order

    void then(Step step) { script_.push_back(std::move(step)); }
    bool isAtTheEnd() const { return sent.size() == script_.size(); }

    // One request more than the script has steps is an error of the test, not a reply.
    HTTPResponse send(const HTTPRequest& request, const std::stop_token& stop) override {
        sent.push_back(request);
        if (sent.size() > script_.size()) {
            throw std::logic_error("not in the script: " + request.method + " " +
                                   request.url.absoluteString());
        }
        return script_[sent.size() - 1](request, stop);
    }

 private:
    std::vector<Step> script_;
};

// Steps.
inline ScriptedTransport::Step reply(int status, std::string body = {}, HTTPHeaders headers = {}) {
    return [answer = HTTPResponse{status, std::move(headers), std::move(body)}](auto&&...) { return answer; };
}
inline ScriptedTransport::Step fail(TransportError::Code code) {
    return [code](auto&&...) -> HTTPResponse { throw TransportError(code, "scripted"); };
}
inline std::vector<ScriptedTransport::Step> times(std::size_t count, const ScriptedTransport::Step& step) {
    return std::vector<ScriptedTransport::Step>(count, step);
}

}  // namespace kestrin
