// What several seeds are made of.
#pragma once

#include <string>

#include "Sandbox/State.h"

namespace kestrin::sandbox::SeedParts {

// Those that App Store Connect has for everybody.
void addCategories(State& state);

// An app with its asset library, which has the same id; its primary language is en-US.
Resource& addApp(State& state, const std::string& id, const std::string& name, const std::string& bundleID,
                 const std::string& sku);

Json textOrNull(const std::string& text);

struct ImageRow {
    std::string fileName;
    int width, height;
    const char* category;
};

// A processed image; with an empty `id` the store makes one.
Resource& addImage(State& state, const std::string& appID, const ImageRow& row, const std::string& assetState,
                   std::string id = {});

}  // namespace kestrin::sandbox::SeedParts
