#include "ASCKit/ASCError.h"

#include <gtest/gtest.h>

#include "Tests/Support/OtherLanguage.h"

namespace kestrin {
namespace {

APIErrorItem item(std::optional<std::string> code, std::optional<std::string> title,
                  std::optional<std::string> detail) {
    return {std::nullopt, std::move(code), std::move(title), std::move(detail), std::nullopt};
}

ASCError http(int status, std::vector<APIErrorItem> errors) {
    return ASCError(ASCError::HTTP{status, std::move(errors), "/v1/apps"});
}

TEST(ASCError, SaysEachFailureInOneSentence) {
    struct Row {
        ASCError error;
        const char* sentence;
    };
    const Row rows[] = {
        {http(403, {item("FORBIDDEN_ERROR", "Forbidden", "Your role is Developer.")}),
         "This API key doesn’t have permission to do that. Writing a listing needs the App Manager or Admin "
         "role. "
         "Your role is Developer."},
        {http(403, {}),
         "This API key doesn’t have permission to do that. Writing a listing needs the App Manager or Admin "
         "role. "},
        {http(409, {item("A", "Title.", "Detail.")}), "App Store Connect returned an error (409). Detail."},
        {http(500, {}), "App Store Connect returned an error (500). "},
        {ASCError(ASCError::Transport{TransportError::Code::timedOut, "/v1/apps"}),
         "Couldn’t reach App Store Connect. Check your internet connection."},
        {ASCError(ASCError::InvalidResponse{"/v1/apps"}),
         "App Store Connect sent a response Kestrin couldn’t read."},
        {ASCError(ASCError::InvalidRequest{"/v1/a b"}),
         "App Store Connect sent a response Kestrin couldn’t read."},
        {ASCError(ASCError::UnreadablePrivateKey{"/home/x/AuthKey.p8"}),
         "Couldn’t read the private key at /home/x/AuthKey.p8."},
        {ASCError(ASCError::MissingEnvironment{"ASC_KEY_ID"}),
         "Set ASC_KEY_ID to use an App Store Connect API key."},
        {ASCError(ASCError::Keychain{-25308}), "Couldn’t access the keychain (error -25308)."},
        {ASCError(ASCError::Unauthorized{}),
         "App Store Connect didn’t accept this API key. Check the key ID and issuer ID, and that the key "
         "hasn’t been "
         "revoked."},
        {ASCError(ASCError::RateLimited{}),
         "App Store Connect’s hourly request limit for this key was reached. Try again later."},
        {ASCError(ASCError::InvalidPrivateKey{}),
         "This file isn’t a valid App Store Connect API private key (.p8)."},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.sentence);
        EXPECT_EQ(row.error.errorDescription(), row.sentence);
        EXPECT_STREQ(row.error.what(), row.sentence);
    }
}

TEST(ASCError, IsLookedUpUnderTheKeyOfItsCase) {
    const std::pair<ASCError, std::string> rows[] = {
        {http(403, {}), "ascErrorForbidden"},
        {http(404, {}), "ascErrorHTTP"},
        {ASCError(ASCError::Transport{TransportError::Code::timedOut, ""}), "ascErrorTransport"},
        {ASCError(ASCError::InvalidResponse{""}), "ascErrorInvalidResponse"},
        {ASCError(ASCError::InvalidRequest{""}), "ascErrorInvalidResponse"},
        {ASCError(ASCError::UnreadablePrivateKey{""}), "ascErrorUnreadablePrivateKey"},
        {ASCError(ASCError::MissingEnvironment{""}), "ascErrorMissingEnvironment"},
        {ASCError(ASCError::Keychain{1}), "ascErrorKeychain"},
        {ASCError(ASCError::Unauthorized{}), "ascErrorUnauthorized"},
        {ASCError(ASCError::RateLimited{}), "ascErrorRateLimited"},
        {ASCError(ASCError::InvalidPrivateKey{}), "ascErrorInvalidPrivateKey"},
    };
    std::map<std::string, std::string> messages;
    for (const auto& [error, key] : rows) messages[key] = "translated " + key;
    const OtherLanguage language(messages);

    for (const auto& [error, key] : rows) EXPECT_EQ(error.errorDescription(), "translated " + key);
}

TEST(ASCError, DetailsAreDetailElseTitleOfEachItem) {
    struct Row {
        const char* when;
        std::vector<APIErrorItem> items;
        const char* details;
    };
    const Row rows[] = {
        {"detail before title", {item({}, "T", "D")}, "D"},
        {"title without detail", {item({}, "T", {})}, "T"},
        {"neither is left out", {item({}, "T", {}), item("C", {}, {}), item({}, {}, "D")}, "T D"},
        {"an empty detail is a detail", {item({}, "T", "")}, ""},
        {"braces in a detail are text", {item({}, {}, "{status} {details}")}, "{status} {details}"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(http(409, row.items).errorDescription(),
                  std::string("App Store Connect returned an error (409). ") + row.details);
    }
}

TEST(ASCError, CodesAreThoseOfTheItemsThatHaveOne) {
    const std::vector<std::string> codes{"B", "A", "B"};
    EXPECT_EQ(http(409, {item("B", {}, {}), item({}, "T", {}), item("A", {}, {}), item("B", {}, {})})
                  .apiErrorCodes(),
              codes);
    EXPECT_TRUE(http(409, {}).apiErrorCodes().empty());
    EXPECT_TRUE(ASCError(ASCError::Unauthorized{}).apiErrorCodes().empty());
    EXPECT_TRUE(ASCError(ASCError::RateLimited{}).apiErrorCodes().empty());
}

TEST(ASCError, GivesThePayloadOfItsCaseOnly) {
    const auto error = http(404, {});
    ASSERT_TRUE(error.as<ASCError::HTTP>());
    EXPECT_EQ(error.as<ASCError::HTTP>()->path, "/v1/apps");
    EXPECT_FALSE(error.as<ASCError::RateLimited>());
}

TEST(APIErrorItem, IsReadFromAnErrorReply) {
    const auto items = APIErrorItem::decodeAll(
        R"({"errors":[{"id":"5","status":"409","code":"ENTITY_ERROR","title":"T","detail":"D",)"
        R"("source":{"pointer":"/data"},"meta":{}},{}]})");

    ASSERT_EQ(items.size(), 2u);
    EXPECT_EQ(items[0], (APIErrorItem{"409", "ENTITY_ERROR", "T", "D", JSONObject{{"pointer", "/data"}}}));
    EXPECT_EQ(items[1], APIErrorItem());
}

TEST(APIErrorItem, OfABodyThatIsNoErrorReplyThereAreNone) {
    for (const char* body : {
             "",
             "Bad gateway",
             "{}",
             "[]",
             "null",
             R"({"errors":null})",
             R"({"errors":"none"})",
             R"({"errors":["text"]})",
             R"({"errors":[{"status":409}]})",
             R"({"errors":[{"detail":"a"},{"detail":1}]})",
             R"({"errors":[{"detail":"a"}])",
             "\xFF\xFE",
         }) {
        SCOPED_TRACE(body);
        EXPECT_TRUE(APIErrorItem::decodeAll(body).empty());
    }
}

}  // namespace
}  // namespace kestrin
