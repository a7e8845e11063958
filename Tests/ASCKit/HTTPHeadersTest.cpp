#include "ASCKit/Transport/HTTPHeaders.h"

#include <gtest/gtest.h>

namespace kestrin {
namespace {

TEST(HTTPHeaders, AreFoundByNameInAnyLetterCase) {
    const HTTPHeaders headers{{"X-Rate-Limit", "1"}, {"x-rate-limit", "2"}, {"Retry-After", "3"}};
    EXPECT_EQ(headers.size(), 2u);
    EXPECT_EQ(headers.find(std::string_view("X-RATE-LIMIT"))->second, "1");
    EXPECT_TRUE(headers.contains(std::string_view("retry-after")));
    EXPECT_FALSE(headers.contains(std::string_view("Retry")));
}

TEST(HTTPHeaders, NamesAreTokens) {
    for (const char* name : {"Accept", "X-1", "!#$%&'*+-.^_`|~"}) EXPECT_TRUE(isHTTPToken(name)) << name;
    for (const char* name : {"", "a b", "a:", "a\r", "é", "a/b", "\"a\""})
        EXPECT_FALSE(isHTTPToken(name)) << name;
    EXPECT_FALSE(isHTTPToken(std::string_view("a\0", 2)));
}

TEST(HTTPHeaders, ValuesStayWithinTheirLine) {
    for (const char* value : {"", "a b", "a\tb", "é"}) EXPECT_TRUE(isHTTPFieldValue(value)) << value;
    for (const char* value : {"a\r\nb", "\n", "\r", "\x7F", "\x1B[0m"}) EXPECT_FALSE(isHTTPFieldValue(value));
    EXPECT_FALSE(isHTTPFieldValue(std::string_view("a\0", 2)));
}

TEST(HTTPHeaders, WhitespaceAroundAValueIsNoPartOfIt) {
    EXPECT_EQ(withoutSurroundingWhitespace(" \t a b \r\n"), "a b");
    EXPECT_EQ(withoutSurroundingWhitespace(" \n"), "");
    EXPECT_EQ(withoutSurroundingWhitespace(""), "");
}

}  // namespace
}  // namespace kestrin
