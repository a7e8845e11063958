#include "ASCKit/Transport/PlainGet.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <barrier>
#include <thread>

#include "Tests/ASCKit/ClientOutcome.h"
#include "Tests/ASCKit/RawServer.h"
#include "Tests/Support/ProxylessEnvironment.h"

namespace kestrin {
namespace {

struct PlainGetTest : testing::Test {
    ProxylessEnvironment environment;
    RequestLog log;
    Fetch get = plainGet();

    static URL at(const RawServer& server, std::string_view path = "/a/1x2.png") {
        return URL::parse(server.root() + std::string(path)).value();
    }
    std::string outcome(const URL& url, const std::stop_token& stop = {}) {
        return outcomeOf([&] { return get(url, stop); });
    }
};

TEST_F(PlainGetTest, AsksWithoutATokenAndGivesTheBody) {
    const RawServer server(answering(log, rawReply("bytes")));
    EXPECT_EQ(outcome(at(server)), "ok bytes");
    EXPECT_EQ(log.at(0).line(), "GET /a/1x2.png HTTP/1.1");
    EXPECT_THAT(log.at(0).headerNames(), testing::UnorderedElementsAre("Host", "Accept-Encoding"));
}

TEST_F(PlainGetTest, LooksAtNoStatus) {
    const RawServer server([](RawConnection& connection) {
        if (connection.readRequest())
            connection.send("HTTP/1.1 404 Not Found\r\nContent-Length: 4\r\n\r\ngone");
    });
    EXPECT_EQ(outcome(at(server)), "ok gone");
}

TEST_F(PlainGetTest, FailsAsTheClientDoesWithoutAReply) {
    const RawServer server([](RawConnection& connection) { connection.readRequest(); });
    EXPECT_EQ(outcome(at(server)), "transport networkConnectionLost /a/1x2.png");
    EXPECT_EQ(outcome(URL::parse("file://localhost/etc/hostname").value()),
              "transport unsupportedURL /etc/hostname");
}

TEST_F(PlainGetTest, GoesOnWithAfterAFailure) {
    std::atomic<int> asked = 0;
    const RawServer server([&](RawConnection& connection) {
        if (connection.readRequest() && ++asked > 1) connection.send(rawReply("bytes"));
    });
    EXPECT_EQ(outcome(at(server)), "transport networkConnectionLost /a/1x2.png");
    EXPECT_EQ(outcome(at(server)), "ok bytes");
}

TEST_F(PlainGetTest, EndsWithAStop) {
    const RawServer server(answering(log, rawReply("bytes")));
    std::stop_source source;
    source.request_stop();
    EXPECT_EQ(outcome(at(server), source.get_token()), "cancelled");
}

TEST_F(PlainGetTest, MayBeCalledBySeveralThreadsAtOnce) {
    std::barrier both(2);
    const RawServer server([&](RawConnection& connection) {
        if (!connection.readRequest()) return;
        both.arrive_and_wait();
        connection.send(rawReply("bytes"));
    });
    std::string other;
    {
        const std::jthread thread([&] { other = outcome(at(server)); });
        EXPECT_EQ(outcome(at(server)), "ok bytes");
    }
    EXPECT_EQ(other, "ok bytes");
}

}  // namespace
}  // namespace kestrin
