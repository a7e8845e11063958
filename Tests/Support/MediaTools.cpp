#include "Tests/Support/MediaTools.h"

#include <algorithm>
#include <cstdlib>
#include <stdexcept>

namespace kestrin {

void MediaTools::convert(const std::string& words) const {
    run(KESTRIN_TEST_CONVERT, words);
}

void MediaTools::ffmpeg(const std::string& words) const {
    run(KESTRIN_TEST_FFMPEG " -nostdin -v error -y", words);
}

std::filesystem::path MediaTools::clip(const std::string& name, const std::string& words) const {
    ffmpeg("-f lavfi -i testsrc=size=64x48:rate=30:duration=1.5 -pix_fmt yuv420p " + words + " '" + name +
           "'");
    return folder / name;
}

std::string MediaTools::pixelsOf(const std::filesystem::path& image,
                                 const std::filesystem::path& profile) const {
    const auto conversion =
        profile.empty() ? std::string("-colorspace sRGB") : "-profile '" + profile.string() + "'";
    convert("'" + image.string() + "[0]' " + conversion +
            " -background black -alpha remove -alpha off -depth 8 rgb:pixels");
    return folder.read("pixels");
}

void MediaTools::run(const std::string& program, const std::string& words) const {
    const auto command = "cd '" + folder.path().string() + "' && " + program + " " + words + " > said 2>&1";
    if (std::system(command.c_str()) != 0) throw std::runtime_error(command + ": " + folder.read("said"));
}

int greatestDifference(const std::string& a, const std::string& b) {
    if (a.size() != b.size()) return -1;
    int greatest = 0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        const int difference = static_cast<unsigned char>(a[i]) - static_cast<unsigned char>(b[i]);
        greatest = std::max(greatest, std::abs(difference));
    }
    return greatest;
}

}  // namespace kestrin
