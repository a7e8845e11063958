#include "KestrinModel/Project.h"

#include "KestrinCore/MapLookup.h"

namespace kestrin {
namespace {

bool isAppInfoField(ListingField field) {
    return parent(field) == ListingFieldInfo::Parent::appInfoLocalization;
}

}  // namespace

const PlatformListing& Project::operator[](const StorePlatform& platform) const {
    return valueOrEmpty(platforms, platform);
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
