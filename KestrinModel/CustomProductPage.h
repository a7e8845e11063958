// A custom product page: a further version of the store page with its own promotional text and media.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "KestrinCore/JSONDecoding.h"
#include "KestrinModel/MediaItem.h"
#include "KestrinModel/StoreLocale.h"

namespace kestrin {

struct CustomProductPage {
    std::string name;
    std::optional<bool> visible;
    std::optional<std::string> deepLink;
    std::vector<StoreLocale> locales;                    // as read; made() sorts them
    std::map<StoreLocale, std::string> promotionalText;  // never an empty text
    LocalizedMedia media;
    UnknownFields unknownFields;

    // With `locales` sorted ascending and empty promotional texts dropped.
    static CustomProductPage made(CustomProductPage page);

    bool operator==(const CustomProductPage&) const = default;
};

}  // namespace kestrin
