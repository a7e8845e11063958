// A listing as it was read from App Store Connect: the content in the shape of a project, and the service's own
// identifiers beside it.
#pragma once

#include <map>
#include <optional>
#include <string>

#include "ASCKit/Resources/LibraryAssets.h"
#include "KestrinModel/Project.h"
#include "SyncEngine/Content/ContentGraph.h"
#include "SyncEngine/Remote/RemoteIDs.h"

namespace kestrin {

// Library assets by their id.
using KnownAssets = std::map<std::string, ASCLibraryAsset>;

struct RemoteListing {
    std::optional<std::string> appID;
    AppListing app;
    std::map<StorePlatform, PlatformListing> platforms;  // those that have a current version
    std::map<Slug, CustomProductPage> pages;
    std::map<Slug, Experiment> experiments;  // those that aren't finished
    std::optional<StoreLocale> primaryLocale;
    RemoteIDs ids;
    KnownAssets assets;  // every asset that a placement showed

    // The content under a manifest of no meaning: no value of a project comes from its manifest.
    Project project() const;

    // The content as keyed values.
    FlatValues values() const { return ContentGraph::flatten(app, platforms, pages, experiments); }

    bool operator==(const RemoteListing&) const = default;
};

}  // namespace kestrin
