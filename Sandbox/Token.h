// The keys that the sandbox knows, and whether a request's bearer token was signed with one of them.
//
// A token is a JWT (RFC 7519) signed with ES256 (RFC 7518, section 3.4: r and s, 32 bytes each). It names its key,
// is meant for "appstoreconnect-v1", lives at most 20 minutes, and bears the issuer of a team key or the subject
// "user" of an individual one.
#pragma once

#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace kestrin::sandbox {

struct AccessKey {
    enum class Role { appManager, developer };  // a developer reads only

    std::string keyID;
    std::string issuerID;      // "" for an individual key
    std::string publicKeyPEM;  // "-----BEGIN PUBLIC KEY-----"
    Role role = Role::appManager;
    bool revoked = false;
};

// A new P-256 key pair.
struct KeyPair {
    std::string privateKeyPEM;  // PKCS #8, as in a .p8 file
    std::string publicKeyPEM;

    static KeyPair generate();
    // Of a .p8 file. Throws std::invalid_argument for anything but a P-256 key.
    static KeyPair fromPrivateKey(std::string privateKeyPEM);
};

class TokenVerifier {
 public:
    explicit TokenVerifier(std::vector<AccessKey> keys);
    ~TokenVerifier();
    TokenVerifier(TokenVerifier&&) noexcept;
    TokenVerifier& operator=(TokenVerifier&&) noexcept;

    // The key that signed the token of an Authorization header. Throws Refusal 401 for anything but a good token,
    // 403 for one of a revoked key and for one whose scope doesn't name the request. `now` in seconds since 1970;
    // `method` and `target` are the request's.
    const AccessKey& verify(std::string_view authorization, std::int64_t now, std::string_view method,
                            std::string_view target);

    // As App Store Connect does it for a key: its tokens are 403 from now on.
    // False when there is no such key.
    bool revoke(std::string_view keyID);

 private:
    struct Known;

    std::vector<Known> keys_;
    std::set<std::string> verified_;  // tokens whose signature was found good
};

}  // namespace kestrin::sandbox
