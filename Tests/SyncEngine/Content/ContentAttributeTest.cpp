#include "SyncEngine/Content/ContentAttribute.h"

#include <gmock/gmock.h>

namespace kestrin {
namespace {

using ::testing::ElementsAre;

template <class Attribute>
std::vector<std::string> rawValues() {
    std::vector<std::string> values;
    for (const auto attribute : allCases<Attribute>) values.emplace_back(rawValue(attribute));
    return values;
}

template <class Attribute>
void expectParsedBack() {
    for (const auto known : allCases<Attribute>) EXPECT_EQ(attribute<Attribute>(rawValue(known)), known);
    EXPECT_EQ(attribute<Attribute>(""), std::nullopt);
    EXPECT_EQ(attribute<Attribute>("Name"), std::nullopt);
    EXPECT_EQ(attribute<Attribute>("unknown"), std::nullopt);
}

TEST(ContentAttribute, RawValuesAreTheNamesOfTheCasesInOrder) {
    EXPECT_THAT(rawValues<AppInfoAttribute>(), ElementsAre("primaryCategory", "secondaryCategory"));
    EXPECT_THAT(rawValues<VersionAttribute>(), ElementsAre("versionString", "copyright", "releaseType"));
    EXPECT_THAT(rawValues<ReviewAttribute>(),
                ElementsAre("contactFirstName", "contactLastName", "contactPhone", "contactEmail",
                            "demoAccountRequired", "demoAccountName", "notes"));
    EXPECT_THAT(rawValues<PageAttribute>(), ElementsAre("name", "visible", "deepLink"));
    EXPECT_THAT(rawValues<ExperimentAttribute>(), ElementsAre("name", "platform", "trafficProportion"));
    EXPECT_THAT(rawValues<TreatmentAttribute>(), ElementsAre("name", "appIconName"));
}

TEST(ContentAttribute, EachCaseHasTheRawValueOfItsName) {
    EXPECT_EQ(rawValue(AppInfoAttribute::secondaryCategory), "secondaryCategory");
    EXPECT_EQ(rawValue(VersionAttribute::releaseType), "releaseType");
    EXPECT_EQ(rawValue(ReviewAttribute::demoAccountRequired), "demoAccountRequired");
    EXPECT_EQ(rawValue(ReviewAttribute::notes), "notes");
    EXPECT_EQ(rawValue(PageAttribute::deepLink), "deepLink");
    EXPECT_EQ(rawValue(ExperimentAttribute::trafficProportion), "trafficProportion");
    EXPECT_EQ(rawValue(TreatmentAttribute::appIconName), "appIconName");
}

TEST(ContentAttribute, IsFoundByItsRawValueOnly) {
    expectParsedBack<AppInfoAttribute>();
    expectParsedBack<VersionAttribute>();
    expectParsedBack<ReviewAttribute>();
    expectParsedBack<PageAttribute>();
    expectParsedBack<ExperimentAttribute>();
    expectParsedBack<TreatmentAttribute>();
}

}  // namespace
}  // namespace kestrin
