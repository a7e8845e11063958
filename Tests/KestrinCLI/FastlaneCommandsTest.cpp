#include "KestrinCLI/FastlaneCommands.h"

#include <gtest/gtest.h>

#include <barrier>

#include "ASCKit/ASCError.h"
#include "KestrinCLI/Failure.h"
#include "KestrinCore/FileError.h"
#include "KestrinModel/ProjectPackageFile.h"
#include "SyncEngine/State/ProjectStateStore.h"
#include "Tests/ASCKit/RawServer.h"
#include "Tests/Support/FakeConsole.h"
#include "Tests/Support/ListingNames.h"
#include "Tests/Support/ProcessState.h"
#include "Tests/Support/ProxylessEnvironment.h"
#include "Tests/Support/TemporaryFolder.h"

namespace kestrin {
namespace {

namespace fs = std::filesystem;

class FastlaneCommandsTest : public testing::Test {
 protected:
    int import(const Arguments& more = {}) {
        Arguments args{"import", "fastlane", (folder / "deliver").native(), "--into", package};
        args.insert(args.end(), more.begin(), more.end());
        return FastlaneCommands::importFastlane(args, console);
    }

    int exportTo(const std::string& target, const Arguments& more = {}) {
        Arguments args{"export", "fastlane", package, "--to", (folder / target).native()};
        args.insert(args.end(), more.begin(), more.end());
        return FastlaneCommands::exportFastlane(args, console);
    }

    // A project that shows so many pictures of App Store Connect, each of which lies at that address.
    void saveWithRemoteScreenshots(int count, const std::string& address) {
        Project project;
        project.manifest.projectID = UUID::random();
        auto& shown = project.platforms[StorePlatform::iOS].media[kGerman][{"IPHONE_67", "APP_SCREENSHOT"}];
        KnownAssets known;
        for (int i = 0; i < count; ++i) {
            ASCLibraryAsset asset;
            asset.id = "asset-" + std::to_string(i);
            asset.thumbnail = ImageTemplate{address, 10, 10};
            shown.push_back(MediaItem::remote(asset.id));
            known.emplace(asset.id, asset);
        }
        ProjectPackageFile::save(project, package);
        ProjectStateStore::commandLine().saveRemoteAssets(known, project.manifest.projectID);
    }

    Project saved() const { return ProjectPackageFile::load(package); }

    TemporaryFolder folder;
    std::string package = (folder / "App.kestrin").native();
    FakeConsole console;
};

TEST_F(FastlaneCommandsTest, ImportMakesAPackageForABundleID) {
    folder.write("deliver/metadata/de-DE/name.txt", "Notizen\n");
    folder.write("deliver/metadata/fr-FR/name.txt", "Notes\n");

    EXPECT_EQ(import({"--bundle-id", "com.example.notes"}), 0);

    EXPECT_EQ(console.terminal, "Imported 2 locales into App.kestrin.\n");
    const auto project = saved();
    EXPECT_EQ(project.manifest.app.bundleID, "com.example.notes");
    EXPECT_EQ(project.value(ListingField::name, kGerman, StorePlatform::iOS), "Notizen");
}

TEST_F(FastlaneCommandsTest, ImportIntoNothingNeedsABundleID) {
    folder.write("deliver/metadata/de-DE/name.txt", "Notizen\n");
    try {
        import();
        FAIL() << "made a package of an app that nobody named";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.errorDescription(), "App.kestrin doesn't exist yet; pass --bundle-id to create it");
    }
    EXPECT_FALSE(folder.has("App.kestrin"));
}

TEST_F(FastlaneCommandsTest, ImportGoesOverWhatThePackageHolds) {
    Project project;
    project.manifest.projectID = UUID::random();
    project.manifest.app.bundleID = "com.example.first";
    project.manifest.locales = {kGerman};
    project.setValue("Alt", ListingField::name, kGerman, StorePlatform::iOS);
    project.setValue("Bleibt", ListingField::subtitle, kGerman, StorePlatform::iOS);
    ProjectPackageFile::save(project, package);
    folder.write("deliver/de-DE/name.txt", "Neu");
    folder.write("deliver/ja/name.txt", "メモ");

    EXPECT_EQ(import({"--bundle-id", "com.example.other"}), 0);

    EXPECT_EQ(console.terminal, "Imported 2 locales into App.kestrin.\n");
    const auto result = saved();
    EXPECT_EQ(result.manifest.app.bundleID, "com.example.first");
    EXPECT_EQ(result.manifest.projectID, project.manifest.projectID);
    EXPECT_EQ(result.value(ListingField::name, kGerman, StorePlatform::iOS), "Neu");
    EXPECT_EQ(result.value(ListingField::subtitle, kGerman, StorePlatform::iOS), "Bleibt");
}

TEST_F(FastlaneCommandsTest, ImportIsAlwaysOfIOS) {
    folder.write("deliver/de-DE/description.txt", "Text");
    EXPECT_EQ(import({"--bundle-id", "com.example.notes", "--platform", "MAC_OS"}), 0);
    EXPECT_EQ(saved().manifest.platforms, std::vector{StorePlatform::iOS});
    EXPECT_EQ(saved().value(ListingField::description, kGerman, StorePlatform::iOS), "Text");
}

TEST_F(FastlaneCommandsTest, ImportOfAFolderThatIsNotThereMakesNoPackage) {
    EXPECT_THROW(import({"--bundle-id", "com.example.notes"}), FileError);
    EXPECT_FALSE(folder.has("App.kestrin"));
    EXPECT_EQ(console.terminal, "");
}

TEST_F(FastlaneCommandsTest, ExportWritesADeliverFolder) {
    Project project;
    project.manifest.locales = {kGerman, {"fr-FR"}};
    project.setValue("Notizen", ListingField::name, kGerman, StorePlatform::iOS);
    project.setValue("Text", ListingField::description, kGerman, StorePlatform::iOS);
    ProjectPackageFile::save(project, package);

    EXPECT_EQ(exportTo("out"), 0);

    EXPECT_EQ(console.terminal, "Exported 2 locales, 2 text files and 0 screenshots.\n");
    EXPECT_EQ(folder.read("out/metadata/de-DE/name.txt"), "Notizen\n");
    EXPECT_EQ(folder.read("out/metadata/de-DE/description.txt"), "Text\n");
}

TEST_F(FastlaneCommandsTest, ExportIsOfThePlatformThatIsAskedFor) {
    Project project;
    project.manifest.locales = {kGerman};
    project.setValue("Mac", ListingField::description, kGerman, StorePlatform::macOS);
    ProjectPackageFile::save(project, package);

    EXPECT_EQ(exportTo("mac", {"--platform", "MAC_OS"}), 0);
    EXPECT_EQ(exportTo("ios", {"--platform", "mac_os"}), 0);

    EXPECT_EQ(folder.read("mac/metadata/de-DE/description.txt"), "Mac\n");
    EXPECT_FALSE(folder.has("ios/metadata/de-DE"));
}

TEST_F(FastlaneCommandsTest, ExportTellsWhatStaysBehind) {
    const PlacementSlot screenshots{"IPHONE_67", "APP_SCREENSHOT"}, previews{"IPHONE_67", "APP_PREVIEW"};
    Project project;
    auto& media = project.platforms[StorePlatform::iOS].media[kGerman];
    media[screenshots] = {MediaItem::file("Media/hero.png"), MediaItem::file("Media/gone.png"),
                          MediaItem::file("../secret.png"), MediaItem::remote("asset-1"),
                          MediaItem::remote("asset-2")};
    media[previews] = {MediaItem::file("Media/film.mov"), MediaItem::remote("asset-3"),
                       MediaItem::remote("asset-4")};
    ProjectPackageFile::save(project, package);
    folder.write("App.kestrin/Media/hero.png", "hero");
    folder.write("secret.png", "secret");

    EXPECT_EQ(exportTo("out"), 0);

    EXPECT_EQ(
        console.output,
        "Exported 0 locales, 0 text files and 1 screenshots.\n"
        "  2 screenshots are only on App Store Connect, so weren't copied (try --download-screenshots).\n"
        "  3 previews and other media were left out: deliver only uploads screenshots.\n"
        "  Missing: Media/gone.png\n"
        "  Missing: ../secret.png\n");
    EXPECT_EQ(console.errors, "");
    EXPECT_EQ(folder.read("out/screenshots/de-DE/01_iphone_67_hero.png"), "hero");
}

TEST_F(FastlaneCommandsTest, ExportOfNoProjectWritesNothing) {
    fs::create_directory(package);
    EXPECT_THROW(exportTo("out"), Error);
    EXPECT_FALSE(folder.has("out"));
}

TEST_F(FastlaneCommandsTest, ExportTellsOfADownloadEvenOfNothing) {
    const EnvironmentVariable home("HOME", folder.path().c_str());
    const EnvironmentVariable temporary("TMPDIR", (folder / "tmp").c_str());
    fs::create_directory(folder / "tmp");
    Project project;
    project.platforms[StorePlatform::iOS].media[kGerman][{"IPHONE_67", "APP_SCREENSHOT"}] = {
        MediaItem::remote("never-seen")};
    ProjectPackageFile::save(project, package);

    EXPECT_EQ(exportTo("out", {"--download-screenshots"}), 0);

    EXPECT_EQ(console.errors, "Downloading 0 screenshots from App Store Connect…\n");
    EXPECT_EQ(
        console.output,
        "Exported 0 locales, 0 text files and 0 screenshots.\n"
        "  1 screenshots are only on App Store Connect, so weren't copied (try --download-screenshots).\n");
    EXPECT_TRUE(fs::is_empty(folder / "tmp")) << "the download folder is gone";
}

// Four requests meet before any is answered: fewer at a time would wait for ever, and more would need a fifth connection.
TEST_F(FastlaneCommandsTest, ExportDownloadsFourPicturesAtATime) {
    const EnvironmentVariable home("HOME", folder.path().c_str());
    const ProxylessEnvironment environment;
    std::barrier four(4);
    const RawServer server([&](RawConnection& connection) {
        while (connection.readRequest()) {
            four.arrive_and_wait();
            connection.send(rawReply("picture"));
        }
    });
    saveWithRemoteScreenshots(12, server.root() + "/{w}x{h}.{f}");

    EXPECT_EQ(exportTo("out", {"--download-screenshots"}), 0);

    EXPECT_EQ(server.connections(), 4u);
    EXPECT_EQ(console.terminal,
              "Downloading 12 screenshots from App Store Connect…\n"
              "Exported 0 locales, 0 text files and 12 screenshots.\n");
}

TEST_F(FastlaneCommandsTest, ExportOfADownloadThatFailsWritesNothing) {
    const EnvironmentVariable home("HOME", folder.path().c_str());
    const EnvironmentVariable temporary("TMPDIR", (folder / "tmp").c_str());
    fs::create_directory(folder / "tmp");
    saveWithRemoteScreenshots(1, "ftp://example.com/{w}x{h}.{f}");

    EXPECT_THROW(exportTo("out", {"--download-screenshots"}), ASCError);

    EXPECT_EQ(console.terminal, "Downloading 1 screenshots from App Store Connect…\n");
    EXPECT_FALSE(folder.has("out"));
    EXPECT_TRUE(fs::is_empty(folder / "tmp"));
}

}  // namespace
}  // namespace kestrin
