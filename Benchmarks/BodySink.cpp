#include "Benchmarks/BodySink.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <stdexcept>
#include <vector>

namespace kestrin {
namespace {

void require(bool holds, const char* what) {
    if (!holds) throw std::runtime_error(what);
}

// Of a request's head; 0 without one.
std::size_t contentLength(const std::string& head) {
    constexpr std::string_view kField = "\r\nContent-Length: ";
    const auto found = head.find(kField);
    return found == head.npos ? 0 : std::strtoull(head.c_str() + found + kField.size(), nullptr, 10);
}

// One connection, until the other side closes it.
void serve(int connection) {
    std::vector<char> buffer(1 << 20);
    std::string head;
    std::size_t bodyLeft = 0;
    for (ssize_t got = 0; (got = read(connection, buffer.data(), buffer.size())) > 0;) {
        auto rest = static_cast<std::size_t>(got);
        if (bodyLeft == 0) {
            head.append(buffer.data(), rest);
            const auto end = head.find("\r\n\r\n");
            if (end == head.npos) continue;
            bodyLeft = contentLength(head);
            rest = head.size() - end - 4;
            head.clear();
        }
        bodyLeft -= std::min(rest, bodyLeft);
        constexpr std::string_view kReply = "HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n";
        if (bodyLeft == 0 && write(connection, kReply.data(), kReply.size()) < 0) return;
    }
}

[[noreturn]] void serveForever(int listener) {
    for (;;) {
        const int connection = accept(listener, nullptr, nullptr);
        if (connection < 0) _exit(1);
        serve(connection);
        close(connection);
    }
}

}  // namespace

BodySink::BodySink() {
    const int listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* const name = reinterpret_cast<sockaddr*>(&address);
    require(bind(listener, name, size) == 0 && listen(listener, 4) == 0 &&
                getsockname(listener, name, &size) == 0,
            "no port to listen on");
    port_ = ntohs(address.sin_port);
    process_ = fork();
    require(process_ >= 0, "no process to listen in");
    if (process_ == 0) serveForever(listener);
    close(listener);
}

BodySink::~BodySink() {
    kill(process_, SIGKILL);
    waitpid(process_, nullptr, 0);
}

std::string BodySink::address() const {
    return "http://127.0.0.1:" + std::to_string(port_) + "/";
}

}  // namespace kestrin
