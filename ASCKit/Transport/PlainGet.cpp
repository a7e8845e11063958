#include "ASCKit/Transport/PlainGet.h"

#include <memory>
#include <mutex>
#include <vector>

#include "ASCKit/ASCError.h"
#include "ASCKit/Transport/CurlTransport.h"
#include "KestrinCore/Clock.h"

namespace kestrin {
namespace {

constexpr CurlTransport::Limits kLimits = {.bodyBytes = std::size_t{128} << 20};

// Transports that nobody is using. One that was in use when something went wrong isn't kept.
class FreeTransports {
 public:
    std::unique_ptr<CurlTransport> take() {
        const std::lock_guard lock(mutex_);
        if (free_.empty()) return std::make_unique<CurlTransport>(kLimits);
        auto transport = std::move(free_.back());
        free_.pop_back();
        return transport;
    }

    void giveBack(std::unique_ptr<CurlTransport> transport) {
        const std::lock_guard lock(mutex_);
        free_.push_back(std::move(transport));
    }

 private:
    std::mutex mutex_;
    std::vector<std::unique_ptr<CurlTransport>> free_;
};

std::string bodyAt(const URL& url, FreeTransports& transports, const std::stop_token& stop) {
    throwIfStopped(stop);
    auto transport = transports.take();
    try {
        auto reply = transport->send({.method = "GET", .url = url}, stop);
        transports.giveBack(std::move(transport));
        return std::move(reply.body);
    } catch (const TransportError& error) {
        if (error.code == TransportError::Code::cancelled) throw Cancelled();
        throw ASCError(ASCError::Transport{error.code, url.path()});
    }
}

}  // namespace

Fetch plainGet() {
    return [transports = std::make_shared<FreeTransports>()](const URL& url, const std::stop_token& stop) {
        return bodyAt(url, *transports, stop);
    };
}

}  // namespace kestrin
