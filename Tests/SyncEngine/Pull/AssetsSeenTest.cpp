#include "SyncEngine/Pull/AssetsSeen.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace kestrin {
namespace {

ASCLibraryAsset asset(const std::string& id, const std::string& fileName) {
    ASCLibraryAsset made;
    made.id = id;
    made.fileName = fileName;
    return made;
}

TEST(AssetsSeen, AreAllInTheMapInTheEnd) {
    KnownAssets map{{"b", asset("b", "before.png")}};
    AssetsSeen seen(map);
    for (const char* id : {"c", "a", "d"}) seen.add(asset(id, std::string(id) + ".png"));
    seen.finish();
    EXPECT_EQ(map, (KnownAssets{{"a", asset("a", "a.png")},
                                {"b", asset("b", "before.png")},
                                {"c", asset("c", "c.png")},
                                {"d", asset("d", "d.png")}}));
}

TEST(AssetsSeen, TheLastOfAnIdCounts) {
    KnownAssets map{{"a", asset("a", "1")}};
    AssetsSeen seen(map);
    seen.add(asset("b", "1"));
    seen.add(asset("a", "2"));
    seen.add(asset("b", "2"));
    seen.finish();
    EXPECT_EQ(map, (KnownAssets{{"a", asset("a", "2")}, {"b", asset("b", "2")}}));
}

TEST(AssetsSeen, AreInTheOrderOfTheBytesOfTheirIds) {
    const std::vector<std::string> ids = {"",
                                          "1",
                                          "12345678",
                                          "123456781",
                                          "12345679",
                                          "1234567\x7F",
                                          "\xC3\xA9",
                                          "\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA8",
                                          "12345678\x01",
                                          "2"};
    KnownAssets map, expected;
    AssetsSeen seen(map);
    for (const auto& id : ids) {
        seen.add(asset(id, id));
        expected.emplace(id, asset(id, id));
    }
    seen.finish();
    EXPECT_EQ(map, expected);
    EXPECT_TRUE(std::is_sorted(map.begin(), map.end(),
                               [](const auto& one, const auto& other) { return one.first < other.first; }));
    for (const auto& id : ids) EXPECT_EQ(map.count(id), 1u) << id;
}

TEST(AssetsSeen, TellTheFileNamesOfThoseShownSoFar) {
    KnownAssets map;
    AssetsSeen seen(map);
    EXPECT_EQ(seen.fileName("a"), "");
    seen.add(asset("a", "1"));
    EXPECT_EQ(seen.fileName("a"), "1");
    seen.add(asset("a", "2"));
    EXPECT_EQ(seen.fileName("a"), "2");
    EXPECT_EQ(seen.fileName("b"), "");
}

}  // namespace
}  // namespace kestrin
