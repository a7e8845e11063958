// A sandbox and a caller with a good key; requests go straight to the service, without a socket.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Sandbox/Sandbox.h"

namespace kestrin::sandbox {

constexpr std::int64_t kNow = 1'780'000'000;
constexpr const char* kRoot = "http://sandbox.example";
constexpr const char* kApp = "1234567890";  // of the seed
constexpr const char* kScreenshots = "APP_SCREENSHOTS_AND_PREVIEWS";

// A JWT made here, with OpenSSL, and not by the code under test.
struct TokenRecipe {
    Json header;
    Json payload;
    std::string privateKeyPEM;

    std::string token() const;
};
TokenRecipe goodToken(const Credential& credential, std::int64_t now = kNow);

struct Received {
    int status = 0;
    Json json;  // null for a body that isn't JSON
    std::string body;
    HTTPHeaders headers;
    Wire wire;

    // The code of the first error; "" when there is none.
    std::string code() const;
    // Where the first error points: a pointer or a parameter.
    std::string place() const;
    std::vector<std::string> ids() const;  // of `data`
    // The first resource of `data` that has that text attribute, or `data` itself when it is one resource.
    const Json& attributes(std::size_t index = 0) const;
};

// Uploads come in parts of 1000 bytes.
Settings smallParts();

class SandboxFixture : public testing::Test {
 protected:
    SandboxFixture() : SandboxFixture(Settings{}) {}
    explicit SandboxFixture(Settings settings, const Seed& seed = seeds::everyday);

    Received get(const std::string& target) { return send("GET", target); }
    Received post(const std::string& target, const Json& body) { return send("POST", target, dumped(body)); }
    Received patch(const std::string& target, const Json& body) {
        return send("PATCH", target, dumped(body));
    }
    Received remove(const std::string& target) { return send("DELETE", target); }
    // `headers` beside Authorization and, with a body, Content-Type and Content-Length.
    Received send(const std::string& method, const std::string& target, const std::string& body = {},
                  const HTTPHeaders& headers = {});
    // To the address of an upload operation, with its headers unless others are given.
    Received put(const Json& operation, const std::string& bytes, HTTPHeaders headers = {});
    // Every part of what was reserved.
    void sendAll(const Received& reserved, const std::string& bytes);
    // Nothing is added.
    Received sendBare(const HTTPRequest& request);

    // The id of the first resource of that type for which the conditions hold (Store::first); fails the test when
    // there is none.
    std::string idOf(const std::string& type,
                     const std::vector<std::pair<std::string, std::string>>& conditions);

    Sandbox sandbox;
    std::string authorization;
};

// {"data": {"type", "attributes", "relationships": {name: {"data": {"type", "id"}}}}}
Json createBody(const std::string& type, const Json& attributes,
                const std::vector<std::pair<std::string, Ref>>& related = {});
Json updateBody(const std::string& type, const std::string& id, const Json& attributes,
                const std::vector<std::pair<std::string, Ref>>& related = {});

}  // namespace kestrin::sandbox
