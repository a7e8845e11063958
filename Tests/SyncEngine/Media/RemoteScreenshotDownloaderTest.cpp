#include "SyncEngine/Media/RemoteScreenshotDownloader.h"

#include <gtest/gtest.h>

#include <barrier>
#include <mutex>

#include "ASCKit/ASCError.h"
#include "KestrinCore/FileError.h"
#include "KestrinModel/PackageNameError.h"
#include "Tests/Support/ListingNames.h"
#include "Tests/Support/TemporaryFolder.h"

namespace kestrin {
namespace {

namespace fs = std::filesystem;

const PlacementSlot kPhone{"IPHONE_67", "APP_SCREENSHOT"};
const PlacementSlot kPad{"IPAD_13", "APP_SCREENSHOT"};
const PlacementSlot kPreview{"IPHONE_67", "APP_PREVIEW"};

ASCLibraryAsset asset(const std::string& id, const std::string& fileName = "shot.png") {
    ASCLibraryAsset made;
    made.id = id;
    made.fileName = fileName;
    made.thumbnail = ImageTemplate{"https://i.example/" + id + "/{w}x{h}.{f}", 1290, 2796};
    return made;
}

std::vector<ASCLibraryAsset> assetsNamed(const std::vector<std::string>& ids) {
    std::vector<ASCLibraryAsset> made;
    for (const auto& id : ids) made.push_back(asset(id));
    return made;
}

KnownAssets known(const std::vector<ASCLibraryAsset>& assets) {
    KnownAssets byID;
    for (const auto& one : assets) byID.emplace(one.id, one);
    return byID;
}

std::vector<std::string> ids(const std::vector<ASCLibraryAsset>& assets) {
    std::vector<std::string> found;
    for (const auto& one : assets) found.push_back(one.id);
    return found;
}

using IDs = std::vector<std::string>;

// A project with these items in one slot.
Project showing(const MediaItems& items, const PlacementSlot& slot = kPhone) {
    Project project;
    project.platforms[StorePlatform::iOS].media[kGerman][slot] = items;
    return project;
}

IDs chosen(const Project& project, const KnownAssets& cached) {
    return ids(RemoteScreenshotDownloader::assets(project, StorePlatform::iOS, cached));
}

TEST(RemoteScreenshotAssets, AreOfAllLocalesAndScreenshotSlotsInTheOrderOfTheirIds) {
    Project project = showing({MediaItem::remote("C"), MediaItem::remote("B")});
    auto& media = project.platforms[StorePlatform::iOS].media;
    media[kGerman][kPad] = {MediaItem::remote("A")};
    media[kFrench][kPhone] = {MediaItem::remote("D")};
    EXPECT_EQ(chosen(project, known(assetsNamed({"D", "C", "B", "A"}))), (IDs{"A", "B", "C", "D"}));
}

TEST(RemoteScreenshotAssets, AreTakenOnceHoweverOftenTheyAreShown) {
    Project project;
    auto& media = project.platforms[StorePlatform::iOS].media;
    for (const auto* locale : {"de-DE", "fr-FR", "ja"}) {
        media[{locale}][kPhone] = {MediaItem::remote("A"), MediaItem::remote("A")};
    }
    EXPECT_EQ(chosen(project, known({asset("A")})), IDs{"A"});
}

TEST(RemoteScreenshotAssets, LeaveOutWhatIsNoRemoteScreenshot) {
    auto video = asset("A");
    video.kind = ASCLibraryAsset::Kind::video;
    auto pictureless = asset("A");
    pictureless.thumbnail.reset();
    struct Row {
        const char* when;
        Project project;
        KnownAssets cached;
    };
    const Row rows[] = {
        {"a file of the project", showing({MediaItem::file("A")}), known({asset("A")})},
        {"a preview slot", showing({MediaItem::remote("A")}, kPreview), known({asset("A")})},
        {"a video", showing({MediaItem::remote("A")}), known({video})},
        {"an asset without a picture", showing({MediaItem::remote("A")}), known({pictureless})},
        {"an unknown asset", showing({MediaItem::remote("A")}), known({asset("B")})},
        {"no media", {}, known({asset("A")})},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(chosen(row.project, row.cached), IDs{});
    }
}

TEST(RemoteScreenshotAssets, AreThoseOfThePlatformAndNotOfPages) {
    Project project;
    project.platforms[StorePlatform::macOS].media[kGerman][kPhone] = {MediaItem::remote("A")};
    project.pages[{"page"}].media[kGerman][kPhone] = {MediaItem::remote("A")};
    const auto cached = known({asset("A")});
    EXPECT_EQ(chosen(project, cached), IDs{});
    EXPECT_EQ(ids(RemoteScreenshotDownloader::assets(project, StorePlatform::macOS, cached)), IDs{"A"});
}

TEST(RemoteScreenshotFormat, IsJPEGForItsTwoExtensionsAndElsePNG) {
    struct Row {
        const char* fileName;
        const char* format;
    };
    const Row rows[] = {
        {"shot.jpg", "jpg"}, {"shot.jpeg", "jpg"}, {"shot.JPEG", "jpg"},    {"a.b.JPG", "jpg"},
        {"shot.png", "png"}, {"shot.heic", "png"}, {"shot", "png"},         {"", "png"},
        {".jpg", "png"},     {"jpg", "png"},       {"shot.jpg.gif", "png"}, {"shot.", "png"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fileName);
        EXPECT_EQ(RemoteScreenshotDownloader::format(row.fileName), row.format);
    }
}

// A fetch function that remembers, and a folder.
struct World {
    TemporaryFolder folder;
    std::mutex mutex;
    std::vector<std::string> fetched;   // addresses in the order in which they were asked for
    std::vector<std::string> progress;  // "1/3"
    std::size_t atOnce = 0, mostAtOnce = 0;

    // Called within each fetch, by its thread.
    std::function<void(const URL&, const std::stop_token&)> during;

    RemoteScreenshotDownloader::FilesByAsset download(const std::vector<ASCLibraryAsset>& assets,
                                                      std::size_t concurrency = 1) {
        const RemoteScreenshotDownloader downloader(
            [this](const URL& url, const std::stop_token& stop) { return fetch(url, stop); });
        return downloader.download(assets, folder / "a/b", concurrency,
                                   [this](std::size_t done, std::size_t total) {
                                       progress.push_back(std::to_string(done) + "/" + std::to_string(total));
                                   });
    }

    std::string fetch(const URL& url, const std::stop_token& stop) {
        {
            const std::lock_guard lock(mutex);
            fetched.push_back(url.absoluteString());
            mostAtOnce = std::max(mostAtOnce, ++atOnce);
        }
        if (during) during(url, stop);
        const std::lock_guard lock(mutex);
        --atOnce;
        return "picture at " + url.absoluteString();
    }
};

TEST(RemoteScreenshotDownload, WritesEachPictureUnderTheIdOfItsAsset) {
    World world;
    const auto files = world.download({asset("A"), asset("B", "shot.JPEG")});
    EXPECT_EQ(files, (RemoteScreenshotDownloader::FilesByAsset{{"A", world.folder / "a/b/A.png"},
                                                               {"B", world.folder / "a/b/B.jpg"}}));
    EXPECT_EQ(world.folder.files(), (std::map<std::string, std::string>{
                                        {"a/b/A.png", "picture at https://i.example/A/1290x2796.png"},
                                        {"a/b/B.jpg", "picture at https://i.example/B/1290x2796.jpg"}}))
        << "nothing else, temporary files above all";
    EXPECT_EQ(world.progress, (IDs{"1/2", "2/2"}));
}

TEST(RemoteScreenshotDownload, OfNothingMakesTheFolderAndTellsNoProgress) {
    World world;
    EXPECT_TRUE(world.download({}).empty());
    EXPECT_TRUE(fs::is_directory(world.folder / "a/b"));
    EXPECT_TRUE(world.progress.empty());
}

TEST(RemoteScreenshotDownload, TakesAFolderThatIsThereAndReplacesAFile) {
    World world;
    world.folder.write("a/b/A.png", "old");
    world.download({asset("A")});
    EXPECT_EQ(world.folder.read("a/b/A.png"), "picture at https://i.example/A/1290x2796.png");
}

TEST(RemoteScreenshotDownload, WithAWidthOfOneGoesStrictlyInOrder) {
    World world;
    IDs wanted, addresses;
    for (int i = 0; i < 40; ++i) {
        wanted.push_back("A" + std::to_string(i));
        addresses.push_back("https://i.example/" + wanted.back() + "/1290x2796.png");
    }
    world.download(assetsNamed(wanted), 1);
    EXPECT_EQ(world.fetched, addresses);
    EXPECT_EQ(world.mostAtOnce, 1u);
}

TEST(RemoteScreenshotDownload, TakesAWidthOfNothingForOne) {
    World world;
    EXPECT_EQ(world.download(assetsNamed({"A", "B"}), 0).size(), 2u);
    EXPECT_EQ(world.mostAtOnce, 1u);
}

// Four at a time meet before any goes on: fewer would wait for ever, and a fifth would show in the count.
TEST(RemoteScreenshotDownload, GetsAsManyAtOnceAsItMayAndNoMore) {
    World world;
    std::barrier four(4);
    world.during = [&](auto&&...) { four.arrive_and_wait(); };
    world.download(assetsNamed({"1", "2", "3", "4", "5", "6", "7", "8"}), 4);
    EXPECT_EQ(world.mostAtOnce, 4u);
    EXPECT_EQ(world.fetched.size(), 8u);
}

TEST(RemoteScreenshotDownload, StartsEverythingAtOnceWhereTheWidthIsLargerThanTheList) {
    World world;
    std::barrier all(3);
    world.during = [&](auto&&...) { all.arrive_and_wait(); };
    EXPECT_EQ(world.download(assetsNamed({"1", "2", "3"}), 100).size(), 3u);
}

TEST(RemoteScreenshotDownload, SkipsAnAssetWithoutAnAddressButCountsIt) {
    World world;
    auto pictureless = asset("A");
    pictureless.thumbnail.reset();
    auto addressless = asset("B");
    addressless.thumbnail->templateURL = "no address at all";
    const auto files = world.download({pictureless, addressless, asset("C")});
    EXPECT_EQ(files.size(), 1u);
    EXPECT_TRUE(files.contains("C"));
    EXPECT_EQ(world.progress, (IDs{"1/3", "2/3", "3/3"}));
    EXPECT_EQ(world.fetched.size(), 1u);
}

TEST(RemoteScreenshotDownload, TheFirstFailureEndsItAndWhatIsWrittenStays) {
    World world;
    world.during = [](const URL& url, auto&&) {
        if (url.path() == "/B/1290x2796.png") throw ASCError(ASCError::Transport{{}, url.path()});
    };
    EXPECT_THROW(world.download(assetsNamed({"A", "B", "C"})), ASCError);
    EXPECT_EQ(world.fetched.size(), 2u);
    EXPECT_TRUE(world.folder.has("a/b/A.png"));
    EXPECT_EQ(world.progress, IDs{"1/3"});
}

TEST(RemoteScreenshotDownload, AFailureStopsTheOthersAndIsTheOneThatIsTold) {
    World world;
    std::barrier both(2);
    world.during = [&](const URL& url, const std::stop_token& stop) {
        both.arrive_and_wait();
        if (url.path().starts_with("/A/")) throw ASCError(ASCError::Transport{{}, url.path()});
        std::mutex waiting;
        std::unique_lock lock(waiting);
        std::condition_variable_any stopped;
        stopped.wait(lock, stop, [] { return false; });
        throw Cancelled();
    };
    EXPECT_THROW(world.download(assetsNamed({"A", "B", "C", "D"}), 2), ASCError);
    EXPECT_EQ(world.fetched.size(), 2u);
}

TEST(RemoteScreenshotDownload, AFileThatCannotBeWrittenEndsIt) {
    World world;
    fs::create_directories(world.folder / "a/b/A.png");
    EXPECT_THROW(world.download(assetsNamed({"A", "B"})), FileError);
    EXPECT_EQ(world.fetched.size(), 1u);
}

TEST(RemoteScreenshotDownload, AFolderThatCannotBeMadeEndsItBeforeAnythingIsFetched) {
    World world;
    world.folder.write("a", "a file in the way");
    EXPECT_THROW(world.download(assetsNamed({"A"})), FileError);
    EXPECT_TRUE(world.fetched.empty());
}

TEST(RemoteScreenshotDownload, AnIdThatCannotBeTheNameOfAFileIsRefusedBeforeAnythingIsFetched) {
    for (const auto& id : {std::string(".."), std::string("../A"), std::string("/etc/passwd"),
                           std::string("a/b"), std::string(), std::string("a\0b", 3)}) {
        SCOPED_TRACE(id);
        World world;
        EXPECT_THROW(world.download({asset("A"), asset(id)}), PackageNameError);
        EXPECT_TRUE(world.fetched.empty());
        EXPECT_FALSE(world.folder.has("a"));
    }
}

TEST(RemoteScreenshotDownload, EndsWithWhatTheProgressThrows) {
    World world;
    const RemoteScreenshotDownloader downloader([](auto&&...) { return "bytes"; });
    const auto interrupt = [](auto&&...) { throw Cancelled(); };
    EXPECT_THROW(downloader.download(assetsNamed({"A", "B"}), world.folder / "a", 2, interrupt), Cancelled);
}

}  // namespace
}  // namespace kestrin
