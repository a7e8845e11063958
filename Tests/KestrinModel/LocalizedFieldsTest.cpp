#include "KestrinModel/LocalizedFields.h"
#include "Tests/Support/ListingNames.h"

#include <gtest/gtest.h>

namespace kestrin {
namespace {

using enum ListingField;

TEST(LocalizedFields, NeverHoldAnEmptyText) {
    LocalizedFields fields({{name, "Notes"}, {subtitle, ""}});
    EXPECT_EQ(fields.values(), (std::map<ListingField, std::string>{{name, "Notes"}}));

    fields.set(keywords, "");
    fields.set(subtitle, "Simple");
    fields.set(name, "");
    EXPECT_EQ(fields.values(), (std::map<ListingField, std::string>{{subtitle, "Simple"}}));
}

TEST(LocalizedFields, AnAbsentTextReadsAsEmpty) {
    const LocalizedFields fields({{name, "Notes"}});
    EXPECT_EQ(fields[name], "Notes");
    EXPECT_EQ(fields[subtitle], "");
    EXPECT_EQ(fields.values().size(), 1u) << "asking makes nothing";
}

TEST(LocalizedFields, BlanksAreText) {
    LocalizedFields fields;
    fields.set(name, " \n");
    EXPECT_EQ(fields[name], " \n");
}

TEST(LocalizedFields, WithUnknownMembersAreNotEmpty) {
    LocalizedFields fields;
    EXPECT_TRUE(fields.isEmpty());
    fields.unknownFields.emplace("future", nullptr);
    EXPECT_FALSE(fields.isEmpty());
    fields = LocalizedFields({{name, "Notes"}});
    EXPECT_FALSE(fields.isEmpty());
    EXPECT_TRUE(LocalizedFields({{name, ""}}).isEmpty());
}

TEST(Texts, OfALocaleThatIsNotThereAreEmpty) {
    const LocalizedTexts locales;
    EXPECT_TRUE(Texts::fields(locales, kGerman).isEmpty());
}

TEST(Texts, SettingAnEmptyRecordRemovesTheLocale) {
    LocalizedTexts locales;
    Texts::setFields(locales, kGerman, {});
    EXPECT_TRUE(locales.empty());

    Texts::setFields(locales, kGerman, LocalizedFields({{name, "Notizen"}}));
    EXPECT_EQ(Texts::fields(locales, kGerman)[name], "Notizen");

    Texts::setFields(locales, kGerman, LocalizedFields({{name, ""}}));
    EXPECT_TRUE(locales.empty());
    EXPECT_TRUE(Texts::fields(locales, kGerman).isEmpty());
}

TEST(Texts, ARecordOfUnknownMembersAloneIsKept) {
    LocalizedTexts locales;
    Texts::setFields(locales, kGerman, LocalizedFields({}, {{"future", 1}}));
    EXPECT_EQ(Texts::fields(locales, kGerman).unknownFields, (UnknownFields{{"future", 1}}));

    Texts::setField(locales, kGerman, name, "Notizen");
    Texts::setField(locales, kGerman, name, "");
    EXPECT_EQ(locales.size(), 1u);
}

TEST(Texts, RemovingTheLastFieldRemovesTheLocale) {
    LocalizedTexts locales;
    Texts::setField(locales, kGerman, name, "Notizen");
    Texts::setField(locales, kGerman, subtitle, "Einfach");
    Texts::setField(locales, kGerman, name, "");
    EXPECT_EQ(locales, (LocalizedTexts{{kGerman, LocalizedFields({{subtitle, "Einfach"}})}}));
    Texts::setField(locales, kGerman, subtitle, "");
    EXPECT_TRUE(locales.empty());
    Texts::setField(locales, kGerman, subtitle, "");
    EXPECT_TRUE(locales.empty());
}

}  // namespace
}  // namespace kestrin
