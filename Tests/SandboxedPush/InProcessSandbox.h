// The way to a sandbox in the same process: a request goes straight to the service, and its answer straight back.
#pragma once

#include "ASCKit/Transport/HTTPTransport.h"
#include "Sandbox/Service.h"
#include "Tests/SandboxedPush/Trouble.h"

namespace kestrin {

class InProcessSandbox final : public HTTPTransport {
 public:
    static constexpr const char* kRoot = "http://sandbox.example";

    explicit InProcessSandbox(sandbox::Service& service) : service_(service) { service.setRoot(kRoot); }

    TroubleMaker trouble;
    bool tellsRateLimit = true;  // whether replies have the header with the rest of the hour

    HTTPResponse send(const HTTPRequest& request, const std::stop_token& stop) override;

 private:
    sandbox::Service& service_;
};

}  // namespace kestrin
