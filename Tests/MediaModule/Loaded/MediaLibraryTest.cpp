#include "AssetPipeline/MediaLibrary.h"

#include <gtest/gtest.h>

#include <fstream>

#include "AssetPipeline/MediaHash.h"
#include "AssetPipeline/MediaInspector.h"
#include "AssetPipeline/ReferenceName.h"
#include "AssetPipeline/SpecMatcher.h"
#include "Tests/Support/PNGBytes.h"
#include "Tests/Support/TemporaryFolder.h"

namespace kestrin {
namespace {

// Which of the libraries for media this process has in memory (proc(5)).
std::string loaded() {
    std::ifstream maps("/proc/self/maps");
    const std::string all{std::istreambuf_iterator<char>(maps), {}};
    std::string names;
    for (const auto* name : {"kestrin-media", "libvips", "libavformat"}) {
        if (all.find(name) != std::string::npos) names += name + std::string(" ");
    }
    return names;
}

// One test, since what is loaded stays so.
TEST(MediaLibrary, IsLoadedWhenTheFirstMediaFileIsLookedAt) {
    const TemporaryFolder folder;
    folder.write("a.png", plainPNG(PNGImage::Colour::rgb, "abc").bytes());

    const auto md5 = MediaHash::md5(folder / "a.png");
    ReferenceName::make("a.png", md5);
    SpecMatcher::problems({}, {"IPHONE_67", "APP_SCREENSHOT"}, {});
    EXPECT_EQ(loaded(), "") << "hashing, naming and matching need no library";

    EXPECT_EQ(MediaInspector::inspect(folder / "a.png").width, 1);
    EXPECT_EQ(loaded(), "kestrin-media libvips libavformat ");
    EXPECT_EQ(&MediaLibrary::backend(), &MediaLibrary::backend());
}

}  // namespace
}  // namespace kestrin
