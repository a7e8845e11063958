// One app's whole store listing in memory: exactly what a project package holds on disk.
//
// Plain values: copying a Project gives an independent one. `manifest.platforms` and `manifest.locales` say what
// the project is about, the maps hold what has content; the two may differ.
#pragma once

#include <map>
#include <string>

#include "KestrinModel/AppListing.h"
#include "KestrinModel/CustomProductPage.h"
#include "KestrinModel/Experiment.h"
#include "KestrinModel/PlatformListing.h"
#include "KestrinModel/ProjectManifest.h"

namespace kestrin {

struct Project {
    ProjectManifest manifest;
    AppListing app;
    std::map<StorePlatform, PlatformListing> platforms;
    std::map<Slug, CustomProductPage> pages;
    std::map<Slug, Experiment> experiments;

    // The platform's listing; an empty one when there is none.
    const PlatformListing& operator[](const StorePlatform& platform) const;

    // One localized text; "" when anything on the way is absent. A field of the app info is read from `app`, and
    // `platform` isn't used.
    const std::string& value(ListingField field, const StoreLocale& locale,
                             const StorePlatform& platform) const;

    // Stores one localized text in the same place. An empty one removes the field, and a locale left with nothing.
    // For a version field the platform comes into being, even when the text is empty.
    void setValue(std::string value, ListingField field, const StoreLocale& locale,
                  const StorePlatform& platform);

    bool operator==(const Project&) const = default;
};

}  // namespace kestrin
