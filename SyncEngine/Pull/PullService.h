// Reads everything about one app that the sync engine has to know.
//
// Reads only, strictly one request after another. What comes back is whole or an error: a request that fails ends
// the fetch, but for a key without the right to see custom pages or tests, for which there are none.
//
// The requests of a fetch, in order:
//   the app
//   its app infos; of the current one its localizations
//   its versions; of each platform's current one
//     its localizations, each with its placements
//     its review details
//     its build
//   its custom pages, each with its versions; of the current one the localizations, each with its placements
//   its tests that aren't finished, each with its treatments, each with its localizations and their placements
#pragma once

#include <set>
#include <span>
#include <string>
#include <vector>

#include "ASCKit/ASCClient.h"
#include "ASCKit/Resources/AppStoreVersions.h"
#include "ASCKit/Resources/CustomProductPages.h"
#include "ASCKit/Resources/Experiments.h"
#include "ASCKit/Resources/Placements.h"
#include "ASCKit/Resources/ReviewDetails.h"
#include "SyncEngine/Remote/RemoteListing.h"
#include "SyncEngine/Remote/SlugAssigner.h"

namespace kestrin {

class AssetsSeen;

class PullService {
 public:
    // Tests in these states are over: they get no slug and don't exist for a project.
    static const std::set<std::string> finishedExperimentStates;  // "COMPLETED", "STOPPED"

    explicit PullService(ASCClient& ascClient) : client_(ascClient) {}

    // An app without app infos, versions, pages or tests gives a listing with those parts empty.
    RemoteListing fetch(const std::string& appID, ProductPageSlugs slugs) const;

    // Custom pages and tests alone, into `listing`.
    void fetchProductPages(const std::string& appID, ProductPageSlugs& slugs, RemoteListing& listing) const;

    // What one localization's slots hold: items and placement ids side by side. A placement without an asset has
    // neither. The assets that come with it go into `listing`.
    struct Slots {
        MediaBySlot items;
        text::TextMap<std::vector<std::string>> ids;  // by slot description
    };
    Slots placements(const PlacementParent& parent, RemoteListing& listing) const;

    // The texts of a localization. Attributes that aren't text are none.
    static LocalizedFields fields(std::span<const ListingField> keys, const ASCLocalization& localization);

    // Empty texts are absent here. The password of the demo account isn't read.
    static ReviewDetailContent review(const ASCReviewDetail& detail);

    // About how many requests one fetch of this listing takes.
    static std::size_t estimatedRequests(const RemoteListing& listing);

 private:
    void fetchAppInfo(const std::string& appID, RemoteListing& listing) const;
    void fetchVersions(const std::string& appID, RemoteListing& listing, AssetsSeen& assets) const;
    void fetchVersion(const ASCAppStoreVersion& version, RemoteListing& listing, AssetsSeen& assets) const;
    void fetchPages(const std::string& appID, ProductPageSlugs& slugs, RemoteListing& listing,
                    AssetsSeen& assets) const;
    void fetchPage(const ASCCustomProductPage& page, const ASCCustomProductPageVersion& version,
                   const Slug& slug, RemoteListing& listing, AssetsSeen& assets) const;
    void fetchExperiments(const std::string& appID, ProductPageSlugs& slugs, RemoteListing& listing,
                          AssetsSeen& assets) const;
    void fetchTreatment(const ASCTreatment& treatment, Treatment& content, RemoteTreatment& remote,
                        AssetsSeen& assets) const;
    Slots placements(const PlacementParent& parent, AssetsSeen& assets) const;

    ASCClient& client_;
};

}  // namespace kestrin
