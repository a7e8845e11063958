#include "KestrinCLI/ChangePrinting.h"

#include <gtest/gtest.h>

#include "Tests/Support/FakeConsole.h"

namespace kestrin {
namespace {

const ContentKey kKey = ContentKey::AppInfoLocale{{"de-DE"}, ListingField::name};
const ContentKey kOther = ContentKey::AppInfo{AppInfoAttribute::primaryCategory};

std::string repeated(const std::string& text, std::size_t count) {
    std::string all;
    for (std::size_t i = 0; i < count; ++i) all += text;
    return all;
}

TEST(ChangePrinting, PreviewIsOneLineOfAtMostSeventyCharacters) {
    struct Row {
        const char* when;
        std::string text, preview;
    };
    const Row rows[] = {
        {"empty", "", "(empty)"},
        {"line feeds show", "a\nb\n", "a⏎ b⏎ "},
        {"seventy characters show whole", repeated("x", 70), repeated("x", 70)},
        {"of seventy-one, sixty-nine", repeated("x", 71), repeated("x", 69) + "…"},
        {"characters as the user sees them", repeated("👩‍👩‍👧", 70),
         repeated("👩‍👩‍👧", 70)},
        {"a line feed counts as two", repeated("x", 69) + "\n", repeated("x", 69) + "…"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(preview(row.text), row.preview);
    }
}

TEST(ChangePrinting, AChangeSetIsFourListsInOrderWithoutTheEmptyOnes) {
    FakeConsole console;
    const Change change{kKey, "old", ""};
    printChangeSet({{change}, {change, change}, {change}, {{change, {BlockReason::NoRemoteVersion{}}}}},
                   console);
    const std::string three = "  app/de-DE/name\n    - old\n    + (empty)\n";
    EXPECT_EQ(console.output, "To push (1):\n" + three +  //
                                  "Conflicts: changed here and in App Store Connect (2):\n" + three + three +
                                  "Changed in App Store Connect (pull to bring in) (1):\n" + three +
                                  "Can't push (1):\n"
                                  "  app/de-DE/name: App Store Connect has no version for this platform\n");
}

TEST(ChangePrinting, AnEmptyChangeSetPrintsNothing) {
    FakeConsole console;
    printChangeSet({}, console);
    EXPECT_EQ(console.output, "");
}

TEST(ChangePrinting, EveryBlockReasonHasItsWords) {
    struct Row {
        BlockReason reason;
        const char* words;
    };
    const Row rows[] = {
        {{BlockReason::VersionNotEditable{"S"}}, "the version is S; only promotional text can change"},
        {{BlockReason::AppInfoNotEditable{"S"}}, "the app info is S"},
        {{BlockReason::PageNotEditable{"S"}},
         "the page's version is S; changing it needs a new version of the page"},
        {{BlockReason::ExperimentNotEditable{"S"}}, "the test is S and can't change any more"},
        {{BlockReason::NoRemoteVersion{}}, "App Store Connect has no version for this platform"},
        {{BlockReason::LocalizationMissing{}},
         "the locale has no localization in App Store Connect; add its text first"},
        {{BlockReason::LocaleRemovedLocally{}},
         "the locale was removed here; Kestrin never deletes localizations"},
        {{BlockReason::PageRemovedLocally{}}, "the page was removed here; Kestrin never deletes pages"},
        {{BlockReason::ExperimentRemovedLocally{}},
         "removed here; Kestrin never deletes tests or treatments"},
        {{BlockReason::ExperimentPlatformFixed{}}, "a test's platform is set when it's created"},
    };
    for (const Row& row : rows) EXPECT_EQ(describe(row.reason), row.words);
}

TEST(ChangePrinting, AStepIsItsVerbAndItsKeys) {
    EXPECT_EQ(describe(PushStep{PushStep::UpdateAppInfoLocalization{}, {kKey, kOther}}),
              "update app/de-DE/name, app/primaryCategory");
    EXPECT_EQ(describe(PushStep{PushStep::CreateAppInfoLocalization{}, {kKey}}), "create app/de-DE/name");
    EXPECT_EQ(describe(PushStep{PushStep::EnsureAsset{"a.png", "0", {}}, {}}),
              "upload a.png (or reuse it if already uploaded)");
    EXPECT_EQ(describe(PushStep{PushStep::CreateCustomPageLocalization{}, {}}), "create ")
        << "a step that only serves others has no key";
    PushStep::PlaceMedia place;
    place.placement.desired = {MediaItem::file("a.png"), MediaItem::remote("1")};
    EXPECT_EQ(describe(PushStep{place, {kKey}}), "place 2 item(s) in app/de-DE/name");
}

}  // namespace
}  // namespace kestrin
