#include "KestrinModel/ListingField.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kestrin {
namespace {

using enum ListingField;
using enum ListingFieldInfo::Parent;
using testing::ElementsAre;

constexpr std::nullopt_t none = std::nullopt;

TEST(ListingField, KnowsOfEachFieldWhereItLivesAndWhatIsAllowed) {
    struct Row {
        ListingField field;
        const char* rawValue;
        ListingFieldInfo::Parent parent;
        const char* textFile;  // "" for JSON
        std::optional<std::size_t> limit;
        bool isMultiline, isURL, isEditableWhenLive;
    };
    const Row rows[] = {
        {name, "name", appInfoLocalization, "", 30, false, false, false},
        {subtitle, "subtitle", appInfoLocalization, "", 30, false, false, false},
        {privacyPolicyUrl, "privacyPolicyUrl", appInfoLocalization, "", none, false, true, false},
        {privacyChoicesUrl, "privacyChoicesUrl", appInfoLocalization, "", none, false, true, false},
        {description, "description", appStoreVersionLocalization, "description.txt", 4000, true, false,
         false},
        {keywords, "keywords", appStoreVersionLocalization, "", 100, false, false, false},
        {promotionalText, "promotionalText", appStoreVersionLocalization, "promotional-text.txt", 170, true,
         false, true},
        {whatsNew, "whatsNew", appStoreVersionLocalization, "whats-new.txt", 4000, true, false, false},
        {supportUrl, "supportUrl", appStoreVersionLocalization, "", none, false, true, false},
        {marketingUrl, "marketingUrl", appStoreVersionLocalization, "", none, false, true, false},
    };
    ASSERT_EQ(std::size(rows), ListingFields::all.size());
    for (const Row& row : rows) {
        SCOPED_TRACE(row.rawValue);
        EXPECT_EQ(info(row.field).field, row.field);
        EXPECT_EQ(rawValue(row.field), row.rawValue);
        EXPECT_EQ(parent(row.field), row.parent);
        EXPECT_EQ(info(row.field).textFile, row.textFile);
        EXPECT_EQ(info(row.field).isStoredAsJSON(), std::string_view(row.textFile).empty());
        EXPECT_EQ(info(row.field).limit, row.limit);
        EXPECT_EQ(info(row.field).isMultiline, row.isMultiline);
        EXPECT_EQ(info(row.field).isURL, row.isURL);
        EXPECT_EQ(info(row.field).isEditableWhenLive, row.isEditableWhenLive);
        EXPECT_EQ(listingField(row.rawValue), row.field);
    }
}

TEST(ListingField, ListsAreInTheOrderOfTheEnumeration) {
    EXPECT_THAT(ListingFields::all,
                ElementsAre(name, subtitle, privacyPolicyUrl, privacyChoicesUrl, description, keywords,
                            promotionalText, whatsNew, supportUrl, marketingUrl));
    EXPECT_THAT(ListingFields::appInfo, ElementsAre(name, subtitle, privacyPolicyUrl, privacyChoicesUrl));
    EXPECT_THAT(ListingFields::version,
                ElementsAre(description, keywords, promotionalText, whatsNew, supportUrl, marketingUrl));
    EXPECT_THAT(ListingFields::versionJSON, ElementsAre(keywords, supportUrl, marketingUrl));
}

TEST(ListingField, RawValuesAreFoundOnlyAsTheyAreSpelled) {
    for (const auto* text : {"", "Name", "name ", "whatsnew", "promotional-text.txt", "copyright"}) {
        EXPECT_EQ(listingField(text), std::nullopt) << text;
    }
}

}  // namespace
}  // namespace kestrin
