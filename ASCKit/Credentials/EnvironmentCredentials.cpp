#include "ASCKit/Credentials/EnvironmentCredentials.h"

#include <filesystem>
#include <optional>
#include <string_view>

#include "ASCKit/ASCError.h"
#include "KestrinCore/Files.h"
#include "KestrinCore/HomeFolder.h"
#include "KestrinCore/UnicodeText.h"

namespace kestrin::EnvironmentCredentials {
namespace {

namespace fs = std::filesystem;
using Environment = std::map<std::string, std::string>;

constexpr std::uintmax_t kLargestKeyFile = 1 << 20;

std::optional<std::string> variable(const Environment& environment, const char* name) {
    const auto found = environment.find(name);
    if (found == environment.end()) return std::nullopt;
    return found->second;
}

// Of the environment that was given, which in a test isn't that of the process.
fs::path homeOf(const Environment& environment) {
    const auto home = variable(environment, "HOME").value_or("");
    return home.empty() ? homeOfAccount().value_or("/") : fs::path(home);
}

fs::path locationOf(const std::string& path, const Environment& environment) {
    const bool startsAtHome = path == "~" || path.starts_with("~/");
    const fs::path expanded = startsAtHome ? homeOf(environment).native() + path.substr(1) : path;
    return expanded.is_absolute() ? expanded : (fs::current_path() / expanded).lexically_normal();
}

// Whether someone has put the key where its path belongs: a PEM file in one variable, or the base64 of one.
bool isAKeyItself(const std::string& path) {
    constexpr std::string_view kBase64 =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/=\r\n";
    constexpr std::size_t kShortestKey =
        100;  // a P-256 key has 184 characters, a path seldom has none but these
    if (path.find("PRIVATE KEY") != std::string::npos) return true;
    return path.size() >= kShortestKey && path.find_first_not_of(kBase64) == std::string::npos;
}

std::string contentOf(const std::string& path, const Environment& environment) {
    const auto location = locationOf(path, environment);
    try {
        return text::repaired(files::readWhole(location, kLargestKeyFile));
    } catch (const Error&) {
        if (isAKeyItself(path))
            throw ASCError(ASCError::UnreadablePrivateKey{std::string(keyInsteadOfItsPath)});
        throw ASCError(ASCError::UnreadablePrivateKey{text::repaired(location.native())});
    }
}

}  // namespace

APIKeyCredential load(const Environment& environment) {
    APIKeyCredential credential;
    credential.keyID = variable(environment, "ASC_KEY_ID").value_or("");
    if (credential.keyID.empty()) throw ASCError(ASCError::MissingEnvironment{"ASC_KEY_ID"});

    auto issuerID = variable(environment, "ASC_ISSUER_ID").value_or("");
    if (!issuerID.empty()) credential.kind = APIKeyKind::team(std::move(issuerID));

    const auto path = variable(environment, "ASC_PRIVATE_KEY")
                          .value_or("~/.appstoreconnect/AuthKey_" + credential.keyID + ".p8");
    credential.privateKeyPEM = contentOf(path, environment);
    return credential;
}

}  // namespace kestrin::EnvironmentCredentials
