// Time: who stalls is given up, who is slow is not, and a stop ends everything.
#include <atomic>
#include <future>
#include <thread>

#include "Tests/ASCKit/CurlTransportFixture.h"

namespace kestrin {
namespace {

using namespace std::chrono_literals;

struct CurlTransportStallTest : CurlTransportFixture {};

TEST_F(CurlTransportStallTest, AServerThatStallsIsGivenUp) {
    const char* const beginnings[] = {
        "",
        "HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\nabc",
        "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n3\r\nabc\r\n",
    };
    for (const char* beginning : beginnings) {
        SCOPED_TRACE(beginning);
        const RawServer server([&](RawConnection& connection) {
            if (!connection.readRequest()) return;
            connection.send(beginning);
            connection.waitForEnd();
        });
        auto stalled = request(server);
        stalled.idleLimit = 150ms;
        EXPECT_EQ(outcome(stalled), "transport error timedOut");
    }
}

TEST_F(CurlTransportStallTest, AServerThatNeverAgreesOnTLSIsGivenUp) {
    const RawServer server([](RawConnection& connection) { connection.waitForEnd(); });
    auto stalled = request(server);
    stalled.url = URL::parse("https://127.0.0.1:" + std::to_string(server.port()) + "/v1/apps").value();
    stalled.idleLimit = 150ms;
    EXPECT_EQ(outcome(stalled), "transport error timedOut");
}

TEST_F(CurlTransportStallTest, ASlowReplyIsNotCut) {
    constexpr int kPieces = 20;
    const RawServer server([](RawConnection& connection) {
        if (!connection.readRequest()) return;
        connection.send("HTTP/1.1 200 OK\r\nContent-Length: 20\r\n\r\n");
        for (int i = 0; i < kPieces && connection.send("x"); ++i) std::this_thread::sleep_for(50ms);
    });
    auto slow = request(server);
    slow.idleLimit = 700ms;  // less than the whole takes, far more than one piece
    EXPECT_EQ(outcome(slow), "ok 200 " + std::string(kPieces, 'x'));
}

// A server that takes `piece` bytes of a body every `pause`.
RawServer::Handler takingSlowly(std::size_t length, std::size_t piece, std::chrono::milliseconds pause) {
    return [=](RawConnection& connection) {
        std::size_t taken = 0;
        std::string head;
        while (head.find("\r\n\r\n") == head.npos) head += connection.read(1);
        while (taken < length) {
            const auto got = connection.read(piece);
            if (got.empty()) return;
            taken += got.size();
            std::this_thread::sleep_for(pause);
        }
        connection.send(rawReply(std::to_string(taken)));
    };
}

TEST_F(CurlTransportStallTest, ASlowUploadIsNotCut) {
    constexpr std::size_t kLength = 6 << 20;
    const RawServer server(takingSlowly(kLength, 64 << 10, 12ms), {.receiveBuffer = 64 << 10});
    auto slow = withBody(request(server, "PUT"), std::string(kLength, 'x'));
    slow.idleLimit = 700ms;
    EXPECT_EQ(outcome(slow), "ok 200 " + std::to_string(kLength));
}

TEST_F(CurlTransportStallTest, AnUploadThatOnlyTheSystemIsStillSendingIsNotCut) {
    // It fits the system's send buffer, so that libcurl has handed all of it over long before the server has it.
    constexpr std::size_t kLength = 1 << 20;
    const RawServer server(takingSlowly(kLength, 32 << 10, 40ms), {.receiveBuffer = 32 << 10});
    auto slow = withBody(request(server, "PUT"), std::string(kLength, 'x'));
    slow.idleLimit = 700ms;
    EXPECT_EQ(outcome(slow), "ok 200 " + std::to_string(kLength));
}

TEST_F(CurlTransportStallTest, AnUploadThatNobodyTakesIsGivenUp) {
    std::promise<void> isOver;
    const auto over = isOver.get_future().share();
    const RawServer server([over](RawConnection&) { over.wait(); }, {.receiveBuffer = 4096});
    auto stalled = withBody(request(server, "PUT"), std::string(16 << 20, 'x'));
    stalled.idleLimit = 300ms;
    EXPECT_EQ(outcome(stalled), "transport error timedOut");
    isOver.set_value();
}

TEST_F(CurlTransportStallTest, AfterAStallTheNextRequestGetsAConnectionOfItsOwn) {
    std::atomic<int> count = 0;
    const RawServer server([&](RawConnection& connection) {
        const bool isFirst = count++ == 0;
        while (connection.readRequest()) {
            if (isFirst) return connection.waitForEnd();
            connection.send(rawReply("b"));
        }
    });
    auto stalled = request(server);
    stalled.idleLimit = 150ms;
    EXPECT_EQ(outcome(stalled), "transport error timedOut");
    EXPECT_EQ(outcome(request(server)), "ok 200 b");
}

TEST_F(CurlTransportStallTest, AStopEndsARequestAtOnce) {
    std::stop_source source;
    const RawServer server([&](RawConnection& connection) {
        if (!connection.readRequest()) return;
        source.request_stop();
        connection.waitForEnd();
    });
    auto forever = request(server);
    forever.idleLimit = 1h;
    EXPECT_EQ(outcome(forever, source.get_token()), "transport error cancelled");
}

TEST_F(CurlTransportStallTest, AStopBeforeTheRequestIsCancelledToo) {
    const RawServer server(answering(log, rawReply("b")));
    std::stop_source source;
    source.request_stop();
    EXPECT_EQ(outcome(request(server), source.get_token()), "transport error cancelled");
}

}  // namespace
}  // namespace kestrin
