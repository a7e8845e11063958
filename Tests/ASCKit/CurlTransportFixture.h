// A transport of the network, a log for what servers get, and no proxy of the machine's in between.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>

#include "ASCKit/Transport/CurlTransport.h"
#include "Tests/ASCKit/ClientOutcome.h"
#include "Tests/ASCKit/RawServer.h"
#include "Tests/Support/ProxylessEnvironment.h"

namespace kestrin {

// Far more than a loopback needs, for tests in which nothing may stall.
constexpr auto kPatience = std::chrono::seconds(30);

struct CurlTransportFixture : testing::Test {
    ProxylessEnvironment environment;
    std::unique_ptr<CurlTransport> transport = std::make_unique<CurlTransport>();
    RequestLog log;

    static HTTPRequest request(const RawServer& server, std::string method = "GET",
                               std::string_view path = "/v1/apps") {
        return {std::move(method),
                URL::parse(server.root() + std::string(path)).value(),
                {},
                std::nullopt,
                kPatience};
    }
    static HTTPRequest withBody(HTTPRequest request, HTTPBody body) {
        request.body = std::move(body);
        return request;
    }
    std::string outcome(const HTTPRequest& request, const std::stop_token& stop = {}) {
        return outcomeOf([&] {
            const auto reply = transport->send(request, stop);
            return std::to_string(reply.status) + " " + reply.body;
        });
    }
    // What becomes of a request that gets exactly these bytes and then the end of the connection.
    std::string outcomeOfReply(std::string bytes) {
        const RawServer server([&](RawConnection& connection) {
            if (connection.readRequest()) connection.send(bytes);
        });
        return outcome(request(server));
    }
};

}  // namespace kestrin
