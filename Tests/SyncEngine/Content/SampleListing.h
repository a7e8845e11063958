// A small listing with one value of every kind, and the slots and locales it uses.
#pragma once

#include "KestrinModel/Project.h"

namespace kestrin::sample {

inline const StoreLocale english = {"en-US"};
inline const StoreLocale german = {"de-DE"};
inline const PlacementSlot screenshots = {"IPHONE_65", "SCREENSHOT"};
inline const Slug winter = {"winter"};
inline const Slug icons = {"icons"};
inline const Slug blue = {"blue"};

inline CustomProductPage page() {
    return {.name = "Winter",
            .visible = false,
            .deepLink = "app://winter",
            .locales = {english},
            .promotionalText = {{english, "Snow"}},
            .media = {{english, {{screenshots, {MediaItem::remote("7", "snow.png")}}}}},
            .unknownFields = {}};
}

inline Treatment treatment() {
    return {.name = "Blue",
            .appIconName = "BlueIcon",
            .locales = {english},
            .media = {{english, {{screenshots, {MediaItem::file("media/blue.png")}}}}},
            .unknownFields = {}};
}

inline Experiment experiment() {
    return {.name = "Icons",
            .platform = StorePlatform::macOS,
            .trafficProportion = 25,
            .treatments = {{blue, treatment()}},
            .unknownFields = {}};
}

inline PlatformListing platform() {
    return {
        .version = {"1.2", "2024 Me", "MANUAL", {}},
        .locales = {{english, LocalizedFields({{ListingField::keywords, "a,b"}})}},
        .media = {{english, {{screenshots, {MediaItem::remote("1", "one.png"), MediaItem::file("a.png")}}}}},
        .review = {.contactFirstName = "Ada",
                   .contactLastName = "L",
                   .contactPhone = "+1",
                   .contactEmail = "a@b.c",
                   .demoAccountRequired = true,
                   .demoAccountName = "demo",
                   .notes = "None",
                   .unknownFields = {}}};
}

inline Project project() {
    Project made;
    made.app.info = {"GAMES", "MUSIC", {}};
    made.app.locales = {{german, LocalizedFields({{ListingField::name, "Käse"}})}};
    made.platforms = {{StorePlatform::iOS, platform()}};
    made.pages = {{winter, page()}};
    made.experiments = {{icons, experiment()}};
    return made;
}

}  // namespace kestrin::sample
