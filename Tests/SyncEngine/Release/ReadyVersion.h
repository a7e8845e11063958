// A version that lacks nothing, for tests that take one thing away.
#pragma once

#include "ASCKit/Resources/Builds.h"
#include "SyncEngine/Push/PushReview.h"
#include "Tests/Support/ListingNames.h"

namespace kestrin {

struct ReadyVersion {
    StorePlatform platform = StorePlatform::iOS;
    Project project;
    PushReview review;
    std::optional<ASCBuild> build = builtAs(R"({"version":"42","processingState":"VALID",
                                                "usesNonExemptEncryption":false})");

    ReadyVersion() {
        auto& manifest = project.manifest;
        manifest.projectID = *UUID::parse("00000000-0000-4000-8000-000000000001");
        manifest.app = {"com.example.app", "7", {}};
        manifest.primaryLocale = kGerman;
        manifest.locales = {kGerman, kFrench};
        for (const auto& locale : manifest.locales) {
            for (const auto field : {ListingField::name, ListingField::description, ListingField::keywords,
                                     ListingField::supportUrl}) {
                project.setValue("text", field, locale, platform);
            }
        }
        project.setValue("https://a.b", ListingField::privacyPolicyUrl, kGerman, platform);
        auto& listing = project.platforms[platform];
        listing.media = {{kGerman, {{kSlot, {MediaItem::remote("A")}}}}};
        listing.review.contactFirstName = "Ada";
        listing.review.contactLastName = "Lovelace";
        listing.review.contactPhone = "+1";
        listing.review.contactEmail = "a@b.c";
        review.remote.ids.versions[platform] = {"V", "PREPARE_FOR_SUBMISSION", {}, {}, "R", "B"};
    }

    RemoteVersion& remoteVersion() { return review.remote.ids.versions[platform]; }
    PlatformListing& listing() { return project.platforms[platform]; }
    void change(ContentKey key) { review.changeSet.changes.push_back({std::move(key), "old", "new"}); }
    void conflict(ContentKey key) { review.changeSet.conflicts.push_back({std::move(key), "old", "new"}); }

    // A build with these attributes.
    static ASCBuild builtAs(const std::string& attributes) {
        const auto document = ASCClient::decode(
            R"({"data":{"type":"builds","id":"B","attributes":)" + attributes + "}}", "/v1/builds/B");
        return {document.data.at(0), {}};
    }
};

}  // namespace kestrin
