#include "AssetPipeline/AlphaFlattener.h"

#include <gtest/gtest.h>

#include "AssetPipeline/MediaInspector.h"
#include "Tests/AssetPipeline/ColourProfiles.h"
#include "Tests/Support/MediaTools.h"
#include "Tests/Support/PNGBytes.h"

namespace kestrin {
namespace {

using Colour = PNGImage::Colour;
using namespace std::string_literals;

class AlphaFlattenerTest : public testing::Test {
 protected:
    // The pixels of the opaque copy, three bytes each.
    std::string flattened(const std::string& name) {
        tools.folder.write("flat.png", AlphaFlattener::flattenedPNG(tools.folder / name));
        return tools.pixelsOf(tools.folder / "flat.png");
    }
    std::string flattened(const PNGImage& image) {
        tools.folder.write("image.png", image.bytes());
        return flattened("image.png");
    }

    // What ImageMagick makes of it.
    std::string expected(const std::string& name) { return tools.pixelsOf(tools.folder / name); }

    std::string failure(const std::string& name, const std::string& bytes) {
        tools.folder.write(name, bytes);
        try {
            AlphaFlattener::flattenedPNG(tools.folder / name);
        } catch (const FlattenError& error) {
            return error.errorDescription();
        }
        return "";
    }

    MediaTools tools;
};

TEST_F(AlphaFlattenerTest, WhatWasTransparentIsBlack) {
    const struct {
        const char* when;
        Colour colour;
        std::string pixel, flat;
    } rows[] = {
        {"white, transparent", Colour::rgba, "\xFF\xFF\xFF\x00"s, "\x00\x00\x00"s},
        {"white, half transparent", Colour::rgba, "\xFF\xFF\xFF\x80"s, "\x80\x80\x80"s},
        {"a colour, a fifth left", Colour::rgba, "\xFF\x64\x0A\x33"s, "\x33\x14\x02"s},
        {"a colour, opaque", Colour::rgba, "\x10\x20\xF0\xFF"s, "\x10\x20\xF0"s},
        {"grey, transparent", Colour::greyAlpha, "\xFF\x00"s, "\x00\x00\x00"s},
        {"grey, half transparent", Colour::greyAlpha, "\xFF\x80"s, "\x80\x80\x80"s},
        {"grey, opaque", Colour::greyAlpha, "\x42\xFF"s, "\x42\x42\x42"s},
        {"without alpha", Colour::rgb, "\x10\x20\xF0"s, "\x10\x20\xF0"s},
        {"grey without alpha", Colour::grey, "\x42"s, "\x42\x42\x42"s},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.when);
        EXPECT_LE(greatestDifference(flattened(plainPNG(row.colour, row.pixel)), row.flat), 0);
    }
}

TEST_F(AlphaFlattenerTest, TheCopyIsAPNGOf8BitColoursWithoutAlphaOfTheSameSize) {
    auto deep = plainPNG(Colour::rgba, "\x12\x34\x56\x78\x9A\xBC\x80\x00"s, 7, 3);
    deep.bitDepth = 16;
    tools.folder.write("deep.png", deep.bytes());
    const auto flat = AlphaFlattener::flattenedPNG(tools.folder / "deep.png");

    EXPECT_EQ(flat.substr(0, 8), "\x89PNG\r\n\x1A\n");
    EXPECT_EQ(flat.substr(16, 10), "\0\0\0\7\0\0\0\3\10\2"s) << "width, height, depth, colour type";
    EXPECT_EQ(flat.find("tRNS"), std::string::npos);
    tools.folder.write("flat.png", flat);
    EXPECT_FALSE(MediaInspector::inspect(tools.folder / "flat.png").hasAlpha);
}

TEST_F(AlphaFlattenerTest, TheSameFileGivesTheSameBytes) {
    tools.folder.write("a.png", plainPNG(Colour::rgba, "\x10\x20\x30\x40"s, 50, 50).bytes());
    EXPECT_EQ(AlphaFlattener::flattenedPNG(tools.folder / "a.png"),
              AlphaFlattener::flattenedPNG(tools.folder / "a.png"));
}

TEST_F(AlphaFlattenerTest, EveryKindOfImageComesOutAsAnotherToolSeesIt) {
    const struct {
        const char* words;
        const char* name;
        int tolerance;
    } rows[] = {
        {"-alpha on -channel A -evaluate set 50% +channel", "PNG32:rgba.png", 0},
        {"-interlace PNG -alpha on -channel A -evaluate set 30% +channel", "PNG32:interlaced.png", 0},
        {"-alpha on -channel A -evaluate set 50% +channel", "PNG64:deep.png", 1},
        {"-colorspace gray -alpha on -channel A -evaluate set 25% +channel", "grey-alpha.png", 1},
        {"-colorspace gray", "grey.png", 1},
        {"-transparent red -colors 8", "PNG8:palette.png", 0},
        {"-transparent red", "PNG24:trns.png", 0},
        {"-monochrome", "two-colours.png", 0},
        {"", "a.jpg", 0},
        {"-orient RightTop", "turned.jpg", 0},
        {"", "a.heic", 2},
        {"-alpha on -channel A -evaluate set 50% +channel", "alpha.webp", 0},
        {"-transparent red", "alpha.gif", 0},
        {"-depth 8 -alpha on -channel A -evaluate set 50% +channel", "alpha.tiff", 1},
        {"-depth 8 -alpha on -channel A -evaluate set 50% +channel -define tiff:alpha=associated",
         "premultiplied.tiff", 1},
        {"-depth 16", "deep.tiff", 1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        tools.convert("-size 64x48 gradient:red-blue "s + row.words + " " + row.name);
        std::string name = row.name;
        name.erase(0, name.find(':') + 1);
        const auto difference = greatestDifference(flattened(name), expected(name));
        EXPECT_GE(difference, 0) << "the same size";
        EXPECT_LE(difference, row.tolerance);
    }
}

// A field of colours and opacities, 16 by 16.
PNGImage field(Colour colour, const std::string& profile) {
    auto image = plainPNG(colour, "", 16, 16);
    for (int y = 0; y < 16; ++y) {
        for (int x = 0; x < 16; ++x) {
            const auto byte = [](int level) { return static_cast<char>(level * 17); };
            image.samples += byte(x);
            if (colour == Colour::rgb || colour == Colour::rgba)
                image.samples += {byte(y), byte((x + y) % 16)};
            if (colour == Colour::rgba || colour == Colour::greyAlpha) image.samples += byte(15 - y / 2);
        }
    }
    if (!profile.empty()) image.chunks.emplace_back("iCCP", pngProfile(profile));
    return image;
}

TEST_F(AlphaFlattenerTest, ColoursOfAnyProfileComeOutInSRGB) {
    const struct {
        const char* when;
        Colour colour;
        std::string profile;
        bool changes;
    } rows[] = {
        {"Display P3", Colour::rgb, profiles::displayP3(), true},
        {"Display P3 with alpha", Colour::rgba, profiles::displayP3(), true},
        {"grey, gamma 1.8", Colour::grey, profiles::grey(1.8), true},
        {"grey, gamma 1.8, with alpha", Colour::greyAlpha, profiles::grey(1.8), true},
        {"sRGB", Colour::rgb, profiles::sRGB(), false},
    };
    tools.folder.write("srgb.icc", profiles::sRGB());
    for (const auto& row : rows) {
        SCOPED_TRACE(row.when);
        tools.folder.write("image.png", field(row.colour, row.profile).bytes());
        const auto flat = flattened("image.png");
        const auto seen = tools.pixelsOf(tools.folder / "image.png", tools.folder / "srgb.icc");
        const auto difference = greatestDifference(flat, seen);
        EXPECT_GE(difference, 0);
        EXPECT_LE(difference, 2);
        EXPECT_EQ(greatestDifference(flat, flattened(field(row.colour, ""))) > 10, row.changes)
            << "as against the same samples without the profile";
    }
}

TEST_F(AlphaFlattenerTest, AProfileThatCantBeUsedIsPassedOver) {
    const auto plain = flattened(field(Colour::rgba, ""));
    EXPECT_EQ(greatestDifference(flattened(field(Colour::rgba, "no profile at all")), plain), 0);
    EXPECT_EQ(greatestDifference(flattened(field(Colour::rgba, profiles::grey(1.8))), plain), 0);
    EXPECT_EQ(greatestDifference(flattened(field(Colour::rgba, profiles::displayP3().substr(0, 200))), plain),
              0);
    const auto grey = flattened(field(Colour::greyAlpha, ""));
    EXPECT_EQ(greatestDifference(flattened(field(Colour::greyAlpha, profiles::displayP3())), grey), 0);
}

// The first pixel of a CMYK image of one colour.
TEST_F(AlphaFlattenerTest, InksWithoutAProfileBecomeTheirColours) {
    const auto pixel = [&](const std::string& inks, const std::string& name) {
        tools.convert("-size 8x8 -colorspace CMYK 'xc:cmyk(" + inks + ")' " + name);
        return flattened(name).substr(0, 3);
    };
    const auto level = [](const std::string& rgb, std::size_t i) {
        return static_cast<unsigned char>(rgb.at(i));
    };
    for (const auto* name : {"inks.jpg", "inks.tiff"}) {
        SCOPED_TRACE(name);
        EXPECT_LE(greatestDifference(pixel("0,0,0,0", name), "\xFF\xFF\xFF"), 3) << "paper is white";
        EXPECT_LE(greatestDifference(pixel("255,255,255,255", name), "\0\0\0"s), 20) << "all inks are black";
        const auto cyan = pixel("255,0,0,0", name);
        EXPECT_LT(level(cyan, 0), 60);
        EXPECT_GT(level(cyan, 1), 120);
        EXPECT_GT(level(cyan, 2), 180);
    }
}

TEST_F(AlphaFlattenerTest, OfAnAnimationTheFirstFrameIsTaken) {
    tools.convert("-delay 10 -size 8x4 xc:red xc:blue moving.gif");
    EXPECT_EQ(flattened("moving.gif"), plainPNG(Colour::rgb, "\xFF\0\0"s, 8, 4).samples);
}

TEST_F(AlphaFlattenerTest, WhatIsNoWholeImageIsUnreadable) {
    const auto unreadable = "Couldn’t read the image whose transparency has to be removed.";
    EXPECT_EQ(failure("a.png", ""), unreadable);
    EXPECT_EQ(failure("a.png", "no picture"), unreadable);
    const auto whole = field(Colour::rgba, "").bytes();
    EXPECT_EQ(failure("a.png", whole), "");
    EXPECT_EQ(failure("a.png", whole.substr(0, whole.size() / 2)), unreadable)
        << "half of the pixels are missing";

    tools.convert("-size 640x480 plasma:red-blue a.jpg");
    const auto photo = tools.folder.read("a.jpg");
    EXPECT_EQ(failure("a.jpg", photo.substr(0, photo.size() / 2)), unreadable);
    EXPECT_THROW(AlphaFlattener::flattenedPNG(tools.folder / "not there.png"), FlattenError);
}

TEST_F(AlphaFlattenerTest, AnImageOfMoreThanAHundredMegapixelsIsUnencodable) {
    PNGImage vast{.width = 10'001,
                  .height = 10'000,
                  .colour = Colour::grey,
                  .bitDepth = 1,
                  .samples = {},
                  .chunks = {}};
    vast.samples.assign(10'000, '\0');  // more isn't looked at
    EXPECT_EQ(failure("vast.png", vast.bytes()), "Couldn’t make a copy of the image without transparency.");
}

}  // namespace
}  // namespace kestrin
