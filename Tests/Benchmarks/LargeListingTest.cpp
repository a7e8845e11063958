#include "Benchmarks/LargeListing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "KestrinModel/ListingValidator.h"

namespace kestrin {
namespace {

using ::testing::IsEmpty;
using ::testing::SizeIs;

std::size_t textCount(const Project& project) {
    std::size_t count = 0;
    const auto add = [&](const LocalizedTexts& locales) {
        for (const auto& [_, fields] : locales) count += fields.values().size();
    };
    add(project.app.locales);
    for (const auto& [_, platform] : project.platforms) add(platform.locales);
    return count;
}

TEST(LargeListing, HasEveryTextInEveryLocaleAndAllThePagesAndTests) {
    const auto project = LargeListing::make();

    EXPECT_THAT(project.manifest.locales, SizeIs(40));
    EXPECT_EQ(textCount(project), 40u * 4 + 4u * 40 * 6);
    ASSERT_THAT(project.pages, SizeIs(70));
    ASSERT_THAT(project.experiments, SizeIs(3));
    for (const auto& [_, page] : project.pages) {
        EXPECT_THAT(page.promotionalText, SizeIs(40));
        ASSERT_THAT(page.media, SizeIs(40));
        for (const auto& [locale, slots] : page.media) {
            ASSERT_THAT(slots, SizeIs(2));
            for (const auto& [slot, items] : slots) EXPECT_THAT(items, SizeIs(10));
        }
    }
    for (const auto& [_, experiment] : project.experiments) EXPECT_THAT(experiment.treatments, SizeIs(3));
}

TEST(LargeListing, IsTheSameEachTime) {
    EXPECT_EQ(LargeListing::make(), LargeListing::make());
}

TEST(LargeListing, DoublesInAllThatGrowsWithItsLocales) {
    const auto once = LargeListing::make();
    const auto twice = LargeListing::make(2);

    EXPECT_EQ(twice.manifest.locales.size(), 2 * once.manifest.locales.size());
    EXPECT_EQ(textCount(twice), 2 * textCount(once));
}

TEST(LargeListing, HasNothingThatAppStoreConnectWouldRefuse) {
    EXPECT_THAT(ListingValidator::issues(LargeListing::make()), IsEmpty());
}

}  // namespace
}  // namespace kestrin
