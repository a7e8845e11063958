#include <gtest/gtest.h>
#include <sys/stat.h>

#include "AssetPipeline/MediaInspector.h"
#include "Tests/Support/MediaTools.h"
#include "Tests/Support/PNGBytes.h"
#include "Tests/Support/Repeated.h"

namespace kestrin {
namespace {

using Colour = PNGImage::Colour;
using namespace std::string_literals;

// "64x48", "64x48 alpha", or the sentence of the error.
std::string seen(const std::filesystem::path& file) {
    try {
        const auto info = MediaInspector::inspect(file);
        EXPECT_EQ(info.kind, MediaInfo::Kind::image);
        EXPECT_EQ(info.duration, std::nullopt);
        EXPECT_EQ(info.frameRate, std::nullopt);
        return std::to_string(info.width) + "x" + std::to_string(info.height) +
               (info.hasAlpha ? " alpha" : "");
    } catch (const MediaInspectorError& error) {
        return error.errorDescription();
    }
}

class MediaInspectorImage : public testing::Test {
 protected:
    std::string seenOf(const std::string& name, const std::string& bytes) {
        tools.folder.write(name, bytes);
        return seen(tools.folder / name);
    }

    MediaTools tools;
};

// 5 by 2 pixels, all samples 0, and whatever chunks belong to that.
std::string pngOf(Colour colour, int bitDepth, const std::string& transparency = "") {
    const std::map<Colour, int> samples = {
        {Colour::grey, 1}, {Colour::rgb, 3}, {Colour::palette, 1}, {Colour::greyAlpha, 2}, {Colour::rgba, 4}};
    const int bytesInRow = (5 * samples.at(colour) * bitDepth + 7) / 8;
    PNGImage image{
        .width = 5, .height = 2, .colour = colour, .bitDepth = bitDepth, .samples = {}, .chunks = {}};
    image.samples.assign(static_cast<std::size_t>(2 * bytesInRow), '\0');
    if (colour == Colour::palette) image.chunks.emplace_back("PLTE", "\x10\x20\x30\xFF\xFF\xFF"s);
    if (!transparency.empty()) image.chunks.emplace_back("tRNS", transparency);
    return image.bytes();
}

TEST_F(MediaInspectorImage, APNGOfAnyColourTypeAndDepth) {
    for (const int depth : {1, 2, 4, 8, 16}) {
        SCOPED_TRACE(depth);
        EXPECT_EQ(seenOf("grey.png", pngOf(Colour::grey, depth)), "5x2");
        EXPECT_EQ(seenOf("grey.png", pngOf(Colour::grey, depth, "\0\0"s)), "5x2 alpha") << "tRNS";
        if (depth == 16) continue;
        EXPECT_EQ(seenOf("palette.png", pngOf(Colour::palette, depth)), "5x2");
        EXPECT_EQ(seenOf("palette.png", pngOf(Colour::palette, depth, "\0"s)), "5x2 alpha") << "tRNS";
    }
    for (const int depth : {8, 16}) {
        SCOPED_TRACE(depth);
        EXPECT_EQ(seenOf("rgb.png", pngOf(Colour::rgb, depth)), "5x2");
        EXPECT_EQ(seenOf("rgb.png", pngOf(Colour::rgb, depth, "\0\0\0\0\0\0"s)), "5x2 alpha") << "tRNS";
        EXPECT_EQ(seenOf("ga.png", pngOf(Colour::greyAlpha, depth)), "5x2 alpha");
        EXPECT_EQ(seenOf("rgba.png", pngOf(Colour::rgba, depth)), "5x2 alpha");
    }
}

TEST_F(MediaInspectorImage, WhateverTheToolsMake) {
    const std::string half = "-alpha on -channel A -evaluate set 50% +channel ";
    const struct {
        const char* words;
        const char* name;
        const char* seen;
    } rows[] = {
        {"", "PNG24:rgb.png", "64x48"},
        {"-interlace PNG", "PNG24:interlaced.png", "64x48"},
        {"-interlace PNG -alpha on -channel A -evaluate set 50% +channel", "PNG32:interlaced-alpha.png",
         "64x48 alpha"},
        {"-depth 16", "PNG48:deep.png", "64x48"},
        {"", "rgb.jpg", "64x48"},
        {"-colorspace gray", "grey.jpg", "64x48"},
        {"-colorspace CMYK", "cmyk.jpg", "64x48"},
        {"-interlace JPEG", "progressive.jpeg", "64x48"},
        {"", "a.heic", "64x48"},
        {"", "a.webp", "64x48"},
        {"-alpha on -channel A -evaluate set 50% +channel", "alpha.webp", "64x48 alpha"},
        {"", "a.gif", "64x48"},
        {"-transparent red", "alpha.gif", "64x48 alpha"},
        {"", "a.tiff", "64x48"},
        {"-depth 16", "deep.tif", "64x48"},
        {"-colorspace CMYK", "cmyk.tiff", "64x48"},
        {"-define tiff:tile-geometry=16x16", "tiled.tiff", "64x48"},
        {"-alpha on -channel A -evaluate set 50% +channel", "alpha.tiff", "64x48 alpha"},
        {"-alpha on -channel A -evaluate set 50% +channel -define tiff:alpha=associated",
         "premultiplied.tiff", "64x48 alpha"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        tools.convert("-size 64x48 gradient:red-blue "s + row.words + " " + row.name);
        const std::string name = row.name;
        EXPECT_EQ(seen(tools.folder / name.substr(name.find(':') + 1)), row.seen);
    }
}

TEST_F(MediaInspectorImage, TheSizeIsTheStoredOneWhateverTheOrientationSays) {
    tools.convert("-size 64x48 gradient:red-blue -orient RightTop turned.jpg");
    EXPECT_EQ(seen(tools.folder / "turned.jpg"), "64x48");
}

TEST_F(MediaInspectorImage, OfAnAnimationTheFirstFrameCounts) {
    tools.convert("-delay 10 -size 64x48 xc:red xc:blue xc:green moving.gif");
    EXPECT_EQ(seen(tools.folder / "moving.gif"), "64x48");
    tools.convert("-size 64x48 xc:red xc:blue pages.tiff");
    EXPECT_EQ(seen(tools.folder / "pages.tiff"), "64x48");
}

TEST_F(MediaInspectorImage, TheExtensionIsLowerCaseWithItsDotAndTheSizeThatOfTheFile) {
    const auto bytes = pngOf(Colour::rgb, 8);
    const struct {
        const char* name;
        const char* extension;
    } rows[] = {
        {"Shot 1 (EN).PNG", ".png"}, {"a.b.Png", ".png"}, {"ÄÖ.ÄÖ", ".äö"}, {"preview", "."}, {".png", "."}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        tools.folder.write(row.name, bytes);
        const auto info = MediaInspector::inspect(tools.folder / row.name);
        EXPECT_EQ(info.fileExtension, row.extension);
        EXPECT_EQ(info.fileSize, static_cast<std::int64_t>(bytes.size()));
    }
}

TEST_F(MediaInspectorImage, ANameIsOnlyAName) {
    for (const auto* name : {"a[0].png", "a.png[page=1]", "png:a.png", "file:a.png", "%41.png", "a\nb.png",
                             "-o.png", "http:a.png", "~.png", "*.png", "夏.png"}) {
        SCOPED_TRACE(name);
        EXPECT_EQ(seenOf(name, pngOf(Colour::rgb, 8)), "5x2");
    }
}

TEST_F(MediaInspectorImage, TheContentSaysWhatAnImageIsNotItsName) {
    EXPECT_EQ(seenOf("a.jpg", pngOf(Colour::rgb, 8)), "5x2");
    EXPECT_EQ(MediaInspector::inspect(tools.folder / "a.jpg").fileExtension, ".jpg");
}

TEST_F(MediaInspectorImage, WhatIsNoImageIsUnreadableByItsName) {
    const auto unreadable = "Couldn’t read “a.png” as an image or a video.";
    EXPECT_EQ(seenOf("a.png", ""), unreadable);
    EXPECT_EQ(seenOf("a.png", "no picture"), unreadable);
    EXPECT_EQ(seenOf("a.png", "<svg xmlns='http://www.w3.org/2000/svg' width='5' height='2'/>"), unreadable)
        << "a drawing";
    EXPECT_EQ(seenOf("a.png", "P1 1 1 0"), unreadable);
    EXPECT_EQ(seenOf("a.png", "%PDF-1.4\n"), unreadable);
    EXPECT_EQ(seenOf("a.png", pngOf(Colour::rgb, 8).substr(0, 20)), unreadable) << "a header cut off";

    tools.clip("a.mp4");
    EXPECT_EQ(seenOf("a.png", tools.folder.read("a.mp4")), unreadable)
        << "a video under the name of an image";
    std::filesystem::remove(tools.folder / "a.png");
    EXPECT_EQ(seen(tools.folder / "a.png"), unreadable) << "no file";
    std::filesystem::create_directory(tools.folder / "a.png");
    EXPECT_EQ(seen(tools.folder / "a.png"), unreadable) << "a folder";
    ASSERT_EQ(mkfifo((tools.folder / "pipe.mp4").c_str(), 0600), 0);
    EXPECT_EQ(seen(tools.folder / "pipe.mp4"), "Couldn’t read “pipe.mp4” as an image or a video.");
    EXPECT_EQ(seen(tools.folder / "not/there/a.png"), unreadable) << "only the last component is named";
}

TEST_F(MediaInspectorImage, OnlyTheHeaderIsRead) {
    auto vast = PNGImage{.width = 200'000,
                         .height = 200'000,
                         .colour = Colour::grey,
                         .bitDepth = 1,
                         .samples = {},
                         .chunks = {}};
    vast.samples.assign(200'000, '\0');
    EXPECT_EQ(seenOf("vast.png", vast.bytes()), "200000x200000") << "and its pixels aren't even there";
}

TEST_F(MediaInspectorImage, NothingIsSaidOfAFileButTheResult) {
    tools.convert("-size 64x48 gradient:red-blue a.heic");
    tools.convert("-size 64x48 gradient:red-blue a.tiff");
    const auto tiff = tools.folder.read("a.tiff");
    testing::internal::CaptureStderr();
    testing::internal::CaptureStdout();
    seen(tools.folder / "a.heic");
    seenOf("cut.tiff", tiff.substr(0, tiff.size() / 2));
    seenOf("a.png", "no picture");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

}  // namespace
}  // namespace kestrin
