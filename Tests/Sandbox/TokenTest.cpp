#include "Sandbox/Token.h"

#include <functional>

#include "Sandbox/Refusal.h"
#include "Tests/Sandbox/SandboxFixture.h"

namespace kestrin::sandbox {
namespace {

class Token : public SandboxFixture {
 protected:
    Received getWith(const TokenRecipe& recipe) { return getWith("Bearer " + recipe.token()); }
    Received getWith(const std::string& header) {
        return sendBare({"GET", "/v1/apps", {{"Authorization", header}}, {}, 1});
    }
};

TEST_F(Token, ThatIsGoodOpensTheDoor) {
    EXPECT_EQ(getWith(goodToken(sandbox.credential())).status, 200);
}

struct BadToken {
    const char* when;
    std::function<void(TokenRecipe&)> spoil;
};

const BadToken kBadTokens[] = {
    {"another algorithm", [](TokenRecipe& t) { t.header["alg"] = "HS256"; }},
    {"no algorithm", [](TokenRecipe& t) { t.header["alg"] = "none"; }},
    {"no kid", [](TokenRecipe& t) { t.header.erase("kid"); }},
    {"a kid that is no key's", [](TokenRecipe& t) { t.header["kid"] = "XXXXXXXXXX"; }},
    {"no typ", [](TokenRecipe& t) { t.header.erase("typ"); }},
    {"another audience", [](TokenRecipe& t) { t.payload["aud"] = "appstoreconnect-v2"; }},
    {"no audience", [](TokenRecipe& t) { t.payload.erase("aud"); }},
    {"another issuer", [](TokenRecipe& t) { t.payload["iss"] = "somebody"; }},
    {"no issuer", [](TokenRecipe& t) { t.payload.erase("iss"); }},
    {"issuer and subject", [](TokenRecipe& t) { t.payload["sub"] = "user"; }},
    {"the subject of an individual key",
     [](TokenRecipe& t) { t.payload.erase("iss"), t.payload["sub"] = "user"; }},
    {"expired this second", [](TokenRecipe& t) { t.payload["iat"] = kNow - 600, t.payload["exp"] = kNow; }},
    {"a second more than 20 minutes", [](TokenRecipe& t) { t.payload["exp"] = kNow + 1201; }},
    {"expires before it is issued",
     [](TokenRecipe& t) { t.payload["iat"] = kNow + 30, t.payload["exp"] = kNow + 20; }},
    {"issued in the future",
     [](TokenRecipe& t) { t.payload["iat"] = kNow + 61, t.payload["exp"] = kNow + 600; }},
    {"no iat", [](TokenRecipe& t) { t.payload.erase("iat"); }},
    {"no exp", [](TokenRecipe& t) { t.payload.erase("exp"); }},
    {"exp as a text", [](TokenRecipe& t) { t.payload["exp"] = std::to_string(kNow + 600); }},
    {"iat with a fraction", [](TokenRecipe& t) { t.payload["iat"] = kNow + 0.5; }},
    {"signed with another key", [](TokenRecipe& t) { t.privateKeyPEM = KeyPair::generate().privateKeyPEM; }},
};

TEST_F(Token, ThatIsBadIs401) {
    for (const auto& row : kBadTokens) {
        SCOPED_TRACE(row.when);
        auto recipe = goodToken(sandbox.credential());
        row.spoil(recipe);

        const auto reply = getWith(recipe);

        EXPECT_EQ(reply.status, 401);
        EXPECT_EQ(reply.code(), "NOT_AUTHORIZED");
    }
}

TEST_F(Token, OfTwentyMinutesSharpIsGood) {
    auto recipe = goodToken(sandbox.credential());
    recipe.payload["exp"] = kNow + 1200;
    EXPECT_EQ(getWith(recipe).status, 200);
}

TEST_F(Token, ThatIsNoTokenIs401) {
    const auto good = goodToken(sandbox.credential()).token();
    const std::string headers[] = {"",
                                   "Bearer ",
                                   "Bearer x",
                                   "Bearer a.b.c",
                                   good,
                                   "bearer " + good,
                                   "Bearer " + good + ".x",
                                   "Bearer " + good.substr(0, good.size() - 3),
                                   "Bearer " + good + "=",
                                   "Bearer " + good.substr(0, good.rfind('.') + 1)};
    for (const auto& header : headers) {
        SCOPED_TRACE(header);
        EXPECT_EQ(getWith(header).status, 401);
    }
}

TEST_F(Token, WhosePayloadWasChangedIs401) {
    const auto first = goodToken(sandbox.credential());
    auto second = first;
    second.payload["exp"] = kNow + 1200;
    const auto a = first.token(), b = second.token();
    const auto forged = b.substr(0, b.rfind('.')) + a.substr(a.rfind('.'));
    EXPECT_EQ(getWith("Bearer " + forged).status, 401);
}

TEST_F(Token, ThatWasGoodIsNotGoodForEver) {
    auto now = kNow;
    Settings settings;
    settings.now = [&now] { return now; };
    Sandbox aging(settings);
    const HTTPRequest request{
        "GET", "/v1/apps", {{"Authorization", "Bearer " + goodToken(aging.credential()).token()}}, {}, 1};
    EXPECT_EQ(aging.service().answer(request).reply.status, 200);

    now += 1140;

    EXPECT_EQ(aging.service().answer(request).reply.status, 401);
}

TEST_F(Token, OfARevokedKeyIs403) {
    sandbox.service().revokeKey(sandbox.credential().keyID);
    const auto reply = get("/v1/apps");
    EXPECT_EQ(reply.status, 403);
    EXPECT_EQ(reply.code(), "FORBIDDEN_ERROR");
}

TEST_F(Token, WithAScopeDoesOnlyWhatItNames) {
    auto recipe = goodToken(sandbox.credential());
    recipe.payload["scope"] = {"GET /v1/apps?filter[bundleId]=com.example.tidenotes", "GET /v1/builds"};
    authorization = "Bearer " + recipe.token();

    EXPECT_EQ(get("/v1/apps?filter%5BbundleId%5D=com.example.tidenotes").status, 200);
    EXPECT_EQ(get("/v1/apps?limit=2&filter%5BbundleId%5D=com.example.tidenotes").status, 200);
    EXPECT_EQ(get("/v1/builds?sort=-version&limit=3").status, 200);
    EXPECT_EQ(get("/v1/apps").status, 403);
    EXPECT_EQ(get("/v1/apps/1234567890").status, 403);
}

TEST_F(Token, OfADeveloperReadsAndDoesNotWrite) {
    const auto pair = KeyPair::generate();
    Settings settings;
    settings.now = [] { return kNow; };
    settings.keys = {{"DEVELOPER1", "issuer", pair.publicKeyPEM, AccessKey::Role::developer}};
    Sandbox other(settings);
    const HTTPHeaders headers{
        {"Authorization", "Bearer " + goodToken({"DEVELOPER1", "issuer", pair.privateKeyPEM}).token()},
        {"Content-Type", "application/json"}};

    EXPECT_EQ(other.service().answer({"GET", "/v1/apps", headers, {}, 1}).reply.status, 200);
    const auto write = other.service().answer({"PATCH", "/v1/builds/1", headers, "{}", 1});
    EXPECT_EQ(write.reply.status, 403);
}

TEST_F(Token, OfAnIndividualKeyBearsTheSubjectUser) {
    const auto pair = KeyPair::generate();
    TokenVerifier tokens({{"INDIVIDUAL", "", pair.publicKeyPEM}});
    TokenRecipe recipe{{{"alg", "ES256"}, {"kid", "INDIVIDUAL"}, {"typ", "JWT"}},
                       {{"aud", "appstoreconnect-v1"}, {"iat", kNow}, {"exp", kNow + 60}, {"sub", "user"}},
                       pair.privateKeyPEM};

    EXPECT_EQ(tokens.verify("Bearer " + recipe.token(), kNow, "GET", "/v1/apps").keyID, "INDIVIDUAL");

    recipe.payload["sub"] = "somebody";
    EXPECT_THROW(tokens.verify("Bearer " + recipe.token(), kNow, "GET", "/v1/apps"), Refusal);
}

TEST(TokenVerifier, TakesOnlyPublicP256Keys) {
    EXPECT_THROW(TokenVerifier({{"K", "I", "no key"}}), std::invalid_argument);
    EXPECT_THROW(TokenVerifier({{"K", "I", KeyPair::generate().privateKeyPEM}}), std::invalid_argument);
}

}  // namespace
}  // namespace kestrin::sandbox
