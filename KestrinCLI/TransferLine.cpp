#include "KestrinCLI/TransferLine.h"

#include <fmt/format.h>

#include <memory>

#include "KestrinCLI/ByteCount.h"

namespace kestrin {
namespace {

constexpr Seconds kBetweenChanges{0.1};
constexpr Seconds kBeforeRate{1.0};

std::string labelOf(const UploadNews& news) {
    return news.fileName.empty() ? "uploading" : "uploading " + news.fileName;
}

}  // namespace

TransferLine::TransferLine(Console& console, Clock now)
    : console_(console), now_(std::move(now)), began_(now_()) {}

void TransferLine::show(std::string_view what, std::int64_t bytes, std::optional<std::int64_t> total) {
    const auto now = now_();
    if (shown_ && now - *shown_ < kBetweenChanges) return;
    shown_ = now;
    console_.showStatus(fmt::format("{}: {}{}{}", what, byteCount(bytes),
                                    total ? " of " + byteCount(*total) : "", rateOf(bytes)));
}

std::string TransferLine::rateOf(std::int64_t bytes) const {
    const Seconds elapsed = *shown_ - began_;
    if (elapsed < kBeforeRate) return "";
    return fmt::format(", {}/s",
                       byteCount(static_cast<std::int64_t>(static_cast<double>(bytes) / elapsed.count())));
}

UploadNewsHandler uploadLines(Console& console, Clock now) {
    return [&console, now = std::move(now),
            line = std::make_shared<std::optional<TransferLine>>()](const UploadNews& news) {
        if (news.isOver) return line->reset();
        if (!*line) line->emplace(console, now);
        (*line)->show(labelOf(news), news.sent, news.total);
    };
}

}  // namespace kestrin
