// A place that keeps private keys, one text per key identifier. No command uses one: the command line takes its key
// from the environment.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kestrin {

class CredentialStore {
 public:
    virtual ~CredentialStore() = default;

    // Each throws ASCError::Keychain when the store fails.
    virtual std::optional<std::string> privateKeyPEM(
        std::string_view keyID) const = 0;  // nullopt: none is kept
    virtual void savePrivateKeyPEM(std::string_view pem, std::string_view keyID) = 0;  // adds or replaces
    virtual void deletePrivateKey(std::string_view keyID) = 0;  // one that was never there is no failure
};

}  // namespace kestrin
