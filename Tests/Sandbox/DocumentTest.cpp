// How resources come out: sparse fields, relationships, included resources, pages.
#include "Sandbox/Document.h"

#include "Tests/Sandbox/SandboxFixture.h"

namespace kestrin::sandbox {
namespace {

using testing::ElementsAre;
using testing::UnorderedElementsAre;

class DocumentTest : public SandboxFixture {
 protected:
    // The part of a link behind the root.
    std::string targetOf(const Json& link) {
        const auto text = link.get<std::string>();
        EXPECT_TRUE(text.starts_with("http://sandbox.example/")) << text;
        return text.substr(std::string("http://sandbox.example").size());
    }
};

std::vector<std::string> names(const Json& object) {
    std::vector<std::string> list;
    for (const auto& [name, value] : object.items()) list.push_back(name);
    return list;
}

TEST_F(DocumentTest, SendsOnlyTheFieldsThatAreAskedFor) {
    const auto data = get("/v1/apps?fields%5Bapps%5D=name,sku&limit=1").json["data"][0];
    EXPECT_THAT(names(data["attributes"]), ElementsAre("name", "sku"));
    EXPECT_FALSE(data.contains("relationships"));
    EXPECT_EQ(targetOf(data["links"]["self"]), "/v1/apps/1234567890");
}

TEST_F(DocumentTest, SendsOnlyTheRelationshipsThatAreAskedFor) {
    const auto version = idOf("appStoreVersions", {{"versionString", "2.3"}, {"platform", "IOS"}});
    const auto data =
        get("/v1/appStoreVersions/" + version + "?include=build&fields%5BappStoreVersions%5D=build")
            .json["data"];
    EXPECT_FALSE(data.contains("attributes"));
    EXPECT_THAT(names(data["relationships"]), ElementsAre("build"));
    EXPECT_EQ(data["relationships"]["build"]["data"]["type"], "builds");
}

TEST_F(DocumentTest, ShowsAnAttributeWithoutAValueAsNull) {
    const auto attributes = get("/v1/apps/1234567890").attributes();
    ASSERT_TRUE(attributes.contains("accessibilityUrl"));
    EXPECT_TRUE(attributes["accessibilityUrl"].is_null());
}

TEST_F(DocumentTest, ShowsTheDataOfALinkedRelationshipOnlyWhenItIsIncluded) {
    const auto path = std::string("/v1/apps/1234567890/appInfos");
    const auto plain = get(path).json["data"][0]["relationships"]["primaryCategory"];
    EXPECT_FALSE(plain.contains("data"));
    EXPECT_TRUE(plain["links"].contains("related"));

    const auto included = get(path + "?include=primaryCategory,primarySubcategoryOne");
    const auto relationships = included.json["data"][0]["relationships"];
    EXPECT_EQ(relationships["primaryCategory"]["data"]["id"], "PRODUCTIVITY");
    EXPECT_TRUE(relationships["primarySubcategoryOne"]["data"].is_null());
    EXPECT_FALSE(relationships["secondaryCategory"].contains("data"));
}

TEST_F(DocumentTest, IncludesEachResourceOnce) {
    const auto reply = get("/v1/builds?include=preReleaseVersion&filter%5BpreReleaseVersion.version%5D=2.4");
    EXPECT_EQ(reply.json["data"].size(), 3u);
    ASSERT_EQ(reply.json["included"].size(), 1u);
    EXPECT_EQ(reply.json["included"][0]["attributes"]["version"], "2.4");
}

TEST_F(DocumentTest, CutsAnIncludedListAtItsLimit) {
    const auto reply = get("/v1/apps/1234567890?include=builds&limit%5Bbuilds%5D=2");
    const auto builds = reply.json["data"]["relationships"]["builds"];
    EXPECT_EQ(builds["data"].size(), 2u);
    EXPECT_EQ(builds["meta"]["paging"]["total"], 5);
    EXPECT_EQ(builds["meta"]["paging"]["limit"], 2);
    EXPECT_EQ(reply.json["included"].size(), 2u);
}

TEST_F(DocumentTest, HasNoIncludedListWhenNothingIsAskedFor) {
    EXPECT_FALSE(get("/v1/apps").json.contains("included"));
    EXPECT_EQ(get("/v1/apps/1234567891?include=appInfos").json["included"], Json::array());
}

TEST_F(DocumentTest, PagesByAbsoluteLinksThatKeepTheQuery) {
    auto target = std::string("/v1/builds?sort=-version&limit=2&filter%5Bapp%5D=1234567890");
    std::vector<std::string> versions;
    int pages = 0;
    for (;; ++pages) {
        const auto reply = get(target);
        ASSERT_EQ(reply.status, 200);
        EXPECT_EQ(targetOf(reply.json["links"]["self"]), target);
        EXPECT_EQ(reply.json["meta"]["paging"]["total"], 5);
        EXPECT_EQ(reply.json["meta"]["paging"]["limit"], 2);
        for (const auto& build : reply.json["data"]) versions.push_back(build["attributes"]["version"]);
        if (!reply.json["links"].contains("next")) break;
        target = targetOf(reply.json["links"]["next"]);
    }
    EXPECT_EQ(pages, 2);
    EXPECT_THAT(versions, ElementsAre("242", "241", "240", "230", "230"));
}

TEST_F(DocumentTest, RefusesTheCursorOfAnotherList) {
    const auto next = targetOf(get("/v1/builds?limit=2").json["links"]["next"]);
    const auto cursor = next.substr(next.find("cursor="), next.find('&') - next.find("cursor="));
    EXPECT_EQ(get("/v1/builds?" + cursor + "&limit=2").status, 200);
    EXPECT_EQ(get("/v1/builds?" + cursor + "&limit=3").status, 400);
    EXPECT_EQ(get("/v1/apps?" + cursor + "&limit=2").status, 400);
}

TEST_F(DocumentTest, HasNoNextLinkOnTheLastPage) {
    EXPECT_FALSE(get("/v1/builds?limit=5").json["links"].contains("next"));
    EXPECT_TRUE(get("/v1/builds?limit=4").json["links"].contains("next"));
}

TEST(SmallPages, HoldNoMoreThanTheSandboxAllows) {
    Settings settings;
    settings.now = [] { return kNow; };
    settings.largestPage = 1;
    Sandbox sandbox(settings);
    const auto token = "Bearer " + goodToken(sandbox.credential()).token();
    const auto reply =
        sandbox.service().answer({"GET", "/v1/apps?limit=200", {{"Authorization", token}}, {}, 1}).reply;
    const auto document = parsedJSON(reply.body).value();
    EXPECT_EQ(document["data"].size(), 1u);
    EXPECT_TRUE(document["links"].contains("next"));
}

TEST_F(DocumentTest, SortsByAnAttributeEitherWay) {
    const auto namesOf = [&](const std::string& target) {
        std::vector<std::string> list;
        const auto reply = get(target);
        for (const auto& app : reply.json["data"]) list.push_back(app["attributes"]["name"]);
        return list;
    };
    EXPECT_THAT(namesOf("/v1/apps?sort=name"), ElementsAre("Lighthouse", "Tide Notes"));
    EXPECT_THAT(namesOf("/v1/apps?sort=-name"), ElementsAre("Tide Notes", "Lighthouse"));
}

TEST_F(DocumentTest, FiltersByAttributesAndAcrossRelationships) {
    EXPECT_THAT(get("/v1/apps?filter%5BbundleId%5D=com.example.lighthouse").ids(), ElementsAre("1234567891"));
    EXPECT_THAT(get("/v1/apps?filter%5BbundleId%5D=x,com.example.lighthouse").ids(),
                ElementsAre("1234567891"));
    EXPECT_THAT(get("/v1/apps?filter%5BbundleId%5D=").ids(), ElementsAre());
    EXPECT_THAT(get("/v1/apps?filter%5BappStoreVersions.platform%5D=MAC_OS").ids(),
                ElementsAre("1234567890"));
    EXPECT_EQ(get("/v1/builds?filter%5Bexpired%5D=true").json["data"].size(), 1u);
    EXPECT_EQ(get("/v1/builds?filter%5BpreReleaseVersion.platform%5D=MAC_OS").json["data"].size(), 1u);
    EXPECT_EQ(get("/v1/builds?filter%5Bapp%5D=1234567891").json["data"].size(), 0u);
    EXPECT_EQ(get("/v1/apps?exists%5BgameCenterEnabledVersions%5D=true").json["data"].size(), 0u);
    EXPECT_EQ(get("/v1/apps?exists%5BgameCenterEnabledVersions%5D=false").json["data"].size(), 2u);
}

}  // namespace
}  // namespace kestrin::sandbox
