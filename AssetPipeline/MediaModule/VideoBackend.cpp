#include "AssetPipeline/MediaModule/VideoBackend.h"

extern "C" {
#include <libavformat/avformat.h>
#include <libavutil/dict.h>
#include <libavutil/display.h>
#include <libavutil/log.h>
}

#include <memory>
#include <string>

namespace kestrin::VideoBackend {
namespace {

struct Close {
    void operator()(AVFormatContext* context) const { avformat_close_input(&context); }
};
using Container = std::unique_ptr<AVFormatContext, Close>;

Container open(const char* path) {
    AVFormatContext* context = nullptr;
    AVDictionary* options = nullptr;
    av_dict_set(&options, "protocol_whitelist", "file", 0);
    const auto name = std::string("file:") + path;  // or a colon in the path would name a protocol
    const int status = avformat_open_input(&context, name.c_str(), av_find_input_format("mov"), &options);
    av_dict_free(&options);
    if (status < 0) return nullptr;
    Container container(context);
    if (avformat_find_stream_info(context, nullptr) < 0) return nullptr;
    return container;
}

const AVStream* firstVideoTrack(const Container& container) {
    for (unsigned int i = 0; i < container->nb_streams; ++i) {
        const auto* stream = container->streams[i];
        const bool isCover = (stream->disposition & AV_DISPOSITION_ATTACHED_PIC) != 0;
        if (stream->codecpar->codec_type == AVMEDIA_TYPE_VIDEO && !isCover) return stream;
    }
    return nullptr;
}

double pixelAspectRatio(const AVStream& track) {
    const auto ratio =
        track.sample_aspect_ratio.num > 0 ? track.sample_aspect_ratio : track.codecpar->sample_aspect_ratio;
    return ratio.num > 0 && ratio.den > 0 ? av_q2d(ratio) : 1.0;
}

// The matrix of the track's header, 16.16 fixed point, row by row (a b u, c d v, x y w).
void readTransform(const AVStream& track, KestrinVideoProperties& properties) {
    properties.a = properties.d = 1;
    properties.b = properties.c = 0;
    constexpr std::size_t kMatrixSize = 9 * sizeof(std::int32_t);
    std::size_t size = 0;
    const auto* data = av_stream_get_side_data(&track, AV_PKT_DATA_DISPLAYMATRIX, &size);
    if (!data || size < kMatrixSize) return;
    const auto* matrix = reinterpret_cast<const std::int32_t*>(data);
    constexpr double kOne = 65536.0;
    properties.a = matrix[0] / kOne;
    properties.b = matrix[1] / kOne;
    properties.c = matrix[3] / kOne;
    properties.d = matrix[4] / kOne;
}

}  // namespace

bool initialise() {
    av_log_set_level(AV_LOG_QUIET);  // what is wrong with a file is said once, by whoever asked
    return true;
}

bool read(const char* path, KestrinVideoProperties* properties) {
    const auto container = open(path);
    if (!container) return false;
    const auto* track = firstVideoTrack(container);
    if (!track || track->codecpar->width <= 0 || track->codecpar->height <= 0) return false;
    properties->width = track->codecpar->width * pixelAspectRatio(*track);
    properties->height = track->codecpar->height;
    readTransform(*track, *properties);
    const auto rate = track->avg_frame_rate;
    properties->frameRate = rate.num > 0 && rate.den > 0 ? av_q2d(rate) : -1;
    properties->duration =
        container->duration == AV_NOPTS_VALUE ? -1 : static_cast<double>(container->duration) / AV_TIME_BASE;
    return true;
}

}  // namespace kestrin::VideoBackend
