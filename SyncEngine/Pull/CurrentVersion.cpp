#include "SyncEngine/Pull/CurrentVersion.h"

#include <cstdint>

#include "ASCKit/Resources/AppStoreState.h"
#include "KestrinCore/DecimalInteger.h"
#include "KestrinCore/UnicodeText.h"

namespace kestrin::CurrentVersion {
namespace {

template <class Item, class Matches>
std::optional<Item> first(const std::vector<Item>& items, Matches&& matches) {
    const auto found = std::find_if(items.begin(), items.end(), matches);
    return found == items.end() ? std::nullopt : std::optional(*found);
}

std::int64_t numberOf(const ASCCustomProductPageVersion& version) {
    return decimalInteger(version.version.value_or("")).value_or(0);
}

}  // namespace

std::optional<ASCAppStoreVersion> currentVersion(std::vector<ASCAppStoreVersion> versions) {
    std::stable_sort(versions.begin(), versions.end(), [](const auto& a, const auto& b) {
        return text::compare(a.createdDate.value_or(""), b.createdDate.value_or("")) > 0;
    });
    if (auto editable = first(versions, [](const auto& v) { return v.isEditable(); })) return editable;
    const auto isLive = [](const auto& v) { return v.state && AppStoreState::live.contains(*v.state); };
    if (auto live = first(versions, isLive)) return live;
    return first(versions, [](const auto&) { return true; });
}

std::optional<ASCCustomProductPageVersion> currentPageVersion(
    std::vector<ASCCustomProductPageVersion> versions) {
    std::stable_sort(versions.begin(), versions.end(),
                     [](const auto& a, const auto& b) { return numberOf(a) > numberOf(b); });
    if (auto editable = first(versions, [](const auto& v) { return v.isEditable(); })) return editable;
    const auto isInForce = [](const auto& v) { return v.state != "REPLACED_WITH_NEW_VERSION"; };
    if (auto inForce = first(versions, isInForce)) return inForce;
    return first(versions, [](const auto&) { return true; });
}

}  // namespace kestrin::CurrentVersion
