// Who is spoken to: certificates, redirects, proxies, and other hosts.
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <semaphore>
#include <thread>

#include "Tests/ASCKit/CurlTransportFixture.h"
#include "Tests/Support/TemporaryFolder.h"

namespace kestrin {
namespace {

using namespace std::chrono_literals;

struct CurlTransportHostsTest : CurlTransportFixture {};

TEST_F(CurlTransportHostsTest, NoRedirectIsFollowed) {
    RequestLog elsewhere;
    const RawServer other(answering(elsewhere, rawReply("secret")));
    for (const char* status : {"301 Moved", "302 Found", "303 See Other", "307 Temporary", "308 Permanent"}) {
        const RawServer server(answering(log, rawReply("b", "Location: " + other.root() + "/\r\n", status)));
        auto sent = request(server);
        sent.headers = {{"Authorization", "Bearer x.y.z"}};
        EXPECT_EQ(outcome(sent), std::string("ok ") + std::string(status).substr(0, 3) + " b");
    }
    EXPECT_EQ(elsewhere.size(), 0u);
    EXPECT_EQ(log.size(), 5u);
}

TEST_F(CurlTransportHostsTest, NobodyThereIsATransportError) {
    int port = 0;
    {
        const RawServer server([](RawConnection&) {});
        port = server.port();
    }
    const auto url = URL::parse("http://127.0.0.1:" + std::to_string(port) + "/").value();
    EXPECT_EQ(outcome({"GET", url}), "transport error cannotConnectToHost");
}

TEST_F(CurlTransportHostsTest, OnlyHTTPIsSpoken) {
    for (const char* address : {"file://localhost/etc/passwd", "ftp://127.0.0.1/", "/v1/apps", "//127.0.0.1/",
                                "https://user@127.0.0.1/", "mailto:a@example.test", "gopher://127.0.0.1/"}) {
        SCOPED_TRACE(address);
        EXPECT_EQ(outcome({"GET", URL::parse(address).value()}), "transport error unsupportedURL");
    }
}

TEST_F(CurlTransportHostsTest, ACertificateThatNobodyVouchesForIsRefused) {
    const RawServer server(answering(log, rawReply("b")), {.withTLS = true});
    auto sent = request(server);
    sent.headers = {{"Authorization", "Bearer x.y.z"}};
    EXPECT_EQ(outcome(sent), "transport error secureConnectionFailed");
    EXPECT_EQ(log.size(), 0u);
    EXPECT_EQ(server.connections(), 1u);
}

// A transport for which the server's own certificate is that of somebody who vouches for it.
struct TrustedServer : CurlTransportFixture {
    void trust(const RawServer& server) {
        folder.write("certificates.pem", server.certificate());
        transport = std::make_unique<CurlTransport>(CurlTransport::Limits{}, folder / "certificates.pem");
    }

    TemporaryFolder folder;
};

TEST_F(TrustedServer, IsSpokenToOverTLSAsOverPlainHTTP) {
    const RawServer server(answering(log, rawReply("b")), {.withTLS = true});
    trust(server);
    EXPECT_EQ(outcome(request(server)), "ok 200 b");
    EXPECT_EQ(outcome(withBody(request(server, "PATCH"), "{}")), "ok 200 b");
    EXPECT_EQ(log.at(1).body, "{}");
    EXPECT_EQ(server.connections(), 1u);
}

// Leave is taken of a TLS connection by writing to it, and a plain write to a dead one ends the program without a word.
TEST_F(TrustedServer, MayResetAConnectionWithoutEndingTheProgram) {
    std::binary_semaphore hasReply{0}, isReset{0};
    const RawServer server(
        [&](RawConnection& connection) {
            log.add(connection.readRequest().value());
            connection.send(rawReply("b"));
            hasReply.acquire();
            connection.reset();
            isReset.release();
        },
        {.withTLS = true});
    trust(server);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(outcome(request(server)), "ok 200 b");
        hasReply.release();
        isReset.acquire();
    }
    transport.reset();
    EXPECT_EQ(server.connections(), 3u);
}

TEST_F(TrustedServer, IsRefusedUnderAnotherName) {
    const RawServer server(answering(log, rawReply("b")), {.withTLS = true});
    trust(server);
    auto sent = request(server);
    sent.url = URL::parse("https://localhost:" + std::to_string(server.port()) + "/").value();
    sent.headers = {{"Authorization", "Bearer x.y.z"}};
    EXPECT_EQ(outcome(sent), "transport error secureConnectionFailed");
    EXPECT_EQ(log.size(), 0u);
}

TEST_F(TrustedServer, IsRefusedOnceItsCertificateHasExpired) {
    const RawServer server(answering(log, rawReply("b")), {.withTLS = true, .hasExpired = true});
    trust(server);
    EXPECT_EQ(outcome(request(server)), "transport error secureConnectionFailed");
    EXPECT_EQ(log.size(), 0u);
}

TEST_F(CurlTransportHostsTest, PlainHTTPBehindAnHTTPSAddressIsRefused) {
    const RawServer plain(
        [](RawConnection& connection) { connection.read(1), connection.send("HTTP/1.1 400 No\r\n\r\n"); });
    auto sent = request(plain);
    sent.url = URL::parse("https://127.0.0.1:" + std::to_string(plain.port()) + "/").value();
    EXPECT_EQ(outcome(sent), "transport error secureConnectionFailed");
}

// Proxies

TEST_F(CurlTransportHostsTest, AProxyOfTheEnvironmentIsUsed) {
    const RawServer proxy(answering(log, rawReply("from the proxy")));
    environment.set("http_proxy", proxy.root());
    EXPECT_EQ(outcome({"GET", URL::parse("http://api.example.test/v1/apps").value()}),
              "ok 200 from the proxy");
    EXPECT_EQ(log.at(0).line(), "GET http://api.example.test/v1/apps HTTP/1.1");
    EXPECT_EQ(log.at(0).header("User-Agent"), "");
}

TEST_F(CurlTransportHostsTest, HostsThatNeedNoProxyGetNone) {
    const RawServer proxy(answering(log, rawReply("from the proxy")));
    RequestLog direct;
    const RawServer server(answering(direct, rawReply("direct")));
    environment.set("http_proxy", proxy.root());
    environment.set("no_proxy", "127.0.0.1");
    EXPECT_EQ(outcome(request(server)), "ok 200 direct");
    EXPECT_EQ(log.size(), 0u);
}

TEST_F(CurlTransportHostsTest, AProxySeesNoTokenOfAnHTTPSRequest) {
    const RawServer proxy(answering(log, "HTTP/1.1 200 Connection established\r\n\r\n"));
    environment.set("https_proxy", proxy.root());
    HTTPRequest sent{
        "GET", URL::parse("https://api.example.test/v1/apps").value(), {{"Authorization", "Bearer x"}}};
    sent.idleLimit = 300ms;

    EXPECT_THAT(outcome(sent), testing::StartsWith("transport error "));

    ASSERT_GE(log.size(), 1u);
    EXPECT_EQ(log.at(0).line(), "CONNECT api.example.test:443 HTTP/1.1");
    for (const auto& each : log.all()) EXPECT_EQ(each.head.find("Bearer"), each.head.npos);
}

// Carries bytes between a client and a server of this machine until one of them has enough.
void carry(RawConnection& client, int port) {
    const int server = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    ASSERT_EQ(connect(server, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    std::thread back([&] {
        std::array<char, 4096> piece;
        for (ssize_t got = 0; (got = recv(server, piece.data(), piece.size(), 0)) > 0;)
            client.send({piece.data(), static_cast<std::size_t>(got)});
        client.interrupt();
    });
    for (std::string piece; !(piece = client.read(4096)).empty();)
        send(server, piece.data(), piece.size(), MSG_NOSIGNAL);
    shutdown(server, SHUT_RDWR);
    back.join();
    close(server);
}

TEST_F(TrustedServer, IsReachedThroughAProxyThatSeesNothingOfTheRequests) {
    const RawServer server(answering(log, rawReply("b", "X-From: the server\r\n")), {.withTLS = true});
    trust(server);
    RequestLog seen;
    const RawServer proxy([&](RawConnection& connection) {
        seen.add(connection.readRequest().value());
        connection.send("HTTP/1.1 200 Connection established\r\nX-From: the proxy\r\n\r\n");
        carry(connection, server.port());
    });
    environment.set("https_proxy", proxy.root());
    auto sent = request(server);
    sent.headers = {{"Authorization", "Bearer x.y.z"}};

    for (int i = 0; i < 2; ++i) {
        const auto reply = transport->send(sent, {});
        EXPECT_EQ(reply.status, 200);
        EXPECT_EQ(reply.body, "b");
        EXPECT_EQ(reply.header("X-From"), "the server");
    }

    EXPECT_EQ(log.at(1).header("Authorization"), "Bearer x.y.z");
    ASSERT_EQ(seen.size(), 1u);
    EXPECT_EQ(seen.at(0).line(), "CONNECT 127.0.0.1:" + std::to_string(server.port()) + " HTTP/1.1");
    EXPECT_EQ(seen.at(0).head.find("Bearer"), std::string::npos);
    EXPECT_EQ(seen.at(0).header("User-Agent"), "");
}

TEST_F(CurlTransportHostsTest, AProxyThatRefusesIsATransportErrorAndNotTheReply) {
    const RawServer proxy(answering(log, rawReply("denied", "", "403 Forbidden")));
    environment.set("https_proxy", proxy.root());
    EXPECT_THAT(outcome({"GET", URL::parse("https://api.example.test/v1/apps").value()}),
                testing::StartsWith("transport error "));
}

}  // namespace
}  // namespace kestrin
