// The stable local name of a custom product page, a test or a treatment; the name of its folder.
#pragma once

#include <set>
#include <string>
#include <string_view>

#include "KestrinCore/UnicodeText.h"

namespace kestrin {

struct Slug {
    std::string rawValue;

    // A name that is safe in paths and URLs, made from a display name: case, accents and width are folded away,
    // "a" to "z" and "0" to "9" stay, every run of anything else is one "-", none of them leading or trailing.
    // "Résumé — Été 2024!" gives "resume-ete-2024". A name with nothing to keep gives "page", for tests and
    // treatments too. A name that `avoiding` has gets "-2", "-3", …: the first that is free.
    static Slug make(std::string_view name, const std::set<Slug>& avoiding);

    bool operator==(const Slug& other) const { return text::equal(rawValue, other.rawValue); }
    std::weak_ordering operator<=>(const Slug& other) const {
        return text::compare(rawValue, other.rawValue);
    }
};

}  // namespace kestrin
