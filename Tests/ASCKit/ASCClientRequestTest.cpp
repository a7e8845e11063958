#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "KestrinCore/FileError.h"
#include "Tests/ASCKit/ClientOutcome.h"
#include "Tests/Support/ScriptedClient.h"

namespace kestrin {
namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;
using testing::Not;
using Code = TransportError::Code;

constexpr const char* kEmptyPage = R"({"data":[]})";

ASCRequest get(std::string path, std::vector<QueryParameter> query = {}) {
    return {HTTPMethod::get, std::move(path), std::move(query), std::nullopt};
}

std::string page(const char* id, const char* next = nullptr) {
    std::string links = next ? std::string(R"({"next":")") + next + "\"}" : "{}";
    return std::string(R"({"data":[{"type":"apps","id":")") + id + R"("}],"links":)" + links + "}";
}

std::vector<std::string> idsOf(const std::vector<ResourceObject>& resources) {
    std::vector<std::string> ids;
    for (const auto& resource : resources) ids.push_back(resource.id);
    return ids;
}

TEST(ASCClientRequest, CarriesATokenAndNothingElse) {
    ScriptedClient world({reply(200, kEmptyPage)});

    world.client.send(get("/v1/apps", {QueryParameter::limit(200)}));

    const auto& sent = world.server->sent.at(0);
    EXPECT_EQ(world.line(0), "GET /v1/apps?limit=200");
    EXPECT_EQ(sent.headers.size(), 1u);
    EXPECT_THAT(sent.headers.at("Authorization"), testing::MatchesRegex("Bearer [^.]+[.][^.]+[.][^.]+"));
    EXPECT_FALSE(sent.body);
    EXPECT_EQ(sent.idleLimit, 60s);
}

TEST(ASCClientRequest, ABodyIsJSON) {
    for (const auto method : {HTTPMethod::post, HTTPMethod::patch, HTTPMethod::remove}) {
        ScriptedClient world({reply(204)});

        world.client.data({method, "/v1/builds/1", {}, "{}\n"});

        EXPECT_EQ(world.line(0), std::string(rawValue(method)) + " /v1/builds/1");
        EXPECT_EQ(world.body(0), "{}\n");
        EXPECT_EQ(world.server->sent.at(0).headers.at("Content-Type"), "application/json");
        EXPECT_EQ(world.server->sent.at(0).headers.size(), 2u);
    }
}

TEST(ASCClientRequest, OneTokenServesManyRequests) {
    ScriptedClient world(times(3, reply(200)));
    for (int i = 0; i < 3; ++i) world.client.data(get("/v1/apps"));
    const auto& sent = world.server->sent;
    EXPECT_EQ(sent[0].headers, sent[1].headers);
    EXPECT_EQ(sent[0].headers, sent[2].headers);
}

TEST(ASCClientRequest, WhatIsNoAddressIsRefusedBeforeAnythingIsSent) {
    for (const char* path : {"/v1/a b", "/v1/é", ".evil.test/v1", "@evil.test/v1", ":1/v1"}) {
        SCOPED_TRACE(path);
        const auto invalid = std::string("invalidRequest ") + path;
        ScriptedClient world;
        EXPECT_EQ(outcomeOf([&] { return world.client.data(get(path)); }), invalid);
        EXPECT_EQ(outcomeOf([&] { world.client.send(get(path)); }), invalid);
        EXPECT_EQ(outcomeOf([&] { world.client.all(get(path)); }), invalid);
        EXPECT_EQ(outcomeOf([&] { world.client.pages(get(path)); }), invalid);
        EXPECT_TRUE(world.server->sent.empty());
    }
}

TEST(ASCClientRequest, SendReadsOneDocument) {
    ScriptedClient world({reply(200, page("1", "https://api.example.test/v1/apps?cursor=2"))});

    const auto document = world.client.send(get("/v1/apps"));

    EXPECT_EQ(idsOf(document.data), (std::vector<std::string>{"1"}));
    EXPECT_TRUE(document.nextURL);
}

TEST(ASCClientRequest, AnEmptyBodyIsTheEmptyDocument) {
    ScriptedClient world({reply(204)});
    EXPECT_EQ(world.client.send(get("/v1/apps")), JSONAPIDocument());
}

TEST(ASCClientRequest, ABodyThatIsNoDocumentIsAnInvalidResponse) {
    for (const char* body : {"<html>", "{}", R"({"data":null})", "{\"data\":["}) {
        SCOPED_TRACE(body);
        ScriptedClient world(times(2, reply(200, body)));
        EXPECT_EQ(outcomeOf([&] { world.client.send(get("/v1/apps")); }), "invalidResponse /v1/apps");
        EXPECT_EQ(outcomeOf([&] { world.client.all(get("/v1/apps")); }), "invalidResponse /v1/apps");
    }
}

TEST(ASCClientRequest, DataIsTheBytesAsTheyCame) {
    const std::string bytes("not\0JSON\xFF", 9);
    ScriptedClient world({reply(200, bytes)});
    EXPECT_EQ(world.client.data(get("/v1/apps")), bytes);
}

TEST(ASCClientRequest, DataOfAnAddressIsAGetThatReportsItsPath) {
    ScriptedClient world({reply(200, "b"), reply(404)});
    const auto url = URL::parse("https://api.example.test/v1/apps?filter[name]=x").value();

    EXPECT_EQ(world.client.data(url), "b");
    EXPECT_EQ(world.line(0), "GET /v1/apps?filter[name]=x");
    EXPECT_EQ(outcomeOf([&] { return world.client.data(url); }), "http 404 /v1/apps");
}

TEST(ASCClientRequest, ATokenGoesToNoOtherHost) {
    for (const char* address : {
             "https://evil.test/v1/apps",
             "http://api.example.test/v1/apps",
             "https://api.example.test:8443/v1/apps",
             "https://api.example.test.evil.test/v1/apps",
             "https://user@api.example.test/v1/apps",
             "//evil.test/v1/apps",
             "/v1/apps",
             "ftp://api.example.test/v1/apps",
         }) {
        SCOPED_TRACE(address);
        ScriptedClient world({reply(200, page("1", address))});
        EXPECT_EQ(outcomeOf([&] { world.client.all(get("/v1/apps")); }), "invalidResponse /v1/apps");
        EXPECT_EQ(world.server->sent.size(), 1u);

        ScriptedClient direct;
        EXPECT_EQ(outcomeOf([&] { return direct.client.data(URL::parse(address).value()); }),
                  "invalidRequest " + URL::parse(address)->path());
        EXPECT_TRUE(direct.server->sent.empty());
    }
}

TEST(ASCClientRequest, ARedirectIsAStatusLikeAnyOther) {
    ScriptedClient world({reply(302, "", {{"Location", "https://api.example.test/elsewhere"}})});
    EXPECT_EQ(outcomeOf([&] { return world.client.data(get("/v1/apps")); }), "http 302 /v1/apps");
    EXPECT_EQ(world.server->sent.size(), 1u);
}

TEST(ASCClientPaging, FollowsNextLinksAsTheyStand) {
    ScriptedClient world({reply(200, page("1", "https://api.example.test/v1/apps?cursor=Mg.A&limit=1")),
                          reply(200, page("2", "HTTPS://API.example.test:443/other?b=c%2Fd")),
                          reply(200, page("3"))});

    const auto apps = world.client.all(get("/v1/apps", {QueryParameter::limit(1)}));

    EXPECT_EQ(idsOf(apps), (std::vector<std::string>{"1", "2", "3"}));
    EXPECT_EQ(world.line(0), "GET /v1/apps?limit=1");
    EXPECT_EQ(world.line(1), "GET /v1/apps?cursor=Mg.A&limit=1");
    EXPECT_EQ(world.line(2), "GET HTTPS://API.example.test:443/other?b=c%2Fd");
}

TEST(ASCClientPaging, AFurtherPageGoesOutWithTheSameMethodAndBody) {
    ScriptedClient world({reply(200, page("1", "https://api.example.test/next")), reply(200, page("2"))});
    world.client.all({HTTPMethod::post, "/v1/search", {}, "body"});
    EXPECT_EQ(world.line(1), "POST /next");
    EXPECT_EQ(world.body(1), "body");
}

TEST(ASCClientPaging, APageWithoutABodyEndsIt) {
    ScriptedClient world({reply(200, page("1", "https://api.example.test/next")), reply(204)});
    EXPECT_EQ(idsOf(world.client.all(get("/v1/apps"))), (std::vector<std::string>{"1"}));
    EXPECT_TRUE(world.server->isAtTheEnd());
}

TEST(ASCClientPaging, PagesKeepsWhatTheyInclude) {
    ScriptedClient world(
        {reply(
             200,
             R"({"data":[],"included":[{"type":"a","id":"1"}],"links":{"next":"https://api.example.test/2"}})"),
         reply(200, R"({"data":{"type":"b","id":"2"},"included":[{"type":"a","id":"3"}],"meta":{"x":1}})")});

    const auto pages = world.client.pages(get("/v1/placements"));

    ASSERT_EQ(pages.size(), 2u);
    EXPECT_EQ(idsOf(pages[0].included), (std::vector<std::string>{"1"}));
    EXPECT_EQ(idsOf(pages[1].data), (std::vector<std::string>{"2"}));
    EXPECT_EQ(idsOf(pages[1].included), (std::vector<std::string>{"3"}));
    EXPECT_TRUE(pages[1].meta);
}

TEST(ASCClientPaging, APageThatFailsIsReportedWithThePathOfTheRequest) {
    ScriptedClient world({reply(200, page("1", "https://api.example.test/next")), reply(404)});
    EXPECT_EQ(outcomeOf([&] { world.client.all(get("/v1/apps")); }), "http 404 /v1/apps");

    ScriptedClient unreadable({reply(200, page("1", "https://api.example.test/next")), reply(200, "x")});
    EXPECT_EQ(outcomeOf([&] { unreadable.client.pages(get("/v1/apps")); }), "invalidResponse /v1/apps");
}

TEST(ASCClientPaging, EveryPageHasTriesAndATokenOfItsOwn) {
    ScriptedClient world({reply(401), reply(503), reply(200, page("1", "https://api.example.test/next")),
                          reply(401), reply(503), reply(200, page("2"))});
    EXPECT_EQ(idsOf(world.client.all(get("/v1/apps"))), (std::vector<std::string>{"1", "2"}));
    EXPECT_EQ(world.time.slept, (std::vector<Seconds>{1s, 1s}));
}

TEST(ASCClientPaging, ThereIsNoLimitOnTheirNumber) {
    ScriptedClient world(times(2000, reply(200, page("1", "https://api.example.test/next"))));
    world.server->then(reply(200, page("last")));
    EXPECT_EQ(world.client.all(get("/v1/apps")).size(), 2001u);
}

HTTPRequest part() {
    return {"PUT",
            URL::parse("https://upload.example.test/part?signature=x").value(),
            {{"Content-Type", "image/png"}},
            HTTPBody(std::string("bytes"))};
}

std::string outcomeOfPart(ScriptedClient& world, HTTPRequest request = part()) {
    return outcomeOf([&] { world.client.sendUploadPart(request); });
}

TEST(ASCClientUpload, APartGoesOutAsItIsWithoutAToken) {
    ScriptedClient world({reply(200)});
    EXPECT_EQ(outcomeOfPart(world), "ok");
    EXPECT_EQ(world.server->sent, std::vector<HTTPRequest>{part()});
}

TEST(ASCClientUpload, EachStatusHasItsOutcome) {
    struct Row {
        int status;
        const char* outcome;
        std::vector<Seconds> slept;
    };
    const std::vector<Seconds> all{1s, 2s, 4s, 8s, 16s};
    const Row rows[] = {
        {201, "ok", {}},
        {204, "ok", {}},
        {500, "http 500 upload", all},
        {503, "http 503 upload", all},
        {600, "http 600 upload", all},
        {429, "http 429 upload", {}},
        {401, "http 401 upload", {}},
        {403, "http 403 upload", {}},
        {307, "http 307 upload", {}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.status);
        ScriptedClient world(times(6, reply(row.status)));
        EXPECT_EQ(outcomeOfPart(world), row.outcome);
        EXPECT_EQ(world.time.slept, row.slept);
    }
}

TEST(ASCClientUpload, RetryAfterIsNotRead) {
    ScriptedClient world({reply(503, "", {{"Retry-After", "100"}}), reply(200)});
    EXPECT_EQ(outcomeOfPart(world), "ok");
    EXPECT_EQ(world.time.slept, std::vector<Seconds>{1s});
}

TEST(ASCClientUpload, TheRateLimitOfAnotherHostIsNotOurs) {
    ScriptedClient world({reply(200, "", {{"X-Rate-Limit", "user-hour-lim:1;user-hour-rem:0;"}})});
    EXPECT_EQ(outcomeOfPart(world), "ok");
    EXPECT_FALSE(world.client.rateLimit());
}

TEST(ASCClientUpload, ALostReplyIsRetriedForEveryMethod) {
    for (const char* method : {"PUT", "POST"}) {
        auto request = part();
        request.method = method;
        ScriptedClient world({fail(Code::networkConnectionLost), reply(500), reply(200)});
        EXPECT_EQ(outcomeOfPart(world, request), "ok");
        EXPECT_EQ(world.time.slept, (std::vector<Seconds>{1s, 2s}));
    }
    ScriptedClient world(times(6, fail(Code::timedOut)));
    EXPECT_EQ(outcomeOfPart(world), "transport timedOut upload");
}

TEST(ASCClientUpload, AStopIsCancelledAndOtherErrorsPassUnchanged) {
    ScriptedClient world({fail(Code::cancelled)});
    EXPECT_EQ(outcomeOfPart(world), "cancelled");

    ScriptedClient missingFile({[](auto&&...) -> HTTPResponse {
        throw FileError(FileError::Operation::read, "x.png",
                        std::make_error_code(std::errc::permission_denied));
    }});
    EXPECT_THROW(missingFile.client.sendUploadPart(part()), FileError);
}

TEST(ASCClientUpload, TheItemsOfAnErrorAreRead) {
    ScriptedClient world({reply(400, R"({"errors":[{"code":"BAD_PART","detail":"Too short."}]})")});
    try {
        world.client.sendUploadPart(part());
        FAIL();
    } catch (const ASCError& error) {
        EXPECT_EQ(error.errorDescription(), "App Store Connect returned an error (400). Too short.");
    }
}

TEST(ASCClient, NoErrorNamesAKeyOrAToken) {
    std::vector<ASCError> errors;
    const auto collect = [&](std::vector<ScriptedTransport::Step> script) {
        ScriptedClient world(std::move(script));
        try {
            world.client.send(get("/v1/apps"));
        } catch (const ASCError& error) {
            const auto text = error.errorDescription() + describe(error);
            EXPECT_THAT(text, Not(HasSubstr("Bearer")));
            EXPECT_THAT(text, Not(HasSubstr(world.server->sent.at(0).headers.at("Authorization").substr(7))));
            EXPECT_THAT(text, Not(HasSubstr("PRIVATE KEY")));
            errors.push_back(error);
        }
    };
    collect({reply(401), reply(401)});
    collect({reply(400)});
    collect({reply(200, "x")});
    collect(times(6, fail(Code::secureConnectionFailed)));
    EXPECT_EQ(errors.size(), 4u);
}

}  // namespace
}  // namespace kestrin
