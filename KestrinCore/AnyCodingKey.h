// A step on the way into a JSON document: a member's name, or an element's index.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace kestrin {

struct AnyCodingKey {
    std::string stringValue;               // for an index, its decimal text
    std::optional<std::int64_t> intValue;  // absent for a name

    explicit AnyCodingKey(std::string name) : stringValue(std::move(name)) {}
    explicit AnyCodingKey(std::int64_t index) : stringValue(std::to_string(index)), intValue(index) {}

    bool operator==(const AnyCodingKey&) const = default;
};

}  // namespace kestrin
