// Which of several resources of a kind the project mirrors: what is in preparation rather than what is live.
#pragma once

#include <algorithm>
#include <optional>
#include <vector>

#include "ASCKit/Resources/AppStoreVersions.h"
#include "ASCKit/Resources/CustomProductPages.h"

namespace kestrin::CurrentVersion {

// The first item that is editable, else the first; nothing for an empty list.
template <class Item>
std::optional<Item> current(const std::vector<Item>& items) {
    const auto editable =
        std::find_if(items.begin(), items.end(), [](const Item& item) { return item.isEditable(); });
    if (editable != items.end()) return *editable;
    return items.empty() ? std::nullopt : std::optional(items.front());
}

// Of the versions of one platform: the newest that is editable, else the newest that is live, else the newest. How
// new is the order of `createdDate` as text; a version without one is the oldest, and of two alike the first listed
// wins.
std::optional<ASCAppStoreVersion> currentVersion(std::vector<ASCAppStoreVersion> versions);

// Of the versions of one page: the highest that is editable, else the highest that wasn't replaced by a newer one,
// else the highest. How high is `version` as a number; one that isn't a number counts as 0.
std::optional<ASCCustomProductPageVersion> currentPageVersion(
    std::vector<ASCCustomProductPageVersion> versions);

}  // namespace kestrin::CurrentVersion
