#include "SyncEngine/Remote/SlugAssigner.h"

#include <gtest/gtest.h>

namespace kestrin {
namespace {

TEST(SlugAssigner, AnIdKeepsItsSlugThroughAnyRename) {
    SlugAssigner assigner({{"1", {"summer"}}}, {{{"summer"}, "Summer"}});
    EXPECT_EQ(assigner.slug("1", "Sommer"), Slug{"summer"});
    EXPECT_EQ(assigner.slug("1", "Été"), Slug{"summer"});
}

TEST(SlugAssigner, ALocalNameWithoutAnIdBindsToTheRemoteOneOfThatName) {
    SlugAssigner assigner({}, {{{"my-page"}, "Summer"}});
    EXPECT_EQ(assigner.slug("1", "Summer"), Slug{"my-page"});
    EXPECT_EQ(assigner.slug("1", "Renamed"), Slug{"my-page"});
}

TEST(SlugAssigner, OfSeveralLocalSlugsWithOneNameTheSmallestGoesFirst) {
    SlugAssigner assigner({}, {{{"summer-2"}, "Summer"}, {{"summer"}, "Summer"}});
    EXPECT_EQ(assigner.slug("a", "Summer"), Slug{"summer"});
    EXPECT_EQ(assigner.slug("b", "Summer"), Slug{"summer-2"});
    EXPECT_EQ(assigner.slug("c", "Summer"), Slug{"summer-3"});
}

TEST(SlugAssigner, NamesMatchExactlyButAsUnicodeText) {
    SlugAssigner assigner({}, {{{"x"}, "E\u0301te\u0301"}});
    EXPECT_EQ(assigner.slug("1", "été"), Slug{"ete"});
    EXPECT_EQ(assigner.slug("2", "Été"), Slug{"x"});
}

TEST(SlugAssigner, ASlugThatAnIdBearsIsntBoundByName) {
    SlugAssigner assigner({{"old", {"summer"}}}, {{{"summer"}, "Summer"}});
    EXPECT_EQ(assigner.slug("new", "Summer"), Slug{"summer-2"});
}

TEST(SlugAssigner, ANewSlugAvoidsLocalOnesAndThoseOfEarlierRuns) {
    SlugAssigner assigner({{"1", {"page"}}}, {{{"page-2"}, "Other"}});
    EXPECT_EQ(assigner.slug("2", "★"), Slug{"page-3"});
    EXPECT_EQ(assigner.slug("3", "★"), Slug{"page-4"});
}

TEST(ProductPageSlugs, WithoutEarlierIdsOnlyNamesBind) {
    Project local;
    local.pages[{"p"}].name = "Page";
    local.experiments[{"e"}].name = "Test";
    local.experiments[{"e"}].treatments[{"t"}].name = "Blue";
    ProductPageSlugs slugs(std::nullopt, local);
    EXPECT_EQ(slugs.pages.slug("1", "Page"), Slug{"p"});
    EXPECT_EQ(slugs.experiments.slug("2", "Test"), Slug{"e"});
    EXPECT_EQ(slugs.treatments({"e"}).slug("3", "Blue"), Slug{"t"});
    EXPECT_EQ(slugs.treatments({"unknown"}).slug("3", "Blue"), Slug{"blue"});
}

TEST(ProductPageSlugs, EarlierIdsBindPagesTestsAndTreatments) {
    RemoteIDs ids;
    ids.pages[{"p"}].id = "1";
    ids.experiments[{"e"}].id = "2";
    ids.experiments[{"e"}].treatments[{"t"}].id = "3";
    ProductPageSlugs slugs(ids, Project{});
    EXPECT_EQ(slugs.pages.slug("1", "any"), Slug{"p"});
    EXPECT_EQ(slugs.experiments.slug("2", "any"), Slug{"e"});
    EXPECT_EQ(slugs.treatments({"e"}).slug("3", "any"), Slug{"t"});
}

TEST(ProductPageSlugs, EachAskForTreatmentsStartsAfresh) {
    ProductPageSlugs slugs(std::nullopt, Project{});
    auto first = slugs.treatments({"e"});
    first.slug("1", "Blue");
    EXPECT_EQ(slugs.treatments({"e"}).slug("2", "Blue"), Slug{"blue"});
}

}  // namespace
}  // namespace kestrin
