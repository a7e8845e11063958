// What a call of the client comes to, as one text that a table can hold.
#pragma once

#include <string>
#include <utility>

#include "ASCKit/ASCError.h"
#include "KestrinCore/Clock.h"

namespace kestrin {

inline const char* nameOf(TransportError::Code code) {
    using Code = TransportError::Code;
    switch (code) {
        case Code::cancelled:
            return "cancelled";
        case Code::timedOut:
            return "timedOut";
        case Code::unsupportedURL:
            return "unsupportedURL";
        case Code::cannotFindHost:
            return "cannotFindHost";
        case Code::cannotConnectToHost:
            return "cannotConnectToHost";
        case Code::networkConnectionLost:
            return "networkConnectionLost";
        case Code::secureConnectionFailed:
            return "secureConnectionFailed";
        case Code::cannotDecodeContentData:
            return "cannotDecodeContentData";
        case Code::unknown:
            return "unknown";
    }
    return "?";
}

// "http 409 /v1/apps", "transport timedOut /v1/apps", "invalidResponse /v1/apps", "unauthorized", …
inline std::string describe(const ASCError& error) {
    using E = ASCError;
    return std::visit(
        Overloaded{
            [](const E::HTTP& e) { return "http " + std::to_string(e.status) + " " + e.path; },
            [](const E::Transport& e) { return std::string("transport ") + nameOf(e.code) + " " + e.path; },
            [](const E::InvalidResponse& e) { return "invalidResponse " + e.path; },
            [](const E::InvalidRequest& e) { return "invalidRequest " + e.path; },
            [](const E::UnreadablePrivateKey& e) { return "unreadablePrivateKey " + e.path; },
            [](const E::MissingEnvironment& e) { return "missingEnvironment " + e.name; },
            [](const E::Keychain& e) { return "keychain " + std::to_string(e.status); },
            [](const E::Unauthorized&) { return std::string("unauthorized"); },
            [](const E::RateLimited&) { return std::string("rateLimited"); },
            [](const E::InvalidPrivateKey&) { return std::string("invalidPrivateKey"); },
        },
        error.kind);
}

// "ok", with the bytes behind it when the call gives some, or what was thrown. Only errors of the client are caught.
template <class Call>
std::string outcomeOf(Call&& call) {
    try {
        if constexpr (std::is_same_v<decltype(call()), std::string>) {
            return "ok " + call();
        } else {
            call();
            return "ok";
        }
    } catch (const Cancelled&) {
        return "cancelled";
    } catch (const TransportError& error) {
        return std::string("transport error ") + nameOf(error.code);
    } catch (const ASCError& error) {
        return describe(error);
    }
}

}  // namespace kestrin
