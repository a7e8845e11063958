// Signs the tokens that requests carry: JSON Web Tokens (RFC 7519) with ES256 (RFC 7518, section 3.4).
#pragma once

#include <chrono>
#include <memory>
#include <string>

#include "ASCKit/Credentials/APIKeyCredential.h"
#include "KestrinCore/Clock.h"

struct evp_pkey_st;  // OpenSSL's EVP_PKEY

namespace kestrin {

class JWTSigner {
 public:
    // The service takes no token that is valid for longer.
    static constexpr Seconds kMaximumLifetime = std::chrono::minutes(20);

    // Takes a private key on P-256 in any PEM form that OpenSSL reads without a passphrase; keeps the parsed key,
    // not the text. Throws ASCError::InvalidPrivateKey for everything else. Never asks for a passphrase.
    explicit JWTSigner(const APIKeyCredential& credential);

    // The compact form, header.payload.signature. The header is {"alg":"ES256","kid":…,"typ":"JWT"}; the payload has
    // `aud`, `exp`, `iat` and, for a team key, `iss`, for an individual one `sub` "user"; nothing else. Times are
    // whole seconds, the fraction dropped; a longer lifetime than the maximum counts as the maximum.
    // `lifetime` must be finite.
    std::string token(std::chrono::system_clock::time_point issuedAt, Seconds lifetime) const;

    const std::string& keyID() const { return keyID_; }
    const APIKeyKind& kind() const { return kind_; }

 private:
    std::string keyID_;
    APIKeyKind kind_;
    std::shared_ptr<evp_pkey_st> privateKey_;
};

}  // namespace kestrin
