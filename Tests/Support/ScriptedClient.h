// A client between a scripted server and a test's own clock.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "ASCKit/ASCClient.h"
#include "KestrinCore/StableJSON.h"
#include "Tests/Support/FakeTime.h"
#include "Tests/Support/ScriptedTransport.h"
#include "Tests/Support/TestCredential.h"
#include "Tests/Support/ToldWaits.h"

namespace kestrin {

// Everything a client needs, and what it left behind: `server->sent`, `time.slept`, `uploadNews`. Jitter is the identity.
// Executables that use it link ASCApiRoot.
struct ScriptedClient {
    static constexpr const char* kRoot = "https://api.example.test";

    std::shared_ptr<ScriptedTransport> server;
    FakeTime time;
    std::stop_source stopSource;
    std::vector<UploadNews> uploadNews;  // all that was told
    ASCClient client;

    // With `told`, long waits are written down there, and slept minute by minute.
    explicit ScriptedClient(std::vector<ScriptedTransport::Step> script = {}, ToldWaits* told = nullptr)
        : server(std::make_shared<ScriptedTransport>(std::move(script))),
          client(TokenProvider(JWTSigner(testCredential()), time.clock()), server, options(told)) {}

    // The `n`th request, counted from 0, without the root: "GET /v1/apps?limit=200".
    std::string line(std::size_t n) const {
        const auto& request = server->sent.at(n);
        const auto& url = request.url.absoluteString();
        return request.method + " " +
               (url.starts_with(kRoot) ? url.substr(std::string_view(kRoot).size()) : url);
    }

    // Its body; "" when it has none.
    std::string body(std::size_t n) const {
        const auto& body = server->sent.at(n).body;
        return body ? std::get<std::string>(*body) : "";
    }

    // Every request as a line with its JSON body, if it has one, as compact JSON behind it.
    std::vector<std::string> requests() const {
        std::vector<std::string> lines;
        for (std::size_t n = 0; n < server->sent.size(); ++n) {
            lines.push_back(line(n));
            if (const auto sent = body(n); !sent.empty()) {
                lines.back() += " " + StableJSON::encodeCompact(StableJSON::decode(sent));
            }
        }
        return lines;
    }

 private:
    ASCClient::Options options(ToldWaits* told) {
        ASCClient::Options options;
        options.retryPolicy.jitter = [](Seconds delay) { return delay; };
        options.root = URL::parse(kRoot);
        options.now = time.clock();
        options.sleep = time.sleep();
        options.stop = stopSource.get_token();
        options.uploadNews = [this](const UploadNews& news) { uploadNews.push_back(news); };
        if (told) options.waitNotes = told->notes(time);
        return options;
    }
};

}  // namespace kestrin
