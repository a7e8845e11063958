// An app's asset library, to be asked by content.
//
// Nothing on this machine remembers which file became which asset: the digest of a file travels in the reference
// name of its asset, so any machine recognises its own uploads and those of its colleagues.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "ASCKit/Resources/LibraryAssets.h"

namespace kestrin {

class LibraryIndex {
 public:
    LibraryIndex() = default;  // an empty library
    explicit LibraryIndex(const std::vector<ASCLibraryAsset>& assets);

    // Images, then videos.
    static LibraryIndex fetch(ASCClient& client, const std::string& libraryID);

    // The asset with this content, by the first 12 digits of the digest; nullptr when there is none that can be used.
    // One that is ready goes before one that is still processed, and of two alike the smaller id is taken, however
    // the library lists them.
    const ASCLibraryAsset* asset(std::string_view matchingMD5) const;

    const std::map<std::string, ASCLibraryAsset>& assets() const { return assets_; }

    bool operator==(const LibraryIndex&) const = default;

 private:
    std::map<std::string, ASCLibraryAsset> assets_;           // by id
    std::map<std::string, std::vector<std::string>> byHash_;  // those whose reference name this tool made
};

}  // namespace kestrin
