// A server of bytes: what it gets is kept as it came, what it answers is the test's own, well-formed or not.
//
//     RawServer server([](RawConnection& connection) {
//         while (connection.readRequest()) connection.send("HTTP/1.1 204 No Content\r\n\r\n");
//     });
//
// Each connection runs in a thread of its own and is closed when the handler returns. The server's end closes all of
// them, so that a handler that waits for its client ends with the test.
#pragma once

#include <openssl/ssl.h>

#include <chrono>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "ASCKit/Transport/HTTPHeaders.h"

namespace kestrin {

// A request as it stood on the wire.
struct RawRequest {
    std::string head;  // first line and header lines, each with its CRLF
    std::string body;

    std::string line() const { return head.substr(0, head.find("\r\n")); }
    std::vector<std::string> headerNames() const;     // in the order in which they came
    std::string header(std::string_view name) const;  // "" when absent
};

class RawConnection {
 public:
    RawConnection(int socket, SSL_CTX* tls);
    ~RawConnection();
    RawConnection(const RawConnection&) = delete;
    RawConnection& operator=(const RawConnection&) = delete;

    bool greet();  // the TLS handshake, where there is one; false when the other side refused it

    // The next whole request (of known length); nullopt when the connection ended before or within it.
    std::optional<RawRequest> readRequest();

    bool send(std::string_view bytes);     // false when the other side is gone
    std::string read(std::size_t atMost);  // "" at the end
    void waitForEnd();                     // until the other side closes
    void reset();      // ends it as a load balancer does that has forgotten the connection: with RST
    void interrupt();  // from another thread: ends every read and send

 private:
    bool fill();

    int socket_;
    SSL* tls_ = nullptr;
    std::string buffered_;
};

class RawServer {
 public:
    using Handler = std::function<void(RawConnection&)>;

    struct Options {
        bool withTLS = false;     // with a self-signed certificate for 127.0.0.1, made on the spot
        bool hasExpired = false;  // the certificate, an hour ago
        int receiveBuffer = 0;    // bytes; 0: the system's own
    };

    explicit RawServer(Handler handler) : RawServer(std::move(handler), Options{}) {}
    RawServer(Handler handler, Options options);
    ~RawServer();

    int port() const { return port_; }
    std::string root() const;         // "http://127.0.0.1:4711"
    std::string certificate() const;  // of a server with TLS, in PEM

    // How many connections there have been, and how many of them failed to agree on TLS.
    std::size_t connections() const;
    std::size_t refusedHandshakes() const;

 private:
    void accept();
    void serve(RawConnection& connection);

    Handler handler_;
    Options options_;
    std::unique_ptr<SSL_CTX, decltype(&SSL_CTX_free)> tls_;
    int listener_ = -1;
    int port_ = 0;
    mutable std::mutex mutex_;
    std::list<RawConnection> open_;
    std::vector<std::thread> threads_;
    std::size_t refused_ = 0;
    std::thread acceptor_;
};

// The requests that a server got, for a test that looks at them afterwards.
class RequestLog {
 public:
    void add(RawRequest request);
    std::vector<RawRequest> all() const;
    RawRequest at(std::size_t n) const { return all().at(n); }
    std::size_t size() const { return all().size(); }

 private:
    mutable std::mutex mutex_;
    std::vector<RawRequest> requests_;
};

// "HTTP/1.1 200 OK" with these header lines ("Name: value\r\n" each) and the length of the body.
std::string rawReply(std::string_view body, std::string_view headers = "",
                     std::string_view status = "200 OK");

// Notes each request down and gives the same answer to all, over as many connections as come.
RawServer::Handler answering(RequestLog& log, std::string answer);

}  // namespace kestrin
