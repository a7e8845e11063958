// Private keys of many kinds, as the PEM texts in which they come.
#pragma once

#include <openssl/evp.h>

#include <memory>
#include <string>
#include <string_view>

namespace kestrin::testkeys {

using Key = std::shared_ptr<EVP_PKEY>;

Key p256();
Key onCurve(const char* name);
Key rsa();
Key ed25519();

std::string pkcs8(const Key& key);
std::string encryptedPKCS8(const Key& key);
std::string traditional(const Key& key);  // "EC PRIVATE KEY", "RSA PRIVATE KEY"
std::string encryptedTraditional(const Key& key);
std::string publicKey(const Key& key);
std::string withExplicitParameters(const Key& key);  // the curve's numbers in place of its name
std::string withoutPublicPart(const Key& key);       // "EC PRIVATE KEY" that holds the private number alone
std::string parametersAndKey(const Key& key);  // "EC PARAMETERS" before "EC PRIVATE KEY", as ecparam writes
std::string withPrivateNumber(
    std::string_view number);  // 32 bytes, whether they can be a key on P-256 or not

// The key that a PEM public key is.
Key publicKeyFrom(std::string_view pem);

// Whether `signature`, r and s of 32 bytes each, signs `message` with ECDSA and SHA-256.
bool verifies(const Key& key, std::string_view message, std::string_view signature);

}  // namespace kestrin::testkeys
