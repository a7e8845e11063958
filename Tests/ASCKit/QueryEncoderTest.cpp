#include "ASCKit/QueryEncoder.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "ASCKit/ASCRequest.h"

namespace kestrin {
namespace {

using P = QueryParameter;

TEST(QueryEncoder, EncodesKeysWholeAndValuesOneByOne) {
    struct Row {
        const char* when;
        std::vector<P> parameters;
        const char* query;
    };
    const Row rows[] = {
        {"no parameters", {}, ""},
        {"brackets of the key go out escaped",
         {P::filter("bundleId", {"a.b"}), P::limit(1)},
         "filter%5BbundleId%5D=a.b&limit=1"},
        {"a comma in a value is escaped, the separator isn't",
         {P::filter("name", {"a,b", "c"})},
         "filter%5Bname%5D=a%2Cb,c"},
        {"fields", {P::fields("apps", {"name", "bundleId"})}, "fields%5Bapps%5D=name,bundleId"},
        {"include", {P::include({"image", "video"})}, "include=image,video"},
        {"sort", {P::sort({"-uploadedDate"})}, "sort=-uploadedDate"},
        {"a limit is decimal", {P::limit(200)}, "limit=200"},
        {"no values leave the key", {P::include({})}, "include="},
        {"an empty value is a value", {P::include({"", "a"})}, "include=,a"},
        {"the order of the caller stays",
         {P::sort({"a"}), P::limit(2), P::include({"b"}), P::sort({"c"})},
         "sort=a&limit=2&include=b&sort=c"},
        {"what would end a parameter or the query is escaped",
         {P::filter("a&b", {"c=d&e#f?g"})},
         "filter%5Ba%26b%5D=c%3Dd%26e%23f%3Fg"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(QueryEncoder::encode(row.parameters), row.query);
    }
}

TEST(QueryEncoder, PercentEncodesAllButUnreservedBytes) {
    EXPECT_EQ(QueryEncoder::percentEncode(""), "");
    EXPECT_EQ(QueryEncoder::percentEncode("AZaz09-._~"), "AZaz09-._~");
    EXPECT_EQ(QueryEncoder::percentEncode(" +/%"), "%20%2B%2F%25");
    EXPECT_EQ(QueryEncoder::percentEncode("é★"), "%C3%A9%E2%98%85");
    EXPECT_EQ(QueryEncoder::percentEncode(std::string_view("\0\x7F", 2)), "%00%7F");
}

RC_GTEST_PROP(QueryEncoder, WhatIsEncodedIsPartOfAnAddressAndDecodesToTheSameBytes,
              (const std::string& bytes)) {
    const auto encoded = QueryEncoder::percentEncode(bytes);
    RC_ASSERT(URL::parse("https://example.test/?" + encoded).has_value());

    std::string decoded;
    for (std::size_t i = 0; i < encoded.size(); ++i) {
        if (encoded[i] == '%') {
            decoded += static_cast<char>(std::stoi(encoded.substr(i + 1, 2), nullptr, 16));
            i += 2;
        } else {
            decoded += encoded[i];
        }
    }
    RC_ASSERT(decoded == bytes);
}

TEST(ASCRequest, AddressIsRootPathAndQuery) {
    const auto root = URL::parse("https://api.example.test").value();
    const auto text = [&](const ASCRequest& request) {
        const auto url = request.url(root);
        return url ? url->absoluteString() : "none";
    };

    EXPECT_EQ(text({HTTPMethod::get, "/v1/apps", {}, std::nullopt}), "https://api.example.test/v1/apps");
    EXPECT_EQ(text({HTTPMethod::get, "/v1/apps", {P::limit(1)}, std::nullopt}),
              "https://api.example.test/v1/apps?limit=1");
    EXPECT_EQ(text({HTTPMethod::get, "/v1/a%20b", {}, std::nullopt}), "https://api.example.test/v1/a%20b");
    EXPECT_EQ(text({HTTPMethod::get, "/v1/a b", {}, std::nullopt}), "none");
    EXPECT_EQ(text({HTTPMethod::get, "/v1/é", {}, std::nullopt}), "none");
}

TEST(ASCRequest, MethodsAreSpelledAsHTTPSpellsThem) {
    EXPECT_EQ(rawValue(HTTPMethod::get), "GET");
    EXPECT_EQ(rawValue(HTTPMethod::post), "POST");
    EXPECT_EQ(rawValue(HTTPMethod::patch), "PATCH");
    EXPECT_EQ(rawValue(HTTPMethod::remove), "DELETE");
}

}  // namespace
}  // namespace kestrin
