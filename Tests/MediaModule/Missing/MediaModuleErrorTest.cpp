#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "AssetPipeline/AlphaFlattener.h"
#include "AssetPipeline/MediaInspector.h"
#include "AssetPipeline/MediaLibrary.h"
#include "Tests/Support/TemporaryFolder.h"

namespace kestrin {
namespace {

// This executable has no run path that leads to the module.
TEST(MediaModuleError, WithoutItsModuleNoMediaFileCanBeLookedAt) {
    const TemporaryFolder folder;
    for (const auto* name : {"a.png", "a.mp4"}) {
        folder.write(name, "bytes");
        EXPECT_THROW(MediaInspector::inspect(folder / name), MediaModuleError);
        EXPECT_THROW(AlphaFlattener::flattenedPNG(folder / name), MediaModuleError);
    }
}

TEST(MediaModuleError, SaysWhatTheLoaderSaid) {
    try {
        MediaLibrary::backend();
        FAIL() << "the module was found";
    } catch (const MediaModuleError& error) {
        EXPECT_THAT(error.errorDescription(),
                    testing::MatchesRegex("Couldn’t load Kestrin’s media module: .*kestrin-media.so.*\\."));
    }
}

}  // namespace
}  // namespace kestrin
