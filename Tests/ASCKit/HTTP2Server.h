// nghttpd, an HTTP/2 server that is a program of its own: what it serves are the files of a folder, and what it is sent
// by POST or PUT comes back. It speaks TLS with a certificate for 127.0.0.1, made on the spot, and HTTP/2 alone.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <string>
#include <thread>

#include "ASCKit/URL.h"
#include "Tests/Support/TemporaryFolder.h"

namespace kestrin {

class HTTP2Server {
 public:
    HTTP2Server();
    ~HTTP2Server();
    HTTP2Server(const HTTP2Server&) = delete;
    HTTP2Server& operator=(const HTTP2Server&) = delete;

    TemporaryFolder files;

    std::filesystem::path certificate() const { return secrets_ / "certificate.pem"; }
    URL address(const std::string& path) const;

    // Ends it. What it saw is then in log(): every frame, "[id=1]" before those of the first connection.
    void stop();
    const std::string& log() const { return log_; }

 private:
    TemporaryFolder secrets_;
    int port_ = 0;
    pid_t process_ = -1;
    int output_ = -1;
    std::thread reader_;
    std::string log_;
};

}  // namespace kestrin
