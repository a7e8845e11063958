#include "Tests/ASCKit/RawServer.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>
#include <signal.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

#include "KestrinCore/Handle.h"
#include "Tests/ASCKit/TestKeys.h"

namespace kestrin {
namespace {

constexpr std::string_view kHeadEnd = "\r\n\r\n";

[[noreturn]] void fail(const char* what) {
    throw std::system_error(errno, std::generic_category(), what);
}

std::unique_ptr<SSL_CTX, decltype(&SSL_CTX_free)> selfSigned(bool hasExpired) {
    const auto key = testkeys::p256();
    const std::unique_ptr<X509, decltype(&X509_free)> certificate(X509_new(), X509_free);
    X509_set_version(certificate.get(), 2);
    ASN1_INTEGER_set(X509_get_serialNumber(certificate.get()), 1);
    constexpr long kHour = 3600;
    X509_gmtime_adj(X509_getm_notBefore(certificate.get()), -2 * kHour);
    X509_gmtime_adj(X509_getm_notAfter(certificate.get()), hasExpired ? -kHour : kHour);
    X509_set_pubkey(certificate.get(), key.get());
    auto* name = X509_get_subject_name(certificate.get());
    X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC, reinterpret_cast<const unsigned char*>("127.0.0.1"),
                               -1, -1, 0);
    X509_set_issuer_name(certificate.get(), name);
    const std::unique_ptr<X509_EXTENSION, decltype(&X509_EXTENSION_free)> alternative(
        X509V3_EXT_conf_nid(nullptr, nullptr, NID_subject_alt_name, "IP:127.0.0.1"), X509_EXTENSION_free);
    X509_add_ext(certificate.get(), alternative.get(), -1);
    X509_sign(certificate.get(), key.get(), EVP_sha256());

    std::unique_ptr<SSL_CTX, decltype(&SSL_CTX_free)> context(SSL_CTX_new(TLS_server_method()), SSL_CTX_free);
    if (SSL_CTX_use_certificate(context.get(), certificate.get()) != 1 ||
        SSL_CTX_use_PrivateKey(context.get(), key.get()) != 1) {
        throw std::runtime_error("OpenSSL can't use this certificate");
    }
    return context;
}

// OpenSSL writes to a connection that the other side has closed as to any other.
void ignoreBrokenPipes() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

}  // namespace

std::vector<std::string> RawRequest::headerNames() const {
    std::vector<std::string> names;
    auto at = head.find("\r\n") + 2;
    while (at < head.size()) {
        names.push_back(head.substr(at, head.find(':', at) - at));
        at = head.find("\r\n", at) + 2;
    }
    return names;
}

std::string RawRequest::header(std::string_view name) const {
    const auto at = head.find("\r\n" + std::string(name) + ": ");
    if (at == head.npos) return "";
    const auto start = at + 2 + name.size() + 2;
    return head.substr(start, head.find("\r\n", start) - start);
}

RawConnection::RawConnection(int socket, SSL_CTX* tls) : socket_(socket) {
    if (!tls) return;
    tls_ = SSL_new(tls);
    SSL_set_fd(tls_, socket_);
}

RawConnection::~RawConnection() {
    SSL_free(tls_);
    close(socket_);
}

bool RawConnection::greet() {
    return !tls_ || SSL_accept(tls_) == 1;
}

bool RawConnection::fill() {
    char piece[1 << 16];
    const auto got = tls_ ? SSL_read(tls_, piece, sizeof piece) : recv(socket_, piece, sizeof piece, 0);
    if (got > 0) buffered_.append(piece, static_cast<std::size_t>(got));
    return got > 0;
}

std::optional<RawRequest> RawConnection::readRequest() {
    std::size_t end;
    while ((end = buffered_.find(kHeadEnd)) == buffered_.npos) {
        if (!fill()) return std::nullopt;
    }
    RawRequest request;
    request.head = buffered_.substr(0, end + 2);
    buffered_.erase(0, end + kHeadEnd.size());
    const auto length = request.header("Content-Length");
    const auto wanted = length.empty() ? 0 : std::stoull(length);
    while (buffered_.size() < wanted) {
        if (!fill()) return std::nullopt;
    }
    request.body = buffered_.substr(0, wanted);
    buffered_.erase(0, wanted);
    return request;
}

std::string RawConnection::read(std::size_t atMost) {
    if (buffered_.empty() && !fill()) return "";
    auto piece = buffered_.substr(0, atMost);
    buffered_.erase(0, atMost);
    return piece;
}

bool RawConnection::send(std::string_view bytes) {
    while (!bytes.empty()) {
        const auto sent = tls_ ? SSL_write(tls_, bytes.data(), static_cast<int>(bytes.size()))
                               : ::send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent <= 0) return false;
        bytes.remove_prefix(static_cast<std::size_t>(sent));
    }
    return true;
}

void RawConnection::reset() {
    const linger atOnce{1, 0};
    setsockopt(socket_, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
    // Another socket takes the number, and with it this one's last descriptor.
    const int other = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    dup2(other, socket_);
    close(other);
}

void RawConnection::waitForEnd() {
    while (fill()) buffered_.clear();
}

void RawConnection::interrupt() {
    shutdown(socket_, SHUT_RDWR);
}

RawServer::RawServer(Handler handler, Options options)
    : handler_(std::move(handler)), options_(options), tls_(nullptr, SSL_CTX_free) {
    if (options_.withTLS) tls_ = selfSigned(options_.hasExpired);
    listener_ = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (listener_ < 0) fail("socket");
    if (options_.receiveBuffer > 0) {
        setsockopt(listener_, SOL_SOCKET, SO_RCVBUF, &options_.receiveBuffer, sizeof options_.receiveBuffer);
    }
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    auto* name = reinterpret_cast<sockaddr*>(&address);
    socklen_t size = sizeof address;
    if (bind(listener_, name, size) != 0 || listen(listener_, 16) != 0) fail("bind");
    getsockname(listener_, name, &size);
    port_ = ntohs(address.sin_port);
    acceptor_ = std::thread([this] { accept(); });
}

RawServer::~RawServer() {
    shutdown(listener_, SHUT_RDWR);
    acceptor_.join();
    close(listener_);
    {
        const std::lock_guard lock(mutex_);
        for (auto& connection : open_) connection.interrupt();
    }
    for (auto& thread : threads_) thread.join();
}

std::string RawServer::root() const {
    return (options_.withTLS ? "https://127.0.0.1:" : "http://127.0.0.1:") + std::to_string(port_);
}

std::string RawServer::certificate() const {
    const Handle<BIO, BIO_free> pem(BIO_new(BIO_s_mem()));
    PEM_write_bio_X509(pem.get(), SSL_CTX_get0_certificate(tls_.get()));
    char* bytes = nullptr;
    const auto size = BIO_get_mem_data(pem.get(), &bytes);
    return {bytes, static_cast<std::size_t>(size)};
}

std::size_t RawServer::connections() const {
    const std::lock_guard lock(mutex_);
    return threads_.size();
}

std::size_t RawServer::refusedHandshakes() const {
    const std::lock_guard lock(mutex_);
    return refused_;
}

void RawServer::accept() {
    for (;;) {
        const int socket = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
        if (socket < 0) return;
        const std::lock_guard lock(mutex_);
        auto& connection = open_.emplace_back(socket, tls_.get());
        threads_.emplace_back([this, &connection] { serve(connection); });
    }
}

void RawServer::serve(RawConnection& connection) {
    ignoreBrokenPipes();
    if (connection.greet()) {
        handler_(connection);
    } else {
        const std::lock_guard lock(mutex_);
        ++refused_;
    }
    // The socket itself is closed with the server; its number must not become another's while somebody may still
    // interrupt it.
    connection.interrupt();
}

void RequestLog::add(RawRequest request) {
    const std::lock_guard lock(mutex_);
    requests_.push_back(std::move(request));
}

std::vector<RawRequest> RequestLog::all() const {
    const std::lock_guard lock(mutex_);
    return requests_;
}

std::string rawReply(std::string_view body, std::string_view headers, std::string_view status) {
    std::string reply = "HTTP/1.1 ";
    reply.append(status).append("\r\n").append(headers);
    reply.append("Content-Length: ").append(std::to_string(body.size())).append("\r\n\r\n").append(body);
    return reply;
}

RawServer::Handler answering(RequestLog& log, std::string answer) {
    return [&log, reply = std::move(answer)](RawConnection& connection) {
        while (auto request = connection.readRequest()) {
            log.add(*std::move(request));
            if (!connection.send(reply)) return;
        }
    };
}

}  // namespace kestrin
