// Brings the screenshots that exist only on App Store Connect into a folder, for an export that needs them as files.
//
// The one place where several things happen at once: a few workers that share nothing but the fetch function.
#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "ASCKit/Transport/PlainGet.h"
#include "KestrinModel/Project.h"
#include "SyncEngine/Remote/RemoteListing.h"

namespace kestrin {

class RemoteScreenshotDownloader {
 public:
    // How many of the assets are dealt with, of how many in all. Called on the thread that called `download`.
    using Progress = std::function<void(std::size_t done, std::size_t total)>;
    using FilesByAsset = std::map<std::string, std::filesystem::path>;  // by the asset's id

    explicit RemoteScreenshotDownloader(Fetch fetching = plainGet()) : fetch_(std::move(fetching)) {}

    // The pictures that the screenshot slots of the platform's default product page show, in the order of their ids,
    // each once. What `cached` doesn't know, videos, and assets without a picture are left out, as are the project's
    // own files.
    static std::vector<ASCLibraryAsset> assets(const Project& project, const StorePlatform& platform,
                                               const KnownAssets& cached);

    // Gets each asset in its own size and writes it to "{id}.{format}" in the folder, which is made if need be. At most
    // `concurrency` of them are under way at a time (0 counts as 1); they begin in the order of the list. Files appear
    // whole or not at all. An asset for whose picture no address can be made is missing from the result, and counts as
    // done.
    //
    // Throws PackageNameError, before anything is fetched or made, for an id that can't be the name of a file; FileError
    // for what can't be written. The first failure, of the fetch function too, ends the rest; what was written stays.
    FilesByAsset download(const std::vector<ASCLibraryAsset>& assets, const std::filesystem::path& folder,
                          std::size_t concurrency, const Progress& progress = {}) const;

    // The format in which a picture of that name is asked for: "jpg" for "jpg" and "jpeg" in either case, else "png".
    static std::string format(std::string_view fileName);

 private:
    Fetch fetch_;
};

}  // namespace kestrin
