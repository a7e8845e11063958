// What comes back: every framing, coding and size of a reply, and what isn't one.
#include <fmt/format.h>
#include <zlib.h>

#include <numeric>

#include "Tests/ASCKit/CurlTransportFixture.h"

namespace kestrin {
namespace {

using namespace std::chrono_literals;

struct CurlTransportReplyTest : CurlTransportFixture {};

TEST_F(CurlTransportReplyTest, AReplyOfAnyStatusIsAReply) {
    for (const char* status : {"200 OK", "201 Created", "301 Moved", "401 No", "404 Not Found", "503 Down"}) {
        const RawServer server(answering(log, rawReply("b", "", status)));
        EXPECT_EQ(outcome(request(server)), std::string("ok ") + std::string(status).substr(0, 3) + " b");
    }
}

TEST_F(CurlTransportReplyTest, AReplyWithoutABodyLeavesItsConnectionOpen) {
    const RawServer server(answering(log, "HTTP/1.1 204 No Content\r\n\r\n"));
    EXPECT_EQ(outcome(request(server)), "ok 204 ");
    EXPECT_EQ(outcome(request(server)), "ok 204 ");
    EXPECT_EQ(server.connections(), 1u);
}

TEST_F(CurlTransportReplyTest, HeadersAreFoundByNameInAnyCase) {
    const RawServer server(answering(
        log,
        rawReply("",
                 "X-Rate-Limit: user-hour-lim:5;\r\nretry-after:  7 \r\nVia: a\r\nvia: b\r\nX-Empty:\r\n")));
    const auto reply = transport->send(request(server), {});
    EXPECT_EQ(reply.header("x-rate-limit"), "user-hour-lim:5;");
    EXPECT_EQ(reply.header("Retry-After"), "7");
    EXPECT_EQ(reply.header("VIA"), "a, b");
    EXPECT_EQ(reply.header("X-Empty"), "");
    EXPECT_EQ(reply.header("X-Absent"), std::nullopt);
}

TEST_F(CurlTransportReplyTest, InterimRepliesAreNotTheReply) {
    EXPECT_EQ(outcomeOfReply("HTTP/1.1 103 Early Hints\r\nLink: x\r\n\r\nHTTP/1.1 100 Continue\r\n\r\n" +
                             rawReply("b")),
              "ok 200 b");

    const RawServer server(
        answering(log, "HTTP/1.1 103 Early Hints\r\nX-A: early\r\n\r\n" + rawReply("b", "X-B: c\r\n")));
    const auto reply = transport->send(request(server), {});
    EXPECT_FALSE(reply.header("X-A"));
    EXPECT_EQ(reply.header("X-B"), "c");
}

TEST_F(CurlTransportReplyTest, EveryFramingOfABodyIsRead) {
    EXPECT_EQ(outcomeOfReply("HTTP/1.1 200 OK\r\n\r\nno length"), "ok 200 no length");
    EXPECT_EQ(outcomeOfReply("HTTP/1.0 200 OK\r\n\r\nold"), "ok 200 old");
    EXPECT_EQ(
        outcomeOfReply("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n3\r\nabc\r\n2;x=y\r\nde\r\n0\r\n"
                       "X-Trailer: t\r\n\r\n"),
        "ok 200 abcde");
    EXPECT_EQ(outcomeOfReply("HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n"), "ok 200 ");
}

std::string gzip(std::string_view bytes) {
    z_stream stream{};
    deflateInit2(&stream, Z_BEST_COMPRESSION, Z_DEFLATED, 15 + 16, 8, Z_DEFAULT_STRATEGY);
    std::string out(deflateBound(&stream, bytes.size()), '\0');
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data()));
    stream.avail_in = static_cast<uInt>(bytes.size());
    stream.next_out = reinterpret_cast<Bytef*>(out.data());
    stream.avail_out = static_cast<uInt>(out.size());
    deflate(&stream, Z_FINISH);
    out.resize(stream.total_out);
    deflateEnd(&stream);
    return out;
}

std::string chunk(std::string_view bytes) {
    return fmt::format("{:x}\r\n{}\r\n", bytes.size(), bytes);
}

TEST_F(CurlTransportReplyTest, ACompressedBodyComesOutAsItWas) {
    EXPECT_EQ(outcomeOfReply(rawReply(gzip("unpacked"), "Content-Encoding: gzip\r\n")), "ok 200 unpacked");
    const auto packed = gzip("in chunks");
    const auto half = packed.size() / 2;
    EXPECT_EQ(
        outcomeOfReply("HTTP/1.1 200 OK\r\nContent-Encoding: gzip\r\nTransfer-Encoding: chunked\r\n\r\n" +
                       chunk(packed.substr(0, half)) + chunk(packed.substr(half)) + chunk("")),
        "ok 200 in chunks");
    EXPECT_EQ(outcomeOfReply(rawReply("not gzip at all", "Content-Encoding: gzip\r\n")),
              "transport error cannotDecodeContentData");
}

TEST_F(CurlTransportReplyTest, AConnectionThatEndsTooEarlyIsALostReply) {
    for (const char* bytes : {
             "",
             "HTTP/1.1 200 OK\r\n",
             "HTTP/1.1 200 OK\r\nContent-Length: 0\r\n",
             "HTTP/1.1 103 Early Hints\r\n\r\n",
             "HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\nabc",
             "HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\n",
             "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n5\r\nabc",
             "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n3\r\nabc\r\n",
             "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\nno number\r\n",
         }) {
        SCOPED_TRACE(bytes);
        EXPECT_EQ(outcomeOfReply(bytes), "transport error networkConnectionLost");
    }
}

TEST_F(CurlTransportReplyTest, WhatIsNotHTTPIsAnInvalidResponse) {
    for (const char* bytes :
         {"SSH-2.0-OpenSSH_9.2\r\n", "hello, who is there?\r\n\r\n", "HTTP/9.9 200 OK\r\n\r\n"}) {
        SCOPED_TRACE(bytes);
        EXPECT_EQ(outcomeOfReply(bytes), "invalidResponse /v1/apps");
    }
}

TEST_F(CurlTransportReplyTest, AReplyOfAHundredMegabytesIsRead) {
    constexpr std::size_t kPiece = 1 << 20;
    constexpr std::size_t kPieces = 100;
    std::string piece(kPiece, '\0');
    std::iota(piece.begin(), piece.end(), '\0');
    for (const bool withLength : {true, false}) {
        const RawServer server([&](RawConnection& connection) {
            if (!connection.readRequest()) return;
            const auto length = "Content-Length: " + std::to_string(kPiece * kPieces) + "\r\n";
            connection.send("HTTP/1.1 200 OK\r\n" + (withLength ? length : "") + "\r\n");
            for (std::size_t i = 0; i < kPieces && connection.send(piece); ++i) {
            }
        });

        const auto reply = transport->send(request(server), {});

        ASSERT_EQ(reply.body.size(), kPiece * kPieces);
        for (std::size_t i = 0; i < kPieces; ++i) {
            ASSERT_EQ(reply.body.compare(i * kPiece, kPiece, piece), 0) << i;
        }
    }
}

TEST_F(CurlTransportReplyTest, AReplyOverTheLimitIsAnInvalidResponse) {
    transport = std::make_unique<CurlTransport>(CurlTransport::Limits{1000, 500});
    const std::string exact(1000, 'x');
    const std::string over(1001, 'x');
    EXPECT_EQ(outcomeOfReply(rawReply(exact)), "ok 200 " + exact);
    EXPECT_EQ(outcomeOfReply(rawReply(over)), "invalidResponse /v1/apps");
    EXPECT_EQ(outcomeOfReply("HTTP/1.1 200 OK\r\n\r\n" + exact), "ok 200 " + exact);
    EXPECT_EQ(outcomeOfReply("HTTP/1.1 200 OK\r\n\r\n" + over), "invalidResponse /v1/apps");
    EXPECT_EQ(outcomeOfReply("HTTP/1.1 200 OK\r\nContent-Length: 9223372036854775807\r\n\r\nx"),
              "invalidResponse /v1/apps");
    // A small reply that grows when it is unpacked.
    EXPECT_EQ(outcomeOfReply(rawReply(gzip(std::string(1 << 20, '\0')), "Content-Encoding: gzip\r\n")),
              "invalidResponse /v1/apps");
    EXPECT_EQ(outcomeOfReply(rawReply("b", "X-Long: " + std::string(600, 'y') + "\r\n")),
              "invalidResponse /v1/apps");
}

TEST_F(CurlTransportReplyTest, HeadersWithoutEndAreAnInvalidResponse) {
    for (const char* line :
         {"X-Again: and again\r\n", "\r\n\r\nHTTP/1.1 103 Early Hints\r\nX-Again: and again\r\n"}) {
        const RawServer server([&](RawConnection& connection) {
            if (!connection.readRequest()) return;
            connection.send("HTTP/1.1 103 Early Hints\r\nX-First: a\r\n");
            while (connection.send(line)) {
            }
        });
        EXPECT_EQ(outcome(request(server)), "invalidResponse /v1/apps");
    }
}

}  // namespace
}  // namespace kestrin
