#include "KestrinModel/Project.h"

namespace kestrin {
namespace {

bool isAppInfoField(ListingField field) {
    return parent(field) == ListingFieldInfo::Parent::appInfoLocalization;
}

}  // namespace

const PlatformListing& Project::operator[](const StorePlatform& platform) const {
    static const PlatformListing kNone;
    const auto listing = platforms.find(platform);
    return listing == platforms.end() ? kNone : listing->second;
}

const std::string& Project::value(ListingField field, const StoreLocale& locale,
                                  const StorePlatform& platform) const {
    const auto& locales = isAppInfoField(field) ? app.locales : (*this)[platform].locales;
    return Texts::fields(locales, locale)[field];
}

void Project::setValue(std::string value, ListingField field, const StoreLocale& locale,
                       const StorePlatform& platform) {
    auto& locales = isAppInfoField(field) ? app.locales : platforms[platform].locales;
    Texts::setField(locales, locale, field, std::move(value));
}

}  // namespace kestrin
