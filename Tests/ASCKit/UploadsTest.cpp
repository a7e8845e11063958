#include "ASCKit/Resources/Uploads.h"

#include <gtest/gtest.h>

#include "KestrinCore/StableJSON.h"
#include "Tests/Support/ScriptedClient.h"

namespace kestrin {
namespace {

std::vector<UploadOperation> operations(std::string_view json) {
    return UploadOperation::operations({{"uploadOperations", StableJSON::decode(json)}});
}

std::string sent(const HTTPBody& body) {
    return std::get<std::string>(body);
}

TEST(Uploads, AnOperationPutsByDefaultAndMayHaveNoHeaders) {
    const auto found = operations(R"([{"url":"https://up/1","offset":0,"length":5}])");
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0], (UploadOperation{"PUT", *URL::parse("https://up/1"), 0, 5, {}}));
}

TEST(Uploads, MalformedOperationsAreLeftOutAndTheRestStand) {
    const auto found = operations(R"([
        {"url":"https://up/1","offset":"0","length":5}, {"url":"https://up/2","offset":0}, {"offset":0,"length":5},
        {"url":"not an address","offset":0,"length":5}, 7,
        {"url":"https://up/3","offset":5,"length":5,"method":"POST"}, {"url":"https://up/4","offset":1,"length":1,"method":7}])");
    ASSERT_EQ(found.size(), 2u);
    EXPECT_EQ(found[0].method, "POST");
    EXPECT_EQ(found[1].method, "PUT");
}

TEST(Uploads, WhatIsNoListHasNoOperations) {
    EXPECT_TRUE(operations(R"({"url":"https://up/1"})").empty());
    EXPECT_TRUE(UploadOperation::operations({}).empty());
}

TEST(Uploads, OfTwoHeadersWithOneNameTheLaterCounts) {
    const auto found = operations(R"([{"url":"https://up/1","offset":0,"length":5,"requestHeaders":[
        {"name":"A","value":"1"},{"name":"A","value":"2"},{"name":"B"},{"value":"3"},{"name":"C","value":4},5]}])");
    EXPECT_EQ(found[0].headers, (std::map<std::string, std::string>{{"A", "2"}}));
}

TEST(Uploads, PartsGoOutInTheOrderGivenWithTheirHeadersAndWithoutAToken) {
    ScriptedClient world({reply(200), reply(200)});
    const UploadOperation second{"PUT", *URL::parse("https://up/2"), 3, 3, {{"X-Part", "2"}}};
    const UploadOperation first{"POST", *URL::parse("https://up/1"), 0, 3, {}};

    ASC::upload(world.client, {second, first}, UploadSource::data("abcdef"));

    const auto& requests = world.server->sent;
    ASSERT_EQ(requests.size(), 2u);
    EXPECT_EQ(world.line(0), "PUT https://up/2");
    EXPECT_EQ(sent(*requests[0].body), "def");
    EXPECT_EQ(requests[0].headers, (HTTPHeaders{{"X-Part", "2"}}));
    EXPECT_EQ(requests[0].idleLimit, std::chrono::seconds(60));
    EXPECT_EQ(world.line(1), "POST https://up/1");
    EXPECT_TRUE(requests[1].headers.empty());
}

TEST(Uploads, TheFirstPartThatFailsEndsTheUpload) {
    ScriptedClient world({reply(200), reply(403)});
    const UploadOperation part{"PUT", *URL::parse("https://up/1"), 0, 1, {}};
    EXPECT_THROW(ASC::upload(world.client, {part, part, part}, UploadSource::data("a")), ASCError);
    EXPECT_EQ(world.server->sent.size(), 2u);
}

TEST(Uploads, WhoeverGoesAlongIsToldBeforeAndAfterEachPart) {
    ScriptedClient world({reply(200), reply(200), reply(403)});
    const UploadOperation part{"PUT", *URL::parse("https://up/1"), 0, 1, {}};
    std::vector<std::string> told;
    const auto note = [&](const char* when) {
        return [&told, &world, when](std::size_t number) {
            told.push_back(when + std::to_string(number) + ", sent " +
                           std::to_string(world.server->sent.size()));
        };
    };
    EXPECT_THROW(ASC::upload(world.client, {part, part, part}, UploadSource::data("a"),
                             {.before = note("before "), .after = note("after ")}),
                 ASCError);
    EXPECT_EQ(told, (std::vector<std::string>{"before 0, sent 0", "after 0, sent 1", "before 1, sent 1",
                                              "after 1, sent 2", "before 2, sent 2"}));
}

TEST(Uploads, WhatOneWhoGoesAlongThrowsEndsTheUpload) {
    ScriptedClient world({reply(200), reply(200)});
    const UploadOperation part{"PUT", *URL::parse("https://up/1"), 0, 1, {}};
    EXPECT_THROW(ASC::upload(world.client, {part, part}, UploadSource::data("a"),
                             {.after = [](std::size_t) { throw std::runtime_error("enough"); }}),
                 std::runtime_error);
    EXPECT_EQ(world.server->sent.size(), 1u);
    EXPECT_TRUE(world.uploadNews.back().isOver);
}

TEST(Uploads, NoOperationsSendNothing) {
    ScriptedClient world;
    ASC::upload(world.client, {}, UploadSource::file("nowhere"));
    EXPECT_TRUE(world.server->sent.empty());
}

// A step that moves a body by some bytes before it answers.
ScriptedTransport::Step moving(std::vector<std::int64_t> positions, int status) {
    return [positions = std::move(positions), status](const HTTPRequest& request, auto&&) {
        for (const auto position : positions) request.watch.moved(position);
        return HTTPResponse{status, {}, {}};
    };
}

struct Told {
    ScriptedClient world;
    const std::vector<UploadNews>& news = world.uploadNews;

    explicit Told(std::vector<ScriptedTransport::Step> script) : world(std::move(script)) {}

    void upload(const std::vector<std::int64_t>& lengths, const UploadSource& source) {
        std::vector<UploadOperation> parts;
        for (const auto length : lengths)
            parts.push_back({"PUT", *URL::parse("https://up/1"), 0, length, {}});
        ASC::upload(world.client, parts, source);
    }
    // "4 of 6", and "over" for the last.
    std::vector<std::string> lines() const {
        std::vector<std::string> all;
        for (const auto& one : news) {
            all.push_back(std::to_string(one.sent) + " of " + std::to_string(one.total));
            if (one.isOver) all.back() += " over";
        }
        return all;
    }
};

TEST(Uploads, TellHowManyBytesOfAllPartsAreSent) {
    Told told({moving({1, 4}, 200), moving({2}, 200)});
    told.upload({4, 2}, UploadSource::file("media/clip.mov"));
    EXPECT_EQ(told.lines(), (std::vector<std::string>{"0 of 6", "1 of 6", "4 of 6", "4 of 6", "6 of 6",
                                                      "6 of 6", "6 of 6 over"}));
    EXPECT_EQ(told.news.front().fileName, "clip.mov");
}

TEST(Uploads, TellThatAPartBeginsAgain) {
    Told told({moving({3}, 500), moving({1}, 200)});
    told.upload({4}, UploadSource::data("abcd"));
    EXPECT_EQ(told.lines(),
              (std::vector<std::string>{"0 of 4", "3 of 4", "1 of 4", "4 of 4", "4 of 4 over"}));
    EXPECT_EQ(told.news.front().fileName, "");
}

TEST(Uploads, TellTheirEndWhenTheyFail) {
    Told told({moving({3}, 403)});
    EXPECT_THROW(told.upload({4}, UploadSource::data("abcd")), ASCError);
    EXPECT_EQ(told.lines().back(), "3 of 4 over");
}

TEST(Uploads, TellNothingWithoutOperationsAndStandLengthsThatCannotBe) {
    Told nothing({});
    nothing.upload({}, UploadSource::data(""));
    EXPECT_TRUE(nothing.news.empty());

    Told told({moving({1}, 200), moving({1}, 200), moving({0}, 200)});
    const auto most = std::numeric_limits<std::int64_t>::max();
    told.upload({most, most, -1}, UploadSource::data("a"));
    EXPECT_EQ(told.news.back().total, most);
    EXPECT_EQ(told.news.back().sent, most);
}

TEST(Uploads, ASlicePastTheEndIsWhatIsThere) {
    const auto source = UploadSource::data("abcdef");
    EXPECT_EQ(sent(source.slice(4, 10)), "ef");
    EXPECT_EQ(sent(source.slice(6, 1)), "");
    EXPECT_EQ(sent(source.slice(99, 1)), "");
}

TEST(Uploads, ASliceOfAFileIsReadOnlyWhenItIsSent) {
    EXPECT_EQ(std::get<FileRange>(UploadSource::file("a.ipa").slice(4, 10)), (FileRange{"a.ipa", 4, 10}));
}

}  // namespace
}  // namespace kestrin
