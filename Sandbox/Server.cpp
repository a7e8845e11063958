// The only file that knows the HTTP library.
#include "Sandbox/Server.h"

#include <arpa/inet.h>
#include <fmt/format.h>
#include <httplib.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <condition_variable>
#include <set>
#include <stdexcept>
#include <thread>

namespace kestrin::sandbox {
namespace {

constexpr const char* kHost = "127.0.0.1";
constexpr std::size_t kWorkers = 24;  // each serves one connection at a time
constexpr int kIdleMilliseconds = 120'000;
constexpr int kReadMilliseconds = 30'000;

// One connection, with the library's idea of it. What is written is held back until the reply is complete, so that
// it leaves in one piece, or not at all.
class Connection final : public httplib::Stream {
 public:
    Connection(int socket, int number) : socket_(socket), number_(number) {}

    int number() const { return number_; }

    // A request has begun to come in: false when none did before the connection ended.
    bool awaitRequest() { return readStart_ < readEnd_ || isReadable(kIdleMilliseconds); }

    // A header that the library isn't to see, or sees another value of, but the log is.
    void setAside(std::string name, std::string value) {
        aside_.emplace_back(std::move(name), std::move(value));
    }
    HTTPHeaders takeAside() { return std::exchange(aside_, {}); }
    const HTTPHeaders& aside() const { return aside_; }

    // From now on the reply goes out as `wire` says.
    void obey(const Wire& wire) { wire_ = wire; }

    // Sends the reply; false when the connection is to be closed.
    bool flush() {
        const bool delivered = !wire_.closeSilently && sendAll(cutReply());
        pending_.clear();
        return delivered && !wire_.bodyLimit && !wire_.closeAfterwards;
    }

    bool is_readable() const override { return isReadable(kReadMilliseconds); }
    bool is_writable() const override { return true; }

    ssize_t read(char* target, size_t size) override {
        if (readStart_ == readEnd_ && !fill()) return 0;
        const auto taken = std::min(size, readEnd_ - readStart_);
        std::copy_n(buffer_.data() + readStart_, taken, target);
        readStart_ += taken;
        return static_cast<ssize_t>(taken);
    }

    ssize_t write(const char* bytes, size_t size) override {
        pending_.append(bytes, size);
        return static_cast<ssize_t>(size);
    }

    void get_remote_ip_and_port(std::string& ip, int& port) const override {
        endpoint(::getpeername, ip, port);
    }
    void get_local_ip_and_port(std::string& ip, int& port) const override {
        endpoint(::getsockname, ip, port);
    }
    socket_t socket() const override { return socket_; }

 private:
    bool isReadable(int milliseconds) const {
        pollfd waiting{socket_, POLLIN, 0};
        return ::poll(&waiting, 1, milliseconds) > 0;
    }

    bool fill() {
        if (!isReadable(kReadMilliseconds)) return false;
        const auto got = ::recv(socket_, buffer_.data(), buffer_.size(), 0);
        readStart_ = 0;
        readEnd_ = got > 0 ? static_cast<std::size_t>(got) : 0;
        return got > 0;
    }

    std::string_view cutReply() const {
        const auto end = pending_.find("\r\n\r\n");
        if (!wire_.bodyLimit || end == std::string::npos) return pending_;
        return std::string_view(pending_).substr(0, end + 4 + *wire_.bodyLimit);
    }

    bool sendAll(std::string_view bytes) const {
        while (!bytes.empty()) {
            const auto sent = ::send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
            if (sent <= 0) return false;
            bytes.remove_prefix(static_cast<std::size_t>(sent));
        }
        return true;
    }

    template <class NameOf>
    void endpoint(NameOf nameOf, std::string& ip, int& port) const {
        sockaddr_in address{};
        socklen_t size = sizeof address;
        if (nameOf(socket_, reinterpret_cast<sockaddr*>(&address), &size) != 0) return;
        std::array<char, INET_ADDRSTRLEN> text{};
        ip = ::inet_ntop(AF_INET, &address.sin_addr, text.data(), text.size());
        port = ntohs(address.sin_port);
    }

    int socket_;
    int number_;
    Wire wire_;
    HTTPHeaders aside_;
    std::string pending_;
    std::array<char, 64 * 1024> buffer_{};
    std::size_t readStart_ = 0, readEnd_ = 0;
};

// The connection that this thread is serving.
thread_local Connection* currentConnection = nullptr;

HTTPRequest requestOf(const httplib::Request& from, Connection& connection) {
    HTTPRequest request{from.method, from.target, {}, from.body, connection.number()};
    for (const auto& [name, value] : from.headers) {
        // The library adds these for handlers; they never were on the wire.
        const bool added =
            name == "REMOTE_ADDR" || name == "REMOTE_PORT" || name == "LOCAL_ADDR" || name == "LOCAL_PORT";
        const bool replaced = headerValue(connection.aside(), name).has_value();
        if (!added && !replaced) request.headers.emplace_back(name, value);
    }
    for (auto& header : connection.takeAside()) request.headers.push_back(std::move(header));
    return request;
}

}  // namespace

struct Server::Listener final : httplib::Server {
    explicit Listener(Service& answering) : service(answering) {
        new_task_queue = [] { return new httplib::ThreadPool(kWorkers); };
        // The library's own choice lets a second server share the port.
        set_socket_options([](socket_t socket) {
            const int on = 1;
            ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
        });
        set_keep_alive_max_count(1'000'000);
        set_keep_alive_timeout(kIdleMilliseconds / 1000);
        const auto handler = [this](const httplib::Request& in, httplib::Response& out) { handle(in, out); };
        constexpr const char* kAnyPath = R"([\s\S]*)";
        Get(kAnyPath, handler);
        Post(kAnyPath, handler);
        Put(kAnyPath, handler);
        Patch(kAnyPath, handler);
        Delete(kAnyPath, handler);
        Options(kAnyPath, handler);
    }

    void run(int port) {
        const int bound = port == 0 ? bind_to_any_port(kHost) : (bind_to_port(kHost, port) ? port : -1);
        if (bound < 0) throw std::runtime_error(fmt::format("couldn't listen on port {}", port));
        url = fmt::format("http://{}:{}", kHost, bound);
        service.setRoot(url);
        accepting = std::thread([this] { listen_after_bind(); });
        while (!is_running()) std::this_thread::yield();
    }

    void end() {
        {
            const std::lock_guard lock(mutex);
            ending = true;
            for (const int socket : sockets) ::shutdown(socket, SHUT_RDWR);
        }
        ended.notify_all();
        httplib::Server::stop();
        if (accepting.joinable()) accepting.join();
    }

    void handle(const httplib::Request& in, httplib::Response& out) {
        auto answer = service.answer(requestOf(in, *currentConnection));
        currentConnection->obey(answer.wire);
        pause(answer.wire.delay);
        out.status = answer.reply.status;
        for (auto& [name, value] : answer.reply.headers) out.set_header(name, value);
        if (!answer.reply.body.empty())
            out.set_content(std::move(answer.reply.body), answer.reply.contentType);
    }

    void pause(std::chrono::milliseconds delay) {
        std::unique_lock lock(mutex);
        ended.wait_for(lock, delay, [this] { return ending; });
    }

    bool process_and_close_socket(socket_t socket) override {
        if (const int number = admit(socket)) serve(socket, number);
        const std::lock_guard lock(mutex);
        sockets.erase(socket);
        ::shutdown(socket, SHUT_RDWR);
        ::close(socket);
        return true;
    }

    // The number of the new connection; 0 when the server is ending.
    int admit(int socket) {
        const std::lock_guard lock(mutex);
        if (ending) return 0;
        sockets.insert(socket);
        const int on = 1;
        ::setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
        return ++connections;
    }

    void serve(int socket, int number) {
        Connection connection(socket, number);
        currentConnection = &connection;
        while (connection.awaitRequest()) {
            connection.obey({});
            connection.takeAside();
            bool isLast = false;
            const bool answered = process_request(connection, false, isLast, [&](httplib::Request& request) {
                chooseEncoding(request, connection);
            });
            if (!connection.flush() || !answered || isLast) break;
        }
        currentConnection = nullptr;
    }

    // The library would rather use Brotli, at its slowest: some 40 ms for a page of 20 placements. The real service
    // answers with gzip.
    void chooseEncoding(httplib::Request& request, Connection& connection) const {
        constexpr const char* kName = "Accept-Encoding";
        if (!request.has_header(kName)) return;
        const auto accepted = request.get_header_value(kName);
        connection.setAside(kName, accepted);
        request.headers.erase(kName);
        if (compresses && accepted.find("gzip") != std::string::npos) request.set_header(kName, "gzip");
    }

    Service& service;
    bool compresses = true;
    std::string url;
    std::thread accepting;
    std::mutex mutex;
    std::condition_variable ended;
    bool ending = false;
    std::set<int> sockets;  // of open connections
    int connections = 0;    // so far
};

Server::Server(Service& service) : service_(service) {}

Server::~Server() {
    stop();
}

void Server::start(int port) {
    listener_ = std::make_unique<Listener>(service_);
    listener_->compresses = service_.with([](State& state) { return state.settings.compresses; });
    listener_->run(port);
    url_ = listener_->url;
}

void Server::stop() {
    if (!listener_) return;
    listener_->end();
    listener_.reset();
}

}  // namespace kestrin::sandbox
