#include "KestrinCLI/ByteCount.h"

#include <fmt/format.h>

#include <array>

namespace kestrin {
namespace {

constexpr std::array kUnits = {"kB", "MB", "GB", "TB", "PB", "EB"};

// "1.2", or "3" where the tenths are none.
std::string inTenths(std::uint64_t tenths) {
    if (tenths % 10 == 0) return fmt::format("{}", tenths / 10);
    return fmt::format("{}.{}", tenths / 10, tenths % 10);
}

}  // namespace

std::string byteCount(std::int64_t bytes) {
    if (bytes <= 0) return "Zero kB";
    const auto count = static_cast<std::uint64_t>(bytes);
    if (count == 1) return "1 byte";
    if (count < 1000) return fmt::format("{} bytes", count);
    if (const auto thousands = (count + 500) / 1000; thousands < 1000) return fmt::format("{} kB", thousands);
    std::uint64_t step = 1'000'000;
    std::size_t unit = 1;
    // Rounding can lead into the next unit: 999.96 MB is 1 GB.
    const auto tenths = [&] { return count / (step / 10) + (count % (step / 10) >= step / 20 ? 1 : 0); };
    while (tenths() >= 10'000) {
        step *= 1000;
        ++unit;
    }
    return fmt::format("{} {}", inTenths(tenths()), kUnits[unit]);
}

}  // namespace kestrin
