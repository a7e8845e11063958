#include <gtest/gtest.h>

#include <algorithm>

#include "KestrinCore/StableJSON.h"
#include "Tests/Support/Repeated.h"

namespace kestrin {
namespace {

using StableJSON::decode;
using StableJSON::kMaximumDepth;

std::string problemOf(std::string_view bytes) {
    try {
        decode(bytes);
    } catch (const DecodingError& error) {
        return error.errorDescription();
    }
    return "none";
}

TEST(StableJSONDecoding, GivesEachKindOfValue) {
    struct Row {
        const char* bytes;
        JSONValue value;
    };
    const Row rows[] = {
        {"null", nullptr},
        {"true", true},
        {"false", false},
        {"1", 1},
        {"0", 0},
        {"-0", 0},
        {"-17", -17},
        {"1.0", 1},
        {"-0.0", 0},
        {"1e3", 1000},
        {"2500E-2", 25},
        {"0.5", 0.5},
        {"1e-400", 0},
        {"9223372036854775807", INT64_MAX},
        {"-9223372036854775808", INT64_MIN},
        {"9007199254740993", 9007199254740993},
        {"\"\"", ""},
        {"\"a\\/b\\u00e9\\ud83d\\ude00\\n\"", "a/bé😀\n"},
        {"\"a\\u0000b\"", std::string("a\0b", 3)},
        {"\"\\uFFFE\"", "\uFFFE"},
        {"[]", JSONArray{}},
        {"{}", JSONObject{}},
        {" [ 1 , \"a\" , [ ] ] \r\n\t", JSONArray{1, "a", JSONArray{}}},
        {"{\"a\":{\"b\":null}}", JSONObject{{"a", JSONObject{{"b", nullptr}}}}},
        {"\xEF\xBB\xBF{}", JSONObject{}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.bytes);
        EXPECT_EQ(decode(row.bytes), row.value);
    }
}

TEST(StableJSONDecoding, AnIntegerTooLargeFor64BitsIsANumber) {
    struct Row {
        const char* bytes;
        double number;
    };
    const Row rows[] = {
        {"9223372036854775808", 9223372036854775808.0},
        {"-9223372036854775809", -9223372036854775808.0},
        {"18446744073709551615", 18446744073709551616.0},
        {"18446744073709551616", 18446744073709551616.0},
        {"123456789012345678901234567890", 123456789012345678901234567890.0},
        {"1e19", 1e19},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.bytes);
        EXPECT_EQ(decode(row.bytes), JSONValue(row.number));
    }
}

TEST(StableJSONDecoding, OfMembersWithTheSameNameTheLastCounts) {
    EXPECT_EQ(decode(R"({"a":1,"b":2,"a":{"c":1,"c":2}})"),
              JSONValue(JSONObject{{"a", JSONObject{{"c", 2}}}, {"b", 2}}));
    EXPECT_EQ(decode(R"({"a":1,"\u0061":null})"), JSONValue(JSONObject{{"a", nullptr}}));
    EXPECT_EQ(decode("{\"caf\u00E9\":1,\"cafe\u0301\":2}").objectValue()->size(), 2u);
}

TEST(StableJSONDecoding, MembersInNoOrderAreSortedAndTheLastOfANameCounts) {
    std::string bytes = "{";
    for (int i = 0; i < 20'000; ++i)
        bytes += "\"" + std::to_string(i * 7919 % 20'000) + "\":" + std::to_string(i) + ",";
    bytes += "\"7\":true}";
    // A number that one of the libraries below leaves to the other.
    for (const std::string& text : {bytes, "[" + bytes + ",1" + std::string(30, '0') + "]"}) {
        const auto value = decode(text);
        const auto* members =
            value.objectValue() ? value.objectValue() : value.arrayValue()->front().objectValue();
        ASSERT_EQ(members->size(), 20'000u);
        EXPECT_TRUE(std::is_sorted(members->begin(), members->end(),
                                   [](const auto& a, const auto& b) { return a.first < b.first; }));
        EXPECT_EQ(members->at("7"), JSONValue(true));
        EXPECT_EQ(members->at("7919"), JSONValue(1));
    }
}

TEST(StableJSONDecoding, ADocumentLargerThanAllBeforeItIsReadLikeAnyOther) {
    for (const std::size_t size : {1u, 100u, 5'000u, 70'000u, 1u << 20, (1u << 20) + 100, 3u << 20}) {
        const std::string text(size, 'x');
        EXPECT_EQ(decode("[\"" + text + "\"]").arrayValue()->front(), JSONValue(text)) << size;
        EXPECT_EQ(decode("[1]"), JSONValue(JSONArray{1}));
    }
}

TEST(StableJSONDecoding, MembersThatNobodyNeedsMayBeMissingBelowTheOutermostObject) {
    const auto value =
        StableJSON::decodeOnly({"a", "b"}, R"({"x":{"a":1,"c":2,"b":[{"a":3,"d":4}]},"y":[{"c":5}]})");
    EXPECT_EQ(value, JSONValue(JSONObject{{"x", JSONObject{{"a", 1}, {"b", JSONArray{JSONObject{{"a", 3}}}}}},
                                          {"y", JSONArray{JSONObject{}}}}));
}

TEST(StableJSONDecoding, RefusesWhatIsNotOneDocument) {
    const std::string documents[] = {
        "",
        " \n",
        "\xEF\xBB\xBF",
        "nul",
        "True",
        "NaN",
        "Infinity",
        "-Infinity",
        "{",
        "[",
        "[1",
        "{\"a\"",
        "{\"a\":",
        "{\"a\":1",
        "[1,]",
        "{\"a\":1,}",
        "[,1]",
        "{,}",
        "[1 2]",
        "{\"a\" 1}",
        "{a:1}",
        "{'a':1}",
        "{1:1}",
        "]",
        "}",
        "[}",
        "{]",
        "1 2",
        "{}{}",
        "{} x",
        "01",
        "-",
        "+1",
        "1.",
        ".5",
        "1e",
        "1e+",
        "0x10",
        "1e400",
        "-1e400",
        "// c\n1",
        "/* c */ 1",
        "\"a",
        "\"\\x\"",
        "\"\\u12\"",
        "\"\\u12g4\"",
        "\"\\ud800\"",
        "\"\\ud800\\u0041\"",
        "\"\\udc00\"",
        "\"a\nb\"",
        "\"\t\"",
        {"\"\0\"", 3},
        {"{}\0", 3},
        {"\0", 1},
        "\"\xFF\"",
        "\"\xC3\"",
        "\"\xC0\x80\"",
        "\"\xED\xA0\x80\"",
        "\"\xF4\x90\x80\x80\"",
        "{\"\xFF\":1}",
        "\xFF\xFE{\0}\0",
        "\xEF\xBB{}",
    };
    for (const auto& bytes : documents) {
        SCOPED_TRACE(bytes);
        EXPECT_THROW(decode(bytes), DecodingError);
    }
}

TEST(StableJSONDecoding, SaysWhereADocumentIsBroken) {
    EXPECT_EQ(problemOf(""), "not a JSON document (byte 1)");
    EXPECT_EQ(problemOf("{\"a\" 1}"), "not a JSON document (byte 6)");
    EXPECT_EQ(problemOf("[\"\xFF\"]"), "not a JSON document (byte 3)");
    EXPECT_EQ(problemOf("[1e400]"), "not a JSON document (byte 6)");
    EXPECT_EQ(problemOf("{}"), "none");
}

TEST(StableJSONDecoding, RefusesWhatIsNestedTooDeep) {
    const auto arrays = [](std::size_t depth) { return repeated(depth, "[") + repeated(depth, "]"); };
    const auto objects = [](std::size_t depth) {
        return repeated(depth, "{\"a\":") + "null" + repeated(depth, "}");
    };
    EXPECT_EQ(StableJSON::encodeCompact(decode(arrays(kMaximumDepth))), arrays(kMaximumDepth));
    EXPECT_EQ(StableJSON::encodeCompact(decode(objects(kMaximumDepth))), objects(kMaximumDepth));

    for (const auto depth : {kMaximumDepth + 1, std::size_t{100'000}, std::size_t{1'000'000}}) {
        SCOPED_TRACE(depth);
        EXPECT_EQ(problemOf(arrays(depth)), "nested too deep");
        EXPECT_EQ(problemOf(objects(depth)), "nested too deep");
        EXPECT_EQ(problemOf(repeated(depth, "[")), "nested too deep");
        EXPECT_EQ(problemOf("[1," + repeated(depth, "{\"\":[") + "1"), "nested too deep");
    }
}

TEST(StableJSONDecoding, DepthIsThatOfOpenBracketsNotOfAllThatWere) {
    EXPECT_EQ(decode("[" + repeated(99'999, "[],") + "[]]").arrayValue()->size(), 100'000u);
}

TEST(StableJSONDecoding, TakesARecordFromItsJSONForm) {
    struct Point {
        std::int64_t x;
        static Point fromJSON(const JSONValue& value) {
            return {ObjectDecoder(value).optionalInteger("x").value_or(-1)};
        }
    };
    EXPECT_EQ(decode<Point>("{\"x\":3}").x, 3);
    EXPECT_EQ(decode<Point>("{}").x, -1);
    EXPECT_THROW(decode<Point>("[]"), DecodingError);
    EXPECT_THROW(decode<Point>("{"), DecodingError);
}

}  // namespace
}  // namespace kestrin
