#include "ASCKit/JSONAPIDocument.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

namespace kestrin {
namespace {

TEST(JSONAPIDocument, KeepsWhatTheClientNeeds) {
    const auto document = JSONAPIDocument::decode(R"({
        "data": [{"type": "apps", "id": "1", "attributes": {"name": "Tide", "sku": null},
                  "relationships": {"app": {"data": {"type": "apps", "id": "9"}}},
                  "links": {"self": "x"}, "meta": {}},
                 {"type": "apps", "id": "2"}],
        "included": [{"type": "builds", "id": "3"}],
        "links": {"self": "https://x.test/a", "next": "https://x.test/a?cursor=2"},
        "meta": {"paging": {"total": 2}},
        "jsonapi": {"version": "1.0"}})");

    ASSERT_EQ(document.data.size(), 2u);
    EXPECT_EQ(document.data[0],
              (ResourceObject{"apps",
                              "1",
                              {{"name", "Tide"}, {"sku", nullptr}},
                              {{"app", JSONObject{{"data", JSONObject{{"type", "apps"}, {"id", "9"}}}}}},
                              {{"self", "x"}}}));
    EXPECT_EQ(document.data[1], (ResourceObject{"apps", "2", {}, {}, {}}));
    ASSERT_EQ(document.included.size(), 1u);
    EXPECT_EQ(document.included[0].type, "builds");
    EXPECT_EQ(document.nextURL, URL::parse("https://x.test/a?cursor=2"));
    EXPECT_EQ(document.meta, JSONValue(JSONObject{{"paging", JSONObject{{"total", 2}}}}));
}

TEST(JSONAPIDocument, ASingleResourceIsAListOfOne) {
    const auto document = JSONAPIDocument::decode(R"({"data": {"type": "apps", "id": "1"}})");

    ASSERT_EQ(document.data.size(), 1u);
    EXPECT_EQ(document.data[0].id, "1");
    EXPECT_TRUE(document.included.empty());
    EXPECT_FALSE(document.nextURL);
    EXPECT_FALSE(document.meta);
}

TEST(JSONAPIDocument, NullIsAbsentWhereAbsenceIsAllowed) {
    const auto document = JSONAPIDocument::decode(
        R"({"data": [{"type": "a", "id": "1", "attributes": null, "relationships": null, "links": null}],
            "included": null, "links": null, "meta": null})");

    EXPECT_EQ(document.data, (std::vector<ResourceObject>{{"a", "1", {}, {}, {}}}));
    EXPECT_FALSE(document.meta);
}

TEST(JSONAPIDocument, RefusesWhatHasNoReadableData) {
    struct Row {
        const char* when;
        std::string bytes;
    };
    const Row rows[] = {
        {"no bytes", ""},
        {"no JSON", "<html>"},
        {"half a document", R"({"data": [)"},
        {"not an object", "[]"},
        {"data is missing", R"({"links": {}})"},
        {"data is null", R"({"data": null})"},
        {"data is a text", R"({"data": "x"})"},
        {"an element isn't a resource", R"({"data": [{"type": "a", "id": "1"}, 5]})"},
        {"a resource without a type", R"({"data": {"id": "1"}})"},
        {"a resource without an id", R"({"data": {"type": "a"}})"},
        {"an id that is a number", R"({"data": {"type": "a", "id": 1}})"},
        {"a type that is null", R"({"data": {"type": null, "id": "1"}})"},
        {"attributes that are a list", R"({"data": {"type": "a", "id": "1", "attributes": []}})"},
        {"relationships that are a text", R"({"data": {"type": "a", "id": "1", "relationships": "x"}})"},
        {"links of a resource that are a number", R"({"data": {"type": "a", "id": "1", "links": 2}})"},
        {"included that is an object", R"({"data": [], "included": {"type": "a", "id": "1"}})"},
        {"an included element without an id", R"({"data": [], "included": [{"type": "a"}]})"},
        {"links that are a list", R"({"data": [], "links": []})"},
        {"nesting that would exhaust a stack", R"({"data": )" + std::string(100'000, '[')},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.when);
        EXPECT_THROW(JSONAPIDocument::decode(row.bytes), DecodingError);
    }
}

TEST(JSONAPIDocument, NextLinkIsATextThatIsAnAddress) {
    struct Row {
        const char* links;
        const char* next;  // "" for none
    };
    const Row rows[] = {
        {R"({})", ""},
        {R"({"next": null})", ""},
        {R"({"next": 5})", ""},
        {R"({"next": {"href": "https://x.test/"}})", ""},
        {R"({"next": ""})", ""},
        {R"({"next": "https://x.test/a b"})", ""},
        {R"({"next": "https://x.test/?cursor=Mg.AMh1YrE&limit=2"})",
         "https://x.test/?cursor=Mg.AMh1YrE&limit=2"},
        {R"({"next": "/v1/apps?cursor=2"})", "/v1/apps?cursor=2"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.links);
        const auto document =
            JSONAPIDocument::decode(std::string(R"({"data": [], "links": )") + row.links + "}");
        EXPECT_EQ(document.nextURL ? document.nextURL->absoluteString() : "", row.next);
    }
}

TEST(JSONAPIDocument, WhoNeedsOnlySomeFieldsGetsThoseAndAllThatMakesADocument) {
    const auto document = JSONAPIDocument::decodeOnly({"name", "owner"}, R"({
        "data": [{"type": "a", "id": "1", "attributes": {"name": "N", "color": "red"},
                  "relationships": {"owner": {"data": {"type": "b", "id": "7"}, "links": {"self": "x"}},
                                    "other": {"data": null}},
                  "links": {"self": "x"}}],
        "included": [{"type": "b", "id": "7", "attributes": {"color": "red"}}],
        "links": {"next": "https://x.test/?cursor=2"}})");

    ASSERT_EQ(document.data.size(), 1u);
    EXPECT_EQ(document.data[0].attributes, (JSONObject{{"name", "N"}}));
    EXPECT_EQ(document.data[0].relatedID("owner"), "7");
    EXPECT_TRUE(document.data[0].links.empty());
    ASSERT_EQ(document.included.size(), 1u);
    EXPECT_EQ(document.included[0].id, "7");
    ASSERT_TRUE(document.nextURL);
    EXPECT_EQ(document.nextURL->absoluteString(), "https://x.test/?cursor=2");
}

TEST(JSONAPIDocument, WhatNobodyNeedsHasToBeJSONAllTheSame) {
    for (const char* broken : {R"({"data": [], "x": {"y": nul}})", R"({"data": [], "x": {"y": "\ud800"}})"}) {
        SCOPED_TRACE(broken);
        EXPECT_THROW(JSONAPIDocument::decodeOnly({}, broken), DecodingError);
    }
}

TEST(JSONAPIDocument, WhatIsNoDocumentIsNoneForWhoNeedsLittleOfIt) {
    for (const char* broken : {
             R"({"data": null})",
             R"({"data": [{"type": "a"}]})",
             R"({"data": [{"type": "a", "id": "1", "attributes": []}]})",
             R"({"data": [{"type": "a", "id": "1", "relationships": "b"}]})",
             R"({"data": [{"type": "a", "id": "1", "links": []}]})",
             R"({"data": [], "included": {}})",
             R"({"data": [], "links": []})",
         }) {
        SCOPED_TRACE(broken);
        EXPECT_THROW(JSONAPIDocument::decode(broken), DecodingError);
        EXPECT_THROW(JSONAPIDocument::decodeOnly({}, broken), DecodingError);
    }
}

TEST(JSONAPIDocument, TellsNullDataFromEveryOtherReply) {
    EXPECT_TRUE(JSONAPIDocument::hasNullData(R"({"data": null, "links": {"self": "x"}})"));
    EXPECT_FALSE(JSONAPIDocument::hasNullData(R"({"links": {}})"));
    EXPECT_FALSE(JSONAPIDocument::hasNullData(R"({"data": []})"));
    EXPECT_FALSE(JSONAPIDocument::hasNullData(R"({"data": {"type": "a", "id": "1"}})"));
    EXPECT_FALSE(JSONAPIDocument::hasNullData("null"));
    EXPECT_FALSE(JSONAPIDocument::hasNullData(""));
    EXPECT_FALSE(JSONAPIDocument::hasNullData("<html>"));
}

TEST(ResourceObject, RelatedIDIsTheIdBehindAToOneRelationship) {
    const auto resource = JSONAPIDocument::decode(R"({"data": {"type": "a", "id": "1", "relationships": {
        "toOne": {"data": {"type": "b", "id": "7"}, "links": {}},
        "toMany": {"data": [{"type": "b", "id": "7"}]},
        "null": {"data": null},
        "linksOnly": {"links": {"related": "x"}},
        "text": "7",
        "numberedID": {"data": {"type": "b", "id": 7}},
        "withoutID": {"data": {"type": "b"}}}}})")
                              .data.at(0);

    EXPECT_EQ(resource.relatedID("toOne"), "7");
    for (const char* name : {"toMany", "null", "linksOnly", "text", "numberedID", "withoutID", "absent"}) {
        SCOPED_TRACE(name);
        EXPECT_FALSE(resource.relatedID(name));
    }
}

TEST(ResourceObject, StringIsTheFirstNamedAttributeThatIsAText) {
    const ResourceObject resource{
        "a", "1", {{"text", "A"}, {"other", "B"}, {"empty", ""}, {"number", 1}, {"null", nullptr}}, {}, {}};

    EXPECT_EQ(resource.string("text"), "A");
    EXPECT_EQ(resource.string({"text", "other"}), "A");
    EXPECT_EQ(resource.string({"other", "text"}), "B");
    EXPECT_EQ(resource.string({"absent", "number", "null", "other"}), "B");
    EXPECT_EQ(resource.string({"empty", "other"}), "");
    EXPECT_FALSE(resource.string({"absent", "number"}));
    EXPECT_FALSE(resource.string("null"));
}

RC_GTEST_PROP(JSONAPIDocument, TakesAnyBytesWithoutHarm, (const std::string& bytes)) {
    try {
        JSONAPIDocument::decode(bytes);
    } catch (const DecodingError&) {
        RC_SUCCEED("refused");
    }
}

}  // namespace
}  // namespace kestrin
