// An address, checked to be one (RFC 3986) and otherwise kept as it was written.
//
// Accepted are absolute addresses and relative references of at least one character, made of the characters that
// RFC 3986 allows. One thing beyond it: square brackets in path and query, which the service takes and people type
// (`filter[name]`). Refused are blanks, control characters, what isn't ASCII, a "%" without two hexadecimal digits,
// an authority with an empty host, and a port outside 0 to 65535. Nothing is resolved, decoded or brought into
// another spelling.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kestrin {

class URL {
 public:
    static std::optional<URL> parse(std::string_view text);

    const std::string& absoluteString() const { return text_; }  // as it was written

    // Path still percent-encoded, without query and fragment; "" when there is none.
    std::string path() const;

    // The party that an http or https address speaks to. Scheme and host in lower case; the port is the scheme's
    // own where the address names none.
    struct Origin {
        std::string scheme;
        std::string host;
        std::uint16_t port = 0;
        bool operator==(const Origin&) const = default;
    };

    // nullopt for every other scheme, for relative references, and for an address that carries a user name or
    // password: nobody this program speaks to is addressed like that.
    std::optional<Origin> origin() const;

    bool operator==(const URL&) const = default;

 private:
    explicit URL(std::string text) : text_(std::move(text)) {}
    std::string text_;
};

}  // namespace kestrin
