// One locale of an app info or of a version.
#pragma once

#include <string>

#include "ASCKit/JSONAPIDocument.h"

namespace kestrin {

// With all its attributes: which of them are texts of a listing isn't for the client to know.
struct ASCLocalization {
    std::string id;
    std::string locale;  // may be empty
    JSONObject attributes;

    explicit ASCLocalization(const ResourceObject& resource);

    // The attribute when it is a text.
    std::optional<std::string> string(std::string_view name) const;

    bool operator==(const ASCLocalization&) const = default;
};

}  // namespace kestrin
