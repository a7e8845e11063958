// The assets that the replies of one fetch have shown, on their way into one map.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "SyncEngine/Remote/RemoteListing.h"

namespace kestrin {

// A large listing shows tens of thousands, in no order of their ids. Each is kept as it comes and they are sorted once:
// to look for the place of each would take a walk over all the memory of a growing tree.
class AssetsSeen {
 public:
    explicit AssetsSeen(KnownAssets& assets) : assets_(assets) {}
    AssetsSeen(const AssetsSeen&) = delete;
    AssetsSeen& operator=(const AssetsSeen&) = delete;

    // Takes the place of one with the same id.
    void add(ASCLibraryAsset asset);

    // The file name of one that was shown; "" for any other.
    std::string fileName(const std::string& id);

    // The map has all of them afterwards.
    void finish();

 private:
    struct Waiting {
        std::uint64_t start;  // of the id, as startOf gives it
        KnownAssets::node_type node;

        // By id. Ids differ in their first bytes nearly always, and those are at hand without a look at the node.
        bool operator<(const Waiting& other) const {
            return start != other.start ? start < other.start : node.key() < other.node.key();
        }
    };

    KnownAssets& assets_;
    std::vector<Waiting> waiting_;
};

}  // namespace kestrin
