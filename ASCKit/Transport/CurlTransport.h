// The network, through libcurl (https://curl.se/libcurl/c/).
//
// One connection is kept and used again for as long as the transport lives; HTTP/2 where the other side offers it.
// On the wire stand the request's headers, Host, Content-Length of a body, and Accept-Encoding with the codings that
// are undone here: no Accept, no User-Agent, no Expect. Only http and https are spoken, certificates are always
// checked, no redirect is followed, nothing is kept on disk, and proxies come from the environment (https_proxy,
// http_proxy, all_proxy, no_proxy). A request with the method POST goes out once at most; libcurl on its own would send
// it again when a kept connection turns out to be dead.
//
// Not for use by two threads at once: each worker has a transport of its own.
#pragma once

#include <cstddef>
#include <filesystem>
#include <memory>

#include "ASCKit/Transport/HTTPTransport.h"

namespace kestrin {

class CurlConnection;

class CurlTransport final : public HTTPTransport {
 public:
    struct Limits {
        // What one reply may come to, after decoding. Far above anything that the service sends.
        std::size_t bodyBytes = std::size_t{512} << 20;
        std::size_t headerBytes = std::size_t{256} << 10;
    };

    // `certificates`: a PEM file of those that are trusted in place of the system's; the system's when empty.
    explicit CurlTransport(Limits limits, std::filesystem::path certificates = {});
    CurlTransport() : CurlTransport(Limits{}) {}
    ~CurlTransport() override;

    HTTPResponse send(const HTTPRequest& request, const std::stop_token& stop) override;

 private:
    std::unique_ptr<CurlConnection> connection_;
    Limits limits_;
    std::filesystem::path certificates_;
    std::size_t expectedBody_ = 0;  // bytes of a reply, by the last one
};

}  // namespace kestrin
