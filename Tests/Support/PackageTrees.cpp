#include "Tests/Support/PackageTrees.h"

#include <filesystem>

namespace kestrin {
namespace {

void addListing(const PackageFolder& folder, const std::string& path, Listing& listing) {
    if (folder.isEmpty() && !path.empty()) listing.emplace(path, "");
    for (const auto& name : folder.fileNames()) listing.emplace(path + name, *folder.contents(name));
    for (const auto& name : folder.folderNames())
        addListing(*folder.folder(name), path + name + "/", listing);
}

}  // namespace

std::string manifestText(const std::string& more) {
    return "{\n"
           "  \"app\" : {\n"
           "    \"bundleID\" : \"com.example.app\"\n"
           "  },\n"
           "  \"format\" : \"com.brennoway.kestrin.project\",\n"
           "  \"locales\" : [\n\n  ],\n"
           "  \"platforms\" : [\n\n  ],\n"
           "  \"projectID\" : \"0F9C1B2A-3D4E-4F50-8A6B-7C8D9E0F1A2B\",\n"
           "  \"schemaVersion\" : 1" +
           more + "\n}\n";
}

PackageFolder treeOf(const Listing& listing) {
    PackageFolder root;
    for (const auto& [path, bytes] : listing) {
        const std::filesystem::path whole(path);
        auto* folder = &root;
        for (const auto& piece : whole.parent_path()) folder = &folder->directory(piece.native());
        if (whole.has_filename()) folder->setFile(whole.filename().native(), bytes);
    }
    return root;
}

Listing listingOf(const PackageFolder& folder) {
    Listing listing;
    addListing(folder, "", listing);
    return listing;
}

}  // namespace kestrin
