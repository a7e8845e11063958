#include "SyncEngine/Remote/RemoteListing.h"

#include <gtest/gtest.h>

#include "ASCKit/Resources/CustomProductPages.h"
#include "Tests/SyncEngine/Content/SampleListing.h"
#include "Tests/SyncEngine/Remote/ListingOf.h"

namespace kestrin {
namespace {

TEST(RemoteListing, ItsProjectHasItsContentUnderAManifestOfNoMeaning) {
    const auto listing = listingOf(sample::project());
    auto project = listing.project();
    const auto& manifest = project.manifest;
    EXPECT_NE(manifest.projectID, listing.project().manifest.projectID) << "a fresh one each time";
    EXPECT_EQ(manifest.app, AppBinding{});
    EXPECT_EQ(manifest.platforms, std::vector{StorePlatform::iOS});
    EXPECT_EQ(manifest.primaryLocale, StoreLocale::englishUS);
    EXPECT_EQ(manifest.locales, std::vector{StoreLocale::englishUS});
    project.manifest = sample::project().manifest;
    EXPECT_EQ(project, sample::project());
}

TEST(RemoteListing, ItsValuesAreThoseOfItsContentWhateverTheManifest) {
    EXPECT_EQ(listingOf(sample::project()).values(), ContentGraph::flatten(sample::project()));
    EXPECT_TRUE(RemoteListing{}.values().empty());
}

TEST(RemotePage, IsEditableInTheStatesOfAPageVersionThatCanBeChanged) {
    RemotePage page;
    for (const auto& state : ASCCustomProductPageVersion::editableStates) {
        page.versionState = state;
        EXPECT_TRUE(page.isEditable()) << state;
    }
    for (const auto* state : {"", "APPROVED", "IN_REVIEW", "REPLACED_WITH_NEW_VERSION"}) {
        page.versionState = state;
        EXPECT_FALSE(page.isEditable()) << state;
    }
}

}  // namespace
}  // namespace kestrin
