#include "Sandbox/MediaFile.h"

#include <gtest/gtest.h>

#include "Tests/Sandbox/TestFilm.h"

namespace kestrin::sandbox {
namespace {

TEST(MediaFile, MeasuresThePicturesThatItMakes) {
    const auto bytes = MediaFile::seascape(1290, 2796, "tide");
    const auto picture = MediaFile::picture(bytes);
    ASSERT_TRUE(picture);
    EXPECT_EQ(picture->width, 1290);
    EXPECT_EQ(picture->height, 2796);
    EXPECT_FALSE(picture->hasAlpha);
    EXPECT_EQ(MediaFile::mimeType(bytes), "image/png");
    EXPECT_LT(bytes.size(), 20'000u);
    EXPECT_EQ(bytes, MediaFile::seascape(1290, 2796, "tide"));
    EXPECT_NE(bytes, MediaFile::seascape(1290, 2796, "moon"));
    EXPECT_TRUE(MediaFile::picture(MediaFile::seascape(1, 1, "x")));
}

TEST(MediaFile, SeesAlpha) {
    auto bytes = MediaFile::seascape(10, 10, "x");
    auto withTransparency = bytes;
    withTransparency.insert(33, std::string("\0\0\0\1tRNS\0\0\0\0\0", 13));
    EXPECT_TRUE(MediaFile::picture(withTransparency)->hasAlpha);
    bytes[25] = 6;
    EXPECT_TRUE(MediaFile::picture(bytes)->hasAlpha);
    bytes[25] = 2;
    EXPECT_FALSE(MediaFile::picture(bytes)->hasAlpha);
}

TEST(MediaFile, MeasuresAJPEG) {
    const std::string bytes("\xff\xd8\xff\xe0\0\x04xx\xff\xc2\0\x0b\x08\x0a\xec\x05\x0a\x03xxx", 21);
    const auto picture = MediaFile::picture(bytes);
    ASSERT_TRUE(picture);
    EXPECT_EQ(picture->width, 1290);
    EXPECT_EQ(picture->height, 2796);
    EXPECT_EQ(MediaFile::mimeType(bytes), "image/jpeg");
}

TEST(MediaFile, TakesNothingElseForAPicture) {
    const auto png = MediaFile::seascape(10, 10, "x");
    for (const auto& bytes :
         {std::string(), std::string("GIF89a"), png.substr(0, 20), std::string("\xff\xd8", 2),
          std::string("\xff\xd8\xff\xe0\xff\xff", 6), std::string("\xff\xd8 not a marker here")}) {
        EXPECT_FALSE(MediaFile::picture(bytes));
    }
}

TEST(MediaFile, MeasuresAFilm) {
    const auto film = MediaFile::film(TestFilm{}.bytes());
    ASSERT_TRUE(film);
    EXPECT_EQ(film->width, 886);
    EXPECT_EQ(film->height, 1920);
    EXPECT_DOUBLE_EQ(film->seconds, 20);
    EXPECT_DOUBLE_EQ(film->framesPerSecond, 30);
    EXPECT_TRUE(film->hasAudio);
    EXPECT_EQ(MediaFile::mimeType(TestFilm{}.bytes()), "video/mp4");
}

TEST(MediaFile, TurnsAFilmAsItIsShown) {
    const auto film = MediaFile::film(TestFilm{.width = 1920, .height = 886, .isTurned = true}.bytes());
    EXPECT_EQ(film->width, 886);
    EXPECT_EQ(film->height, 1920);
}

TEST(MediaFile, HearsThatAFilmIsSilent) {
    EXPECT_FALSE(MediaFile::film(TestFilm{.hasAudio = false}.bytes())->hasAudio);
}

TEST(MediaFile, TakesNothingElseForAFilm) {
    const auto whole = TestFilm{}.bytes();
    for (const auto& bytes : {std::string(), std::string("ftyp"), MediaFile::seascape(5, 5, "x")}) {
        EXPECT_FALSE(MediaFile::film(bytes));
    }
    for (std::size_t size = 0; size < whole.size(); ++size) MediaFile::film(whole.substr(0, size));
}

}  // namespace
}  // namespace kestrin::sandbox
