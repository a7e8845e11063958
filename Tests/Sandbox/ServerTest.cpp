// The service on a real socket, driven by libcurl.
#include "Sandbox/Server.h"

#include <curl/curl.h>
#include <sys/stat.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>

#include "Tests/Sandbox/SandboxFixture.h"

namespace kestrin::sandbox {
namespace {

struct CurlReply {
    CURLcode result = CURLE_OK;
    long status = 0;
    std::string body;
    std::string headers;
};

size_t append(char* bytes, size_t size, size_t count, void* target) {
    static_cast<std::string*>(target)->append(bytes, size * count);
    return size * count;
}

// One handle, and so one connection, for as long as it lives.
class Caller {
 public:
    explicit Caller(const Sandbox& sandbox)
        : root_(sandbox.url()),
          authorization_("Authorization: Bearer " +
                         goodToken(sandbox.credential(), systemSeconds()).token()) {}
    ~Caller() { curl_easy_cleanup(handle_); }
    Caller(const Caller&) = delete;
    Caller& operator=(const Caller&) = delete;

    CurlReply call(const std::string& method, const std::string& target, const std::string& body = {},
                   const char* encoding = nullptr) {
        CurlReply reply;
        curl_easy_reset(handle_);
        const auto url = root_ + target;
        auto* headers = curl_slist_append(nullptr, authorization_.c_str());
        headers = curl_slist_append(headers, "Content-Type: application/json");
        curl_easy_setopt(handle_, CURLOPT_URL, url.c_str());
        curl_easy_setopt(handle_, CURLOPT_PROXY, "");
        curl_easy_setopt(handle_, CURLOPT_CUSTOMREQUEST, method.c_str());
        curl_easy_setopt(handle_, CURLOPT_HTTPHEADER, headers);
        curl_easy_setopt(handle_, CURLOPT_WRITEFUNCTION, append);
        curl_easy_setopt(handle_, CURLOPT_WRITEDATA, &reply.body);
        curl_easy_setopt(handle_, CURLOPT_HEADERFUNCTION, append);
        curl_easy_setopt(handle_, CURLOPT_HEADERDATA, &reply.headers);
        if (encoding != nullptr) curl_easy_setopt(handle_, CURLOPT_ACCEPT_ENCODING, encoding);
        if (!body.empty()) {
            curl_easy_setopt(handle_, CURLOPT_POSTFIELDS, body.c_str());
            curl_easy_setopt(handle_, CURLOPT_POSTFIELDSIZE, static_cast<long>(body.size()));
        }
        reply.result = curl_easy_perform(handle_);
        curl_easy_getinfo(handle_, CURLINFO_RESPONSE_CODE, &reply.status);
        curl_slist_free_all(headers);
        return reply;
    }

 private:
    CURL* handle_ = curl_easy_init();
    std::string root_;
    std::string authorization_;
};

class ServerTest : public testing::Test {
 protected:
    ServerTest() { sandbox.start(); }

    Sandbox sandbox;
};

TEST_F(ServerTest, AnswersOverOneConnection) {
    Caller caller(sandbox);
    for (int i = 0; i < 20; ++i) {
        const auto reply = caller.call("GET", "/v1/apps?limit=2");
        ASSERT_EQ(reply.result, CURLE_OK);
        ASSERT_EQ(reply.status, 200);
        EXPECT_NE(reply.headers.find("X-Rate-Limit: user-hour-lim:3600;"), std::string::npos);
        EXPECT_NE(reply.headers.find("Content-Type: application/json"), std::string::npos);
    }
    EXPECT_EQ(sandbox.service().log().connectionCount(), 1u);
}

TEST_F(ServerTest, GivesLinksThatLeadBackToIt) {
    Caller caller(sandbox);
    const auto document = parsedJSON(caller.call("GET", "/v1/apps?limit=1").body).value();
    EXPECT_TRUE(document["links"]["next"].get<std::string>().starts_with(sandbox.url() + "/v1/apps?cursor="));
}

TEST_F(ServerTest, PassesBodiesAndHeadersOn) {
    Caller caller(sandbox);
    EXPECT_EQ(caller.call("PATCH", "/v1/apps/1", R"({"data": 1})").status, 405);
    const auto log = sandbox.service().log();
    const auto& entry = log.entries().front();
    EXPECT_EQ(entry.body, R"({"data": 1})");
    EXPECT_EQ(headerValue(entry.headers, "content-type"), "application/json");
    EXPECT_EQ(headerValue(entry.headers, "REMOTE_ADDR"), std::nullopt);
}

TEST_F(ServerTest, CompressesForWhoAccepts) {
    Caller caller(sandbox);
    const auto plain = caller.call("GET", "/v1/builds");
    const auto compressed = caller.call("GET", "/v1/builds", {}, "gzip");
    EXPECT_EQ(plain.headers.find("Content-Encoding"), std::string::npos);
    EXPECT_NE(compressed.headers.find("Content-Encoding: gzip"), std::string::npos);
    EXPECT_EQ(parsedJSON(compressed.body).value()["data"].size(), 5u);
    EXPECT_TRUE(headerValue(sandbox.service().log().entries().back().headers, "Accept-Encoding"));
}

TEST_F(ServerTest, CompressesWithGzipWhateverElseIsAccepted) {
    Caller caller(sandbox);
    const auto reply = caller.call("GET", "/v1/builds", {}, "br, gzip, deflate");
    EXPECT_NE(reply.headers.find("Content-Encoding: gzip"), std::string::npos);
    const auto log = sandbox.service().log();
    const auto& headers = log.entries().back().headers;
    EXPECT_EQ(headerValue(headers, "Accept-Encoding"), "br, gzip, deflate");
    EXPECT_EQ(std::count_if(headers.begin(), headers.end(),
                            [](const auto& header) { return header.first == "Accept-Encoding"; }),
              1);
    const auto other = caller.call("GET", "/v1/builds", {}, "br");
    EXPECT_EQ(other.headers.find("Content-Encoding"), std::string::npos);
}

TEST(PlainServer, DoesNotCompressButLogsThatItWasAsked) {
    Settings settings;
    settings.compresses = false;
    Sandbox sandbox(settings);
    sandbox.start();
    Caller caller(sandbox);
    const auto reply = caller.call("GET", "/v1/builds", {}, "gzip");
    EXPECT_EQ(reply.headers.find("Content-Encoding"), std::string::npos);
    EXPECT_EQ(headerValue(sandbox.service().log().entries().back().headers, "Accept-Encoding"), "gzip");
}

TEST_F(ServerTest, DropsBeforeActing) {
    sandbox.service().addFault("GET /v1/apps*#1=drop-before");
    Caller caller(sandbox);
    EXPECT_EQ(caller.call("GET", "/v1/apps").result, CURLE_GOT_NOTHING);
    EXPECT_EQ(caller.call("GET", "/v1/apps").status, 200);
    EXPECT_EQ(sandbox.service().log().entries()[0].status, 0);
    EXPECT_EQ(sandbox.service().log().entries()[1].status, 200);
}

TEST_F(ServerTest, CutsABodyShort) {
    sandbox.service().addFault("*#1=cut:100");
    Caller caller(sandbox);
    const auto reply = caller.call("GET", "/v1/builds");
    EXPECT_EQ(reply.result, CURLE_PARTIAL_FILE);
    EXPECT_EQ(reply.body.size(), 100u);
}

TEST_F(ServerTest, WaitsWhenToldTo) {
    sandbox.service().addFault("*=latency:50");
    Caller caller(sandbox);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(caller.call("GET", "/v1/apps").status, 200);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(50));
}

TEST_F(ServerTest, StopsWhileAConnectionIsOpenAndAnotherOneWaits) {
    sandbox.service().addFault("GET /v1/builds=latency:600000");
    Caller idle(sandbox), waiting(sandbox);
    EXPECT_EQ(idle.call("GET", "/v1/apps").status, 200);
    std::thread stalled([&] { EXPECT_NE(waiting.call("GET", "/v1/builds").result, CURLE_COULDNT_CONNECT); });
    while (sandbox.service().log().entries().size() < 2) std::this_thread::yield();

    const auto start = std::chrono::steady_clock::now();
    sandbox.stop();

    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
    stalled.join();
}

TEST_F(ServerTest, RefusesAPortThatIsTaken) {
    Sandbox other;
    const int port = std::stoi(sandbox.url().substr(sandbox.url().rfind(':') + 1));
    EXPECT_THROW(other.start(port), std::runtime_error);
}

TEST_F(ServerTest, ReadsABodyThatComesWithAReadAndCloses) {
    Caller caller(sandbox);
    EXPECT_EQ(caller.call("GET", "/v1/apps", R"({"data": 1})").status, 400);
    EXPECT_EQ(caller.call("GET", "/v1/apps").status, 200);
    EXPECT_EQ(sandbox.service().log().entries().size(), 2u);
    EXPECT_EQ(sandbox.service().log().connectionCount(), 2u);
}

TEST_F(ServerTest, WritesThePrivateKeyForItsOwnerAlone) {
    const auto folder = std::filesystem::path(testing::TempDir()) / "sandbox-key";
    std::filesystem::create_directories(folder);

    const auto environment = sandbox.environment(folder);

    EXPECT_EQ(environment.at("KESTRIN_SANDBOX_ROOT"), sandbox.url());
    EXPECT_EQ(environment.at("ASC_KEY_ID"), sandbox.credential().keyID);
    EXPECT_EQ(environment.at("ASC_ISSUER_ID"), sandbox.credential().issuerID);
    std::ifstream file(environment.at("ASC_PRIVATE_KEY"));
    std::ostringstream content;
    content << file.rdbuf();
    EXPECT_EQ(content.str(), sandbox.credential().privateKeyPEM);
    struct stat status {};
    ASSERT_EQ(::stat(environment.at("ASC_PRIVATE_KEY").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600u);
}

}  // namespace
}  // namespace kestrin::sandbox
