// A locale code of App Store Connect as it stands, such as "en-US".
#pragma once

#include <string>

#include "KestrinCore/UnicodeText.h"

namespace kestrin {

// Never checked against a list and never normalised. Equal and ordered as text.
struct StoreLocale {
    std::string rawValue;

    static const StoreLocale englishUS;  // "en-US"

    bool operator==(const StoreLocale& other) const { return text::equal(rawValue, other.rawValue); }
    std::weak_ordering operator<=>(const StoreLocale& other) const {
        return text::compare(rawValue, other.rawValue);
    }
};

// Defined here so that it is there before any constant that is made of it, in whatever file it stands.
inline const StoreLocale StoreLocale::englishUS{"en-US"};

}  // namespace kestrin
