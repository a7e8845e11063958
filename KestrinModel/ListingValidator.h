// Checks the texts of a project against App Store Connect's limits, without any network.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "KestrinModel/CharacterCount.h"
#include "KestrinModel/ListingField.h"
#include "KestrinModel/Project.h"

namespace kestrin {

// Something to mend, or to verify, in one text.
struct ListingIssue {
    struct OverLimit {
        CharacterCount count;
        std::size_t limit;  // in characters
        bool operator==(const OverLimit&) const = default;
    };
    struct OverLimitInUTF16Only {  // App Store Connect may or may not take it
        CharacterCount count;
        std::size_t limit;
        bool operator==(const OverLimitInUTF16Only&) const = default;
    };
    struct DuplicateKeywords {
        std::vector<std::string> keywords;  // as KeywordAnalysis::duplicates
        bool operator==(const DuplicateKeywords&) const = default;
    };
    using Kind = std::variant<OverLimit, OverLimitInUTF16Only, DuplicateKeywords>;

    ListingField field;
    StoreLocale locale;
    std::optional<StorePlatform> platform;  // absent for a field of the app info
    Kind kind;

    bool operator==(const ListingIssue&) const = default;
};

namespace ListingValidator {

// All issues in a stable order: the app info by locale, then the platforms by raw value and locale; within a
// locale in the order of the fields. A keywords text can have two, its limit first. Only what has content is
// looked at, whatever the manifest lists. Media, product pages and tests aren't checked.
std::vector<ListingIssue> issues(const Project& project);

}  // namespace ListingValidator

}  // namespace kestrin
