#include "SyncEngine/Remote/RemoteNames.h"

#include <gtest/gtest.h>

#include "KestrinModel/PackageNameError.h"
#include "Tests/Support/ListingNames.h"

namespace kestrin {
namespace {

LocalizedMedia mediaOf(const MediaItem& item) {
    return {{kGerman, {{kSlot, {item}}}}};
}

// The listings in which an item or asset of these names can stand.
std::vector<RemoteListing> listingsWith(const std::string& id, const std::string& fileName) {
    const auto media = mediaOf(MediaItem::remote(id, fileName));
    std::vector<RemoteListing> listings(4);
    listings[0].assets[id].fileName = fileName;
    listings[1].platforms[StorePlatform::iOS].media = media;
    listings[2].pages[{"page"}].media = media;
    listings[3].experiments[{"test"}].treatments[{"blue"}].media = media;
    return listings;
}

TEST(RemoteNames, PlainIdsAndFileNamesPassAndAFileNameMayBeMissing) {
    for (const auto* fileName : {"", "a.png", "Bild 1 – größer.png", "..png", "a\nb.png"}) {
        SCOPED_TRACE(fileName);
        for (const auto& listing : listingsWith("6f1c-2", fileName)) {
            EXPECT_NO_THROW(RemoteNames::check(listing));
        }
    }
}

TEST(RemoteNames, AnAssetIdThatIsNoPlainNameIsRefused) {
    for (const auto& id :
         {std::string(), std::string("."), std::string(".."), std::string("../1"), std::string("/etc/passwd"),
          std::string("a/b"), std::string("1\0", 2), std::string("1\nfile:../secret.png")}) {
        SCOPED_TRACE(id);
        for (const auto& listing : listingsWith(id, "a.png")) {
            EXPECT_THROW(RemoteNames::check(listing), PackageNameError);
        }
    }
}

TEST(RemoteNames, AFileNameThatLeadsElsewhereIsRefusedAndNamed) {
    for (const auto& listing : listingsWith("1", "../../.ssh/config")) {
        try {
            RemoteNames::check(listing);
            ADD_FAILURE() << "no error";
        } catch (const PackageNameError& error) {
            EXPECT_EQ(error.errorDescription(), "“../../.ssh/config” can’t be the name of a file or folder.");
        }
    }
    for (const auto& listing : listingsWith("1", "..")) {
        EXPECT_THROW(RemoteNames::check(listing), PackageNameError);
    }
}

}  // namespace
}  // namespace kestrin
