// HTTP/2, which the service speaks and the other servers of these tests don't.
#include "Tests/ASCKit/CurlTransportFixture.h"
#include "Tests/ASCKit/HTTP2Server.h"

namespace kestrin {
namespace {

using testing::HasSubstr;
using testing::Not;

struct CurlTransportHTTP2Test : CurlTransportFixture {
    HTTP2Server server;

    CurlTransportHTTP2Test() {
        transport = std::make_unique<CurlTransport>(CurlTransport::Limits{}, server.certificate());
    }

    HTTPRequest sent(std::string method, const std::string& path) const {
        return {std::move(method), server.address(path), {}, std::nullopt, kPatience};
    }
};

TEST_F(CurlTransportHTTP2Test, AGetHasNoHeadersButItsOwn) {
    server.files.write("v1/apps", "{}");
    auto get = sent("GET", "/v1/apps?limit=200");
    get.headers = {{"Authorization", "Bearer x.y.z"}};

    EXPECT_EQ(outcome(get), "ok 200 {}");

    server.stop();
    EXPECT_THAT(server.log(), HasSubstr(":method: GET"));
    EXPECT_THAT(server.log(), HasSubstr(":path: /v1/apps?limit=200"));
    EXPECT_THAT(server.log(), HasSubstr("authorization: Bearer x.y.z"));
    for (const char* unwanted : {"user-agent:", "accept:", "expect:", "content-type: application"}) {
        EXPECT_THAT(server.log(), Not(HasSubstr(unwanted)));
    }
}

TEST_F(CurlTransportHTTP2Test, HeadersOfAReplyAreFoundByNameInAnyCase) {
    server.files.write("page.html", "hello");
    const auto reply = transport->send(sent("GET", "/page.html"), {});
    EXPECT_EQ(reply.status, 200);
    EXPECT_EQ(reply.header("Content-Length"), "5");
    EXPECT_EQ(transport->send(sent("GET", "/nowhere"), {}).status, 404);
}

TEST_F(CurlTransportHTTP2Test, RequestsOfEveryKindShareOneConnection) {
    server.files.write("v1/apps", "{}");
    for (int i = 0; i < 10; ++i) {
        EXPECT_EQ(outcome(sent("GET", "/v1/apps")), "ok 200 {}");
        EXPECT_EQ(outcome(withBody(sent("POST", "/v1/apps"), "{\"data\": 1}")), "ok 200 {\"data\": 1}");
        EXPECT_EQ(outcome(withBody(sent("PATCH", "/v1/apps"), "{}")), "ok 200 {}");
        EXPECT_EQ(outcome(sent("DELETE", "/v1/apps")), "ok 200 {}");
    }
    server.stop();
    EXPECT_THAT(server.log(), HasSubstr("[id=1]"));
    EXPECT_THAT(server.log(), Not(HasSubstr("[id=2]")));
}

TEST_F(CurlTransportHTTP2Test, LargeBodiesPassBothWays) {
    std::string large;
    for (int i = 0; large.size() < (6 << 20); ++i) large += std::to_string(i);
    server.files.write("large", large);
    EXPECT_EQ(outcome(sent("GET", "/large")), "ok 200 " + large);

    const TemporaryFolder folder;
    folder.write("build.ipa", "before" + large + "behind");
    const FileRange part{folder / "build.ipa", 6, static_cast<std::int64_t>(large.size())};
    EXPECT_EQ(outcome(withBody(sent("PUT", "/part"), part)), "ok 200 " + large);
}

TEST_F(CurlTransportHTTP2Test, AServerThatIsGoneIsATransportError) {
    server.files.write("v1/apps", "{}");
    EXPECT_EQ(outcome(sent("GET", "/v1/apps")), "ok 200 {}");
    server.stop();
    EXPECT_EQ(outcome(sent("GET", "/v1/apps")), "transport error cannotConnectToHost");
}

}  // namespace
}  // namespace kestrin
