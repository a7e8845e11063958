#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "KestrinCore/StableJSON.h"
#include "Tests/Support/Generators.h"
#include "Tests/Support/Repeated.h"

namespace kestrin {
namespace {

using StableJSON::encode;
using StableJSON::encodeCompact;
using StableJSON::kMaximumDepth;

JSONValue nestedArrays(std::size_t depth) {
    JSONValue value = JSONArray();
    for (std::size_t i = 1; i < depth; ++i) {
        JSONArray outer;
        outer.push_back(std::move(value));
        value = std::move(outer);
    }
    return value;
}

TEST(StableJSONEncoding, WritesOneMemberOrElementPerLineWithTwoBlanksPerLevel) {
    const JSONValue document = JSONObject{
        {"name", "Notes"},
        {"locales", JSONArray{"de-DE", "en-US"}},
        {"app", JSONObject{{"bundleID", "com.example.notes"}, {"visible", true}, {"price", nullptr}}},
        {"sizes", JSONArray{JSONArray{1, 2}, JSONObject{{"w", 0.5}}}},
    };

    EXPECT_EQ(encode(document),
              "{\n"
              "  \"app\" : {\n"
              "    \"bundleID\" : \"com.example.notes\",\n"
              "    \"price\" : null,\n"
              "    \"visible\" : true\n"
              "  },\n"
              "  \"locales\" : [\n"
              "    \"de-DE\",\n"
              "    \"en-US\"\n"
              "  ],\n"
              "  \"name\" : \"Notes\",\n"
              "  \"sizes\" : [\n"
              "    [\n"
              "      1,\n"
              "      2\n"
              "    ],\n"
              "    {\n"
              "      \"w\" : 0.5\n"
              "    }\n"
              "  ]\n"
              "}\n");
}

TEST(StableJSONEncoding, WritesAnEmptyContainerAsItsBracketsWithAnEmptyLineBetween) {
    struct Row {
        const char* when;
        JSONValue value;
        const char* bytes;
    };
    const Row rows[] = {
        {"an object", JSONObject{}, "{\n\n}\n"},
        {"an array", JSONArray{}, "[\n\n]\n"},
        {"in an object", JSONObject{{"a", JSONObject{}}, {"b", JSONArray{}}},
         "{\n  \"a\" : {\n\n  },\n  \"b\" : [\n\n  ]\n}\n"},
        {"in an array", JSONArray{JSONArray{}, JSONObject{}}, "[\n  [\n\n  ],\n  {\n\n  }\n]\n"},
        {"two levels down", JSONArray{JSONValue(JSONArray{JSONValue(JSONArray{})})},
         "[\n  [\n    [\n\n    ]\n  ]\n]\n"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(encode(row.value), row.bytes);
    }
}

TEST(StableJSONEncoding, WritesScalarsAndOneFinalLineFeed) {
    struct Row {
        const char* when;
        JSONValue value;
        const char* bytes;
    };
    const Row rows[] = {
        {"null", nullptr, "null\n"},
        {"true", true, "true\n"},
        {"false", false, "false\n"},
        {"a text", "a", "\"a\"\n"},
        {"an empty text", "", "\"\"\n"},
        {"zero", 0, "0\n"},
        {"a negative integer", -17, "-17\n"},
        {"the largest integer", INT64_MAX, "9223372036854775807\n"},
        {"the smallest integer", INT64_MIN, "-9223372036854775808\n"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(encode(row.value), row.bytes);
    }
}

TEST(StableJSONEncoding, WritesANumberInItsOneSpelling) {
    struct Row {
        const char* when;
        double number;
        const char* bytes;
    };
    const Row rows[] = {
        {"a whole number has no fraction", 2.0, "2"},
        {"nor has a large one an exponent", 1e18, "1000000000000000000"},
        {"minus zero is zero", -0.0, "0"},
        {"the largest whole number below 2^63", 9223372036854774784.0, "9223372036854774784"},
        {"-2^63 fits 64 bits", -9223372036854775808.0, "-9223372036854775808"},
        {"2^63 doesn’t", 9223372036854775808.0, "9.223372036854776e+18"},
        {"the largest unsigned integer", 18446744073709551615.0, "1.8446744073709552e+19"},
        {"a power of ten beyond 64 bits", 1e19, "1e+19"},
        {"a simple fraction", 0.25, "0.25"},
        {"the fewest digits that read back", 0.1, "0.1"},
        {"a sum that isn’t 0.3", 0.1 + 0.2, "0.30000000000000004"},
        {"a negative fraction", -12.5, "-12.5"},
        {"digits on both sides", 123456.789, "123456.789"},
        {"the smallest plain magnitude", 0.0001, "0.0001"},
        {"just below it", 0.000099999, "9.9999e-05"},
        {"a small number", -0.000015, "-1.5e-05"},
        {"the last number with a fraction", 4503599627370495.5, "4503599627370495.5"},
        {"the largest double", std::numeric_limits<double>::max(), "1.7976931348623157e+308"},
        {"the smallest normal double", std::numeric_limits<double>::min(), "2.2250738585072014e-308"},
        {"the smallest double", std::numeric_limits<double>::denorm_min(), "5e-324"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(encodeCompact(row.number), row.bytes);
        EXPECT_EQ(encodeCompact(StableJSON::decode(row.bytes)), row.bytes);
    }
}

TEST(StableJSONEncoding, RefusesWhatIsNoNumberInJSON) {
    for (const double number :
         {std::nan(""), std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity()}) {
        EXPECT_THROW(encode(JSONValue(number)), StableJSON::EncodingError);
        EXPECT_THROW(encode(JSONObject{{"a", JSONArray{number}}}), StableJSON::EncodingError);
        EXPECT_THROW(encodeCompact(JSONValue(number)), StableJSON::EncodingError);
    }
    EXPECT_EQ(StableJSON::EncodingError().errorDescription(), "This value can’t be written as JSON.");
}

TEST(StableJSONEncoding, EscapesOnlyQuotationMarkBackslashAndControlCharacters) {
    struct Row {
        const char* when;
        std::string text;
        const char* bytes;
    };
    const Row rows[] = {
        {"a quotation mark", "a\"b", R"("a\"b")"},
        {"a backslash", "a\\b", R"("a\\b")"},
        {"controls with short forms", "\n\r\t\b\f", R"("\n\r\t\b\f")"},
        {"NUL", {"a\0b", 3}, R"("a\u0000b")"},
        {"other controls, in lower case", "\x01\x0b\x1b\x1f", R"("\u0001\u000b\u001b\u001f")"},
        {"DEL is none of them", "\x7f", "\"\x7f\""},
        {"a slash", "https://example.com/a/b", R"("https://example.com/a/b")"},
        {"beyond ASCII", "é e\u0301 日本 😀", "\"é e\u0301 日本 😀\""},
        {"line separators", "\u2028\u2029", "\"\u2028\u2029\""},
        {"noncharacters and private use", "\uFFFE\uE000\U0010FFFF", "\"\uFFFE\uE000\U0010FFFF\""},
        {"HTML", "<a href='&'>", R"("<a href='&'>")"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(encodeCompact(row.text), row.bytes);
        EXPECT_EQ(encodeCompact(JSONObject{{row.text, 1}}), std::string("{") + row.bytes + ":1}");
    }
}

TEST(StableJSONEncoding, RepairsTextThatIsNotUTF8) {
    EXPECT_EQ(encodeCompact("a\xFF\xC3"), "\"a\uFFFD\uFFFD\"");
    EXPECT_EQ(encodeCompact("\xED\xA0\x80"), "\"\uFFFD\uFFFD\uFFFD\"");
    EXPECT_EQ(encodeCompact(JSONObject{{"\xC3", 1}}), "{\"\uFFFD\":1}");
}

TEST(StableJSONEncoding, SortsMembersAtEveryDepthByTheBytesOfTheirNames) {
    const JSONValue document = JSONArray{JSONObject{{"b", 1},
                                                    {"a", 2},
                                                    {"B", 3},
                                                    {"", 4},
                                                    {"a1", 5},
                                                    {"a10", 6},
                                                    {"a2", 7},
                                                    {"é", 8},
                                                    {"e\u0301", 9},
                                                    {"😀", 10},
                                                    {"\uFFFD", 11},
                                                    {"a/b", 12}}};

    EXPECT_EQ(encodeCompact(document),
              "[{\"\":4,\"B\":3,\"a\":2,\"a/b\":12,\"a1\":5,\"a10\":6,\"a2\":7,\"b\":1,\"e\u0301\":9,\"é\":8,"
              "\"\uFFFD\":11,\"😀\":10}]");
}

TEST(StableJSONEncoding, GivesTheSameBytesWhateverTheOrderOfInsertion) {
    JSONObject forwards, backwards;
    for (int i = 0; i < 100; ++i) forwards.emplace("key" + std::to_string(i), i);
    for (int i = 99; i >= 0; --i) backwards.emplace("key" + std::to_string(i), i);

    EXPECT_EQ(encode(forwards), encode(backwards));
    EXPECT_EQ(encode(forwards), encode(forwards));
}

TEST(StableJSONEncoding, CompactHasNoBlanksAndNoLineFeed) {
    const JSONValue document =
        JSONObject{{"b", JSONArray{1, JSONObject{}}}, {"a", JSONArray{}}, {"c", "x y"}};
    EXPECT_EQ(encodeCompact(document), R"({"a":[],"b":[1,{}],"c":"x y"})");
}

TEST(StableJSONEncoding, RefusesWhatIsNestedTooDeepToBeRead) {
    EXPECT_EQ(encodeCompact(nestedArrays(kMaximumDepth)),
              repeated(kMaximumDepth, "[") + repeated(kMaximumDepth, "]"));
    EXPECT_THROW(encode(nestedArrays(kMaximumDepth + 1)), StableJSON::EncodingError);
    EXPECT_THROW(encodeCompact(nestedArrays(kMaximumDepth + 1)), StableJSON::EncodingError);
    EXPECT_THROW(encode(nestedArrays(5'000)), StableJSON::EncodingError);
    EXPECT_THROW(encode(JSONObject{{"a", nestedArrays(kMaximumDepth)}}), StableJSON::EncodingError);
}

std::string writtenMemberByMember(const JSONObject& members) {
    std::string bytes;
    StableJSON::ObjectWriter object([&](std::string_view piece) { bytes += piece; });
    for (const auto& [name, value] : members) object.add(name, value);
    object.finish();
    return bytes;
}

TEST(StableJSONObjectWriter, GivesTheBytesThatTheWholeObjectIsEncodedAs) {
    const JSONObject objects[] = {
        {},
        {{"a", 1}},
        {{"a", JSONObject{}}, {"b", JSONArray{}}, {"é", JSONObject{{"c", JSONArray{1, "\n"}}}}},
        {{"", nullptr}, {"\"", "\xFF"}},
    };
    for (const auto& object : objects) EXPECT_EQ(writtenMemberByMember(object), encode(object));
}

TEST(StableJSONObjectWriter, HandsOverPiecesLongBeforeTheEnd) {
    std::size_t pieces = 0, largest = 0;
    StableJSON::ObjectWriter object([&](std::string_view piece) {
        ++pieces;
        largest = std::max(largest, piece.size());
    });
    for (int i = 100'000; i < 200'000; ++i) object.add(std::to_string(i), std::string(100, 'x'));
    object.finish();
    EXPECT_GT(pieces, 100u);
    EXPECT_LT(largest, 100'000u);
}

TEST(StableJSONObjectWriter, RefusesAMemberThatCannotBeWritten) {
    StableJSON::ObjectWriter object([](std::string_view) {});
    object.add("a", nestedArrays(kMaximumDepth - 1));
    EXPECT_THROW(object.add("b", nestedArrays(kMaximumDepth)), StableJSON::EncodingError);
    EXPECT_THROW(object.add("c", JSONValue(std::nan(""))), StableJSON::EncodingError);
}

TEST(StableJSONEncoding, TakesARecordByItsJSONForm) {
    struct Point {
        int x = 1;
        JSONValue toJSON() const { return JSONObject{{"x", x}}; }
    };
    EXPECT_EQ(encode(Point{}), "{\n  \"x\" : 1\n}\n");
}

}  // namespace
}  // namespace kestrin
