// All that can go wrong between us and App Store Connect.
//
// Neither a key nor a token is ever part of an error.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "ASCKit/Transport/HTTPTransport.h"
#include "KestrinCore/Error.h"
#include "KestrinCore/JSONValue.h"

namespace kestrin {

// One item of an error reply.
struct APIErrorItem {
    std::optional<std::string> status, code, title, detail;
    std::optional<JSONValue> source;

    // The items of an error reply's `errors`; empty when there is none, or when the body as a whole isn't what it
    // should be (plain text of a proxy, say). Never fails.
    static std::vector<APIErrorItem> decodeAll(std::string_view body);

    bool operator==(const APIErrorItem&) const = default;
};

class ASCError : public Error {
 public:
    struct HTTP {  // a status that isn't a success
        int status;
        std::vector<APIErrorItem> errors;
        std::string path;
        bool operator==(const HTTP&) const = default;
    };
    struct Transport {  // no reply
        TransportError::Code code;
        std::string path;
        bool operator==(const Transport&) const = default;
    };
    struct InvalidResponse {  // a reply that isn't what it should be
        std::string path;
        bool operator==(const InvalidResponse&) const = default;
    };
    struct InvalidRequest {  // an address that can't be made; nothing was sent
        std::string path;
        bool operator==(const InvalidRequest&) const = default;
    };
    struct UnreadablePrivateKey {
        std::string path;
        bool operator==(const UnreadablePrivateKey&) const = default;
    };
    struct MissingEnvironment {
        std::string name;
        bool operator==(const MissingEnvironment&) const = default;
    };
    struct Keychain {
        std::int32_t status;
        bool operator==(const Keychain&) const = default;
    };
    struct Unauthorized {
        bool operator==(const Unauthorized&) const = default;
    };
    struct RateLimited {
        bool operator==(const RateLimited&) const = default;
    };
    struct InvalidPrivateKey {
        bool operator==(const InvalidPrivateKey&) const = default;
    };
    using Kind = std::variant<HTTP, Transport, InvalidResponse, InvalidRequest, UnreadablePrivateKey,
                              MissingEnvironment, Keychain, Unauthorized, RateLimited, InvalidPrivateKey>;

    ASCError(Kind what) : kind(std::move(what)) {}

    std::string errorDescription() const override;

    // Of HTTP, the code of every item that has one, in order; of every other case none.
    std::vector<std::string> apiErrorCodes() const;

    // The payload when the error is that case, else nullptr: `error.as<ASCError::HTTP>()`.
    template <class Case>
    const Case* as() const {
        return std::get_if<Case>(&kind);
    }

    bool operator==(const ASCError& other) const { return kind == other.kind; }

    Kind kind;
};

}  // namespace kestrin
