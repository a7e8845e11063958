#include "KestrinCLI/LocalCommands.h"

#include <gtest/gtest.h>

#include "KestrinCLI/Dispatch.h"
#include "KestrinModel/ProjectPackageFile.h"
#include "Tests/Support/FakeConsole.h"
#include "Tests/Support/ListingNames.h"
#include "Tests/Support/Repeated.h"
#include "Tests/Support/TemporaryFolder.h"

namespace kestrin {
namespace {

CharacterCount counted(std::size_t graphemes, std::size_t utf16) {
    CharacterCount count;
    count.graphemes = graphemes;
    count.utf16 = utf16;
    return count;
}

// The status and the output of a command on a project on disk.
struct Ran {
    int status;
    std::string output;
    bool operator==(const Ran&) const = default;
};

void PrintTo(const Ran& ran, std::ostream* out) {
    *out << "status " << ran.status << "\n" << ran.output;
}

Ran ran(CommandHandler command, const Project& project) {
    const TemporaryFolder folder;
    ProjectPackageFile::save(project, folder / "p.kestrin");
    FakeConsole console;
    const int status = command({"", (folder / "p.kestrin").native()}, console);
    EXPECT_EQ(console.errors, "");
    return {status, console.output};
}

TEST(DescribeIssue, NamesThePlaceAndTheKind) {
    struct Row {
        ListingIssue issue;
        const char* line;
    };
    const Row rows[] = {
        {{ListingField::name, kGerman, std::nullopt, ListingIssue::OverLimit{counted(31, 40), 30}},
         "de-DE name: 31 characters, limit 30"},
        {{ListingField::whatsNew, kGerman, StorePlatform::macOS,
          ListingIssue::OverLimit{counted(4001, 4001), 4000}},
         "macOS de-DE whatsNew: 4001 characters, limit 4000"},
        {{ListingField::subtitle, kGerman, std::nullopt,
          ListingIssue::OverLimitInUTF16Only{counted(20, 44), 30}},
         "de-DE subtitle: 20 characters but 44 UTF-16 units, limit 30 (verify)"},
        {{ListingField::keywords, kGerman, StorePlatform::iOS,
          ListingIssue::DuplicateKeywords{{"foto", "bild"}}},
         "iOS de-DE keywords: duplicate keywords foto, bild"},
        {{ListingField::keywords, kGerman, StorePlatform{"WATCH_OS"}, ListingIssue::DuplicateKeywords{{"a"}}},
         "WATCH_OS de-DE keywords: duplicate keywords a"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.line);
        EXPECT_EQ(describe(row.issue), row.line);
    }
}

TEST(Check, FindsNothingInAnEmptyProject) {
    EXPECT_EQ(ran(LocalCommands::check, Project()), (Ran{0, "No issues.\n"}));
}

TEST(Check, PrintsTheIssuesAndCountsThoseOverALimit) {
    Project project;
    project.setValue(std::string(31, 'n'), ListingField::name, kGerman, StorePlatform::iOS);
    project.setValue("a, b, A", ListingField::keywords, kGerman, StorePlatform::iOS);
    project.setValue(std::string(171, 'p'), ListingField::promotionalText, kGerman, StorePlatform::macOS);
    EXPECT_EQ(ran(LocalCommands::check, project),
              (Ran{1,
                   "de-DE name: 31 characters, limit 30\n"
                   "iOS de-DE keywords: duplicate keywords A\n"
                   "macOS de-DE promotionalText: 171 characters, limit 170\n"
                   "3 issues, 2 over a limit.\n"}));
}

TEST(Check, SucceedsWithDuplicateKeywordsOnly) {
    Project project;
    project.setValue("a, a", ListingField::keywords, kGerman, StorePlatform::iOS);
    EXPECT_EQ(ran(LocalCommands::check, project),
              (Ran{0, "iOS de-DE keywords: duplicate keywords a\n1 issues, 0 over a limit.\n"}));
}

TEST(Check, SucceedsWithTextsThatAreOverTheirLimitInUTF16Only) {
    Project project;
    project.setValue(repeated(30, "😀"), ListingField::name, kGerman, StorePlatform::iOS);
    EXPECT_EQ(ran(LocalCommands::check, project),
              (Ran{0,
                   "de-DE name: 30 characters but 60 UTF-16 units, limit 30 (verify)\n"
                   "1 issues, 0 over a limit.\n"}));
}

TEST(Inspect, PrintsWhatTheManifestSays) {
    Project project;
    project.manifest.projectID = *UUID::parse("0e3c1b5a-7d2f-4a61-9c0e-2f5d8b7a6c41");
    project.manifest.app = {"com.example.app", "6450000001", {}};
    project.manifest.platforms = {StorePlatform::iOS, StorePlatform::macOS};
    project.manifest.locales = {{"fr-FR"}, kGerman};
    project.setValue("Name", ListingField::name, kGerman, StorePlatform::iOS);
    project.setValue("Text", ListingField::description, kGerman, StorePlatform::iOS);
    EXPECT_EQ(ran(LocalCommands::inspect, project), (Ran{0,
                                                         "project:   0E3C1B5A-7D2F-4A61-9C0E-2F5D8B7A6C41\n"
                                                         "bundle ID: com.example.app\n"
                                                         "app ID:    6450000001\n"
                                                         "platforms: IOS, MAC_OS\n"
                                                         "locales:   fr-FR, de-DE\n"
                                                         "fields:    2\n"}));
}

TEST(Inspect, SaysWhatIsNotSet) {
    EXPECT_EQ(ran(LocalCommands::inspect, Project()), (Ran{0,
                                                           "project:   00000000-0000-0000-0000-000000000000\n"
                                                           "bundle ID: (not set)\n"
                                                           "app ID:    (not bound)\n"
                                                           "platforms: \n"
                                                           "locales:   \n"
                                                           "fields:    0\n"}));
}

TEST(Version, PrintsTheFormatWithOrWithoutASecondWord) {
    for (const Arguments& args : {Arguments{"version"}, {"version", "foo"}}) {
        FakeConsole console;
        EXPECT_EQ(LocalCommands::version(args, console), 0);
        EXPECT_EQ(console.terminal, "com.brennoway.kestrin.project schema 1\n");
    }
}

}  // namespace
}  // namespace kestrin
