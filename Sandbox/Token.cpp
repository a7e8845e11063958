#include "Sandbox/Token.h"

#include <fmt/format.h>
#include <openssl/bio.h>
#include <openssl/ec.h>
#include <openssl/ecdsa.h>
#include <openssl/evp.h>
#include <openssl/pem.h>

#include <algorithm>
#include <array>
#include <optional>
#include <stdexcept>

#include "KestrinCore/Handle.h"
#include "Sandbox/JSON.h"
#include "Sandbox/Query.h"
#include "Sandbox/Refusal.h"

namespace kestrin::sandbox {
namespace {

constexpr std::string_view kAudience = "appstoreconnect-v1";
constexpr std::int64_t kMaximumLifetime = 20 * 60;
constexpr std::int64_t kClockSkew = 60;
constexpr std::size_t kCoordinateSize = 32;
constexpr std::size_t kRememberedTokens = 64;

using Key = Handle<EVP_PKEY, EVP_PKEY_free>;
using DigestContext = Handle<EVP_MD_CTX, EVP_MD_CTX_free>;
using Memory = Handle<BIO, BIO_free>;
using Signature = Handle<ECDSA_SIG, ECDSA_SIG_free>;

[[noreturn]] void refuse(std::string why) {
    throw Refusal(
        ErrorItem{401, "NOT_AUTHORIZED",
                  "Provide a properly configured and signed bearer token, and make sure that it has "
                  "not expired. " +
                      std::move(why)});
}

std::string contentOf(BIO* memory) {
    char* bytes = nullptr;
    const auto size = BIO_get_mem_data(memory, &bytes);
    return {bytes, static_cast<std::size_t>(size)};
}

int base64Digit(char c) {
    if (c >= 'A' && c <= 'Z') return c - 'A';
    if (c >= 'a' && c <= 'z') return c - 'a' + 26;
    if (c >= '0' && c <= '9') return c - '0' + 52;
    if (c == '-') return 62;
    if (c == '_') return 63;
    return -1;
}

// Unpadded, URL-safe (RFC 4648, section 5).
std::optional<std::string> base64Decoded(std::string_view text) {
    std::string bytes;
    unsigned pending = 0;
    int bits = 0;
    for (const char c : text) {
        const int digit = base64Digit(c);
        if (digit < 0) return std::nullopt;
        pending = (pending << 6 | static_cast<unsigned>(digit)) & 0xffff;
        bits += 6;
        if (bits < 8) continue;
        bits -= 8;
        bytes += static_cast<char>(pending >> bits & 0xff);
    }
    return text.size() % 4 == 1 ? std::nullopt : std::optional(std::move(bytes));
}

Json objectOf(std::string_view part, std::string_view what) {
    const auto bytes = base64Decoded(part);
    auto object = bytes ? parsedJSON(*bytes) : std::nullopt;
    if (!object || !object->is_object()) refuse(fmt::format("The token's {} can't be read.", what));
    return *std::move(object);
}

std::string textMember(const Json& object, const char* name) {
    const auto member = object.find(name);
    return member != object.end() && member->is_string() ? member->get<std::string>() : std::string();
}

std::int64_t timeMember(const Json& object, const char* name) {
    const auto member = object.find(name);
    if (member == object.end() || !member->is_number_integer()) {
        refuse(fmt::format("The token's {} is missing or no whole number.", name));
    }
    return member->get<std::int64_t>();
}

struct TokenParts {
    std::string_view header, payload, signature;
    std::string_view signedText;
};

TokenParts split(std::string_view token) {
    const auto first = token.find('.');
    const auto second = first == std::string_view::npos ? first : token.find('.', first + 1);
    if (second == std::string_view::npos || token.find('.', second + 1) != std::string_view::npos) {
        refuse("The token doesn't have three parts.");
    }
    return {token.substr(0, first), token.substr(first + 1, second - first - 1), token.substr(second + 1),
            token.substr(0, second)};
}

// From the fixed form of a token to the DER form that OpenSSL verifies.
std::string derSignature(std::string_view raw) {
    const auto* bytes = reinterpret_cast<const unsigned char*>(raw.data());
    Signature signature(ECDSA_SIG_new());
    ECDSA_SIG_set0(signature.get(), BN_bin2bn(bytes, kCoordinateSize, nullptr),
                   BN_bin2bn(bytes + kCoordinateSize, kCoordinateSize, nullptr));
    unsigned char* der = nullptr;
    const int size = i2d_ECDSA_SIG(signature.get(), &der);
    std::string result(reinterpret_cast<const char*>(der), static_cast<std::size_t>(std::max(size, 0)));
    OPENSSL_free(der);
    return result;
}

bool isSigned(EVP_PKEY* key, std::string_view text, std::string_view rawSignature) {
    if (rawSignature.size() != 2 * kCoordinateSize) return false;
    const auto signature = derSignature(rawSignature);
    const DigestContext context(EVP_MD_CTX_new());
    return EVP_DigestVerifyInit(context.get(), nullptr, EVP_sha256(), nullptr, key) == 1 &&
           EVP_DigestVerify(context.get(), reinterpret_cast<const unsigned char*>(signature.data()),
                            signature.size(), reinterpret_cast<const unsigned char*>(text.data()),
                            text.size()) == 1;
}

bool isP256(const Key& key) {
    std::array<char, 32> curve{};
    const bool hasCurve = key && EVP_PKEY_get_group_name(key.get(), curve.data(), curve.size(), nullptr) == 1;
    return hasCurve && std::string_view(curve.data()) == "prime256v1";
}

Key publicKey(const std::string& pem) {
    const Memory memory(BIO_new_mem_buf(pem.data(), static_cast<int>(pem.size())));
    Key key(PEM_read_bio_PUBKEY(memory.get(), nullptr, nullptr, nullptr));
    if (!isP256(key)) throw std::invalid_argument("not the public key of a P-256 key pair");
    return key;
}

std::string publicPEM(const Key& key) {
    const Memory memory(BIO_new(BIO_s_mem()));
    if (PEM_write_bio_PUBKEY(memory.get(), key.get()) != 1)
        throw std::runtime_error("couldn't write a public key");
    return contentOf(memory.get());
}

void checkHeader(const Json& header) {
    if (textMember(header, "alg") != "ES256") refuse("The token's alg is not ES256.");
    if (textMember(header, "typ") != "JWT") refuse("The token's typ is not JWT.");
}

void checkClaims(const Json& payload, const AccessKey& key, std::int64_t now) {
    if (textMember(payload, "aud") != kAudience) refuse("The token's aud is not appstoreconnect-v1.");
    const auto issued = timeMember(payload, "iat"), expires = timeMember(payload, "exp");
    if (issued > now + kClockSkew) refuse("The token was issued in the future.");
    if (expires <= now) refuse("The token has expired.");
    if (expires <= issued || expires - issued > kMaximumLifetime) {
        refuse("The token lives longer than 20 minutes.");
    }
    if (key.issuerID.empty()) {
        if (textMember(payload, "sub") != "user" || payload.contains("iss")) {
            refuse("The token of an individual key bears the sub \"user\" and no iss.");
        }
    } else if (textMember(payload, "iss") != key.issuerID || payload.contains("sub")) {
        refuse("The token of a team key bears the iss of the team and no sub.");
    }
}

// A request as a scope names it: limit, cursor and sort aren't compared.
std::string scopeForm(std::string_view method, std::string_view target) {
    const auto mark = target.find('?');
    std::string form = fmt::format("{} {}", method, target.substr(0, mark));
    if (mark == std::string_view::npos) return form;
    std::vector<std::string> parameters;
    for (const auto& [name, values] : parseQuery(target.substr(mark + 1))) {
        if (name == "limit" || name == "cursor" || name == "sort") continue;
        parameters.push_back(fmt::format("{}={}", name, fmt::join(values, ",")));
    }
    std::sort(parameters.begin(), parameters.end());
    return parameters.empty() ? form : fmt::format("{}?{}", form, fmt::join(parameters, "&"));
}

void checkScope(const Json& payload, std::string_view method, std::string_view target) {
    const auto scope = payload.find("scope");
    if (scope == payload.end()) return;
    const auto wanted = scopeForm(method, target);
    for (const auto& entry : *scope) {
        const auto text = entry.is_string() ? entry.get<std::string>() : std::string();
        const auto blank = text.find(' ');
        if (blank == std::string::npos) continue;
        if (scopeForm(text.substr(0, blank), text.substr(blank + 1)) == wanted) return;
    }
    throw Refusal(refusals::forbidden("The token's scope doesn't name this request."));
}

}  // namespace

struct TokenVerifier::Known {
    AccessKey key;
    Key publicKey;
};

TokenVerifier::TokenVerifier(std::vector<AccessKey> keys) {
    for (auto& key : keys) {
        auto parsed = publicKey(key.publicKeyPEM);
        keys_.push_back({std::move(key), std::move(parsed)});
    }
}

TokenVerifier::~TokenVerifier() = default;
TokenVerifier::TokenVerifier(TokenVerifier&&) noexcept = default;
TokenVerifier& TokenVerifier::operator=(TokenVerifier&&) noexcept = default;

const AccessKey& TokenVerifier::verify(std::string_view authorization, std::int64_t now,
                                       std::string_view method, std::string_view target) {
    constexpr std::string_view kScheme = "Bearer ";
    if (!authorization.starts_with(kScheme)) refuse("There is no bearer token.");
    const auto token = authorization.substr(kScheme.size());
    const auto parts = split(token);
    const auto header = objectOf(parts.header, "header"), payload = objectOf(parts.payload, "payload");
    checkHeader(header);

    const auto known = std::find_if(keys_.begin(), keys_.end(), [&](const Known& each) {
        return each.key.keyID == textMember(header, "kid");
    });
    if (known == keys_.end()) refuse("The token's kid names no key.");
    if (!verified_.contains(std::string(token))) {
        const auto signature = base64Decoded(parts.signature);
        if (!signature || !isSigned(known->publicKey.get(), parts.signedText, *signature)) {
            refuse("The token's signature is not the key's.");
        }
        if (verified_.size() >= kRememberedTokens) verified_.clear();
        verified_.emplace(token);
    }
    checkClaims(payload, known->key, now);
    if (known->key.revoked) throw Refusal(refusals::forbidden("The key has been revoked."));
    checkScope(payload, method, target);
    return known->key;
}

bool TokenVerifier::revoke(std::string_view keyID) {
    bool found = false;
    for (auto& known : keys_) {
        if (known.key.keyID == keyID) found = known.key.revoked = true;
    }
    return found;
}

KeyPair KeyPair::generate() {
    const Key key(EVP_EC_gen("P-256"));
    const Memory memory(BIO_new(BIO_s_mem()));
    if (!key ||
        PEM_write_bio_PKCS8PrivateKey(memory.get(), key.get(), nullptr, nullptr, 0, nullptr, nullptr) != 1) {
        throw std::runtime_error("couldn't make a key pair");
    }
    return {contentOf(memory.get()), publicPEM(key)};
}

KeyPair KeyPair::fromPrivateKey(std::string privateKeyPEM) {
    const Memory memory(BIO_new_mem_buf(privateKeyPEM.data(), static_cast<int>(privateKeyPEM.size())));
    char noPassphrase[] = "";
    const Key key(PEM_read_bio_PrivateKey(memory.get(), nullptr, nullptr, noPassphrase));
    if (!isP256(key)) throw std::invalid_argument("not the private key of a P-256 key pair");
    return {std::move(privateKeyPEM), publicPEM(key)};
}

}  // namespace kestrin::sandbox
