// The client over a real socket: what stands on the wire, from the call to the bytes.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ASCKit/ASCClient.h"
#include "ASCKit/Transport/CurlTransport.h"
#include "KestrinCore/StableJSON.h"
#include "Tests/ASCKit/ClientOutcome.h"
#include "Tests/ASCKit/RawServer.h"
#include "Tests/Support/FakeTime.h"
#include "Tests/Support/ProxylessEnvironment.h"
#include "Tests/Support/TestCredential.h"

namespace kestrin {
namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;
using testing::Not;
using testing::UnorderedElementsAre;

struct ASCClientWireTest : testing::Test {
    ProxylessEnvironment environment;
    FakeTime time;
    RequestLog log;

    ASCClient clientOf(const RawServer& server) {
        ASCClient::Options options;
        options.retryPolicy.jitter = [](Seconds delay) { return delay; };
        options.root = URL::parse(server.root());
        options.now = time.clock();
        options.sleep = time.sleep();
        return ASCClient(TokenProvider(JWTSigner(testCredential()), time.clock()),
                         std::make_shared<CurlTransport>(), options);
    }

    // Gives one answer after the other, over one connection or several.
    RawServer::Handler answeringInTurn(std::vector<std::string> answers) {
        return [this, answers = std::move(answers)](RawConnection& connection) {
            while (auto request = connection.readRequest()) {
                log.add(*std::move(request));
                const auto n = log.size() - 1;
                if (n >= answers.size() || !connection.send(answers[n])) return;
            }
        };
    }
};

TEST_F(ASCClientWireTest, ARead) {
    const RawServer server(answering(log, rawReply(R"({"data":[{"type":"apps","id":"1"}]})")));
    auto client = clientOf(server);

    const auto apps =
        client.all({HTTPMethod::get,
                    "/v1/apps",
                    {QueryParameter::fields("apps", {"name", "bundleId"}), QueryParameter::limit(200)},
                    std::nullopt});

    EXPECT_EQ(apps.size(), 1u);
    EXPECT_EQ(log.at(0).line(), "GET /v1/apps?fields%5Bapps%5D=name,bundleId&limit=200 HTTP/1.1");
    EXPECT_THAT(log.at(0).headerNames(), UnorderedElementsAre("Host", "Accept-Encoding", "Authorization"));
    EXPECT_THAT(log.at(0).header("Authorization"), testing::StartsWith("Bearer eyJ"));
}

TEST_F(ASCClientWireTest, AWrite) {
    const RawServer server(answering(log, "HTTP/1.1 204 No Content\r\n\r\n"));
    auto client = clientOf(server);
    const auto body = StableJSON::encode(
        JSONObject{{"data", JSONObject{{"type", "builds"}, {"id", "a/b"}, {"note", "é"}}}});

    client.data({HTTPMethod::patch, "/v1/builds/7", {}, body});

    EXPECT_EQ(log.at(0).line(), "PATCH /v1/builds/7 HTTP/1.1");
    EXPECT_THAT(log.at(0).headerNames(), UnorderedElementsAre("Host", "Accept-Encoding", "Authorization",
                                                              "Content-Type", "Content-Length"));
    EXPECT_EQ(log.at(0).header("Content-Type"), "application/json");
    EXPECT_EQ(log.at(0).body,
              "{\n  \"data\" : {\n    \"id\" : \"a/b\",\n    \"note\" : \"é\",\n    \"type\" : \"builds\"\n  "
              "}\n}\n");
}

TEST_F(ASCClientWireTest, RetriesAndPagesStayOnOneConnection) {
    // The address of the second page has to name the server's own port, which is known only once it listens.
    std::string next;
    const RawServer server([&](RawConnection& connection) {
        while (auto request = connection.readRequest()) {
            log.add(*request);
            const auto n = log.size();
            const auto links = n < 5 ? R"({"next":")" + next + R"("})" : "{}";
            connection.send(n == 1   ? rawReply("", "Retry-After: 2\r\n", "429 Too Many")
                            : n == 2 ? rawReply("", "", "401 Unauthorized")
                            : n == 4 ? rawReply("<html>", "", "502 Bad Gateway")
                                     : rawReply(R"({"data":[],"links":)" + links + "}",
                                                "X-Rate-Limit: user-hour-lim:3600;user-hour-rem:3598;\r\n"));
        }
    });
    next = server.root() + "/v1/apps?cursor=Mg.A&limit=200";
    auto client = clientOf(server);

    client.all({HTTPMethod::get, "/v1/apps", {}, std::nullopt});

    EXPECT_EQ(log.size(), 5u);
    EXPECT_EQ(log.at(4).line(), "GET /v1/apps?cursor=Mg.A&limit=200 HTTP/1.1");
    EXPECT_EQ(time.slept, (std::vector<Seconds>{2s, 1s}));
    EXPECT_NE(log.at(1).header("Authorization"), log.at(2).header("Authorization"));
    EXPECT_EQ(client.rateLimit(), (RateLimitStatus{3600, 3598}));
    EXPECT_EQ(server.connections(), 1u);
}

TEST_F(ASCClientWireTest, ADroppedReplyIsAskedForAgainUnlessItWasAPosts) {
    const RawServer dropping([&](RawConnection& connection) {
        while (auto request = connection.readRequest()) {
            log.add(*std::move(request));
            const bool isWhole = log.size() % 2 == 0;
            connection.send(isWhole ? rawReply("whole") : "HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\nhalf");
            if (!isWhole) return;
        }
    });
    auto client = clientOf(dropping);
    const auto outcome = [&](HTTPMethod method) {
        return outcomeOf([&] { return client.data({method, "/v1/apps", {}, "{}"}); });
    };

    EXPECT_EQ(outcome(HTTPMethod::patch), "ok whole");
    EXPECT_EQ(log.size(), 2u);
    EXPECT_EQ(outcome(HTTPMethod::post), "transport networkConnectionLost /v1/apps");
    EXPECT_EQ(log.size(), 3u);
    EXPECT_EQ(time.slept, std::vector<Seconds>{1s});
}

TEST_F(ASCClientWireTest, AnUploadAddressGetsNoToken) {
    RequestLog uploads;
    const RawServer api(answering(log, rawReply(R"({"data":[]})")));
    const RawServer store(answering(uploads, rawReply("")));
    auto client = clientOf(api);
    client.send({HTTPMethod::get, "/v1/apps", {}, std::nullopt});

    client.sendUploadPart({"PUT",
                           URL::parse(store.root() + "/part?partNumber=1").value(),
                           {{"Content-Type", "application/octet-stream"}, {"X-Checksum", "abc"}},
                           HTTPBody("bytes")});

    EXPECT_EQ(uploads.at(0).line(), "PUT /part?partNumber=1 HTTP/1.1");
    EXPECT_THAT(uploads.at(0).headerNames(), UnorderedElementsAre("Host", "Accept-Encoding", "Content-Type",
                                                                  "X-Checksum", "Content-Length"));
    EXPECT_EQ(uploads.at(0).body, "bytes");
    EXPECT_THAT(uploads.at(0).head, Not(HasSubstr("Bearer")));
}

TEST_F(ASCClientWireTest, NobodyBehindARedirectOrANextLinkGetsAToken) {
    RequestLog elsewhere;
    const RawServer other(answering(elsewhere, rawReply(R"({"data":[]})")));
    const RawServer server(
        answeringInTurn({rawReply("", "Location: " + other.root() + "/v1/apps\r\n", "307 Temporary Redirect"),
                         rawReply(R"({"data":[],"links":{"next":")" + other.root() + R"(/v1/apps"}})")}));
    auto client = clientOf(server);
    const ASCRequest apps{HTTPMethod::get, "/v1/apps", {}, std::nullopt};

    EXPECT_EQ(outcomeOf([&] { client.all(apps); }), "http 307 /v1/apps");
    EXPECT_EQ(outcomeOf([&] { client.all(apps); }), "invalidResponse /v1/apps");

    EXPECT_EQ(elsewhere.size(), 0u);
}

TEST_F(ASCClientWireTest, ACertificateThatNobodyVouchesForIsATransportFailure) {
    const RawServer server(answering(log, rawReply("b")), {.withTLS = true});
    auto client = clientOf(server);
    EXPECT_EQ(outcomeOf([&] {
                  return client.data({HTTPMethod::get, "/v1/apps", {}, std::nullopt});
              }),
              "transport secureConnectionFailed /v1/apps");
    EXPECT_EQ(log.size(), 0u);
}

TEST_F(ASCClientWireTest, AReplyThatIsNotHTTPIsAnInvalidResponseAndIsNotAskedForAgain) {
    const RawServer server(answeringInTurn({"SSH-2.0-OpenSSH_9.2\r\n"}));
    auto client = clientOf(server);
    EXPECT_EQ(outcomeOf([&] {
                  return client.data({HTTPMethod::get, "/v1/apps", {}, std::nullopt});
              }),
              "invalidResponse /v1/apps");
    EXPECT_EQ(log.size(), 1u);
}

}  // namespace
}  // namespace kestrin
