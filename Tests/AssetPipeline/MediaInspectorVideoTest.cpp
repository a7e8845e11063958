#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>

#include "AssetPipeline/MediaInspector.h"
#include "Tests/Support/MediaTools.h"
#include "Tests/Support/PNGBytes.h"

namespace kestrin {
namespace {

using namespace std::string_literals;

std::string rounded(std::optional<double> number) {
    if (!number) return "?";
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.3f", *number);
    return text.data();
}

// "64x48 at 30.000 for 1.500 s", or the sentence of the error.
std::string seenFilm(const std::filesystem::path& file) {
    try {
        const auto info = MediaInspector::inspect(file);
        EXPECT_EQ(info.kind, MediaInfo::Kind::video);
        EXPECT_FALSE(info.hasAlpha);
        EXPECT_EQ(info.fileSize, static_cast<std::int64_t>(std::filesystem::file_size(file)));
        return std::to_string(info.width) + "x" + std::to_string(info.height) + " at " +
               rounded(info.frameRate) + " for " + rounded(info.duration) + " s";
    } catch (const MediaInspectorError& error) {
        return error.errorDescription();
    }
}

// The linear part of a track's transform, as the format keeps it: x' = ax + cy, y' = bx + dy.
struct Matrix {
    double a, b, c, d;
};

// The clip with another transform in the header of its first track (ISO/IEC 14496-12, 8.3.2).
std::string turned(std::string clip, const Matrix& matrix) {
    constexpr std::size_t kToMatrix = 4 + 40;  // from the box's type, in version 0
    const auto box = clip.find("tkhd");
    const auto set = [&](std::size_t index, double value) {
        const auto fixed = static_cast<std::uint32_t>(static_cast<std::int32_t>(std::lround(value * 65536)));
        for (std::size_t i = 0; i < 4; ++i)
            clip.at(box + kToMatrix + 4 * index + i) = static_cast<char>(fixed >> (24 - 8 * i) & 0xFF);
    };
    set(0, matrix.a);
    set(1, matrix.b);
    set(3, matrix.c);
    set(4, matrix.d);
    return clip;
}

class MediaInspectorVideo : public testing::Test {
 protected:
    std::string seenOf(const std::string& name, const std::string& bytes) {
        tools.folder.write(name, bytes);
        return seenFilm(tools.folder / name);
    }

    MediaTools tools;
};

TEST_F(MediaInspectorVideo, AnyOfTheThreeKindsInAnyCase) {
    EXPECT_EQ(MediaInspector::videoExtensions, (std::set<std::string>{".mp4", ".m4v", ".mov"}));
    for (const auto* name : {"a.mp4", "a.m4v", "a.mov"}) {
        SCOPED_TRACE(name);
        EXPECT_EQ(seenFilm(tools.clip(name)), "64x48 at 30.000 for 1.500 s");
    }
    for (const auto* name : {"A.MP4", "A.MOV", "A.m4V"}) {
        SCOPED_TRACE(name);
        EXPECT_EQ(seenOf(name, tools.folder.read("a.mov")), "64x48 at 30.000 for 1.500 s");
    }
}

TEST_F(MediaInspectorVideo, WithAnotherNameAClipIsNoVideo) {
    tools.clip("a.mp4");
    EXPECT_EQ(seenOf("a.mp3", tools.folder.read("a.mp4")), "Couldn’t read “a.mp3” as an image or a video.");
    EXPECT_EQ(seenOf("mp4", tools.folder.read("a.mp4")), "Couldn’t read “mp4” as an image or a video.");
}

TEST_F(MediaInspectorVideo, TheSizeIsTheDisplayedOne) {
    tools.clip("a.mp4");
    const auto clip = tools.folder.read("a.mp4");
    const double diagonal = std::sqrt(0.5);
    const struct {
        const char* how;
        Matrix matrix;
        const char* size;
    } rows[] = {
        {"upright", {1, 0, 0, 1}, "64x48"},
        {"a quarter", {0, 1, -1, 0}, "48x64"},
        {"half", {-1, 0, 0, -1}, "64x48"},
        {"three quarters", {0, -1, 1, 0}, "48x64"},
        {"mirrored", {-1, 0, 0, 1}, "64x48"},
        {"mirrored and a quarter", {0, 1, 1, 0}, "48x64"},
        {"half as large", {0.5, 0, 0, 0.5}, "32x24"},
        {"stretched", {1.01, 0, 0, 1.01}, "65x48"},  // 64.64 and 48.48
        {"an eighth: the size goes through the transform",
         {diagonal, diagonal, -diagonal, diagonal},
         "11x79"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.how);
        EXPECT_EQ(seenOf("turned.mp4", turned(clip, row.matrix)), row.size + " at 30.000 for 1.500 s"s);
    }
}

TEST_F(MediaInspectorVideo, PixelsThatArentSquareCountAsWideAsTheyAre) {
    EXPECT_EQ(seenFilm(tools.clip("wide.mp4", "-vf setsar=4/3")), "85x48 at 30.000 for 1.500 s");
    EXPECT_EQ(seenFilm(tools.clip("wide.mov", "-vf setsar=3/2")), "96x48 at 30.000 for 1.500 s");
    const auto wide = turned(tools.folder.read("wide.mov"), {0, 1, -1, 0});
    EXPECT_EQ(seenOf("wide-and-turned.mov", wide), "48x96 at 30.000 for 1.500 s");
}

TEST_F(MediaInspectorVideo, TheRateIsTheOneOfTheTrack) {
    const struct {
        const char* rate;
        const char* seen;
    } rows[] = {
        {"30000/1001", "29.970"}, {"24000/1001", "23.976"}, {"60000/1001", "59.940"},
        {"25/2", "12.500"},       {"120", "120.000"},       {"1", "1.000"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.rate);
        tools.ffmpeg("-f lavfi -i testsrc=size=64x48:rate="s + row.rate +
                     ":duration=3 -pix_fmt yuv420p a.mp4");
        const auto info = MediaInspector::inspect(tools.folder / "a.mp4");
        EXPECT_EQ(rounded(info.frameRate), row.seen);
        EXPECT_NEAR(*info.duration, 3, 0.1);
    }
}

TEST_F(MediaInspectorVideo, AVaryingRateIsItsMean) {
    // 30 frames of which the second half is shown twice as long.
    tools.clip("a.mp4", "-frames:v 30 -vf 'setpts=if(lt(N\\,15)\\,N/30/TB\\,(0.5+(N-15)/15)/TB)' -vsync vfr");
    const auto info = MediaInspector::inspect(tools.folder / "a.mp4");
    EXPECT_NEAR(*info.frameRate * *info.duration, 30, 2) << "frames";
    EXPECT_NEAR(*info.frameRate, 21, 1);
}

TEST_F(MediaInspectorVideo, WithoutAVideoTrackItIsUnreadable) {
    tools.ffmpeg("-f lavfi -i sine=duration=1 sound.m4v");
    EXPECT_EQ(seenFilm(tools.folder / "sound.m4v"), "Couldn’t read “sound.m4v” as an image or a video.");
    tools.ffmpeg("-f lavfi -i sine=duration=1 sound.mov");
    EXPECT_EQ(seenFilm(tools.folder / "sound.mov"), "Couldn’t read “sound.mov” as an image or a video.");
}

TEST_F(MediaInspectorVideo, ACoverIsNoVideoTrack) {
    tools.convert("-size 64x48 xc:red cover.png");
    tools.ffmpeg(
        "-f lavfi -i sine=duration=1 -i cover.png -map 0 -map 1 -c:v png -disposition:v attached_pic "
        "song.m4a");
    EXPECT_EQ(seenOf("song.mp4", tools.folder.read("song.m4a")),
              "Couldn’t read “song.mp4” as an image or a video.");
}

TEST_F(MediaInspectorVideo, TheFirstVideoTrackCountsWhereverItStands) {
    tools.ffmpeg(
        "-f lavfi -i sine=duration=1 -f lavfi -i testsrc=size=64x48:rate=30:duration=1 -f lavfi -i "
        "testsrc=size=32x16:rate=10:duration=1 -map 0 -map 2 -map 1 -pix_fmt yuv420p a.mp4");
    EXPECT_EQ(seenFilm(tools.folder / "a.mp4").substr(0, 15), "32x16 at 10.000");
}

TEST_F(MediaInspectorVideo, AFragmentedClipIsReadLikeAnyOther) {
    for (const auto* name : {"a.mp4", "a.mov"}) {
        SCOPED_TRACE(name);
        EXPECT_EQ(seenFilm(tools.clip(name, "-g 10 -movflags frag_keyframe+empty_moov")),
                  "64x48 at 30.000 for 1.500 s");
    }
}

TEST_F(MediaInspectorVideo, AClipCutOffIsReadableAsLongAsItsHeaderIsThere) {
    tools.clip("behind.mp4");
    tools.clip("ahead.mp4", "-movflags faststart");
    const auto behind = tools.folder.read("behind.mp4");
    const auto ahead = tools.folder.read("ahead.mp4");
    EXPECT_EQ(seenOf("cut.mp4", behind.substr(0, behind.size() / 2)),
              "Couldn’t read “cut.mp4” as an image or a video.");
    EXPECT_EQ(seenOf("cut.mp4", ahead.substr(0, ahead.size() - 100)), "64x48 at 30.000 for 1.500 s");
    EXPECT_EQ(seenOf("cut.mp4", ahead.substr(0, 100)), "Couldn’t read “cut.mp4” as an image or a video.");
    EXPECT_EQ(seenOf("cut.mp4", ""), "Couldn’t read “cut.mp4” as an image or a video.");
}

TEST_F(MediaInspectorVideo, NoOtherContainerAndNoListOfFilesPassesForAClip) {
    const auto unreadable = "Couldn’t read “a.mp4” as an image or a video.";
    tools.clip("real.mp4");
    EXPECT_EQ(seenOf("a.mp4", "#EXTM3U\n#EXTINF:1,\nreal.mp4\n"), unreadable);
    EXPECT_EQ(seenOf("a.mp4", "ffconcat version 1.0\nfile real.mp4\n"), unreadable);
    tools.clip("a.mkv");
    EXPECT_EQ(seenOf("a.mp4", tools.folder.read("a.mkv")), unreadable);
    EXPECT_EQ(seenOf("a.mp4", plainPNG(PNGImage::Colour::rgb, "abc").bytes()), unreadable);
    std::filesystem::remove(tools.folder / "a.mp4");
    EXPECT_EQ(seenFilm(tools.folder / "a.mp4"), unreadable) << "no file";
}

TEST_F(MediaInspectorVideo, ANameIsOnlyAName) {
    tools.clip("a.mp4");
    const auto clip = tools.folder.read("a.mp4");
    for (const auto* name :
         {"http:a.mp4", "concat:a.mp4", "%41.mp4", "a[0].mp4", "夏 1.mp4", "-i.mp4", "a:b.mp4"}) {
        SCOPED_TRACE(name);
        EXPECT_EQ(seenOf(name, clip), "64x48 at 30.000 for 1.500 s");
    }
}

TEST_F(MediaInspectorVideo, NothingIsSaidOfAFileButTheResult) {
    tools.clip("a.mp4");
    const auto clip = tools.folder.read("a.mp4");
    testing::internal::CaptureStderr();
    seenOf("cut.mp4", clip.substr(0, clip.size() - 300));
    seenOf("none.mp4", "no clip");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

}  // namespace
}  // namespace kestrin
