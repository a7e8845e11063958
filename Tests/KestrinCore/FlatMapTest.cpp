#include "KestrinCore/FlatMap.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kestrin {
namespace {

using Map = FlatMap<std::string, int>;
using Entries = std::vector<std::pair<std::string, int>>;

template <OfSameKey kept>
Map built(const Entries& entries) {
    FlatMapBuilder<Map, kept> builder;
    for (const auto& [key, value] : entries) builder.add(key, value);
    return std::move(builder).take();
}

TEST(FlatMapBuilder, TakesEntriesInAnyOrder) {
    for (const Entries& entries :
         {Entries{{"a", 1}, {"b", 2}, {"c", 3}}, Entries{{"c", 3}, {"a", 1}, {"b", 2}}})
        EXPECT_EQ(built<OfSameKey::first>(entries), (Map{{"a", 1}, {"b", 2}, {"c", 3}}));
    EXPECT_TRUE(built<OfSameKey::last>({}).empty());
}

TEST(FlatMapBuilder, OfEntriesWithOneKeyTheFirstOrTheLastIsKept) {
    for (const Entries& entries : {Entries{{"b", 1}, {"a", 1}, {"b", 2}, {"a", 2}, {"a", 3}, {"b", 3}},
                                   Entries{{"a", 1}, {"a", 2}, {"a", 3}, {"b", 1}, {"b", 3}}}) {
        EXPECT_EQ(built<OfSameKey::first>(entries), (Map{{"a", 1}, {"b", 1}}));
        EXPECT_EQ(built<OfSameKey::last>(entries), (Map{{"a", 3}, {"b", 3}}));
    }
}

}  // namespace
}  // namespace kestrin
