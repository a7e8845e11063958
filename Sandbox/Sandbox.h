// A local App Store Connect: a seeded service on a port of this machine, and the API key that opens it.
//
//     sandbox::Sandbox sandbox;
//     sandbox.start();
//     // … run a client against sandbox.url() with sandbox.credential() …
//     EXPECT_EQ(sandbox.service().log().count("DELETE"), 0);
#pragma once

#include <filesystem>
#include <map>
#include <string>

#include "Sandbox/Seed.h"
#include "Sandbox/Server.h"

namespace kestrin::sandbox {

struct Credential {
    std::string keyID;
    std::string issuerID;  // "" for an individual key
    std::string privateKeyPEM;
    AccessKey::Role role = AccessKey::Role::appManager;
};

// A team key that may write, with a new key pair.
Credential newCredential();

class Sandbox {
 public:
    // Adds the public key of the credential to those of the settings. Throws std::invalid_argument for a private
    // key that isn't a P-256 key.
    explicit Sandbox(Settings settings = {}, const Seed& seed = seeds::everyday,
                     Credential credential = newCredential());

    Service& service() { return service_; }
    const Credential& credential() const { return credential_; }

    void start(int port = 0) { server_.start(port); }
    void stop() { server_.stop(); }
    const std::string& url() const { return server_.url(); }

    // The environment that points the sandboxed executable here: ASC_KEY_ID, ASC_ISSUER_ID, ASC_PRIVATE_KEY and
    // KESTRIN_SANDBOX_ROOT. The private key is written to `folder`, readable for its owner alone.
    std::map<std::string, std::string> environment(const std::filesystem::path& folder) const;

 private:
    Credential credential_;
    Service service_;
    Server server_;
};

}  // namespace kestrin::sandbox
