// A product page optimization test and its treatments.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "KestrinCore/JSONDecoding.h"
#include "KestrinModel/MediaItem.h"
#include "KestrinModel/Slug.h"
#include "KestrinModel/StoreLocale.h"
#include "KestrinModel/StorePlatform.h"

namespace kestrin {

struct Treatment {
    std::string name;
    std::optional<std::string> appIconName;
    std::vector<StoreLocale> locales;  // as read; made() sorts them
    LocalizedMedia media;
    UnknownFields unknownFields;

    // With `locales` sorted ascending.
    static Treatment made(Treatment treatment);

    bool operator==(const Treatment&) const = default;
};

struct Experiment {
    std::string name;
    StorePlatform platform = StorePlatform::iOS;
    std::optional<std::int64_t> trafficProportion;  // in percent
    std::map<Slug, Treatment> treatments;
    UnknownFields unknownFields;

    bool operator==(const Experiment&) const = default;
};

}  // namespace kestrin
