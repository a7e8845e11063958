// The address of one media slot of a product page, in the asset library's own names.
#pragma once

#include <compare>
#include <optional>
#include <string>
#include <string_view>

namespace kestrin {

struct PlacementSlot {
    std::string group;
    std::string type;

    std::string description() const { return group + "/" + type; }

    // From "group/type": only for exactly two non-empty pieces.
    static std::optional<PlacementSlot> fromDescription(std::string_view description);

    // Equal by both fields; ordered by the description as text, then by the group, so that two slots are
    // equivalent in the order only when they are equal.
    bool operator==(const PlacementSlot& other) const;
    std::weak_ordering operator<=>(const PlacementSlot& other) const;
};

}  // namespace kestrin
