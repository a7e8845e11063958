#include "KestrinCLI/ReleaseCommands.h"

#include <gtest/gtest.h>

#include "KestrinModel/ProjectPackageFile.h"
#include "SyncEngine/Pull/SyncError.h"
#include "Tests/Support/FakeConsole.h"
#include "Tests/Support/ProcessState.h"
#include "Tests/Support/TemporaryFolder.h"

namespace kestrin {
namespace {

using Check = PreflightItem::Check;

TEST(DescribePreflightItem, NamesEveryCheck) {
    struct Row {
        Check check;
        const char* line;
    };
    const Row rows[] = {
        {Check::versionEditable, "  ✓ Version can be edited"},
        {Check::buildAttached, "  ✓ A build is attached"},
        {Check::buildProcessed, "  ✓ The build is processed"},
        {Check::exportCompliance, "  ✓ Export compliance is answered"},
        {Check::changesPushed, "  ✓ All changes are pushed"},
        {Check::requiredText, "  ✓ Required text is filled in"},
        {Check::screenshots, "  ✓ The primary locale has screenshots"},
        {Check::limits, "  ✓ Every field is within its limit"},
        {Check::reviewContact, "  ✓ App Review contact is complete"},
        {Check::demoAccount, "  ✓ Demo account is named"},
        {Check::appPrivacy, "  ✓ App Privacy (check on App Store Connect)"},
        {Check::ageRating, "  ✓ Age rating (check on App Store Connect)"},
        {Check::pricing, "  ✓ Pricing and availability (check on App Store Connect)"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(describe(PreflightItem{row.check, PreflightItem::Passed{}}), row.line);
}

TEST(DescribePreflightItem, MarksItsStatusAndGivesTheDetailsOfAFailure) {
    struct Row {
        PreflightItem::Status status;
        const char* line;
    };
    const Row rows[] = {
        {PreflightItem::Passed{}, "  ✓ Every field is within its limit"},
        {PreflightItem::Manual{}, "  ? Every field is within its limit"},
        {PreflightItem::Failed{}, "  ✗ Every field is within its limit"},
        {PreflightItem::Failed{{"de-DE name"}}, "  ✗ Every field is within its limit: de-DE name"},
        {PreflightItem::Failed{{"de-DE name", "ja keywords"}},
         "  ✗ Every field is within its limit: de-DE name; ja keywords"},
    };
    for (const Row& row : rows) EXPECT_EQ(describe(PreflightItem{Check::limits, row.status}), row.line);
}

std::string printed(const Project& project, const RemoteIDs& remote) {
    FakeConsole console;
    printProductPages(project, remote, console);
    return console.terminal;
}

TEST(PrintProductPages, SaysWhenThereAreNeitherPagesNorTests) {
    EXPECT_EQ(printed({}, {}), "No custom product pages or tests.\n");
}

TEST(PrintProductPages, ListsPagesThenTestsInTheOrderOfTheirSlugs) {
    Project project;
    project.pages[{"winter"}].name = "Winter";
    project.pages[{"summer"}].name = "Summer";
    project.experiments[{"icons"}].name = "Icons";
    project.experiments[{"a-test"}].name = "A test";
    EXPECT_EQ(printed(project, {}),
              "page summer: Summer [not pushed]\n"
              "page winter: Winter [not pushed]\n"
              "test a-test: A test (IOS) [not pushed]\n"
              "test icons: Icons (IOS) [not pushed]\n");
}

TEST(PrintProductPages, ShowsTheRemoteStateAndThePublicAddress) {
    Project project;
    RemoteIDs remote;
    for (const auto* slug : {"a", "b", "c"}) {
        project.pages[{slug}].name = slug;
        remote.pages[{slug}] = {"P", {}, "PV", "APPROVED", {}, {}};
    }
    remote.pages[{"b"}].url = "https://apps.apple.com/app/id7?ppid=1";
    remote.pages[{"c"}].url = "";
    project.experiments[{"t"}].name = "T";
    remote.experiments[{"t"}] = {"E", "IN_REVIEW", {}};
    EXPECT_EQ(printed(project, remote),
              "page a: a [APPROVED]\n"
              "page b: b [APPROVED] https://apps.apple.com/app/id7?ppid=1\n"
              "page c: c [APPROVED]\n"
              "test t: T (IOS) [IN_REVIEW]\n");
}

TEST(PrintProductPages, ShowsATestsShareAndItsTreatmentsWithTheirIcons) {
    Project project;
    auto& test = project.experiments[{"icons"}];
    test = {.name = "Icons",
            .platform = StorePlatform::macOS,
            .trafficProportion = 30,
            .treatments = {},
            .unknownFields = {}};
    test.treatments[{"red"}].name = "Red";
    test.treatments[{"blue"}].name = "Blue";
    test.treatments[{"blue"}].appIconName = "BlueIcon";
    test.treatments[{"green"}].name = "Green";
    test.treatments[{"green"}].appIconName = "";
    project.experiments[{"nobody"}].name = "Nobody";
    project.experiments[{"nobody"}].trafficProportion = 0;
    EXPECT_EQ(printed(project, {}),
              "test icons: Icons (MAC_OS, 30% of traffic) [not pushed]\n"
              "  treatment blue: Blue, icon BlueIcon\n"
              "  treatment green: Green\n"
              "  treatment red: Red\n"
              "test nobody: Nobody (IOS, 0% of traffic) [not pushed]\n");
}

TEST(PrintProductPages, ShowsNothingThatOnlyAppStoreConnectHas) {
    RemoteIDs remote;
    remote.pages[{"summer"}] = {"P", {}, "PV", "APPROVED", {}, {}};
    EXPECT_EQ(printed({}, remote), "No custom product pages or tests.\n");
}

// A resource with these attributes, as the service would send it.
template <class Record>
Record recordWith(const JSONObject& attributes) {
    ResourceObject resource;
    resource.attributes = attributes;
    return Record(resource);
}

TEST(PrintCreated, NamesTheVersionAsTheServiceDoesAndElseAsItWasAskedFor) {
    struct Row {
        const char* when;
        JSONObject attributes;
        const char* line;
    };
    const Row rows[] = {
        {"both are said",
         {{"versionString", "1.1.0"}, {"appVersionState", "PREPARE_FOR_SUBMISSION"}},
         "✓ Created MAC_OS 1.1.0 (PREPARE_FOR_SUBMISSION). Run `kestrin pull` to bring it in.\n"},
        {"no number",
         {{"appVersionState", "PREPARE_FOR_SUBMISSION"}},
         "✓ Created MAC_OS 1.1 (PREPARE_FOR_SUBMISSION). Run `kestrin pull` to bring it in.\n"},
        {"nothing", {}, "✓ Created MAC_OS 1.1 (). Run `kestrin pull` to bring it in.\n"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.when);
        FakeConsole console;
        printCreated(recordWith<ASCAppStoreVersion>(row.attributes), StorePlatform::macOS, "1.1", console);
        EXPECT_EQ(console.output, row.line);
    }
}

TEST(PrintSubmitted, NamesTheStateOrSaysSubmittedWhereThereIsNone) {
    const auto printed = [](const std::optional<ASCReviewSubmission>& submission) {
        FakeConsole console;
        printSubmitted(submission, console);
        return console.output;
    };
    EXPECT_EQ(printed(recordWith<ASCReviewSubmission>({{"state", "IN_REVIEW"}})),
              "✓ Submitted for review (IN_REVIEW).\n");
    EXPECT_EQ(printed(recordWith<ASCReviewSubmission>({})), "✓ Submitted for review (submitted).\n");
    EXPECT_EQ(printed(std::nullopt), "✓ Submitted for review (submitted).\n");
}

// No API key: whatever asks for one first has got past its own checks.
class WithoutCredentials : public testing::Test {
 protected:
    void save(const std::optional<std::string>& appID) {
        Project project;
        project.manifest.projectID = UUID::random();
        project.manifest.app = {"com.example.app", appID, {}};
        ProjectPackageFile::save(project, package);
    }
    std::string created(const Arguments& more = {}) {
        Arguments args{"version", "create", package, "1.1"};
        args.insert(args.end(), more.begin(), more.end());
        try {
            return std::to_string(ReleaseCommands::createVersion(args, console));
        } catch (const Error& error) {
            return error.errorDescription();
        }
    }

    const TemporaryFolder folder;
    const std::string package = (folder / "App.kestrin").native();
    EnvironmentVariable key{"ASC_KEY_ID", nullptr};
    FakeConsole console{{"n"}};
};

TEST_F(WithoutCredentials, NoVersionIsAskedForOfAProjectThatIsNotConnected) {
    save(std::nullopt);
    EXPECT_EQ(created(), "This project isn’t connected to an App Store Connect app yet.");
    EXPECT_EQ(console.terminal, "") << "no question either";
}

TEST_F(WithoutCredentials, AVersionIsAskedForBeforeAClientIsMade) {
    save("7");
    EXPECT_EQ(created({"--platform", "MAC_OS"}), "nothing created");
    EXPECT_EQ(console.terminal, "Create MAC_OS version 1.1 in App Store Connect? [y/N] ");
}

TEST_F(WithoutCredentials, WithYesNoVersionIsAskedFor) {
    save("7");
    EXPECT_EQ(created({"--yes"}), "Set ASC_KEY_ID to use an App Store Connect API key.");
    EXPECT_EQ(console.terminal, "");
    EXPECT_EQ(console.answers, 0u);
}

}  // namespace
}  // namespace kestrin
