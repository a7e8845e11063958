#include "SyncEngine/Content/FlatValues.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "Tests/SyncEngine/Content/AnySides.h"

namespace kestrin {
namespace {

const ContentKey kPrimary = ContentKey::AppInfo{AppInfoAttribute::primaryCategory};
const ContentKey kSecondary = ContentKey::AppInfo{AppInfoAttribute::secondaryCategory};
const ContentKey kCopyright = ContentKey::Version{StorePlatform::iOS, VersionAttribute::copyright};

TEST(FlatValues, AMissingKeyHasTheEmptyValue) {
    const FlatValues values{{kPrimary, "GAMES"}};
    EXPECT_EQ(FlatValue::of(kPrimary, values), "GAMES");
    EXPECT_EQ(FlatValue::of(kSecondary, values), "");
}

using Row = std::vector<std::string>;

std::vector<Row> visited(const FlatValues& first, const FlatValues& second, const FlatValues& third) {
    std::vector<Row> rows;
    FlatValue::forEach(first, second, third, [&](const ContentKey& key, const auto&... values) {
        rows.push_back({key.id(), values...});
    });
    return rows;
}

TEST(FlatValues, EveryKeyOfAnySideIsVisitedOnceAndInOrderWithItsValues) {
    const FlatValues local{{kPrimary, "GAMES"}, {kSecondary, "MUSIC"}};
    const FlatValues remote{{kSecondary, "TRAVEL"}, {kCopyright, "2026"}};
    EXPECT_EQ(visited(local, {}, remote),
              (std::vector<Row>{{"IOS/version/copyright", "", "", "2026"},
                                {"app/primaryCategory", "GAMES", "", ""},
                                {"app/secondaryCategory", "MUSIC", "", "TRAVEL"}}));
    EXPECT_EQ(visited({}, {}, {}), std::vector<Row>{});
}

RC_GTEST_PROP(FlatValuesLaws, AVisitGivesWhatLookingEveryKeyUpGives, ()) {
    const auto sides = *anySides();
    const auto local = ContentGraph::flatten(sides.local);
    const auto remote = ContentGraph::flatten(sides.remote);
    const auto base = sides.base.value_or(FlatValues{});
    std::set<ContentKey> keys;
    for (const auto* side : {&local, &remote, &base}) {
        for (const auto& [key, value] : *side) keys.insert(key);
    }
    std::vector<Row> expected;
    for (const auto& key : keys) {
        expected.push_back(
            {key.id(), FlatValue::of(key, local), FlatValue::of(key, remote), FlatValue::of(key, base)});
    }
    RC_ASSERT(visited(local, remote, base) == expected);
}

}  // namespace
}  // namespace kestrin
