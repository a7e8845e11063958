#include "SyncEngine/Pull/AssetsSeen.h"

#include <gtest/gtest.h>

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
