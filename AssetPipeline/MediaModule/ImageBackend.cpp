#include "AssetPipeline/MediaModule/ImageBackend.h"

#include <vips/vips.h>

#include <memory>

namespace kestrin::ImageBackend {
namespace {

constexpr std::int64_t kMaximumPixels = 100'000'000;

struct Unreference {
    void operator()(void* object) const { g_object_unref(object); }
};
using Image = std::unique_ptr<VipsImage, Unreference>;

// The result of one operation of libvips, or nothing; the last error text isn't needed and is dropped.
Image result(int status, VipsImage* image) {
    if (status == 0) return Image(image);
    vips_error_clear();
    return nullptr;
}

// The header alone; pixels are decoded when they are asked for. By a source and not by name, since libvips reads options
// out of a name that ends in "[…]".
Image open(const char* path) {
    const std::unique_ptr<VipsSource, Unreference> source(vips_source_new_from_file(path));
    if (!source) {
        vips_error_clear();
        return nullptr;
    }
    auto* image = vips_image_new_from_source(source.get(), "", "access", VIPS_ACCESS_SEQUENTIAL, "fail_on",
                                             VIPS_FAIL_ON_TRUNCATED, nullptr);
    return result(image ? 0 : -1, image);
}

// All pixels, or nothing where the file ends before they do: half a screenshot must not reach a store page.
Image decoded(const Image& in) {
    auto* image = vips_image_copy_memory(in.get());
    return result(image ? 0 : -1, image);
}

Image bands(const Image& in, int first, int count) {
    VipsImage* out = nullptr;
    const int status = vips_extract_band(in.get(), &out, first, "n", count, nullptr);
    return result(status, out);
}

// Colours as their profile means them; without a profile that fits, as the usual one of their colour model.
Image inSRGB(const Image& in) {
    VipsImage* out = nullptr;
    const bool hasProfile = vips_image_get_typeof(in.get(), VIPS_META_ICC_NAME) != 0;
    const bool isCMYK = vips_image_get_interpretation(in.get()) == VIPS_INTERPRETATION_CMYK;
    if (hasProfile || isCMYK) {
        const int status = vips_icc_transform(in.get(), &out, "srgb", "embedded", TRUE, "input_profile",
                                              isCMYK ? "cmyk" : "srgb", "black_point_compensation", TRUE,
                                              "depth", 8, nullptr);
        if (auto converted = result(status, out)) return converted;
    }
    const int status = vips_colourspace(in.get(), &out, VIPS_INTERPRETATION_sRGB, nullptr);
    return result(status, out);
}

Image in8Bit(const Image& alpha) {
    VipsImage* out = nullptr;
    const bool is16Bit = vips_image_get_format(alpha.get()) == VIPS_FORMAT_USHORT;
    const int status =
        vips_linear1(alpha.get(), &out, is16Bit ? 1.0 / 257 : 1.0, 0.0, "uchar", TRUE, nullptr);
    return result(status, out);
}

Image overBlack(const Image& colour, const Image& alpha) {
    VipsImage* joined = nullptr;
    const int joining = vips_bandjoin2(colour.get(), alpha.get(), &joined, nullptr);
    const auto whole = result(joining, joined);
    if (!whole) return nullptr;
    VipsImage* out = nullptr;  // libvips's own background is black
    const int status = vips_flatten(whole.get(), &out, nullptr);
    return result(status, out);
}

// Three bands of 8 bits without alpha, or nothing.
Image flattened(const Image& in) {
    if (!vips_image_hasalpha(in.get())) return inSRGB(in);
    const int colourBands = vips_image_get_bands(in.get()) - 1;
    const auto colour = bands(in, 0, colourBands);
    const auto alpha = bands(in, colourBands, 1);
    if (!colour || !alpha) return nullptr;
    const auto converted = inSRGB(colour);
    const auto opacity = in8Bit(alpha);
    if (!converted || !opacity) return nullptr;
    return overBlack(converted, opacity);
}

constexpr auto kAllBelowErrors = static_cast<GLogLevelFlags>(
    G_LOG_LEVEL_CRITICAL | G_LOG_LEVEL_WARNING | G_LOG_LEVEL_MESSAGE | G_LOG_LEVEL_INFO | G_LOG_LEVEL_DEBUG);
void dropMessage(const char*, GLogLevelFlags, const char*, void*) {}

std::int64_t pixels(const Image& image) {
    return std::int64_t{vips_image_get_width(image.get())} * vips_image_get_height(image.get());
}

}  // namespace

bool initialise() {
    // What is wrong with a file is said once, by whoever asked.
    g_log_set_handler("VIPS", kAllBelowErrors, dropMessage, nullptr);
    if (VIPS_INIT("kestrin") != 0) return false;
    // With several threads the error of one that finds the file's end too early is lost now and then, and half an image
    // passes for a whole one.
    vips_concurrency_set(1);
    vips_cache_set_max(0);  // no image is looked at twice; the cache would keep the pixels of each
    vips_operation_block_set("VipsForeignLoad", TRUE);
    for (const auto* loader : {"VipsForeignLoadPng", "VipsForeignLoadJpeg", "VipsForeignLoadHeif",
                               "VipsForeignLoadWebp", "VipsForeignLoadNsgif", "VipsForeignLoadTiff"}) {
        vips_operation_block_set(loader, FALSE);
    }
    return true;
}

bool read(const char* path, KestrinImageProperties* properties) {
    const auto image = open(path);
    if (!image) return false;
    properties->width = vips_image_get_width(image.get());
    properties->height = vips_image_get_height(image.get());
    properties->hasAlpha = vips_image_hasalpha(image.get()) != 0;
    return true;
}

KestrinFlattenOutcome flatten(const char* path, void** bytes, std::size_t* size) {
    const auto file = open(path);
    if (!file) return kestrinUnreadable;
    if (pixels(file) > kMaximumPixels) return kestrinUnencodable;
    const auto image = decoded(file);
    if (!image) return kestrinUnreadable;
    const auto opaque = flattened(image);
    if (!opaque) return kestrinUnencodable;
    if (vips_pngsave_buffer(opaque.get(), bytes, size, "strip", TRUE, "profile", "srgb", nullptr) != 0) {
        vips_error_clear();
        return kestrinUnencodable;
    }
    return kestrinFlattened;
}

void release(void* bytes) {
    g_free(bytes);
}

}  // namespace kestrin::ImageBackend
