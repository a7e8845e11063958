#include "SyncEngine/Pull/AssetsSeen.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace kestrin {
namespace {

ASCLibraryAsset assetNamed(const std::string& id, const std::string& fileName) {
    ASCLibraryAsset made;
    made.id = id;
    made.fileName = fileName;
    return made;
}

TEST(AssetsSeen, AreAllInTheMapInTheEnd) {
    KnownAssets map{{"b", assetNamed("b", "before.png")}};
    AssetsSeen seen(map);
    for (const char* id : {"c", "a", "d"}) seen.add(assetNamed(id, std::string(id) + ".png"));
    seen.finish();
    EXPECT_EQ(map, (KnownAssets{{"a", assetNamed("a", "a.png")},
                                {"b", assetNamed("b", "before.png")},
                                {"c", assetNamed("c", "c.png")},
                                {"d", assetNamed("d", "d.png")}}));
}

TEST(AssetsSeen, TheLastOfAnIdCounts) {
    KnownAssets map{{"a", assetNamed("a", "1")}};
    AssetsSeen seen(map);
    seen.add(assetNamed("b", "1"));
    seen.add(assetNamed("a", "2"));
    seen.add(assetNamed("b", "2"));
    seen.finish();
    EXPECT_EQ(map, (KnownAssets{{"a", assetNamed("a", "2")}, {"b", assetNamed("b", "2")}}));
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
        seen.add(assetNamed(id, id));
        expected.emplace(id, assetNamed(id, id));
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
    seen.add(assetNamed("a", "1"));
    EXPECT_EQ(seen.fileName("a"), "1");
    seen.add(assetNamed("a", "2"));
    EXPECT_EQ(seen.fileName("a"), "2");
    EXPECT_EQ(seen.fileName("b"), "");
}

}  // namespace
}  // namespace kestrin
