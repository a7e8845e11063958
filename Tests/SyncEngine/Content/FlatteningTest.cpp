#include "SyncEngine/Content/Flattening.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "Tests/SyncEngine/Content/SampleListing.h"

namespace kestrin {
namespace {

using ContentGraph::Flattening;

TEST(Flattening, GivesTheSameMapWhateverTheOrderOfItsValues) {
    const auto expected = ContentGraph::flatten(sample::project());
    std::vector<std::pair<ContentKey, std::string>> values(expected.begin(), expected.end());
    std::mt19937_64 random(1);
    for (int round = 0; round < 20; ++round) {
        Flattening flattening;
        for (const auto& [key, value] : values) flattening.add(key, value);
        EXPECT_EQ(std::move(flattening).take(), expected);
        std::shuffle(values.begin(), values.end(), random);
    }
}

TEST(Flattening, LeavesOutEmptyValuesAndKeepsTheFirstOfAKey) {
    const ContentKey a = ContentKey::AppInfo{AppInfoAttribute::primaryCategory};
    const ContentKey b = ContentKey::AppInfo{AppInfoAttribute::secondaryCategory};
    Flattening flattening;
    flattening.add(b, "");
    flattening.add(a, "first");
    flattening.add(a, "second");
    flattening.add(b, "third");
    EXPECT_EQ(std::move(flattening).take(), (FlatValues{{a, "first"}, {b, "third"}}));
}

TEST(Flattening, OfNothingIsEmpty) {
    EXPECT_TRUE(Flattening().take().empty());
}

}  // namespace
}  // namespace kestrin
