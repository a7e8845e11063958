// The platform, locales, slot and slugs that most tests speak of.
#pragma once

#include "KestrinModel/PlacementSlot.h"
#include "KestrinModel/Slug.h"
#include "KestrinModel/StoreLocale.h"
#include "KestrinModel/StorePlatform.h"

namespace kestrin {

inline const StorePlatform kIOS = StorePlatform::iOS;
inline const StoreLocale kGerman{"de-DE"}, kFrench{"fr-FR"}, kJapanese{"ja"};
inline const PlacementSlot kSlot{"IPHONE_67", "APP_SCREENSHOT"};
inline const Slug kPage{"summer"}, kTest{"icons"}, kBlue{"blue"};  // a page, and a test with a treatment

}  // namespace kestrin
