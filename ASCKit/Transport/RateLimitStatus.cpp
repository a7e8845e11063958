#include "ASCKit/Transport/RateLimitStatus.h"

#include <map>

#include "KestrinCore/DecimalInteger.h"

namespace kestrin {
namespace {

std::string_view withoutLeadingBlank(std::string_view text) {
    if (text.starts_with(' ')) text.remove_prefix(1);
    return text;
}

using Readings = std::map<std::string_view, std::int64_t>;

void read(std::string_view piece, Readings& readings) {
    const auto colon = piece.find(':');
    if (colon == piece.npos || colon == 0) return;
    const auto number = decimalInteger(withoutLeadingBlank(piece.substr(colon + 1)));
    if (number) readings.insert_or_assign(withoutLeadingBlank(piece.substr(0, colon)), *number);
}

}  // namespace

std::optional<RateLimitStatus> RateLimitStatus::parse(std::optional<std::string_view> field) {
    if (!field) return std::nullopt;
    Readings readings;
    for (auto rest = *field; !rest.empty();) {
        const auto end = rest.find(';');
        read(rest.substr(0, end), readings);
        rest.remove_prefix(end == rest.npos ? rest.size() : end + 1);
    }
    const auto limit = readings.find("user-hour-lim");
    const auto remaining = readings.find("user-hour-rem");
    if (limit == readings.end() || remaining == readings.end()) return std::nullopt;
    return RateLimitStatus{limit->second, remaining->second};
}

}  // namespace kestrin
