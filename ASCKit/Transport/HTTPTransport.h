// The seam between the client and the network: one request goes out, one reply or one error comes back.
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <variant>

#include "ASCKit/Transport/HTTPHeaders.h"
#include "ASCKit/URL.h"
#include "KestrinCore/Error.h"

namespace kestrin {

// `length` bytes of a file from `offset` on; past the end of the file there are none. They are read while they are
// sent, a piece at a time, and anew whenever the request is sent again.
struct FileRange {
    std::filesystem::path file;
    std::int64_t offset = 0;
    std::int64_t length = 0;
    bool operator==(const FileRange&) const = default;
};

using HTTPBody = std::variant<std::string, FileRange>;

// Told while a body goes out: how many of its bytes have been handed to the network, from the start again with each
// try. No part of what is sent, so that requests are equal whoever watches them. What it throws ends the request.
struct BodyWatch {
    std::function<void(std::int64_t sent)> moved = {};
    bool operator==(const BodyWatch&) const { return true; }
};

struct HTTPRequest {
    std::string method;  // "GET", in upper case
    URL url;
    HTTPHeaders headers = {};  // besides these only what HTTP itself needs goes out
    std::optional<HTTPBody> body = std::nullopt;
    // How long nothing may move, in either direction; connecting must be done within it. No limit on the whole.
    std::chrono::milliseconds idleLimit = std::chrono::seconds(60);
    BodyWatch watch = {};

    bool operator==(const HTTPRequest&) const = default;
};

struct HTTPResponse {
    int status = 0;
    HTTPHeaders headers;  // fields of the same name are joined with ", "
    std::string body;     // content codings undone

    std::optional<std::string_view> header(std::string_view name) const;

    bool operator==(const HTTPResponse&) const = default;
};

// The exchange didn't come about. Whether the other side received the request is unknown.
class TransportError : public Error {
 public:
    enum class Code {
        cancelled,  // a stop was requested
        timedOut,   // nothing moved for the request's idle limit
        unsupportedURL,
        cannotFindHost,
        cannotConnectToHost,
        networkConnectionLost,
        secureConnectionFailed,  // a certificate that isn't trusted included
        cannotDecodeContentData,
        unknown,
    };

    explicit TransportError(Code failure, std::string why = {}) : code(failure), reason(std::move(why)) {}

    std::string errorDescription() const override { return reason; }

    Code code;
    std::string reason;  // for whoever debugs, in English; names neither headers nor address
};

class HTTPTransport {
 public:
    virtual ~HTTPTransport() = default;

    // Every status is a reply, redirects included: none is followed. Throws
    // - TransportError when there was no whole reply;
    // - ASCError::InvalidResponse, with the address's path, for a reply that isn't HTTP or is larger than the
    //   transport takes;
    // - FileError when the body's file can't be opened or read.
    virtual HTTPResponse send(const HTTPRequest& request, const std::stop_token& stop) = 0;
};

}  // namespace kestrin
