// A client between a server that knows some addresses by heart and a test's own clock.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "ASCKit/ASCClient.h"
#include "Tests/Support/FakeTime.h"
#include "Tests/Support/TestCredential.h"

namespace kestrin {

// Answers a request by its path, the query aside; a path that it doesn't know is an empty list. Remembers the paths.
class RoutedTransport final : public HTTPTransport {
 public:
    struct Answer {
        int status = 200;
        std::string body;
    };
    std::map<std::string, Answer> answers;
    HTTPHeaders headers;              // of every reply
    std::vector<std::string> paths;   // of the requests, in order
    std::vector<std::string> writes;  // those that aren't a GET: "PATCH /v1/appInfos/7"

    HTTPResponse send(const HTTPRequest& request, const std::stop_token&) override {
        const auto path = request.url.path();
        paths.push_back(path);
        if (request.method != "GET") writes.push_back(request.method + " " + path);
        const auto known = answers.find(path);
        if (known == answers.end()) return {200, headers, R"({"data":[]})"};
        return {known->second.status, headers, known->second.body};
    }
};

// Executables that use it link ASCApiRoot.
struct RoutedClient {
    std::shared_ptr<RoutedTransport> server = std::make_shared<RoutedTransport>();
    FakeTime time;
    ASCClient client{TokenProvider(JWTSigner(testCredential()), time.clock()), server, options()};

    void answer(const std::string& path, std::string body, int status = 200) {
        server->answers[path] = {status, std::move(body)};
    }
    const std::vector<std::string>& paths() const { return server->paths; }

 private:
    ASCClient::Options options() {
        ASCClient::Options options;
        options.root = URL::parse("https://api.example.test");
        options.retryPolicy.jitter = [](Seconds delay) { return delay; };
        options.now = time.clock();
        options.sleep = time.sleep();
        return options;
    }
};

}  // namespace kestrin
