#include "KestrinCore/JSONValue.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace kestrin {
namespace {

struct KindRow {
    const char* kind;
    JSONValue value;
};

// One value of each kind, in the order of the kinds.
std::vector<KindRow> oneOfEachKind() {
    return {{"string", "1"},  {"integer", 1},          {"number", 1.0},
            {"bool", true},   {"array", JSONArray{1}}, {"object", JSONObject{{"1", 1}}},
            {"null", nullptr}};
}

TEST(JSONValue, AnAccessorAnswersOnlyForItsVeryKind) {
    for (const KindRow& row : oneOfEachKind()) {
        SCOPED_TRACE(row.kind);
        const std::string kind = row.kind;
        EXPECT_EQ(row.value.stringValue() != nullptr, kind == "string");
        EXPECT_EQ(row.value.integerValue() != nullptr, kind == "integer");
        EXPECT_EQ(row.value.boolValue() != nullptr, kind == "bool");
        EXPECT_EQ(row.value.arrayValue() != nullptr, kind == "array");
        EXPECT_EQ(row.value.objectValue() != nullptr, kind == "object");
        EXPECT_EQ(row.value.isNull(), kind == "null");
    }
}

TEST(JSONValue, AnAccessorGivesThePayload) {
    EXPECT_EQ(*JSONValue("text").stringValue(), "text");
    EXPECT_EQ(*JSONValue(INT64_MIN).integerValue(), INT64_MIN);
    EXPECT_EQ(*JSONValue(false).boolValue(), false);
    EXPECT_EQ(*JSONValue(JSONArray{1, "a"}).arrayValue(), (JSONArray{1, "a"}));
    EXPECT_EQ(*JSONValue(JSONObject{{"a", 1}}).objectValue(), (JSONObject{{"a", 1}}));
}

TEST(JSONValue, OfDifferentKindsAreNeverEqual) {
    const auto values = oneOfEachKind();
    for (std::size_t i = 0; i < values.size(); ++i) {
        for (std::size_t j = 0; j < values.size(); ++j) {
            SCOPED_TRACE(std::string(values[i].kind) + " and " + values[j].kind);
            EXPECT_EQ(values[i].value == values[j].value, i == j);
        }
    }
}

TEST(JSONValue, IsEqualByStructureAndTheOrderOfMembersPlaysNoPart) {
    const JSONObject inOneOrder{{"b", JSONArray{1, nullptr}}, {"a", JSONObject{{"x", true}}}};
    const JSONObject inAnother{{"a", JSONObject{{"x", true}}}, {"b", JSONArray{1, nullptr}}};

    EXPECT_EQ(JSONValue(inOneOrder), JSONValue(inAnother));
    EXPECT_NE(JSONValue(JSONArray{1, 2}), JSONValue(JSONArray{2, 1}));
    EXPECT_NE(JSONValue(JSONObject{{"a", nullptr}}), JSONValue(JSONObject{}));
    EXPECT_NE(JSONValue(std::nan("")), JSONValue(std::nan("")));
}

TEST(JSONValue, KeepsNamesApartWhoseBytesDiffer) {
    const JSONObject object{{"caf\u00E9", 1}, {"cafe\u0301", 2}};
    EXPECT_EQ(object.size(), 2u);
}

TEST(JSONValue, ATextIsNeverTakenForABoolean) {
    const char* text = "false";
    EXPECT_EQ(JSONValue(text), JSONValue(std::string("false")));
    EXPECT_EQ(JSONValue(std::string_view("false")), JSONValue(std::string("false")));
}

}  // namespace
}  // namespace kestrin
