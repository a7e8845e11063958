#include "SyncEngine/Content/FlatValues.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

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

TEST(FlatValues, KeysAreThoseOfAnySideOnceAndInOrder) {
    const FlatValues local{{kPrimary, "GAMES"}, {kSecondary, "MUSIC"}};
    const FlatValues remote{{kSecondary, "TRAVEL"}, {kCopyright, "2026"}};
    const FlatValues nothing;

    EXPECT_THAT(FlatValue::keys({&local, &nothing, &remote}),
                testing::ElementsAre(kCopyright, kPrimary, kSecondary));
    EXPECT_THAT(FlatValue::keys({}), testing::IsEmpty());
}

}  // namespace
}  // namespace kestrin
