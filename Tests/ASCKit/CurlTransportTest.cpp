// What goes out: the bytes of requests, the connection they take, bodies from files.
#include <filesystem>

#include "KestrinCore/FileError.h"
#include "Tests/ASCKit/CurlTransportFixture.h"
#include "Tests/Support/TemporaryFolder.h"

namespace kestrin {
namespace {

using namespace std::chrono_literals;

struct CurlTransportTest : CurlTransportFixture {};

TEST_F(CurlTransportTest, AGetHasNoHeadersButItsOwn) {
    const RawServer server(answering(log, rawReply("b")));
    auto get = request(server, "GET", "/v1/apps?filter%5BbundleId%5D=a.b&limit=1");
    get.headers = {{"Authorization", "Bearer x.y.z"}};

    EXPECT_EQ(outcome(get), "ok 200 b");

    EXPECT_EQ(log.at(0).line(), "GET /v1/apps?filter%5BbundleId%5D=a.b&limit=1 HTTP/1.1");
    EXPECT_THAT(log.at(0).headerNames(),
                testing::UnorderedElementsAre("Host", "Accept-Encoding", "Authorization"));
    EXPECT_EQ(log.at(0).header("Host"), "127.0.0.1:" + std::to_string(server.port()));
    EXPECT_EQ(log.at(0).header("Authorization"), "Bearer x.y.z");
    EXPECT_THAT(log.at(0).header("Accept-Encoding"), testing::HasSubstr("gzip"));
}

TEST_F(CurlTransportTest, ABodyHasItsLengthAndNothingIsWaitedFor) {
    const RawServer server(answering(log, rawReply("")));
    const std::string large(3 << 20, 'x');  // at this size libcurl on its own asks for leave with Expect
    for (const char* method : {"POST", "PATCH", "PUT"}) {
        for (const auto& body : {std::string("{}\n"), large, std::string()}) {
            auto sent = withBody(request(server, method), body);
            sent.headers = {{"Content-Type", "application/json"}};
            EXPECT_EQ(outcome(sent), "ok 200 ");

            const auto got = log.all().back();
            EXPECT_EQ(got.line(), std::string(method) + " /v1/apps HTTP/1.1");
            EXPECT_THAT(got.headerNames(), testing::UnorderedElementsAre("Host", "Accept-Encoding",
                                                                         "Content-Type", "Content-Length"));
            EXPECT_EQ(got.header("Content-Type"), "application/json");
            EXPECT_TRUE(got.body == body) << method << " " << body.size();
        }
    }
}

TEST_F(CurlTransportTest, TellsHowMuchOfABodyIsOnItsWay) {
    const RawServer server(answering(log, rawReply("")));
    const std::string body(3 << 20, 'x');
    std::vector<std::int64_t> positions;
    auto sent = withBody(request(server, "PUT"), body);
    sent.watch.moved = [&](std::int64_t position) { positions.push_back(position); };

    EXPECT_EQ(outcome(sent), "ok 200 ");

    EXPECT_GT(positions.size(), 1u);
    EXPECT_TRUE(std::is_sorted(positions.begin(), positions.end()));
    EXPECT_EQ(positions.back(), static_cast<std::int64_t>(body.size()));
}

TEST_F(CurlTransportTest, EndsWithWhatAWatchThrows) {
    const RawServer server(answering(log, rawReply("")));
    auto sent = withBody(request(server, "PUT"), std::string("body"));
    sent.watch.moved = [](std::int64_t) { throw Cancelled(); };
    EXPECT_EQ(outcome(sent), "cancelled");
}

TEST_F(CurlTransportTest, WithoutABodyThereIsNoContentType) {
    const RawServer server(answering(log, rawReply("")));
    outcome(request(server, "DELETE"));
    outcome(request(server, "POST"));

    EXPECT_EQ(log.at(0).line(), "DELETE /v1/apps HTTP/1.1");
    EXPECT_THAT(log.at(0).headerNames(), testing::UnorderedElementsAre("Host", "Accept-Encoding"));
    EXPECT_THAT(log.at(1).headerNames(),
                testing::UnorderedElementsAre("Host", "Accept-Encoding", "Content-Length"));
    EXPECT_EQ(log.at(1).header("Content-Length"), "0");
}

TEST_F(CurlTransportTest, AnAddressGoesOutAsItStands) {
    const RawServer server(answering(log, rawReply("")));
    for (const char* path : {"/v1/../a/./b//c", "/v1/apps?filter[name]=x&y=%2f%7E", "/?"}) {
        outcome(request(server, "GET", path));
        EXPECT_EQ(log.all().back().line(), std::string("GET ") + path + " HTTP/1.1");
    }
}

TEST_F(CurlTransportTest, AFieldWithoutAValueIsSentAndOneThatWouldBreakTheRequestIsNot) {
    const RawServer server(answering(log, rawReply("")));
    auto empty = request(server);
    empty.headers = {{"X-Empty", ""}};
    EXPECT_EQ(outcome(empty), "ok 200 ");
    EXPECT_THAT(log.at(0).headerNames(), testing::Contains("X-Empty"));

    const HTTPHeaders broken[] = {
        {{"X-A", "b\r\nX-C: d"}}, {{"X-A", "b\n"}}, {{"X-A", std::string("b\0c", 3)}},
        {{"X A", "b"}},           {{"X-A:", "b"}},  {{"", "b"}}};
    for (const auto& headers : broken) {
        auto bad = request(server);
        bad.headers = headers;
        EXPECT_EQ(outcome(bad), "transport error unsupportedURL");
    }
    EXPECT_EQ(outcome(request(server, "GET / HTTP/1.1\r\nX-C: d\r\n\r\nGET")),
              "transport error unsupportedURL");
    EXPECT_EQ(log.size(), 1u);
}

TEST_F(CurlTransportTest, ManyRequestsShareOneConnection) {
    const RawServer server(answering(log, rawReply("b")));
    for (int i = 0; i < 20; ++i) EXPECT_EQ(outcome(request(server)), "ok 200 b");
    outcome(withBody(request(server, "POST"), "{}"));
    outcome(withBody(request(server, "PATCH"), "{}"));
    outcome(request(server, "DELETE"));
    EXPECT_EQ(log.size(), 23u);
    EXPECT_EQ(server.connections(), 1u);
}

// A first request that is answered, and a second one on the same connection that gets the end of it instead.
RawServer::Handler answeringOnce(RequestLog& log) {
    return [&log](RawConnection& connection) {
        auto first = connection.readRequest();
        if (!first) return;
        log.add(*first);
        connection.send(rawReply("b"));
        if (auto second = connection.readRequest()) log.add(*second);
    };
}

TEST_F(CurlTransportTest, APostIsSentOnceAlsoWhenAKeptConnectionDies) {
    for (const auto& body : {std::optional<HTTPBody>("{}"), std::optional<HTTPBody>()}) {
        RequestLog requests;
        const RawServer server(answeringOnce(requests));
        auto post = request(server, "POST", "/v1/create");
        post.body = body;
        EXPECT_EQ(outcome(request(server)), "ok 200 b");

        const auto result = outcome(post);

        // Either it went out on the kept connection and was lost, or on one of its own and was answered.
        EXPECT_EQ(result, body ? "transport error networkConnectionLost" : "ok 200 b");
        std::size_t posts = 0;
        for (const auto& each : requests.all()) posts += each.line() == "POST /v1/create HTTP/1.1" ? 1 : 0;
        EXPECT_EQ(posts, 1u);
    }
}

TEST_F(CurlTransportTest, AConnectionThatWasClosedMeanwhileIsReplaced) {
    const RawServer server([&](RawConnection& connection) {
        auto only = connection.readRequest();
        if (!only) return;
        log.add(*only);
        connection.send(rawReply("b"));
    });
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(outcome(request(server)), "ok 200 b");
    }
    EXPECT_EQ(log.size(), 3u);
}

// Bodies from files

TEST_F(CurlTransportTest, APartOfAFileIsItsRangeOfBytes) {
    const TemporaryFolder folder;
    folder.write("asset.png", "0123456789");
    const RawServer server(answering(log, rawReply("")));
    const struct {
        std::int64_t offset, length;
        const char* bytes;
    } rows[] = {
        {0, 10, "0123456789"}, {0, 4, "0123"}, {4, 3, "456"}, {7, 100, "789"},
        {10, 5, ""},           {50, 5, ""},    {3, 0, ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.bytes);
        EXPECT_EQ(outcome(withBody(request(server, "PUT"),
                                   FileRange{folder / "asset.png", row.offset, row.length})),
                  "ok 200 ");
        EXPECT_EQ(log.all().back().body, row.bytes);
    }
}

TEST_F(CurlTransportTest, AFileThatCannotBeReadIsAFileErrorAndNothingIsSent) {
    const TemporaryFolder folder;
    folder.write("asset.png", "0123456789");
    std::filesystem::create_directory(folder / "folder");
    const RawServer server(answering(log, rawReply("")));
    for (const auto& range :
         {FileRange{folder / "none.png", 0, 1}, FileRange{folder / "folder", 0, 1},
          FileRange{folder / "asset.png", -1, 5}, FileRange{folder / "asset.png", 0, -1}}) {
        try {
            transport->send(withBody(request(server, "PUT"), range), {});
            ADD_FAILURE();
        } catch (const FileError& error) {
            EXPECT_EQ(error.path, range.file);
        }
    }
    EXPECT_EQ(log.size(), 0u);
}

TEST_F(CurlTransportTest, AFileThatShrinksWhileItIsSentIsAFileError) {
    constexpr std::size_t kLength = 32 << 20;
    const TemporaryFolder folder;
    folder.write("asset.mov", std::string(kLength, 'x'));
    const RawServer server(
        [&](RawConnection& connection) {
            connection.read(1);
            std::filesystem::resize_file(folder / "asset.mov", 10);
            connection.waitForEnd();
        },
        {.receiveBuffer = 64 << 10});
    EXPECT_THROW(
        transport->send(withBody(request(server, "PUT"), FileRange{folder / "asset.mov", 0, kLength}), {}),
        FileError);
}

}  // namespace
}  // namespace kestrin
