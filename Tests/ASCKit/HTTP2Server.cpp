#include "Tests/ASCKit/HTTP2Server.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <stdexcept>
#include <tuple>
#include <utility>
#include <vector>

namespace kestrin {
namespace {

void makeCertificate(const TemporaryFolder& folder) {
    const auto command = "cd '" + folder.path().native() +
                         "' && openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes -days 1"
                         " -subj /CN=127.0.0.1 -addext subjectAltName=IP:127.0.0.1"
                         " -keyout key.pem -out certificate.pem 2>log";
    if (std::system(command.c_str()) != 0) throw std::runtime_error(folder.read("log"));
}

int freePort() {
    const int socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    const bool isBound = bind(socket, reinterpret_cast<sockaddr*>(&address), length) == 0 &&
                         getsockname(socket, reinterpret_cast<sockaddr*>(&address), &length) == 0;
    close(socket);
    if (!isBound) throw std::runtime_error("no free port");
    return ntohs(address.sin_port);
}

// Runs the program, and gives its process and the end of a pipe from which all that it prints can be read.
std::pair<pid_t, int> started(const std::vector<std::string>& words) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
    std::vector<char*> arguments;
    for (const auto& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    // Debian has the server where only root's path leads.
    const char* usual = std::getenv("PATH");
    const auto path = std::string(usual ? usual : "/usr/bin") + ":/usr/sbin";
    const pid_t process = fork();
    if (process < 0) throw std::runtime_error("no process");
    if (process == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        setenv("PATH", path.c_str(), 1);
        dup2(ends[1], STDOUT_FILENO);
        dup2(ends[1], STDERR_FILENO);
        execvp(arguments[0], arguments.data());
        _exit(127);
    }
    close(ends[1]);
    return {process, ends[0]};
}

bool readInto(std::string& text, int descriptor) {
    char piece[4096];
    const auto got = read(descriptor, piece, sizeof piece);
    if (got > 0) text.append(piece, static_cast<std::size_t>(got));
    return got > 0;
}

}  // namespace

HTTP2Server::HTTP2Server() : port_(freePort()) {
    makeCertificate(secrets_);
    std::tie(process_, output_) =
        started({"nghttpd", "-v", "-a", "127.0.0.1", "-d", files.path(), "--echo-upload",
                 std::to_string(port_), secrets_ / "key.pem", certificate()});
    while (log_.find("listen") == std::string::npos) {
        if (!readInto(log_, output_)) throw std::runtime_error("nghttpd doesn't listen: " + log_);
    }
    reader_ = std::thread([this] {
        while (readInto(log_, output_)) {
        }
    });
}

HTTP2Server::~HTTP2Server() {
    stop();
}

URL HTTP2Server::address(const std::string& path) const {
    return URL::parse("https://127.0.0.1:" + std::to_string(port_) + path).value();
}

void HTTP2Server::stop() {
    if (process_ < 0) return;
    kill(process_, SIGKILL);
    waitpid(process_, nullptr, 0);
    process_ = -1;
    reader_.join();
    close(output_);
}

}  // namespace kestrin
