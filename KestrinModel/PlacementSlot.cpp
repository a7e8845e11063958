#include "KestrinModel/PlacementSlot.h"

#include "KestrinCore/UnicodeText.h"

namespace kestrin {

std::optional<PlacementSlot> PlacementSlot::fromDescription(std::string_view description) {
    const auto slash = description.find('/');
    if (slash == std::string_view::npos) return std::nullopt;
    const auto group = description.substr(0, slash);
    const auto type = description.substr(slash + 1);
    if (group.empty() || type.empty() || type.find('/') != std::string_view::npos) return std::nullopt;
    return PlacementSlot{std::string(group), std::string(type)};
}

bool PlacementSlot::operator==(const PlacementSlot& other) const {
    return text::equal(group, other.group) && text::equal(type, other.type);
}

std::weak_ordering PlacementSlot::operator<=>(const PlacementSlot& other) const {
    if (group == other.group) return text::compare(type, other.type);
    const auto order = text::compare(description(), other.description());
    return order != 0 ? order : text::compare(group, other.group);
}

}  // namespace kestrin
