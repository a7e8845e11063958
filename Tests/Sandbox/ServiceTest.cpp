// What holds for every endpoint: paths, methods, media types, queries, the rate limit, the log.
#include "Sandbox/Service.h"

#include "Tests/Sandbox/SandboxFixture.h"

namespace kestrin::sandbox {
namespace {

using testing::ElementsAre;

class ServiceTest : public SandboxFixture {};

TEST_F(ServiceTest, RefusesWhatIsNoPathAndWhatIsNoMethodOfAPath) {
    EXPECT_EQ(get("/v1/nothing").status, 404);
    EXPECT_EQ(get("/v1/nothing").code(), "PATH_ERROR");
    EXPECT_EQ(get("/v1/apps/").code(), "PATH_ERROR");
    EXPECT_EQ(get("/v1/apps/1/2").code(), "PATH_ERROR");
    EXPECT_EQ(get("/v2/apps").code(), "PATH_ERROR");
    EXPECT_EQ(remove("/v1/apps").status, 405);
    EXPECT_EQ(remove("/v1/apps").code(), "METHOD_NOT_ALLOWED");
    EXPECT_EQ(get("/elsewhere").status, 404);
}

TEST_F(ServiceTest, AnswersAnUnknownIdWith404) {
    for (const char* path : {"/v1/apps/1", "/v1/apps/1/appInfos", "/v1/appInfos/x/appInfoLocalizations",
                             "/v1/apps/x%2Fy/appStoreVersions", "/v1/builds/1", "/v1/appStoreVersions/1",
                             "/v1/appStoreVersions/1/appStoreVersionLocalizations",
                             "/v1/appStoreVersions/1/appStoreReviewDetail"}) {
        SCOPED_TRACE(path);
        const auto reply = get(path);
        EXPECT_EQ(reply.status, 404);
        EXPECT_EQ(reply.code(), "NOT_FOUND");
    }
}

TEST_F(ServiceTest, AsksForATokenBeforeItTellsAnything) {
    EXPECT_EQ(sendBare({"GET", "/v1/nothing", {}, {}, 1}).status, 401);
}

TEST_F(ServiceTest, WantsJSONInAWriteAndNothingInARead) {
    const std::string body = "{}";
    const auto path = "/v1/builds/" + idOf("builds", {{"version", "241"}});
    EXPECT_EQ(send("PATCH", path, body, {{"Content-Type", "text/plain"}}).status, 415);
    EXPECT_EQ(send("PATCH", path, body, {{"Content-Type", "application/x-www-form-urlencoded"}}).status, 415);
    EXPECT_EQ(sendBare({"PATCH", path, {{"Authorization", authorization}}, body, 1}).status, 415);
    EXPECT_EQ(send("PATCH", path, body, {{"Content-Type", "application/vnd.api+json"}}).status, 422);
    EXPECT_EQ(send("PATCH", path, body, {{"Content-Type", "application/json; charset=utf-8"}}).status, 422);
    EXPECT_EQ(send("GET", "/v1/apps", body).status, 400);
    EXPECT_TRUE(send("GET", "/v1/apps", body).wire.closeAfterwards);
}

TEST_F(ServiceTest, DoesNotNeedAnAcceptHeader) {
    EXPECT_EQ(send("GET", "/v1/apps", {}, {{"Accept", "*/*"}}).status, 200);
    EXPECT_EQ(send("GET", "/v1/apps", {}, {{"Accept", "application/vnd.api+json"}}).status, 200);
    EXPECT_EQ(send("GET", "/v1/apps", {}, {{"Accept", "text/html"}}).status, 406);
}

struct BadQuery {
    const char* target;
    const char* code;
    const char* parameter;
};

const BadQuery kBadQueries[] = {
    {"/v1/apps?colour=red", "PARAMETER_ERROR.ILLEGAL", "colour"},
    {"/v1/apps?filter%5Bcolour%5D=red", "PARAMETER_ERROR.ILLEGAL", "filter[colour]"},
    {"/v1/apps/1234567890?limit=2", "PARAMETER_ERROR.ILLEGAL", "limit"},
    {"/v1/apps/1234567890?sort=name", "PARAMETER_ERROR.ILLEGAL", "sort"},
    {"/v1/apps?limit=0", "PARAMETER_ERROR.INVALID", "limit"},
    {"/v1/apps?limit=201", "PARAMETER_ERROR.INVALID", "limit"},
    {"/v1/apps?limit=ten", "PARAMETER_ERROR.INVALID", "limit"},
    {"/v1/apps?limit=1&limit=2", "PARAMETER_ERROR.INVALID", "limit"},
    {"/v1/apps?limit%5BappInfos%5D=51", "PARAMETER_ERROR.INVALID", "limit[appInfos]"},
    {"/v1/apps?limit%5Bcolours%5D=5", "PARAMETER_ERROR.ILLEGAL", "limit[colours]"},
    {"/v1/apps?sort=primaryLocale", "PARAMETER_ERROR.INVALID", "sort"},
    {"/v1/apps?include=colours", "PARAMETER_ERROR.INVALID", "include"},
    {"/v1/apps?fields%5Bapps%5D=colour", "PARAMETER_ERROR.INVALID", "fields[apps]"},
    {"/v1/apps?fields%5Bcolours%5D=red", "PARAMETER_ERROR.ILLEGAL", "fields[colours]"},
    {"/v1/apps?filter%5BappStoreVersions.platform%5D=ANDROID", "PARAMETER_ERROR.INVALID",
     "filter[appStoreVersions.platform]"},
    {"/v1/apps/1234567890/appStoreVersions?sort=createdDate", "PARAMETER_ERROR.ILLEGAL", "sort"},
    {"/v1/builds?filter%5BprocessingState%5D=DONE", "PARAMETER_ERROR.INVALID", "filter[processingState]"},
    {"/v1/apps?cursor=2.00000000", "PARAMETER_ERROR.INVALID", "cursor"},
    {"/v1/apps?%zz=1", "PARAMETER_ERROR.INVALID", "%zz"},
};

TEST_F(ServiceTest, RefusesAQueryThatTheEndpointDoesNotHave) {
    for (const auto& row : kBadQueries) {
        SCOPED_TRACE(row.target);
        const auto reply = get(row.target);
        EXPECT_EQ(reply.status, 400);
        EXPECT_EQ(reply.code(), row.code);
        EXPECT_EQ(reply.place(), row.parameter);
    }
}

TEST_F(ServiceTest, NamesEveryParameterThatIsWrong) {
    const auto reply = get("/v1/apps?limit=0&colour=red&sort=x");
    ASSERT_EQ(reply.status, 400);
    EXPECT_EQ(reply.json["errors"].size(), 3u);
}

TEST_F(ServiceTest, GivesAnErrorItsFourTexts) {
    const auto error = get("/v1/apps/1").json.at("errors").at(0);
    for (const char* name : {"id", "status", "code", "title", "detail"}) {
        EXPECT_FALSE(error.at(name).get<std::string>().empty()) << name;
    }
    EXPECT_EQ(error["status"], "404");
}

TEST_F(ServiceTest, CountsTheHourDownInEveryReply) {
    EXPECT_EQ(headerValue(get("/v1/apps").headers, "x-rate-limit"), "user-hour-lim:3600;user-hour-rem:3599;");
    EXPECT_EQ(headerValue(get("/v1/apps/1").headers, "X-Rate-Limit"),
              "user-hour-lim:3600;user-hour-rem:3598;");
}

TEST(RateLimitTest, RefusesWhatIsBeyondTheHourAndForgetsAfterIt) {
    auto now = kNow;
    Settings settings;
    settings.now = [&now] { return now; };
    settings.requestsPerHour = 2;
    Sandbox sandbox(settings);
    const auto ask = [&] {
        const auto token = goodToken(sandbox.credential(), now).token();
        return sandbox.service()
            .answer({"GET", "/v1/apps", {{"Authorization", "Bearer " + token}}, {}, 1})
            .reply;
    };

    EXPECT_EQ(ask().status, 200);
    now += 1;
    EXPECT_EQ(ask().status, 200);
    const auto refused = ask();
    now += 3599;
    const auto later = ask();

    EXPECT_EQ(refused.status, 429);
    EXPECT_NE(refused.body.find("RATE_LIMIT_EXCEEDED"), std::string::npos);
    EXPECT_EQ(headerValue(refused.headers, "X-Rate-Limit"), "user-hour-lim:2;user-hour-rem:0;");
    EXPECT_EQ(later.status, 200) << "the first request is an hour old";
    EXPECT_EQ(headerValue(later.headers, "X-Rate-Limit"), "user-hour-lim:2;user-hour-rem:0;");
}

TEST_F(ServiceTest, KeepsALogOfWhatWasSent) {
    get("/v1/apps?limit=1");
    post("/v1/apps", {{"a", 1}});
    remove("/v1/apps");

    const auto log = sandbox.service().log();

    EXPECT_THAT(log.lines(), ElementsAre("GET /v1/apps?limit=1", "POST /v1/apps", "DELETE /v1/apps"));
    EXPECT_EQ(log.entries()[1].body, R"({"a":1})");
    EXPECT_EQ(log.entries()[1].status, 405);
    EXPECT_EQ(log.count("DELETE"), 1u);
    EXPECT_EQ(log.count("GET", "/v1/apps?"), 1u);
    EXPECT_EQ(log.connectionCount(), 1u);
    sandbox.service().clearLog();
    EXPECT_EQ(sandbox.service().log().entries().size(), 0u);
}

TEST_F(ServiceTest, DoesNotShowTokensInItsLog) {
    get("/v1/apps");
    const auto shown = dumped(sandbox.service().log().toJSON());
    EXPECT_EQ(shown.find(authorization), std::string::npos);
    EXPECT_NE(shown.find("Authorization: Bearer …"), std::string::npos);
}

TEST_F(ServiceTest, RemembersATokenWhereNoneBelongs) {
    get("/elsewhere");
    EXPECT_TRUE(sandbox.service().log().entries().front().strayToken);
}

}  // namespace
}  // namespace kestrin::sandbox
