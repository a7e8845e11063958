#include "KestrinModel/ListingValidator.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Tests/Support/Repeated.h"

namespace kestrin {
namespace {

using enum ListingField;

std::string join(const std::vector<std::string>& words) {
    std::string line;
    for (const auto& word : words) line += (line.empty() ? "" : "+") + word;
    return line;
}

std::string outline(const ListingIssue::Kind& kind) {
    const auto counted = [](const char* name, const CharacterCount& count, std::size_t limit) {
        return std::string(name) + " " + std::to_string(count.graphemes) + "," + std::to_string(count.utf16) +
               " of " + std::to_string(limit);
    };
    return std::visit(
        Overloaded{
            [&](const ListingIssue::OverLimit& issue) { return counted("over", issue.count, issue.limit); },
            [&](const ListingIssue::OverLimitInUTF16Only& issue) {
                return counted("overInUTF16Only", issue.count, issue.limit);
            },
            [](const ListingIssue::DuplicateKeywords& issue) { return "duplicates " + join(issue.keywords); },
        },
        kind);
}

// One line per issue: "IOS/de-DE/keywords over 101,101 of 100".
std::string outline(const Project& project) {
    std::string lines;
    for (const auto& issue : ListingValidator::issues(project)) {
        lines += issue.platform ? issue.platform->rawValue : std::string("app");
        lines += "/" + issue.locale.rawValue + "/" + std::string(rawValue(issue.field)) + " ";
        lines += outline(issue.kind) + "\n";
    }
    return lines;
}

Project withText(ListingField field, std::string value) {
    Project project;
    project.setValue(std::move(value), field, {"de-DE"}, StorePlatform::iOS);
    return project;
}

TEST(ListingValidator, TestsOneTextByItsFieldsRules) {
    struct Row {
        const char* when;
        ListingField field;
        std::string value;
        const char* outline;
    };
    const Row rows[] = {
        {"a name at its limit", name, repeated(30, "a"), ""},
        {"a name over its limit", name, repeated(31, "a"), "app/de-DE/name over 31,31 of 30\n"},
        {"a name of 30 emoji", name, repeated(30, "😀"), "app/de-DE/name overInUTF16Only 30,60 of 30\n"},
        {"a name of 31 emoji", name, repeated(31, "😀"), "app/de-DE/name over 31,62 of 30\n"},
        {"a name of 15 emoji", name, repeated(15, "😀"), ""},
        {"a name of 30 decomposed letters", name, repeated(30, "e\u0301"),
         "app/de-DE/name overInUTF16Only 30,60 of 30\n"},
        {"a subtitle over its limit", subtitle, repeated(31, "a"), "app/de-DE/subtitle over 31,31 of 30\n"},
        {"a URL of the app info has no limit", privacyPolicyUrl, repeated(9999, "u"), ""},
        {"nor has the other", privacyChoicesUrl, repeated(9999, "u"), ""},
        {"a description at its limit", description, repeated(4000, "a"), ""},
        {"a description over it", description, repeated(4001, "a"),
         "IOS/de-DE/description over 4001,4001 of 4000\n"},
        {"a promotional text over its limit", promotionalText, repeated(171, "a"),
         "IOS/de-DE/promotionalText over 171,171 of 170\n"},
        {"what’s new over its limit", whatsNew, repeated(4001, "a"),
         "IOS/de-DE/whatsNew over 4001,4001 of 4000\n"},
        {"a URL of the version has no limit", supportUrl, repeated(9999, "u"), ""},
        {"nor has the other", marketingUrl, repeated(9999, "u"), ""},
        {"keywords at their limit", keywords, repeated(100, "a"), ""},
        {"keywords over their limit", keywords, repeated(101, "a"),
         "IOS/de-DE/keywords over 101,101 of 100\n"},
        {"duplicate keywords", keywords, "Foo, foo, FOO,b,B", "IOS/de-DE/keywords duplicates foo+B\n"},
        {"two issues, the limit first", keywords, repeated(34, "ab,"),
         "IOS/de-DE/keywords over 102,102 of 100\nIOS/de-DE/keywords duplicates ab\n"},
        {"two issues, in UTF-16 only", keywords, repeated(34, "😀,"),
         "IOS/de-DE/keywords overInUTF16Only 68,102 of 100\nIOS/de-DE/keywords duplicates 😀\n"},
        {"wasted spaces are no issue", keywords, " a , b ", ""},
        {"commas make no duplicates elsewhere", subtitle, "a,a", ""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(outline(withText(row.field, row.value)), row.outline);
    }
}

TEST(ListingValidator, AnEmptyProjectHasNoIssues) {
    EXPECT_EQ(outline(Project{}), "");
}

TEST(ListingValidator, WalksTheAppInfoFirstThenPlatformsAndLocalesInOrder) {
    Project project;
    for (const auto& platform : {StorePlatform::visionOS, StorePlatform::iOS, StorePlatform{"MAC_OS"}}) {
        for (const auto* locale : {"fr-FR", "de-DE"}) {
            project.setValue(repeated(31, "n"), name, {locale}, platform);
            project.setValue(repeated(31, "s"), subtitle, {locale}, platform);
            project.setValue(repeated(171, "p"), promotionalText, {locale}, platform);
            project.setValue(repeated(101, "k"), keywords, {locale}, platform);
        }
    }

    EXPECT_EQ(outline(project),
              "app/de-DE/name over 31,31 of 30\n"
              "app/de-DE/subtitle over 31,31 of 30\n"
              "app/fr-FR/name over 31,31 of 30\n"
              "app/fr-FR/subtitle over 31,31 of 30\n"
              "IOS/de-DE/keywords over 101,101 of 100\n"
              "IOS/de-DE/promotionalText over 171,171 of 170\n"
              "IOS/fr-FR/keywords over 101,101 of 100\n"
              "IOS/fr-FR/promotionalText over 171,171 of 170\n"
              "MAC_OS/de-DE/keywords over 101,101 of 100\n"
              "MAC_OS/de-DE/promotionalText over 171,171 of 170\n"
              "MAC_OS/fr-FR/keywords over 101,101 of 100\n"
              "MAC_OS/fr-FR/promotionalText over 171,171 of 170\n"
              "VISION_OS/de-DE/keywords over 101,101 of 100\n"
              "VISION_OS/de-DE/promotionalText over 171,171 of 170\n"
              "VISION_OS/fr-FR/keywords over 101,101 of 100\n"
              "VISION_OS/fr-FR/promotionalText over 171,171 of 170\n");
}

TEST(ListingValidator, LooksOnlyAtTheTextsOfAppAndPlatforms) {
    Project project;
    project.manifest.platforms = {StorePlatform::tvOS};
    project.manifest.locales = {{"ja"}};
    project.pages[{"summer"}].promotionalText[{"de-DE"}] = repeated(171, "p");
    project.pages[{"summer"}].name = repeated(200, "n");
    project.experiments[{"icons"}].name = repeated(200, "n");

    EXPECT_EQ(outline(project), "");
}

TEST(ListingValidator, AFieldInTheWrongPlaceIsNotLookedAt) {
    Project project;
    project.app.locales[{"de-DE"}].set(keywords, "a,a");
    project.platforms[StorePlatform::iOS].locales[{"de-DE"}].set(name, repeated(31, "n"));

    EXPECT_EQ(outline(project), "");
}

}  // namespace
}  // namespace kestrin
