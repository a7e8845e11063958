#include "KestrinCLI/BuildCommands.h"

#include <gtest/gtest.h>

#include "ASCKit/ASCError.h"
#include "AssetPipeline/BuildArchive/BuildArchiveError.h"
#include "KestrinModel/ProjectPackageFile.h"
#include "SyncEngine/Pull/SyncError.h"
#include "Tests/Support/ArchiveBytes.h"
#include "Tests/Support/FakeConsole.h"
#include "Tests/Support/ProcessState.h"
#include "Tests/Support/TemporaryFolder.h"

namespace kestrin {
namespace {

ASCBuild buildWith(const JSONObject& attributes) {
    ResourceObject resource;
    resource.attributes = attributes;
    return ASCBuild(resource, {});
}

TEST(DescribeBuild, IsItsColumnsBetweenTabs) {
    auto build =
        buildWith({{"version", "27"}, {"processingState", "VALID"}, {"usesNonExemptEncryption", false}});
    build.versionString = "1.4";
    EXPECT_EQ(describe(build), "1.4 (27)\tVALID\tno encryption");
    build.usesNonExemptEncryption = true;
    EXPECT_EQ(describe(build), "1.4 (27)\tVALID\tuses encryption");
    build.isExpired = true;
    EXPECT_EQ(describe(build), "1.4 (27)\tVALID\tuses encryption\texpired");
}

TEST(DescribeBuild, HasAQuestionMarkForWhatIsNotSaid) {
    EXPECT_EQ(describe(buildWith({{"version", "27"}})), "? (27)\t?\texport compliance unanswered");
}

TEST(DescribeBuildArchive, IsTheFileItsPlatformItsVersionsAndItsSize) {
    BuildArchiveInfo info{
        .shortVersion = "1.4", .buildVersion = "27", .platform = "IOS", .fileSize = 12'345'678};
    EXPECT_EQ(describe(info, "App.ipa"), "App.ipa: IOS 1.4 (27), 12.3 MB");
    info.shortVersion = info.buildVersion = std::nullopt;
    EXPECT_EQ(describe(info, "App.ipa"), "App.ipa: IOS ? (?), 12.3 MB");
    info.shortVersion = info.buildVersion = "";
    EXPECT_EQ(describe(info, "App.ipa"), "App.ipa: IOS ? (?), 12.3 MB") << "empty is as good as absent";
}

TEST(PrintUploaded, HasEachWarningAndTheBuild) {
    FakeConsole console;
    printUploaded({"U", "B", {"Too large.", "W2"}}, console);
    EXPECT_EQ(console.terminal, "  warning: Too large.\n  warning: W2\n✓ Uploaded. Build B.\n");
}

TEST(PrintUploaded, SaysThatABuildIsNotListedYet) {
    FakeConsole console;
    printUploaded({"U", std::nullopt, {}}, console);
    EXPECT_EQ(console.terminal, "✓ Uploaded. Build (not listed yet).\n");
}

// Commands up to where they would reach App Store Connect: without credentials they go no further.
class BuildCommandsTest : public testing::Test {
 protected:
    void SetUp() override {
        Project project;
        project.manifest.projectID = UUID::random();
        project.manifest.app.bundleID = "com.example.glowworm";
        project.manifest.app.ascAppID = "7";
        ProjectPackageFile::save(project, folder / "App.kestrin");
    }

    int upload(const Arguments& more = {}) {
        Arguments args{"build", "upload", (folder / "App.kestrin").native(), (folder / "App.ipa").native()};
        args.insert(args.end(), more.begin(), more.end());
        return BuildCommands::upload(args, console);
    }

    void disconnect() {
        auto project = ProjectPackageFile::load(folder / "App.kestrin");
        project.manifest.app.ascAppID = std::nullopt;
        ProjectPackageFile::save(project, folder / "App.kestrin");
    }

    void rename(const std::string& bundleID) {
        auto project = ProjectPackageFile::load(folder / "App.kestrin");
        project.manifest.app.bundleID = bundleID;
        ProjectPackageFile::save(project, folder / "App.kestrin");
    }

    void writeBuild(std::string_view elements) {
        folder.write("App.ipa", zip({storedMember("Payload/A.app/Info.plist", xmlPropertyList(elements))}));
    }

    EnvironmentVariable noKey{"ASC_KEY_ID", nullptr};
    TemporaryFolder folder;
    FakeConsole console;
};

TEST_F(BuildCommandsTest, NeedAConnectedProjectBeforeAnythingElse) {
    disconnect();
    const auto package = (folder / "App.kestrin").native();
    EXPECT_THROW(upload(), SyncError);
    EXPECT_THROW(BuildCommands::list({"build", "list", package}, console), SyncError);
    EXPECT_THROW(BuildCommands::attach({"build", "attach", package, "27"}, console), SyncError);
    EXPECT_EQ(console.terminal, "");
}

TEST_F(BuildCommandsTest, UploadLooksAtTheFileBeforeItAsksForCredentials) {
    folder.write("App.ipa", "text");
    EXPECT_THROW(upload(), BuildArchiveError);
    EXPECT_EQ(console.terminal, "");
}

TEST_F(BuildCommandsTest, UploadTellsWhatTheFileIs) {
    writeBuild(
        "<key>CFBundleIdentifier</key><string>com.example.glowworm</string>"
        "<key>CFBundleShortVersionString</key><string>1.4</string>");
    EXPECT_THROW(upload(), ASCError);
    EXPECT_EQ(console.output, "Uploading App.ipa: IOS 1.4 (?), " +
                                  std::to_string(std::filesystem::file_size(folder / "App.ipa")) +
                                  " bytes\n");
    EXPECT_EQ(console.errors, "");
}

TEST_F(BuildCommandsTest, UploadTakesTheVersionsOfTheCommandLineInPlaceOfTheFiles) {
    writeBuild(
        "<key>CFBundleShortVersionString</key><string>1.4</string>"
        "<key>CFBundleVersion</key><string>27</string>");
    EXPECT_THROW(upload({"--version", "2.0"}), ASCError);
    EXPECT_THROW(upload({"--build", "28"}), ASCError);
    EXPECT_NE(console.output.find(" 2.0 (27),"), std::string::npos);
    EXPECT_NE(console.output.find(" 1.4 (28),"), std::string::npos);
}

TEST_F(BuildCommandsTest, UploadWarnsOfNothingWhereTheFileNamesNoApp) {
    writeBuild("");
    EXPECT_THROW(upload(), ASCError);
    EXPECT_EQ(console.errors, "");
}

TEST_F(BuildCommandsTest, UploadWarnsOfTheBuildOfAnotherApp) {
    writeBuild("<key>CFBundleIdentifier</key><string>com.example.other</string>");
    EXPECT_THROW(upload(), ASCError);
    EXPECT_EQ(console.errors,
              "Warning: the file's bundle ID is com.example.other, the project's is com.example.glowworm.\n");
}

TEST_F(BuildCommandsTest, UploadKnowsABundleIDInEitherFormOfUnicode) {
    rename("com.example.caf\u00e9");
    writeBuild("<key>CFBundleIdentifier</key><string>com.example.cafe\u0301</string>");
    EXPECT_THROW(upload(), ASCError);
    EXPECT_EQ(console.errors, "");
}

}  // namespace
}  // namespace kestrin
