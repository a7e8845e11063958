#include "Tests/ASCKit/TestKeys.h"

#include <openssl/bn.h>
#include <openssl/core_names.h>
#include <openssl/ec.h>
#include <openssl/ecdsa.h>
#include <openssl/pem.h>

#include <stdexcept>

namespace kestrin::testkeys {
namespace {

template <class Write>
std::string written(Write&& write) {
    const std::unique_ptr<BIO, decltype(&BIO_free)> bio(BIO_new(BIO_s_mem()), BIO_free);
    if (write(bio.get()) != 1) throw std::runtime_error("OpenSSL can't write this key");
    char* bytes = nullptr;
    const auto length = BIO_get_mem_data(bio.get(), &bytes);
    return {bytes, static_cast<std::size_t>(length)};
}

Key owned(EVP_PKEY* key) {
    if (!key) throw std::runtime_error("OpenSSL can't make this key");
    return {key, EVP_PKEY_free};
}

unsigned char kPassphrase[] = "open sesame";
constexpr int kPassphraseLength = sizeof kPassphrase - 1;

std::string pem(const char* label, const std::string& der) {
    return written([&](BIO* bio) {
        return PEM_write_bio(bio, label, "", reinterpret_cast<const unsigned char*>(der.data()),
                             static_cast<long>(der.size())) > 0;
    });
}

// ECPrivateKey (RFC 5915) with the private number and the name of the curve.
std::string sec1(std::string_view number) {
    const std::string version("\x02\x01\x01", 3);
    const std::string octets = std::string("\x04\x20", 2) + std::string(number);
    const std::string curve("\xA0\x0A\x06\x08\x2A\x86\x48\xCE\x3D\x03\x01\x07", 12);
    const auto body = version + octets + curve;
    return std::string("\x30") + static_cast<char>(body.size()) + body;
}

}  // namespace

Key p256() {
    return onCurve("P-256");
}
Key onCurve(const char* name) {
    return owned(EVP_EC_gen(name));
}
Key rsa() {
    return owned(EVP_RSA_gen(1024));
}
Key ed25519() {
    return owned(EVP_PKEY_Q_keygen(nullptr, nullptr, "ED25519"));
}

std::string pkcs8(const Key& key) {
    return written([&](BIO* bio) {
        return PEM_write_bio_PKCS8PrivateKey(bio, key.get(), nullptr, nullptr, 0, nullptr, nullptr);
    });
}

std::string encryptedPKCS8(const Key& key) {
    return written([&](BIO* bio) {
        return PEM_write_bio_PKCS8PrivateKey(bio, key.get(), EVP_aes_256_cbc(),
                                             reinterpret_cast<char*>(kPassphrase), kPassphraseLength, nullptr,
                                             nullptr);
    });
}

std::string traditional(const Key& key) {
    return written([&](BIO* bio) {
        return PEM_write_bio_PrivateKey_traditional(bio, key.get(), nullptr, nullptr, 0, nullptr, nullptr);
    });
}

std::string encryptedTraditional(const Key& key) {
    return written([&](BIO* bio) {
        return PEM_write_bio_PrivateKey_traditional(bio, key.get(), EVP_aes_256_cbc(), kPassphrase,
                                                    kPassphraseLength, nullptr, nullptr);
    });
}

std::string publicKey(const Key& key) {
    return written([&](BIO* bio) { return PEM_write_bio_PUBKEY(bio, key.get()); });
}

std::string withExplicitParameters(const Key& key) {
    const auto copy = owned(EVP_PKEY_dup(key.get()));
    EVP_PKEY_set_utf8_string_param(copy.get(), OSSL_PKEY_PARAM_EC_ENCODING, OSSL_PKEY_EC_ENCODING_EXPLICIT);
    return pkcs8(copy);
}

std::string withoutPublicPart(const Key& key) {
    BIGNUM* number = nullptr;
    EVP_PKEY_get_bn_param(key.get(), OSSL_PKEY_PARAM_PRIV_KEY, &number);
    std::string bytes(32, '\0');
    BN_bn2binpad(number, reinterpret_cast<unsigned char*>(bytes.data()), 32);
    BN_clear_free(number);
    return withPrivateNumber(bytes);
}

std::string parametersAndKey(const Key& key) {
    return pem("EC PARAMETERS", std::string("\x06\x08\x2A\x86\x48\xCE\x3D\x03\x01\x07", 10)) +
           traditional(key);
}

std::string withPrivateNumber(std::string_view number) {
    return pem("EC PRIVATE KEY", sec1(number));
}

Key publicKeyFrom(std::string_view text) {
    const std::unique_ptr<BIO, decltype(&BIO_free)> bio(
        BIO_new_mem_buf(text.data(), static_cast<int>(text.size())), BIO_free);
    return owned(PEM_read_bio_PUBKEY(bio.get(), nullptr, nullptr, nullptr));
}

bool verifies(const Key& key, std::string_view message, std::string_view signature) {
    if (signature.size() != 64) return false;
    const auto number = [&](std::size_t offset) {
        return BN_bin2bn(reinterpret_cast<const unsigned char*>(signature.data()) + offset, 32, nullptr);
    };
    const std::unique_ptr<ECDSA_SIG, decltype(&ECDSA_SIG_free)> pair(ECDSA_SIG_new(), ECDSA_SIG_free);
    ECDSA_SIG_set0(pair.get(), number(0), number(32));
    unsigned char* der = nullptr;
    const auto length = i2d_ECDSA_SIG(pair.get(), &der);
    const std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> digest(EVP_MD_CTX_new(), EVP_MD_CTX_free);
    EVP_DigestVerifyInit(digest.get(), nullptr, EVP_sha256(), nullptr, key.get());
    const auto result =
        EVP_DigestVerify(digest.get(), der, static_cast<std::size_t>(length),
                         reinterpret_cast<const unsigned char*>(message.data()), message.size());
    OPENSSL_free(der);
    return result == 1;
}

}  // namespace kestrin::testkeys
