#include "ASCKit/Credentials/JWTSigner.h"

#include <openssl/bio.h>
#include <openssl/bn.h>
#include <openssl/core_names.h>
#include <openssl/ecdsa.h>
#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/pem.h>

#include <algorithm>
#include <array>
#include <limits>
#include <stdexcept>

#include "ASCKit/ASCError.h"
#include "KestrinCore/Handle.h"
#include "KestrinCore/StableJSON.h"

namespace kestrin {
namespace {

using Bytes = Handle<BIO, BIO_free>;
using Digest = Handle<EVP_MD_CTX, EVP_MD_CTX_free>;
using KeyCheck = Handle<EVP_PKEY_CTX, EVP_PKEY_CTX_free>;
using Signature = Handle<ECDSA_SIG, ECDSA_SIG_free>;

// Without this answer OpenSSL would ask at the terminal, where a run in continuous delivery would wait for ever.
int noPassphrase(char*, int, int, void*) {
    return -1;
}

bool isOnP256(const EVP_PKEY* key) {
    std::array<char, 64> group{};
    if (!EVP_PKEY_is_a(key, "EC")) return false;
    if (EVP_PKEY_get_utf8_string_param(key, OSSL_PKEY_PARAM_GROUP_NAME, group.data(), group.size(),
                                       nullptr) != 1) {
        return false;
    }
    return std::string_view(group.data()) == SN_X9_62_prime256v1;
}

// Whether the number is one that the curve takes as a private key.
bool isSound(EVP_PKEY* key) {
    const KeyCheck check(EVP_PKEY_CTX_new_from_pkey(nullptr, key, nullptr));
    return check && EVP_PKEY_private_check(check.get()) == 1;
}

std::shared_ptr<EVP_PKEY> parsed(const std::string& pem) {
    if (pem.size() > static_cast<std::size_t>(std::numeric_limits<int>::max())) return nullptr;
    const Bytes bytes(BIO_new_mem_buf(pem.data(), static_cast<int>(pem.size())));
    if (!bytes) return nullptr;
    std::shared_ptr<EVP_PKEY> key(PEM_read_bio_PrivateKey(bytes.get(), nullptr, noPassphrase, nullptr),
                                  EVP_PKEY_free);
    const bool isUsable = key && isOnP256(key.get()) && isSound(key.get());
    ERR_clear_error();
    return isUsable ? key : nullptr;
}

// Base64 for URLs, without padding (RFC 4648, section 5).
std::string base64URL(std::string_view bytes) {
    std::string text(4 * ((bytes.size() + 2) / 3) + 1, '\0');
    const auto length =
        EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text.data()),
                        reinterpret_cast<const unsigned char*>(bytes.data()), static_cast<int>(bytes.size()));
    text.resize(static_cast<std::size_t>(length));
    text.erase(std::find(text.begin(), text.end(), '='), text.end());
    std::replace(text.begin(), text.end(), '+', '-');
    std::replace(text.begin(), text.end(), '/', '_');
    return text;
}

[[noreturn]] void failToSign() {
    ERR_clear_error();
    throw std::runtime_error("the token could not be signed");
}

// ASN.1, as OpenSSL gives it.
std::string derSignature(EVP_PKEY* key, std::string_view message) {
    const auto* bytes = reinterpret_cast<const unsigned char*>(message.data());
    const Digest digest(EVP_MD_CTX_new());
    std::size_t length = 0;
    if (!digest || EVP_DigestSignInit(digest.get(), nullptr, EVP_sha256(), nullptr, key) != 1 ||
        EVP_DigestSign(digest.get(), nullptr, &length, bytes, message.size()) != 1) {
        failToSign();
    }
    std::string signature(length, '\0');
    auto* out = reinterpret_cast<unsigned char*>(signature.data());
    if (EVP_DigestSign(digest.get(), out, &length, bytes, message.size()) != 1) failToSign();
    signature.resize(length);
    return signature;
}

// r, then s, 32 bytes each, as JSON Web Signatures want them.
std::string rawSignature(std::string_view der) {
    constexpr int kNumberLength = 32;
    const auto* in = reinterpret_cast<const unsigned char*>(der.data());
    const Signature signature(d2i_ECDSA_SIG(nullptr, &in, static_cast<long>(der.size())));
    std::string raw(2 * kNumberLength, '\0');
    auto* out = reinterpret_cast<unsigned char*>(raw.data());
    if (!signature || BN_bn2binpad(ECDSA_SIG_get0_r(signature.get()), out, kNumberLength) < 0 ||
        BN_bn2binpad(ECDSA_SIG_get0_s(signature.get()), out + kNumberLength, kNumberLength) < 0) {
        failToSign();
    }
    return raw;
}

std::string encoded(const JSONObject& object) {
    return base64URL(StableJSON::encodeCompact(object));
}

}  // namespace

JWTSigner::JWTSigner(const APIKeyCredential& credential)
    : keyID_(credential.keyID), kind_(credential.kind), privateKey_(parsed(credential.privateKeyPEM)) {
    if (!privateKey_) throw ASCError(ASCError::InvalidPrivateKey{});
}

std::string JWTSigner::token(std::chrono::system_clock::time_point issuedAt, Seconds lifetime) const {
    using std::chrono::duration_cast, std::chrono::seconds;
    const std::int64_t iat = duration_cast<seconds>(issuedAt.time_since_epoch()).count();
    const std::int64_t exp = iat + duration_cast<seconds>(std::min(lifetime, kMaximumLifetime)).count();

    JSONObject payload{{"aud", "appstoreconnect-v1"}, {"iat", iat}, {"exp", exp}};
    std::visit(Overloaded{
                   [&](const APIKeyKind::Team& team) { payload.emplace("iss", team.issuerID); },
                   [&](const APIKeyKind::Individual&) { payload.emplace("sub", "user"); },
               },
               kind_.kind);

    const JSONObject header{{"alg", "ES256"}, {"kid", keyID_}, {"typ", "JWT"}};
    const auto message = encoded(header) + "." + encoded(payload);
    return message + "." + base64URL(rawSignature(derSignature(privateKey_.get(), message)));
}

}  // namespace kestrin
