// The listing in Examples is what its description says.
#include <gtest/gtest.h>

#include "KestrinModel/FastlaneDeliverImporter.h"
#include "KestrinModel/ListingValidator.h"
#include "Tests/Support/ListingNames.h"

namespace kestrin {
namespace {

using enum ListingField;

Project tidelamp() {
    Project project;
    FastlaneDeliverImporter::importListing(KESTRIN_SOURCE_DIR "/Examples/Tidelamp/fastlane", project, kIOS);
    return project;
}

TEST(ExampleListing, HasEightLocalesWithAllTheirTexts) {
    const auto project = tidelamp();

    EXPECT_EQ(project.manifest.locales.size(), 8u);
    for (const auto& locale : project.manifest.locales) {
        for (const auto& row : FastlaneDeliverImporter::fileNames) {
            EXPECT_NE(project.value(row.field, locale, kIOS), "") << locale.rawValue << " " << row.name;
        }
    }
    EXPECT_EQ(project.value(name, {"pt-BR"}, kIOS), "Tidelamp") << "from the defaults";
    EXPECT_EQ(project.app.info, (AppInfoContent{"WEATHER", "TRAVEL", {}}));
    EXPECT_EQ(project[kIOS].review.contactFirstName, "Marit");
}

TEST(ExampleListing, HasOneIssueAndOneTextAtItsLimit) {
    const auto project = tidelamp();

    const ListingIssue twice{keywords, {"fr-FR"}, kIOS, ListingIssue::DuplicateKeywords{{"Marée"}}};
    EXPECT_EQ(ListingValidator::issues(project), std::vector{twice});
    EXPECT_EQ(CharacterCount(project.value(promotionalText, {"en-US"}, kIOS)).graphemes, 170u);
}

}  // namespace
}  // namespace kestrin
