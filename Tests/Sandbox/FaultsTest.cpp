#include "Sandbox/Faults.h"

#include "Tests/Sandbox/SandboxFixture.h"

namespace kestrin::sandbox {
namespace {

using testing::ElementsAre;

// Which of the requests that a fault strikes, by their place from 1.
std::vector<int> struck(const char* line, const std::vector<std::string>& requests) {
    Faults faults;
    faults.add(line);
    std::vector<int> places;
    for (std::size_t i = 0; i < requests.size(); ++i) {
        if (faults.strike(requests[i]).fault != nullptr) places.push_back(static_cast<int>(i) + 1);
    }
    return places;
}

const std::vector<std::string> kRequests{"GET /v1/apps", "POST /v1/apps", "GET /v1/apps?limit=1",
                                         "GET /v1/builds", "GET /v1/apps"};

TEST(Faults, StrikesByPatternAndByPlace) {
    EXPECT_THAT(struck("*=drop-before", kRequests), ElementsAre(1, 2, 3, 4, 5));
    EXPECT_THAT(struck("*#2=drop-before", kRequests), ElementsAre(2));
    EXPECT_THAT(struck("*#2+2=drop-before", kRequests), ElementsAre(2, 3));
    EXPECT_THAT(struck("*#4+=drop-before", kRequests), ElementsAre(4, 5));
    EXPECT_THAT(struck("GET /v1/apps=drop-before", kRequests), ElementsAre(1, 5));
    EXPECT_THAT(struck("GET /v1/apps#2=drop-before", kRequests), ElementsAre(5));
    EXPECT_THAT(struck("GET *apps*=drop-before", kRequests), ElementsAre(1, 3, 5));
    EXPECT_THAT(struck("* /v1/apps=drop-before", kRequests), ElementsAre(1, 2, 5));
    EXPECT_THAT(struck("GET /v1/apps?limit=1=drop-before", kRequests), ElementsAre(3));
    EXPECT_THAT(struck("GET /v1/app=drop-before", kRequests), ElementsAre());
}

TEST(Faults, AddsLatenciesUpAndTakesTheFirstOfTheRest) {
    Faults faults;
    faults.add("*=latency:20");
    faults.add("GET *=latency:5");
    faults.add("*=status:500");
    faults.add("*=drop-after");

    const auto strike = faults.strike("GET /v1/apps");

    EXPECT_EQ(strike.latency.count(), 25);
    EXPECT_EQ(strike.fault->text, "*=status:500");
}

TEST(Faults, RefusesALineItCannotRead) {
    for (const char* line : {"", "*", "*=", "*=burn", "*=latency", "*=latency:x", "*=drop-after:3",
                             "*#x=drop-after", "*#1+x=drop-after", "*=status:5x"}) {
        SCOPED_TRACE(line);
        EXPECT_THROW(Fault::parse(line), std::invalid_argument);
    }
}

class FaultyService : public SandboxFixture {};

TEST_F(FaultyService, FailsWithAStatusInsteadOfActing) {
    sandbox.service().addFault("GET /v1/apps#1=status:429;retry-after:2");
    const auto failed = get("/v1/apps");
    EXPECT_EQ(failed.status, 429);
    EXPECT_EQ(failed.code(), "RATE_LIMIT_EXCEEDED");
    EXPECT_EQ(headerValue(failed.headers, "Retry-After"), "2");
    EXPECT_TRUE(headerValue(failed.headers, "X-Rate-Limit"));
    EXPECT_EQ(get("/v1/apps").status, 200);
    EXPECT_EQ(sandbox.service().log().entries()[0].fault, "GET /v1/apps#1=status:429;retry-after:2");
    EXPECT_EQ(sandbox.service().log().entries()[1].fault, "");
}

TEST_F(FaultyService, SpoilsBodies) {
    sandbox.service().addFault("*#1=truncate");
    sandbox.service().addFault("*#2=garbage");
    sandbox.service().addFault("*#3=empty");
    const auto whole = get("/v1/apps").body;
    EXPECT_FALSE(parsedJSON(whole));
    EXPECT_TRUE(whole.starts_with(R"({"data":)"));
    EXPECT_TRUE(get("/v1/apps").body.starts_with("<html>"));
    const auto empty = get("/v1/apps");
    EXPECT_EQ(empty.status, 200);
    EXPECT_EQ(empty.body, "");
}

TEST_F(FaultyService, PromisesWhatItDoesNotDo) {
    const std::string type = "appCustomProductPages";
    const auto page = idOf(type, {{"name", "Autumn"}});
    const auto path = "/v1/appCustomProductPages/" + page;
    sandbox.service().addFault("PATCH *=ignore");
    const auto promised = patch(path, updateBody(type, page, {{"name", "Spring"}}));
    EXPECT_EQ(promised.status, 200);
    EXPECT_EQ(promised.body, "");
    EXPECT_EQ(sandbox.service().log().entries().back().status, 200);
    const auto name =
        sandbox.service().with([&](State& state) { return state.store.find(type, page)->text("name"); });
    EXPECT_EQ(name, "Autumn");
}

TEST_F(FaultyService, TellsWhatIsArmed) {
    sandbox.service().addFault("*#3=drop-after");
    EXPECT_THROW(sandbox.service().addFault("*=burn"), std::invalid_argument);
    sandbox.service().clearFaults();
    EXPECT_FALSE(get("/v1/apps").wire.closeSilently);
}

}  // namespace
}  // namespace kestrin::sandbox
