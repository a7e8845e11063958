#include "Sandbox/Sandbox.h"

#include "KestrinCore/Files.h"

namespace kestrin::sandbox {
namespace {

constexpr const char* kKeyID = "2X9R4HXF34";
constexpr const char* kIssuerID = "57246542-96fe-1a63-e053-0824d011072a";

Settings withKey(Settings settings, const Credential& credential) {
    const auto pair = KeyPair::fromPrivateKey(credential.privateKeyPEM);
    settings.keys.push_back({credential.keyID, credential.issuerID, pair.publicKeyPEM, credential.role});
    return settings;
}

}  // namespace

Credential newCredential() {
    return {kKeyID, kIssuerID, KeyPair::generate().privateKeyPEM};
}

Sandbox::Sandbox(Settings settings, const Seed& seed, Credential credential)
    : credential_(std::move(credential)),
      service_(withKey(std::move(settings), credential_)),
      server_(service_) {
    service_.with([&](State& state) { seed(state); });
}

std::map<std::string, std::string> Sandbox::environment(const std::filesystem::path& folder) const {
    const auto path = std::filesystem::absolute(folder / ("AuthKey_" + credential_.keyID + ".p8"));
    files::writeAtomically(path, credential_.privateKeyPEM);
    std::filesystem::permissions(path,
                                 std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
    return {{"ASC_KEY_ID", credential_.keyID},
            {"ASC_ISSUER_ID", credential_.issuerID},
            {"ASC_PRIVATE_KEY", path.string()},
            {"KESTRIN_SANDBOX_ROOT", url()}};
}

}  // namespace kestrin::sandbox
