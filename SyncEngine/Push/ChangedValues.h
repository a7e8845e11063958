// The changed values of one resource, for the planner.
#pragma once

#include <map>
#include <optional>
#include <string>

#include "KestrinCore/MapLookup.h"

namespace kestrin::PushPlanner {

template <class Attribute>
using ChangedValues = std::map<Attribute, std::string>;

// The new value; nothing when it didn't change.
template <class Attribute>
std::optional<std::string> changed(const ChangedValues<Attribute>& values, Attribute attribute) {
    const auto* value = valueIn(values, attribute);
    return value ? std::optional(*value) : std::nullopt;
}

// The same for what can't be cleared: an empty value is no change.
template <class Attribute>
std::optional<std::string> changedText(const ChangedValues<Attribute>& values, Attribute attribute) {
    auto value = changed(values, attribute);
    return value && value->empty() ? std::nullopt : value;
}

}  // namespace kestrin::PushPlanner
