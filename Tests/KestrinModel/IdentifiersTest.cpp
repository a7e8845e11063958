// StorePlatform, StoreLocale and Slug: one string each, equal and ordered as text.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <map>

#include "KestrinModel/Slug.h"
#include "KestrinModel/StoreLocale.h"
#include "KestrinModel/StorePlatform.h"
#include "Tests/Support/Generators.h"

namespace kestrin {
namespace {

// Constants of one file made of constants of another: these must have been there first.
const StorePlatform kCopied = StorePlatform::visionOS;
const StoreLocale kCopiedLocale = StoreLocale::englishUS;

TEST(StorePlatform, ConstantsMayBeMadeOfItsConstants) {
    EXPECT_EQ(kCopied.rawValue, "VISION_OS");
    EXPECT_EQ(kCopiedLocale.rawValue, "en-US");
}

TEST(StorePlatform, HasAFolderOfItsOwn) {
    struct Row {
        StorePlatform platform;
        const char* rawValue;
        const char* folderName;
    };
    const Row rows[] = {
        {StorePlatform::iOS, "IOS", "iOS"},
        {StorePlatform::macOS, "MAC_OS", "macOS"},
        {StorePlatform::tvOS, "TV_OS", "tvOS"},
        {StorePlatform::visionOS, "VISION_OS", "visionOS"},
        {{"WATCH_OS"}, "WATCH_OS", "WATCH_OS"},
        {{"Ios"}, "Ios", "Ios"},
        {{""}, "", ""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.rawValue);
        EXPECT_EQ(row.platform.rawValue, row.rawValue);
        EXPECT_EQ(row.platform.folderName(), row.folderName);
        EXPECT_EQ(StorePlatform::fromFolderName(row.folderName), row.platform);
    }
}

TEST(StorePlatform, OfAFolderIsKnownByTheVeryName) {
    EXPECT_EQ(StorePlatform::fromFolderName("ios").rawValue, "ios");
    EXPECT_EQ(StorePlatform::fromFolderName("IOS").rawValue, "IOS");
    EXPECT_EQ(StorePlatform::fromFolderName("tvOS ").rawValue, "tvOS ");
}

TEST(StorePlatform, EditableOnesAreFourInTheirOrder) {
    EXPECT_THAT(StorePlatform::editable, testing::ElementsAre(StorePlatform::iOS, StorePlatform::macOS,
                                                              StorePlatform::tvOS, StorePlatform::visionOS));
}

TEST(StoreLocale, TakesAnyCodeAsItStands) {
    EXPECT_EQ(StoreLocale::englishUS.rawValue, "en-US");
    for (const auto* code : {"", "EN-us", "en_US", "x y", "zz-Zzzz-99"}) {
        EXPECT_EQ(StoreLocale{code}.rawValue, code);
    }
    EXPECT_NE(StoreLocale{"en-us"}, StoreLocale::englishUS);
}

template <class Identifier>
class IdentifierAsText : public testing::Test {};
using Identifiers = testing::Types<StorePlatform, StoreLocale, Slug>;
TYPED_TEST_SUITE(IdentifierAsText, Identifiers);

TYPED_TEST(IdentifierAsText, IsTheSameInComposedAndDecomposedForm) {
    const TypeParam composed{"caf\u00E9"}, decomposed{"cafe\u0301"};
    std::map<TypeParam, int> numbers{{composed, 1}};

    EXPECT_EQ(composed, decomposed);
    EXPECT_TRUE(numbers.contains(decomposed));
    EXPECT_FALSE(numbers.emplace(decomposed, 2).second);
    EXPECT_NE(composed, TypeParam{"cafe"});
    EXPECT_LT(TypeParam{"cafz"}, decomposed);
}

TYPED_TEST(IdentifierAsText, IsOrderedAsText) {
    EXPECT_TRUE(rc::check([] {
        const auto a = *arbitrary::text(), b = *arbitrary::text();
        RC_ASSERT((TypeParam{a} <=> TypeParam{b}) == text::compare(a, b));
        RC_ASSERT((TypeParam{a} == TypeParam{b}) == text::equal(a, b));
    }));
}

}  // namespace
}  // namespace kestrin
