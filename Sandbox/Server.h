// Puts a service on a port of this machine, over HTTP/1.1.
#pragma once

#include <memory>
#include <string>

#include "Sandbox/Service.h"

namespace kestrin::sandbox {

class Server {
 public:
    // The service must outlive the server.
    explicit Server(Service& service);
    ~Server();  // stops
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    // Listens on 127.0.0.1, on a free port for 0, and gives the service its root. Throws std::runtime_error when
    // the port is taken.
    void start(int port = 0);

    // Closes every connection and returns when no request is being answered any more.
    void stop();

    const std::string& url() const { return url_; }  // "http://127.0.0.1:4711", once started

 private:
    struct Listener;
    std::unique_ptr<Listener> listener_;
    Service& service_;
    std::string url_;
};

}  // namespace kestrin::sandbox
