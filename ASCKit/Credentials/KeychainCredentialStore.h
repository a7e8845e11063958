// Private keys in the user's key ring, by way of the Secret Service (https://specifications.freedesktop.org/secret-service/).
//
// A key is an item with the attributes `service` and `account`, the latter being the key identifier. Failures are
// ASCError::Keychain with the status numbers of the macOS keychain, so that one number means the same everywhere:
//
//       0   an item without a secret that can be read
//    -128   the key ring is locked and stays so: its prompt was dismissed, or there is nobody to show one
//   -2070   anything else
//  -25291   there is no key ring to talk to: no session bus, or nobody who serves it
//  -25299   the item is there already
//  -25300   no such item (never thrown: it is an answer, or the sign to add)
//  -25308   the key ring was locked in the middle of it
//
// Part of ASCKeychain, a library of its own: what never keeps a key doesn't load libsecret.
#pragma once

#include <string>

#include "ASCKit/Credentials/CredentialStore.h"

namespace kestrin {

class KeychainCredentialStore final : public CredentialStore {
 public:
    static constexpr const char* kDefaultService = "com.brennoway.kestrin.apikey";

    explicit KeychainCredentialStore(std::string service = kDefaultService) : service_(std::move(service)) {}

    // Bytes that aren't UTF-8 come back repaired.
    std::optional<std::string> privateKeyPEM(std::string_view keyID) const override;

    // A new item gets the label "App Store Connect API key {keyID}"; one that is there keeps the label it has.
    void savePrivateKeyPEM(std::string_view pem, std::string_view keyID) override;

    void deletePrivateKey(std::string_view keyID) override;

    const std::string& service() const { return service_; }

 private:
    std::string service_;
};

}  // namespace kestrin
