// The sandbox without its socket: a request in, an answer out.
//
// A request below /sandbox/ is answered by the control desk. Any other goes through, in this order: the log, the faults, the token, the rate limit, the media types, the
// path, the role of the key, the query, the handler. One lock around all of that; several threads may call.
#pragma once

#include <cstddef>
#include <functional>
#include <mutex>
#include <string>

#include "Sandbox/Faults.h"
#include "Sandbox/HTTPMessage.h"
#include "Sandbox/RateLimit.h"
#include "Sandbox/Refusal.h"
#include "Sandbox/RequestLog.h"
#include "Sandbox/Router.h"
#include "Sandbox/State.h"
#include "Sandbox/Token.h"

namespace kestrin::sandbox {

class Service {
 public:
    explicit Service(Settings settings);

    Answer answer(const HTTPRequest& request);

    // Runs `work` on the state, alone: how a test looks at the sandbox's resources and changes them behind the
    // client's back. with([](State& state) { … })
    template <class Work>
    auto with(Work&& work) {
        const std::lock_guard lock(mutex_);
        return work(state_);
    }

    const Router& router() const { return router_; }  // never changes
    RequestLog log() const;                           // as it stands now
    void clearLog();
    void addFault(std::string_view line);  // as Fault::parse reads it
    void clearFaults();
    void revokeKey(std::string_view keyID);
    void setRequestsPerHour(std::size_t limit);

    // Called with every request that was answered and its outcome, in order, under the service's lock.
    void setObserver(std::function<void(const LoggedRequest&)> observer);

    // What links and upload addresses start with; the server knows it once it listens.
    void setRoot(std::string root);

 private:
    HTTPReply respond(const HTTPRequest& request, LoggedRequest& entry);
    HTTPReply respondToAPI(const HTTPRequest& request);
    HTTPReply respondToControl(const HTTPRequest& request);
    HTTPReply refused(const std::vector<ErrorItem>& items);

    mutable std::mutex mutex_;
    State state_;
    TokenVerifier tokens_;
    RateLimit rateLimit_;
    Router router_;
    Faults faults_;
    RequestLog log_;
    std::function<void(const LoggedRequest&)> observer_;
};

}  // namespace kestrin::sandbox
