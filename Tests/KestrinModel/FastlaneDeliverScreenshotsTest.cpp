#include <gtest/gtest.h>

#include "KestrinCore/FileError.h"
#include "KestrinModel/FastlaneDeliverExporter.h"
#include "Tests/Support/ListingNames.h"
#include "Tests/Support/TemporaryFolder.h"

namespace kestrin {
namespace {

namespace fs = std::filesystem;
using FileContents = std::map<std::string, std::string>;

const PlacementSlot iPhone{"IPHONE_67", "APP_SCREENSHOT"};
const PlacementSlot iPad{"IPAD_129", "APP_SCREENSHOT"};
const PlacementSlot iPhonePreview{"IPHONE_67", "APP_PREVIEW"};

// A project whose media come from two folders: its own files and the copies of remote assets.
struct MediaProject {
    Project project;
    TemporaryFolder own, copies, target;

    void put(const StoreLocale& locale, const PlacementSlot& slot, MediaItems items) {
        Media::setItems(project.platforms[kIOS].media, locale, slot, std::move(items));
    }

    // An asset's copy is the file of "copies" whose name is the asset's ID.
    FastlaneExportSummary run() const {
        const auto locate = [&](const std::string& path) -> std::optional<fs::path> { return own / path; };
        const auto copyOf = [&](const std::string& id) -> std::optional<fs::path> {
            return copies.has(id) ? std::optional(copies / id) : std::nullopt;
        };
        return FastlaneDeliverExporter::exportListing(project, kIOS, target.path(), locate, copyOf);
    }

    // The names below "screenshots" after an export.
    std::vector<std::string> names() const {
        run();
        std::vector<std::string> result;
        for (const auto& [path, bytes] : target.files()) {
            result.push_back(fs::path(path).lexically_relative("screenshots").string());
        }
        return result;
    }
};

using Names = std::vector<std::string>;

TEST(FastlaneDeliverScreenshots, AreNumberedAndNamedAfterTheirSlotAndFile) {
    MediaProject media;
    media.own.write("Media/hero.png", "bytes");
    media.put(kGerman, iPhone, {MediaItem::file("Media/hero.png")});

    const auto summary = media.run();

    EXPECT_EQ(summary.screenshotCount, 1u);
    EXPECT_EQ(media.target.files(), (FileContents{{"screenshots/de-DE/01_iphone_67_hero.png", "bytes"}}));
}

TEST(FastlaneDeliverScreenshots, AreNumberedThroughTheSlotsOfALocaleInOrder) {
    MediaProject media;
    for (const char* file : {"a.png", "b.png", "c.png"}) media.own.write(file, file);
    media.put(kGerman, iPhone, {MediaItem::file("c.png"), MediaItem::file("a.png")});
    media.put(kGerman, iPad, {MediaItem::file("b.png")});
    media.put({"ja"}, iPhone, {MediaItem::file("a.png")});

    EXPECT_EQ(media.names(), (Names{"de-DE/01_ipad_129_b.png", "de-DE/02_iphone_67_c.png",
                                    "de-DE/03_iphone_67_a.png", "ja/01_iphone_67_a.png"}));
}

TEST(FastlaneDeliverScreenshots, AreThoseOfTheGivenPlatform) {
    MediaProject media;
    media.own.write("a.png", "");
    Media::setItems(media.project.platforms[StorePlatform::macOS].media, kGerman, iPhone,
                    {MediaItem::file("a.png")});
    EXPECT_EQ(media.run(), FastlaneExportSummary{});
}

TEST(FastlaneDeliverScreenshots, NeedNoLocaleInTheManifest) {
    MediaProject media;
    media.own.write("a.png", "");
    media.put(kGerman, iPhone, {MediaItem::file("a.png")});
    ASSERT_TRUE(media.project.manifest.locales.empty());
    EXPECT_EQ(media.run().screenshotCount, 1u);
}

TEST(FastlaneDeliverScreenshots, HaveNumbersOfAtLeastTwoDigits) {
    MediaProject media;
    media.own.write("a.png", "");
    media.put(kGerman, iPhone, MediaItems(1001, MediaItem::file("a.png")));

    media.run();

    for (const char* number : {"01", "09", "10", "99", "100", "1000", "1001"}) {
        EXPECT_TRUE(
            media.target.has(fs::path("screenshots/de-DE") / (std::string(number) + "_iphone_67_a.png")));
    }
}

TEST(FastlaneDeliverScreenshots, LeaveOtherMediaBehindAndCounted) {
    MediaProject media;
    for (const char* file : {"a.mp4", "b.mp4", "c.png"}) media.own.write(file, "");
    media.copies.write("asset", "");
    media.put(kGerman, iPhonePreview,
              {MediaItem::file("a.mp4"), MediaItem::file("b.mp4"), MediaItem::remote("asset", "x.mp4")});
    media.put(kGerman, iPhone, {MediaItem::file("c.png")});

    const auto summary = media.run();

    EXPECT_EQ(summary.otherMediaCount, 3u);
    EXPECT_EQ(media.target.files(), (FileContents{{"screenshots/de-DE/01_iphone_67_c.png", ""}}));
}

TEST(FastlaneDeliverScreenshots, WithoutAReadableFileAreListedAndTakeNoNumber) {
    MediaProject media;
    fs::create_directory(media.own / "folder.png");
    fs::create_symlink("nothing", media.own / "dangling.png");
    media.own.write("there.png", "");
    media.put(kGerman, iPhone,
              {MediaItem::file("gone.png"), MediaItem::file("folder.png"), MediaItem::file("dangling.png"),
               MediaItem::file("there.png")});

    const auto summary = media.run();

    EXPECT_EQ(summary.missingFiles, (Names{"gone.png", "folder.png", "dangling.png"}));
    EXPECT_EQ(summary.screenshotCount, 1u);
    EXPECT_TRUE(media.target.has("screenshots/de-DE/01_iphone_67_there.png"));
}

TEST(FastlaneDeliverScreenshots, ThatAreNotLocatedAreListed) {
    MediaProject media;
    media.put(kGerman, iPhone, {MediaItem::file("a.png")});
    const auto nowhere = [](const std::string&) { return std::optional<fs::path>(); };

    const auto summary =
        FastlaneDeliverExporter::exportListing(media.project, kIOS, media.target.path(), nowhere, nowhere);

    EXPECT_EQ(summary.missingFiles, Names{"a.png"});
    EXPECT_FALSE(media.target.has("screenshots"));
}

TEST(FastlaneDeliverScreenshots, WithoutALocalCopyAreCountedAndTakeNoNumber) {
    MediaProject media;
    media.copies.write("here.png", "copy");
    media.put(kGerman, iPhone,
              {MediaItem::remote("A1", "first.png"), MediaItem::remote("here.png", "second.png")});

    const auto summary = media.run();

    EXPECT_EQ(summary.remoteScreenshotCount, 1u);
    EXPECT_EQ(summary.screenshotCount, 1u);
    EXPECT_EQ(media.target.files(), (FileContents{{"screenshots/de-DE/01_iphone_67_second.png", "copy"}}));
}

TEST(FastlaneDeliverScreenshots, OfAnAssetHaveItsNameAndTheExtensionOfTheCopy) {
    struct Row {
        const char* when;
        const char* fileName;
        const char* copy;
        const char* name;
    };
    const Row rows[] = {
        {"the copy is in another format", "hero.jpeg", "x.png", "hero.png"},
        {"only the last extension counts", "v1.2.hero.jpeg", "x.y.png", "v1.2.hero.png"},
        {"a name without extension gets one", "hero", "x.png", "hero.png"},
        {"a copy without extension takes it away", "hero.jpeg", "x", "hero"},
        {"a leading dot is no extension", ".hero", "x.png", ".hero.png"},
        {"without a name it has that of the copy", "", "x.png", "x.png"},
        {"slashes lead nowhere", "../../hero.png", "x.png", "..-..-hero.png"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.when);
        MediaProject media;
        media.copies.write(row.copy, "");
        media.put(kGerman, iPhone, {MediaItem::remote(row.copy, row.fileName)});
        EXPECT_EQ(media.names(), Names{std::string("de-DE/01_iphone_67_") + row.name});
    }
}

TEST(FastlaneDeliverScreenshots, StayInTheFolderOfTheirLocaleWhateverTheirGroupIs) {
    struct Row {
        std::string group;
        const char* name;
    };
    const Row rows[] = {
        {"../../../OUT", "01_..-..-..-out_a.png"},
        {"/ETC", "01_-etc_a.png"},
        {std::string("A\0B", 3), "01_a-b_a.png"},
        {"", "01__a.png"},
        {"ÄÖ", "01_äö_a.png"},
        {"..", "01_.._a.png"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        MediaProject media;
        media.own.write("a.png", "");
        media.put(kGerman, {row.group, "APP_SCREENSHOT"}, {MediaItem::file("a.png")});
        EXPECT_EQ(media.names(), Names{std::string("de-DE/") + row.name});
    }
}

TEST(FastlaneDeliverScreenshots, HaveNoNULFromTheNameOfAnAsset) {
    MediaProject media;
    media.copies.write("x.png", "");
    media.put(kGerman, iPhone, {MediaItem::remote("x.png", std::string("a\0/b.png", 8))});
    EXPECT_EQ(media.names(), Names{"de-DE/01_iphone_67_a--b.png"});
}

TEST(FastlaneDeliverScreenshots, ReplaceThoseOfTheSameNameAndLeaveHigherNumbers) {
    MediaProject media;
    media.own.write("a.png", "old");
    media.own.write("b.png", "b");
    media.put(kGerman, iPhone, {MediaItem::file("a.png"), MediaItem::file("b.png")});
    media.run();

    media.own.write("a.png", "new");
    media.put(kGerman, iPhone, {MediaItem::file("a.png")});
    EXPECT_EQ(media.run().screenshotCount, 1u);

    EXPECT_EQ(media.target.files(), (FileContents{{"screenshots/de-DE/01_iphone_67_a.png", "new"},
                                                  {"screenshots/de-DE/02_iphone_67_b.png", "b"}}));
}

TEST(FastlaneDeliverScreenshots, ReplaceALinkAndNotWhatItPointsAt) {
    MediaProject media;
    media.own.write("a.png", "new");
    media.put(kGerman, iPhone, {MediaItem::file("a.png")});
    const TemporaryFolder elsewhere;
    elsewhere.write("mine.png", "untouched");
    fs::create_directories(media.target / "screenshots/de-DE");
    fs::create_symlink(elsewhere / "mine.png", media.target / "screenshots/de-DE/01_iphone_67_a.png");

    media.run();

    EXPECT_EQ(media.target.files(), (FileContents{{"screenshots/de-DE/01_iphone_67_a.png", "new"}}));
    EXPECT_EQ(elsewhere.read("mine.png"), "untouched");
}

TEST(FastlaneDeliverScreenshots, StopTheExportWithTheFileSystemsError) {
    struct Row {
        const char* when;
        std::string fileName;
        bool copyExists;
        FileError::Operation operation;
    };
    const Row rows[] = {
        {"a copy that was promised isn't there", "hero.png", false, FileError::Operation::read},
        {"a name is too long", std::string(300, 'n') + ".png", true, FileError::Operation::write},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.when);
        MediaProject media;
        if (row.copyExists) media.copies.write("x.png", "");
        media.own.write("a.png", "kept");
        media.put(kGerman, iPhone, {MediaItem::file("a.png"), MediaItem::remote("x.png", row.fileName)});
        const auto locate = [&](const std::string& path) { return std::optional(media.own / path); };
        const auto copyOf = [&](const std::string& id) { return std::optional(media.copies / id); };

        try {
            FastlaneDeliverExporter::exportListing(media.project, kIOS, media.target.path(), locate, copyOf);
            ADD_FAILURE() << "the export succeeded";
        } catch (const FileError& error) {
            EXPECT_EQ(error.operation, row.operation);
        }
        EXPECT_EQ(media.target.files(), (FileContents{{"screenshots/de-DE/01_iphone_67_a.png", "kept"}}));
    }
}

}  // namespace
}  // namespace kestrin
