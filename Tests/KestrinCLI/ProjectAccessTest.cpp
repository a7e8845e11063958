#include "KestrinCLI/ProjectAccess.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "KestrinCLI/Failure.h"
#include "KestrinCore/FileError.h"
#include "KestrinModel/ProjectFormatError.h"
#include "KestrinModel/ProjectPackageFile.h"
#include "Tests/Support/ProcessState.h"
#include "Tests/Support/TemporaryFolder.h"

namespace kestrin {
namespace {

namespace fs = std::filesystem;

Project projectOf(const std::string& bundleID) {
    Project project;
    project.manifest.projectID = UUID::random();
    project.manifest.app.bundleID = bundleID;
    return project;
}

TEST(LoadProject, ReadsThePackageAtThePath) {
    const TemporaryFolder folder;
    const auto project = projectOf("com.example.app");
    ProjectPackageFile::save(project, folder / "p.kestrin");
    EXPECT_EQ(loadProject((folder / "p.kestrin").native()), project);
    EXPECT_EQ(loadProject((folder / "p.kestrin/").native()), project);
}

TEST(LoadProject, ExpandsATilde) {
    const TemporaryFolder folder;
    const EnvironmentVariable home("HOME", folder.path().c_str());
    const auto project = projectOf("com.example.app");
    ProjectPackageFile::save(project, folder / "p.kestrin");
    EXPECT_EQ(loadProject("~/p.kestrin"), project);
}

TEST(LoadProject, FailsAsReadingDoes) {
    const TemporaryFolder folder;
    fs::create_directory(folder / "Empty.kestrin");
    EXPECT_THROW(loadProject((folder / "Missing.kestrin").native()), FileError);
    EXPECT_THROW(loadProject((folder / "Empty.kestrin").native()), ProjectFormatError);
    EXPECT_THROW(loadProject(""), Failure);
}

TEST(LoadOrCreate, MakesANewProjectInMemoryForABundleID) {
    const TemporaryFolder folder;

    const auto project = loadOrCreate(folder / "new.kestrin", "com.example.app");

    const auto& manifest = project.manifest;
    EXPECT_EQ(manifest.app, (AppBinding{"com.example.app", std::nullopt, {}}));
    EXPECT_EQ(manifest.platforms, std::vector{StorePlatform::iOS});
    EXPECT_EQ(manifest.primaryLocale, StoreLocale::englishUS);
    EXPECT_TRUE(manifest.locales.empty());
    EXPECT_TRUE(manifest.unknownFields.empty());
    Project rest = project;
    rest.manifest = {};
    EXPECT_EQ(rest, Project()) << "no content at all";
    EXPECT_FALSE(folder.has("new.kestrin")) << "nothing is written yet";
}

TEST(LoadOrCreate, GivesEveryNewProjectAnIDOfItsOwn) {
    const TemporaryFolder folder;
    EXPECT_NE(loadOrCreate(folder / "a.kestrin", "x").manifest.projectID,
              loadOrCreate(folder / "a.kestrin", "x").manifest.projectID);
}

TEST(LoadOrCreate, NamesThePackageThatIsMissing) {
    const TemporaryFolder folder;
    try {
        loadOrCreate(folder / "sub/new.kestrin/", std::nullopt);
        FAIL() << "made a project of nothing";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.errorDescription(), "new.kestrin doesn't exist yet; pass --bundle-id to create it");
    }
}

TEST(LoadOrCreate, KeepsTheBundleIDOfAnExistingPackage) {
    const TemporaryFolder folder;
    const auto project = projectOf("com.example.first");
    ProjectPackageFile::save(project, folder / "p.kestrin");
    EXPECT_EQ(loadOrCreate(folder / "p.kestrin", "com.example.other"), project);
    EXPECT_EQ(loadOrCreate(folder / "p.kestrin", std::nullopt), project);
}

TEST(LoadOrCreate, MakesNothingOfAFileOrFolderThatIsNoProject) {
    const TemporaryFolder folder;
    folder.write("file", "text");
    fs::create_directory(folder / "folder");
    EXPECT_THROW(loadOrCreate(folder / "file", "com.example.app"), Error);
    EXPECT_THROW(loadOrCreate(folder / "folder", "com.example.app"), ProjectFormatError);
}

TEST(LoadOrCreate, DoesNotTakeAPathThatCannotBeLookedAtForAFreeOne) {
    const TemporaryFolder folder;
    const std::string endless(5000, 'x');  // longer than any name
    EXPECT_THROW(loadOrCreate(folder / endless, "com.example.app"), FileError);
}

// A package with media, a secret beside it, and links of every kind.
class MediaLocatorTest : public testing::Test {
 protected:
    MediaLocatorTest() {
        folder.write("secret.png", "secret");
        folder.write("p.kestrin/Media/hero.png", "hero");
        folder.write("p.kestrin/Media/deep/er/icon.png", "icon");
        folder.write("p.kestrin/top.png", "top");
        link("hero.png", "Media/to-file");
        link("../top.png", "Media/to-parent");
        link("Media/deep", "to-folder");
        link("../secret.png", "out-to-file");
        link("..", "out-to-folder");
        link("../p.kestrin/top.png", "out-and-back");
        link(folder / "secret.png", "absolute-out");
        link(folder / "p.kestrin/Media/hero.png", "absolute-in");
        link("nothing", "dangling");
        link("loop-b", "loop-a");
        link("loop-a", "loop-b");
        link("out-to-folder/secret.png", "by-way-of-another");
    }

    void link(const fs::path& target, const std::string& name) const {
        fs::create_symlink(target, folder / "p.kestrin" / name);
    }

    // "" where the locator finds nothing.
    std::string contentFound(const std::string& path) const {
        const auto found = mediaLocator(folder / "p.kestrin")(path);
        return found ? folder.read(fs::relative(*found, folder.path())) : "";
    }

    TemporaryFolder folder;
};

TEST_F(MediaLocatorTest, FindsReadableFilesInsideThePackage) {
    struct Row {
        const char* when;
        const char* path;
        const char* content;
    };
    const Row rows[] = {
        {"a file", "Media/hero.png", "hero"},
        {"a file at the root", "top.png", "top"},
        {"a file far down", "Media/deep/er/icon.png", "icon"},
        {"names that mean nothing", "./Media//./hero.png", "hero"},
        {"up, but not out", "Media/deep/../hero.png", "hero"},
        {"a link in the same folder", "Media/to-file", "hero"},
        {"a link up to a file inside", "Media/to-parent", "top"},
        {"through a link to a folder inside", "to-folder/er/icon.png", "icon"},
        {"up from where a link led", "to-folder/../hero.png", "hero"},
        {"an absolute link that leads inside", "absolute-in", "hero"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(contentFound(row.path), row.content);
    }
}

TEST_F(MediaLocatorTest, FindsNothingOutsideThePackage) {
    const std::string inSecret = (folder / "secret.png").native();
    const std::string paths[] = {
        "../secret.png",
        "Media/../../secret.png",
        "../p.kestrin/top.png",  // leaves the package on its way
        inSecret,
        (folder / "p.kestrin/top.png").native(),  // absolute, though inside
        "out-to-file",
        "out-to-folder/secret.png",
        "out-to-folder/p.kestrin/top.png",
        "out-and-back",
        "absolute-out",
        "by-way-of-another",
        "to-folder/../../../secret.png",
        "Media" + inSecret,
    };
    for (const auto& path : paths) {
        SCOPED_TRACE(path);
        EXPECT_EQ(contentFound(path), "");
    }
}

TEST_F(MediaLocatorTest, FindsNothingThatIsNotAReadableFile) {
    ASSERT_EQ(mkfifo((folder / "p.kestrin/pipe").c_str(), 0600), 0);
    const std::string nul("Media/hero.png\0.png", 19);
    for (const std::string& path :
         {std::string(), std::string("/"), std::string("."), std::string(".."), std::string("Media"),
          std::string("to-folder"), std::string("pipe"), std::string("Media/missing.png"),
          std::string("Media/hero.png/x"), std::string("Media/hero.png/"), std::string("dangling"),
          std::string("loop-a"), std::string("missing/../top.png"), nul, std::string(5000, 'x'),
          std::string(100000, '/')}) {
        SCOPED_TRACE(path.substr(0, 40));
        EXPECT_EQ(contentFound(path), "");
    }
}

TEST_F(MediaLocatorTest, GivesThePathAsItStandsSoThatALinkKeepsItsName) {
    const auto locate = mediaLocator(folder / "p.kestrin");
    EXPECT_EQ(locate("Media/to-file"), folder / "p.kestrin/Media/to-file");
}

TEST_F(MediaLocatorTest, WorksForAPackageReachedThroughALink) {
    fs::create_directory_symlink("p.kestrin", folder / "link.kestrin");
    const auto locate = mediaLocator(folder / "link.kestrin");
    EXPECT_TRUE(locate("Media/hero.png"));
    EXPECT_TRUE(locate("Media/to-parent"));
    EXPECT_FALSE(locate("out-to-file"));
}

TEST_F(MediaLocatorTest, FindsNothingInAPackageThatIsNotThere) {
    EXPECT_FALSE(mediaLocator(folder / "missing.kestrin")("Media/hero.png"));
    EXPECT_FALSE(mediaLocator("")("Media/hero.png"));
}

}  // namespace
}  // namespace kestrin
