#include "KestrinCore/JSONDecoding.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "KestrinCore/StableJSON.h"
#include "Tests/Support/Generators.h"

namespace kestrin {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// What decoding with `decode` complains about; "" when it doesn't.
template <class Decode>
std::string complaint(Decode&& decode) {
    try {
        decode();
    } catch (const DecodingError& error) {
        return error.errorDescription();
    }
    return {};
}

TEST(DecodingError, SaysWhereAndWhat) {
    const AnyCodingKey platforms(std::string("platforms")), name(std::string("name")), third(std::int64_t{2});
    struct Row {
        const char* when;
        std::vector<AnyCodingKey> path;
        const char* description;
    };
    const Row rows[] = {
        {"the document itself", {}, "expected a string"},
        {"a member", {platforms}, "platforms: expected a string"},
        {"an element of a member", {platforms, third}, "platforms[2]: expected a string"},
        {"a member of an element", {platforms, third, name}, "platforms[2].name: expected a string"},
        {"an element of the document", {third, name}, "[2].name: expected a string"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(DecodingError(row.path, "expected a string").errorDescription(), row.description);
    }
}

TEST(ObjectDecoder, TakesObjectsOnly) {
    const JSONValue others[] = {nullptr, true, 1, 0.5, "a", JSONArray{}};
    for (const auto& value : others) {
        EXPECT_EQ(complaint([&] { ObjectDecoder decoder(value); }), "expected an object");
    }
    const JSONValue empty = JSONObject{};
    EXPECT_NO_THROW(ObjectDecoder decoder(empty));
}

const JSONValue kDocument = JSONObject{
    {"string", "text"},
    {"empty", ""},
    {"integer", 7},
    {"number", 0.5},
    {"bool", false},
    {"array", JSONArray{"a", "b"}},
    {"mixed", JSONArray{"a", 1}},
    {"holes", JSONArray{"a", nullptr}},
    {"object", JSONObject{{"a", 1}}},
    {"null", nullptr},
};

TEST(ObjectDecoder, GivesMembersOfTheTypeAskedFor) {
    const ObjectDecoder members(kDocument);
    EXPECT_EQ(members.string("string"), "text");
    EXPECT_EQ(members.optionalString("string"), "text");
    EXPECT_EQ(members.optionalString("empty"), "");
    EXPECT_EQ(members.optionalInteger("integer"), 7);
    EXPECT_EQ(members.optionalBool("bool"), false);
    EXPECT_THAT(members.stringList("array"), ElementsAre("a", "b"));
    EXPECT_EQ(*members.optionalArray("array"), (JSONArray{"a", "b"}));
    EXPECT_EQ(*members.optionalObject("object"), (JSONObject{{"a", 1}}));
    EXPECT_EQ(*members.optionalValue("number"), JSONValue(0.5));
}

TEST(ObjectDecoder, ReadsMissingAndNullMembersAsAbsent) {
    const ObjectDecoder members(kDocument);
    for (const auto* key : {"missing", "null"}) {
        SCOPED_TRACE(key);
        EXPECT_EQ(members.optionalString(key), std::nullopt);
        EXPECT_EQ(members.optionalInteger(key), std::nullopt);
        EXPECT_EQ(members.optionalBool(key), std::nullopt);
        EXPECT_THAT(members.stringList(key), IsEmpty());
        EXPECT_EQ(members.optionalArray(key), nullptr);
        EXPECT_EQ(members.optionalObject(key), nullptr);
        EXPECT_EQ(members.optionalValue(key), nullptr);
        EXPECT_EQ(complaint([&] { members.string(key); }), std::string(key) + ": missing");
    }
    EXPECT_TRUE(members.contains("null"));
    EXPECT_FALSE(members.contains("missing"));
}

TEST(ObjectDecoder, NamesTheMemberOfAnotherType) {
    const ObjectDecoder members(kDocument);
    struct Row {
        const char* key;
        std::vector<const char*> complaints;
    };
    const Row rows[] = {
        {"string", {"an integer", "true or false", "an array", "an object"}},
        {"integer", {"a string", "true or false", "an array", "an object"}},
        {"number", {"a string", "an integer", "true or false", "an array", "an object"}},
        {"bool", {"a string", "an integer", "an array", "an object"}},
        {"array", {"a string", "an integer", "true or false", "an object"}},
        {"object", {"a string", "an integer", "true or false", "an array"}},
    };
    for (const Row& row : rows) {
        const std::string key = row.key;
        SCOPED_TRACE(key);
        std::vector<std::string> expected, complaints;
        for (const auto* type : row.complaints) expected.push_back(key + ": expected " + type);
        const auto add = [&](std::string text) {
            if (!text.empty()) complaints.push_back(std::move(text));
        };
        add(complaint([&] { members.optionalString(key); }));
        add(complaint([&] { members.optionalInteger(key); }));
        add(complaint([&] { members.optionalBool(key); }));
        add(complaint([&] { members.optionalArray(key); }));
        add(complaint([&] { members.optionalObject(key); }));
        EXPECT_EQ(complaints, expected);
    }
    EXPECT_EQ(complaint([&] { members.string("integer"); }), "integer: expected a string");
    EXPECT_EQ(complaint([&] { members.stringList("string"); }), "string: expected an array");
    EXPECT_EQ(complaint([&] { members.stringList("mixed"); }), "mixed[1]: expected a string");
    EXPECT_EQ(complaint([&] { members.stringList("holes"); }), "holes[1]: expected a string");
}

struct Inner {
    std::string name;
    static Inner fromJSON(const JSONValue& value) { return {ObjectDecoder(value).string("name")}; }
};

struct Outer {
    std::optional<Inner> inner;
    static Outer fromJSON(const JSONValue& value) {
        return {ObjectDecoder(value).optionalRecord<Inner>("inner")};
    }
};

TEST(ObjectDecoder, PutsWhatANestedRecordReportsUnderItsKey) {
    const auto complaintAbout = [](std::string_view json) {
        const auto value = StableJSON::decode(json);
        return complaint([&] { ObjectDecoder(value).optionalRecord<Outer>("outer"); });
    };
    EXPECT_EQ(complaintAbout(R"({})"), "");
    EXPECT_EQ(complaintAbout(R"({"outer":null})"), "");
    EXPECT_EQ(complaintAbout(R"({"outer":{"inner":{"name":"x"}}})"), "");
    EXPECT_EQ(complaintAbout(R"({"outer":1})"), "outer: expected an object");
    EXPECT_EQ(complaintAbout(R"({"outer":{"inner":[]}})"), "outer.inner: expected an object");
    EXPECT_EQ(complaintAbout(R"({"outer":{"inner":{}}})"), "outer.inner.name: missing");
    EXPECT_EQ(complaintAbout(R"({"outer":{"inner":{"name":1}}})"), "outer.inner.name: expected a string");
}

TEST(ObjectDecoder, UnknownFieldsAreAllMembersButTheKnownOnes) {
    const JSONValue document = JSONObject{{"a", 1}, {"b", nullptr}, {"c", JSONArray{JSONObject{{"a", 2}}}}};
    const ObjectDecoder members(document);

    EXPECT_EQ(members.unknownFields({"a"}),
              (JSONObject{{"b", nullptr}, {"c", JSONArray{JSONObject{{"a", 2}}}}}));
    EXPECT_EQ(members.unknownFields({"a", "b", "c", "d"}), JSONObject{});
    EXPECT_EQ(members.unknownFields({}), *document.objectValue());
    const JSONValue empty = JSONObject{};
    EXPECT_EQ(ObjectDecoder(empty).unknownFields({"a"}), JSONObject{});
}

TEST(ObjectDecoder, ANameIsKnownOnlyByItsVeryBytes) {
    const JSONValue document = JSONObject{{"A", 1}, {"a ", 2}, {"a\u0301", 3}};
    EXPECT_EQ(ObjectDecoder(document).unknownFields({"a", "\u00E1"}), *document.objectValue());
}

}  // namespace
}  // namespace kestrin
