#include "Tests/Sandbox/SandboxFixture.h"

#include <openssl/bio.h>
#include <openssl/ecdsa.h>
#include <openssl/evp.h>
#include <openssl/pem.h>

namespace kestrin::sandbox {
namespace {

std::string base64URL(std::string_view bytes) {
    std::string text(4 * ((bytes.size() + 2) / 3) + 1, '\0');
    const int size =
        EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text.data()),
                        reinterpret_cast<const unsigned char*>(bytes.data()), static_cast<int>(bytes.size()));
    text.resize(static_cast<std::size_t>(size));
    while (text.ends_with('=')) text.pop_back();
    for (char& c : text) c = c == '+' ? '-' : c == '/' ? '_' : c;
    return text;
}

std::string signature(const std::string& text, const std::string& pem) {
    auto* memory = BIO_new_mem_buf(pem.data(), static_cast<int>(pem.size()));
    auto* key = PEM_read_bio_PrivateKey(memory, nullptr, nullptr, nullptr);
    auto* context = EVP_MD_CTX_new();
    std::vector<unsigned char> der(256);
    std::size_t size = der.size();
    EXPECT_EQ(EVP_DigestSignInit(context, nullptr, EVP_sha256(), nullptr, key), 1);
    EXPECT_EQ(EVP_DigestSign(context, der.data(), &size, reinterpret_cast<const unsigned char*>(text.data()),
                             text.size()),
              1);
    const auto* at = der.data();
    auto* parsed = d2i_ECDSA_SIG(nullptr, &at, static_cast<long>(size));
    std::string raw(64, '\0');
    auto* bytes = reinterpret_cast<unsigned char*>(raw.data());
    BN_bn2binpad(ECDSA_SIG_get0_r(parsed), bytes, 32);
    BN_bn2binpad(ECDSA_SIG_get0_s(parsed), bytes + 32, 32);
    ECDSA_SIG_free(parsed);
    EVP_MD_CTX_free(context);
    EVP_PKEY_free(key);
    BIO_free(memory);
    return raw;
}

Settings withFixedClock(Settings settings) {
    settings.now = [] { return kNow; };
    return settings;
}

Json relationshipsJSON(const std::vector<std::pair<std::string, Ref>>& related) {
    Json relationships = Json::object();
    for (const auto& [name, ref] : related)
        relationships[name] = {{"data", {{"type", ref.type}, {"id", ref.id}}}};
    return relationships;
}

}  // namespace

std::string TokenRecipe::token() const {
    const auto text = base64URL(dumped(header)) + "." + base64URL(dumped(payload));
    return text + "." + base64URL(signature(text, privateKeyPEM));
}

TokenRecipe goodToken(const Credential& credential, std::int64_t now) {
    return {{{"alg", "ES256"}, {"kid", credential.keyID}, {"typ", "JWT"}},
            {{"aud", "appstoreconnect-v1"}, {"iat", now}, {"exp", now + 1140}, {"iss", credential.issuerID}},
            credential.privateKeyPEM};
}

std::string Received::code() const {
    return json.is_object() && json.contains("errors") ? json["errors"][0].value("code", "") : "";
}

std::string Received::place() const {
    if (!json.is_object() || !json.contains("errors") || !json["errors"][0].contains("source")) return "";
    const auto& source = json["errors"][0]["source"];
    return source.value("pointer", source.value("parameter", ""));
}

std::vector<std::string> Received::ids() const {
    std::vector<std::string> ids;
    for (const auto& resource : json.at("data")) ids.push_back(resource.at("id").get<std::string>());
    return ids;
}

const Json& Received::attributes(std::size_t index) const {
    const auto& data = json.at("data");
    return data.is_array() ? data.at(index).at("attributes") : data.at("attributes");
}

Settings smallParts() {
    Settings settings;
    settings.uploadPartSize = 1000;
    return settings;
}

SandboxFixture::SandboxFixture(Settings settings, const Seed& seed)
    : sandbox(withFixedClock(std::move(settings)), seed),
      authorization("Bearer " + goodToken(sandbox.credential()).token()) {
    sandbox.service().setRoot(kRoot);
}

Received SandboxFixture::send(const std::string& method, const std::string& target, const std::string& body,
                              const HTTPHeaders& headers) {
    HTTPRequest request{method, target, headers, body, 1};
    request.headers.emplace_back("Authorization", authorization);
    if (!body.empty()) {
        if (!headerValue(headers, "Content-Type"))
            request.headers.emplace_back("Content-Type", "application/json");
        request.headers.emplace_back("Content-Length", std::to_string(body.size()));
    }
    return sendBare(request);
}

Received SandboxFixture::put(const Json& operation, const std::string& bytes, HTTPHeaders headers) {
    const auto url = operation["url"].get<std::string>();
    EXPECT_TRUE(url.starts_with(kRoot));
    if (headers.empty()) {
        for (const auto& header : operation["requestHeaders"])
            headers.emplace_back(header["name"], header["value"]);
    }
    return sendBare({operation["method"], url.substr(std::string(kRoot).size()), headers, bytes, 1});
}

void SandboxFixture::sendAll(const Received& reserved, const std::string& bytes) {
    for (const auto& operation : reserved.attributes()["uploadOperations"]) {
        ASSERT_EQ(put(operation, bytes.substr(operation["offset"], operation["length"])).status, 200);
    }
}

Received SandboxFixture::sendBare(const HTTPRequest& request) {
    auto answer = sandbox.service().answer(request);
    Received received;
    received.status = answer.reply.status;
    received.json = parsedJSON(answer.reply.body).value_or(Json());
    received.body = answer.reply.body;
    received.headers = answer.reply.headers;
    received.wire = answer.wire;
    return received;
}

std::string SandboxFixture::idOf(const std::string& type,
                                 const std::vector<std::pair<std::string, std::string>>& conditions) {
    return sandbox.service().with([&](State& state) {
        const auto* resource = state.store.first(type, conditions);
        EXPECT_NE(resource, nullptr) << "no " << type;
        return resource == nullptr ? std::string() : resource->id();
    });
}

Json createBody(const std::string& type, const Json& attributes,
                const std::vector<std::pair<std::string, Ref>>& related) {
    return {{"data",
             {{"type", type}, {"attributes", attributes}, {"relationships", relationshipsJSON(related)}}}};
}

Json updateBody(const std::string& type, const std::string& id, const Json& attributes,
                const std::vector<std::pair<std::string, Ref>>& related) {
    return {{"data",
             {{"type", type},
              {"id", id},
              {"attributes", attributes},
              {"relationships", relationshipsJSON(related)}}}};
}

}  // namespace kestrin::sandbox
