#include "ASCKit/Credentials/TokenProvider.h"

#include <gtest/gtest.h>

#include "Tests/Support/FakeTime.h"
#include "Tests/Support/TestCredential.h"

namespace kestrin {
namespace {

using namespace std::chrono_literals;

// Two signatures of the same text differ, so that equal tokens are one token.
struct TokenProviderTest : testing::Test {
    FakeTime time;
    TokenProvider tokens{JWTSigner(testCredential()), time.clock()};
};

TEST_F(TokenProviderTest, GivesTheSameTokenWhileTheClockStandsStill) {
    EXPECT_EQ(tokens.token(), tokens.token());
}

TEST_F(TokenProviderTest, RefreshesTwoMinutesBeforeTheEnd) {
    const auto first = tokens.token();

    time.advance(1019s);
    EXPECT_EQ(tokens.token(), first);
    time.advance(Seconds(0.999));
    EXPECT_EQ(tokens.token(), first);

    time.advance(Seconds(0.001));
    const auto second = tokens.token();
    EXPECT_NE(second, first);
    EXPECT_NE(second.substr(0, second.rfind('.')), first.substr(0, first.rfind('.')));  // another iat

    time.advance(1019s);
    EXPECT_EQ(tokens.token(), second);
    time.advance(1s);
    EXPECT_NE(tokens.token(), second);
}

TEST_F(TokenProviderTest, ATokenLivesNineteenMinutes) {
    const auto signedNow = JWTSigner(testCredential()).token(time.now, 1140s);
    const auto token = tokens.token();
    EXPECT_EQ(token.substr(0, token.rfind('.')), signedNow.substr(0, signedNow.rfind('.')));
}

TEST_F(TokenProviderTest, SignsAnewAfterInvalidate) {
    const auto first = tokens.token();
    tokens.invalidate();
    const auto second = tokens.token();
    EXPECT_NE(second, first);
    EXPECT_EQ(tokens.token(), second);
}

TEST_F(TokenProviderTest, InvalidateWithoutATokenIsNothing) {
    tokens.invalidate();
    EXPECT_EQ(tokens.token(), tokens.token());
}

TEST_F(TokenProviderTest, AClockThatWentBackKeepsTheToken) {
    const auto first = tokens.token();
    time.advance(-3600s);
    EXPECT_EQ(tokens.token(), first);
}

TEST_F(TokenProviderTest, AsksTheClockOncePerToken) {
    int asked = 0;
    TokenProvider counting(JWTSigner(testCredential()), [&] { return ++asked, time.now; });
    counting.token();
    EXPECT_EQ(asked, 1);
    counting.token();
    EXPECT_EQ(asked, 2);
}

}  // namespace
}  // namespace kestrin
