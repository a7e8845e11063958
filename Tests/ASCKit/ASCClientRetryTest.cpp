#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Tests/ASCKit/ClientOutcome.h"
#include "Tests/Support/ScriptedClient.h"

namespace kestrin {
namespace {

using namespace std::chrono_literals;
using Code = TransportError::Code;
using Script = std::vector<ScriptedTransport::Step>;
using Slept = std::vector<Seconds>;

constexpr auto kMethods = {HTTPMethod::get, HTTPMethod::post, HTTPMethod::patch, HTTPMethod::remove};

ASCRequest request(HTTPMethod method) {
    return {method, "/v1/apps", {}, std::nullopt};
}

std::string outcomeOfRequest(ScriptedClient& world, HTTPMethod method = HTTPMethod::get) {
    return outcomeOf([&] { return world.client.data(request(method)); });
}

Script joined(Script first, const Script& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

TEST(ASCClientRetry, GetDoublesItsWaitAndGivesUpAfterSixTries) {
    ScriptedClient world(times(6, reply(500)));

    EXPECT_EQ(outcomeOfRequest(world), "http 500 /v1/apps");

    EXPECT_EQ(world.time.slept, (Slept{1s, 2s, 4s, 8s, 16s}));
    EXPECT_EQ(world.server->sent.size(), 6u);
}

TEST(ASCClientRetry, EveryStatusOf2xxIsTheResult) {
    for (const int status : {200, 201, 202, 204, 299}) {
        SCOPED_TRACE(status);
        ScriptedClient world({reply(status, "body")});
        EXPECT_EQ(outcomeOfRequest(world), "ok body");
        EXPECT_TRUE(world.server->isAtTheEnd());
    }
}

TEST(ASCClientRetry, AStatusIsRetriedByItsKindAndTheMethod) {
    struct Row {
        int status;
        bool forPost, forOthers;
    };
    const Row rows[] = {
        {429, true, true},   {503, true, true},   {500, false, true},  {502, false, true},
        {504, false, true},  {599, false, true},  {199, false, false}, {300, false, false},
        {301, false, false}, {307, false, false}, {400, false, false}, {403, false, false},
        {404, false, false}, {408, false, false}, {409, false, false}, {422, false, false},
        {499, false, false}, {600, false, false},
    };
    for (const Row& row : rows) {
        for (const auto method : kMethods) {
            SCOPED_TRACE(std::to_string(row.status) + " " + std::string(rawValue(method)));
            const bool isRetried = method == HTTPMethod::post ? row.forPost : row.forOthers;
            ScriptedClient world({reply(row.status), reply(200, "b")});

            const auto outcome = outcomeOfRequest(world, method);

            EXPECT_EQ(outcome, isRetried ? "ok b" : "http " + std::to_string(row.status) + " /v1/apps");
            EXPECT_EQ(world.time.slept, isRetried ? Slept{1s} : Slept{});
        }
    }
}

TEST(ASCClientRetry, A429ThatNeverEndsIsTheRateLimit) {
    ScriptedClient world(times(6, reply(429, R"({"errors":[{"detail":"dropped"}]})")));
    EXPECT_EQ(outcomeOfRequest(world, HTTPMethod::post), "rateLimited");
    EXPECT_EQ(world.time.slept, (Slept{1s, 2s, 4s, 8s, 16s}));
}

TEST(ASCClientRetry, A503ThatNeverEndsIsReportedWithItsItems) {
    ScriptedClient world(times(6, reply(503, R"({"errors":[{"code":"DOWN"}]})")));
    try {
        world.client.data(request(HTTPMethod::get));
        FAIL();
    } catch (const ASCError& error) {
        EXPECT_EQ(describe(error), "http 503 /v1/apps");
        EXPECT_EQ(error.apiErrorCodes(), std::vector<std::string>{"DOWN"});
    }
}

TEST(ASCClientRetry, RetryAfterIsWaitedForAsItStands) {
    struct Row {
        const char* when;
        int status;
        const char* field;
        Slept slept;
        const char* outcome;
    };
    const Row rows[] = {
        {"exactly the longest wait", 429, "300", {300s}, "ok b"},
        {"a second more isn't waited for", 429, "301", {}, "rateLimited"},
        {"nor with 503", 503, "301", {}, "http 503 /v1/apps"},
        {"nor with another 5xx", 500, "301", {}, "http 500 /v1/apps"},
        {"more than the ceiling of the backoff", 503, "90", {90s}, "ok b"},
        {"no wait at all", 503, "0", {0s}, "ok b"},
        {"a date in the past is no wait", 503, "Sun, 06 Nov 1994 08:49:37 GMT", {0s}, "ok b"},
        {"a date ahead", 503, "Fri, 15 Jan 2027 08:00:07 GMT", {7s}, "ok b"},
        {"a date that is too far ahead", 429, "Fri, 15 Jan 2027 08:05:01 GMT", {}, "rateLimited"},
        {"what can't be read leaves the backoff", 503, "soon", {1s}, "ok b"},
        {"also with a status that only some methods retry", 502, "4", {4s}, "ok b"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.when);
        ScriptedClient world({reply(row.status, "", {{"retry-after", row.field}}), reply(200, "b")});
        EXPECT_EQ(outcomeOfRequest(world), row.outcome);
        EXPECT_EQ(world.time.slept, row.slept);
    }
}

TEST(ASCClientRetry, RetryAfterHasNoJitterAndTheBackoffHas) {
    FakeTime time;
    auto server = std::make_shared<ScriptedTransport>(
        Script{reply(503, "", {{"Retry-After", "8"}}), reply(503), reply(200)});
    ASCClient::Options options;
    options.retryPolicy.jitter = [](Seconds delay) { return delay / 2; };
    options.now = time.clock();
    options.sleep = time.sleep();
    ASCClient client(TokenProvider(JWTSigner(testCredential())), server, options);

    client.data(request(HTTPMethod::get));

    EXPECT_EQ(time.slept, (Slept{8s, 1s}));
}

TEST(ASCClientRetry, ABackoffOverTheLongestWaitIsNotWaitedForEither) {
    auto server = std::make_shared<ScriptedTransport>(Script{reply(500)});
    FakeTime time;
    ASCClient::Options options;
    options.retryPolicy = {6, 400s, 1000s, 300s, [](Seconds delay) { return delay; }};
    options.sleep = time.sleep();
    ASCClient client(TokenProvider(JWTSigner(testCredential())), server, options);

    EXPECT_EQ(outcomeOf([&] { return client.data(request(HTTPMethod::get)); }), "http 500 /v1/apps");
    EXPECT_TRUE(time.slept.empty());
}

TEST(ASCClientRetry, TheNumberOfTriesIsThePolicys) {
    for (const int tries : {1, 2}) {
        auto server = std::make_shared<ScriptedTransport>(times(static_cast<std::size_t>(tries), reply(503)));
        FakeTime time;
        ASCClient::Options options;
        options.retryPolicy.maxAttempts = tries;
        options.sleep = time.sleep();
        ASCClient client(TokenProvider(JWTSigner(testCredential())), server, options);

        EXPECT_EQ(outcomeOf([&] { return client.data(request(HTTPMethod::get)); }), "http 503 /v1/apps");
        EXPECT_TRUE(server->isAtTheEnd());
    }
}

TEST(ASCClientRetry, ALostReplyIsRetriedExceptForAPost) {
    for (const auto method : kMethods) {
        SCOPED_TRACE(rawValue(method));
        ScriptedClient world({fail(Code::timedOut), reply(200, "b")});
        const bool isPost = method == HTTPMethod::post;
        EXPECT_EQ(outcomeOfRequest(world, method), isPost ? "transport timedOut /v1/apps" : "ok b");
        EXPECT_EQ(world.time.slept, isPost ? Slept{} : Slept{1s});
    }
}

TEST(ASCClientRetry, LostRepliesWithoutEndAreATransportFailureWithTheLastCode) {
    ScriptedClient world(joined(times(5, fail(Code::timedOut)), {fail(Code::networkConnectionLost)}));
    EXPECT_EQ(outcomeOfRequest(world), "transport networkConnectionLost /v1/apps");
    EXPECT_EQ(world.time.slept, (Slept{1s, 2s, 4s, 8s, 16s}));
}

TEST(ASCClientRetry, StatusesAndLostRepliesCountTogether) {
    ScriptedClient world(
        {reply(500), fail(Code::timedOut), reply(503), reply(429), fail(Code::timedOut), reply(502)});
    EXPECT_EQ(outcomeOfRequest(world), "http 502 /v1/apps");
    EXPECT_EQ(world.time.slept, (Slept{1s, 2s, 4s, 8s, 16s}));
}

TEST(ASCClientRetry, AnErrorThatIsNoTransportErrorPassesUnchanged) {
    ScriptedClient world({[](auto&&...) -> HTTPResponse { throw std::runtime_error("mine"); }});
    EXPECT_THROW(world.client.data(request(HTTPMethod::get)), std::runtime_error);
    EXPECT_TRUE(world.time.slept.empty());
}

// The token of the `n`th request.
std::string tokenOf(const ScriptedClient& world, std::size_t n) {
    return world.server->sent.at(n).headers.at("Authorization");
}

TEST(ASCClientRetry, ARefusedTokenIsReplacedOnceAndAtOnce) {
    ScriptedClient world({reply(401), reply(200, "b")});
    EXPECT_EQ(outcomeOfRequest(world, HTTPMethod::post), "ok b");
    EXPECT_TRUE(world.time.slept.empty());
    // Two signatures of the same claims differ: a new token was signed though the clock stood still.
    EXPECT_NE(tokenOf(world, 0), tokenOf(world, 1));
}

TEST(ASCClientRetry, ASecondRefusalIsUnauthorized) {
    ScriptedClient world({reply(401), reply(401)});
    EXPECT_EQ(outcomeOfRequest(world), "unauthorized");
    EXPECT_TRUE(world.time.slept.empty());
}

TEST(ASCClientRetry, ARefusalCountsAsNoTryAndComesOncePerRequest) {
    ScriptedClient world(joined(times(5, reply(503)), {reply(401), reply(503)}));
    EXPECT_EQ(outcomeOfRequest(world), "http 503 /v1/apps");
    EXPECT_EQ(world.time.slept, (Slept{1s, 2s, 4s, 8s, 16s}));

    ScriptedClient refusedTwice({reply(401), reply(503), reply(401)});
    EXPECT_EQ(outcomeOfRequest(refusedTwice), "unauthorized");

    ScriptedClient nextRequest({reply(401), reply(200), reply(401), reply(200, "b")});
    EXPECT_EQ(outcomeOfRequest(nextRequest), "ok ");
    EXPECT_EQ(outcomeOfRequest(nextRequest), "ok b");
}

TEST(ASCClientRetry, ALongWaitGetsAFreshTokenAfterIt) {
    ScriptedClient world(joined(times(4, reply(503, "", {{"Retry-After", "300"}})), {reply(200)}));
    EXPECT_EQ(outcomeOfRequest(world), "ok ");
    EXPECT_EQ(tokenOf(world, 0), tokenOf(world, 3));  // 900 seconds old
    EXPECT_NE(tokenOf(world, 3), tokenOf(world, 4));  // 1200 seconds old, over the 1020
}

TEST(ASCClientRetry, EveryReplyIsAskedForTheRateLimit) {
    const HTTPHeaders first{{"X-Rate-Limit", "user-hour-lim:3600;user-hour-rem:9;"}};
    const HTTPHeaders second{{"x-rate-limit", "user-hour-lim:3600;user-hour-rem:8;"}};
    ScriptedClient world({reply(404, "", first), reply(503, "", second), reply(200),
                          reply(200, "", {{"X-Rate-Limit", "user-hour-lim:10;"}})});
    EXPECT_FALSE(world.client.rateLimit());

    outcomeOfRequest(world);
    EXPECT_EQ(world.client.rateLimit(), (RateLimitStatus{3600, 9}));
    outcomeOfRequest(world);
    EXPECT_EQ(world.client.rateLimit(), (RateLimitStatus{3600, 8}));
    outcomeOfRequest(world);  // half a reading is none
    EXPECT_EQ(world.client.rateLimit(), (RateLimitStatus{3600, 8}));
}

TEST(ASCClientRetry, AnErrorBodyThatIsPlainTextHasNoItems) {
    ScriptedClient world({reply(404, "Not here")});
    try {
        world.client.data(request(HTTPMethod::get));
        FAIL();
    } catch (const ASCError& error) {
        EXPECT_TRUE(error.as<ASCError::HTTP>()->errors.empty());
        EXPECT_EQ(error.errorDescription(), "App Store Connect returned an error (404). ");
    }
}

TEST(ASCClientCancellation, AStopBeforeTheRequestSendsNothing) {
    ScriptedClient world({reply(200)});
    world.stopSource.request_stop();
    EXPECT_EQ(outcomeOfRequest(world), "cancelled");
    EXPECT_TRUE(world.server->sent.empty());
}

TEST(ASCClientCancellation, AStopDuringTheRequestIsNotRetried) {
    ScriptedClient world;
    world.server->then([&](auto&&, const std::stop_token& stop) -> HTTPResponse {
        world.stopSource.request_stop();
        EXPECT_TRUE(stop.stop_requested());
        throw TransportError(Code::cancelled);
    });
    EXPECT_EQ(outcomeOfRequest(world), "cancelled");
    EXPECT_TRUE(world.time.slept.empty());
}

TEST(ASCClientCancellation, AStopEndsAWait) {
    ScriptedClient world;
    world.server->then([&](auto&&...) {
        world.stopSource.request_stop();
        return HTTPResponse{503, {}, ""};
    });
    EXPECT_EQ(outcomeOfRequest(world), "cancelled");
    EXPECT_EQ(world.server->sent.size(), 1u);
}

TEST(ASCClientCancellation, ASleepThatDoesNotLookAtTheStopEndsTheRunToo) {
    std::stop_source source;
    auto server = std::make_shared<ScriptedTransport>(Script{reply(503)});
    ASCClient::Options options;
    options.sleep = [&](auto&&...) { source.request_stop(); };
    options.stop = source.get_token();
    ASCClient client(TokenProvider(JWTSigner(testCredential())), server, options);
    EXPECT_EQ(outcomeOf([&] { return client.data(request(HTTPMethod::get)); }), "cancelled");
}

// --- Waits that are told

constexpr const char* kAsked = "App Store Connect asked to wait before the next try";
constexpr const char* kNoAnswer = "App Store Connect didn’t answer as it should; waiting before the next try";

std::string told(const char* what, int minutes) {
    return std::string(what) + " " + std::to_string(minutes);
}

TEST(ASCClientRetry, AWaitThatTheServiceAsksForIsToldEachMinute) {
    ToldWaits waits;
    ScriptedClient world({reply(429, "", {{"Retry-After", "150"}}), reply(200)}, &waits);
    outcomeOfRequest(world);
    EXPECT_EQ(waits.lines, (std::vector{told(kAsked, 1), told(kAsked, 2)}));
    EXPECT_EQ(world.time.slept, (Slept{60s, 60s, 30s}));
}

TEST(ASCClientRetry, AllWaitsOfARequestAreOneWait) {
    ToldWaits waits;
    ScriptedClient world(joined(times(2, reply(503, "", {{"Retry-After", "29"}})), {reply(500), reply(200)}),
                         &waits);
    outcomeOfRequest(world);
    EXPECT_EQ(waits.lines, std::vector{told(kNoAnswer, 1)}) << "58 seconds and the 4 of the third backoff";
}

TEST(ASCClientRetry, TheWaitOfTheNextRequestBeginsAnew) {
    ToldWaits waits;
    const auto asked = reply(503, "", {{"Retry-After", "50"}});
    ScriptedClient world({asked, reply(200), asked, reply(200)}, &waits);
    outcomeOfRequest(world);
    outcomeOfRequest(world);
    EXPECT_TRUE(waits.lines.empty());
}

}  // namespace
}  // namespace kestrin
