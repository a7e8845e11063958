#include "SyncEngine/Diff/DiffEngine.h"
#include "Tests/Support/ListingNames.h"

#include <gtest/gtest.h>

namespace kestrin {
namespace {

const ContentKey kCopyright = ContentKey::Version{StorePlatform::iOS, VersionAttribute::copyright};

// A listing whose version of iOS is in preparation.
RemoteListing editableListing() {
    RemoteListing remote;
    remote.ids.versions[StorePlatform::iOS] = {"V", "PREPARE_FOR_SUBMISSION", {}, {}, {}, {}};
    return remote;
}

Project projectWith(const std::string& value) {
    Project project;
    ContentGraph::set(value, kCopyright, project);
    return project;
}

RemoteListing listingWith(const std::string& value) {
    auto remote = editableListing();
    remote.platforms = projectWith(value).platforms;
    return remote;
}

// "change", "conflict", "drift", "blocked" or "in sync": where kCopyright ended up, and that nothing else did.
std::string outcomeOf(const std::optional<std::string>& base, const std::string& local,
                      const std::string& remote, const RemoteListing& listing) {
    std::optional<FlatValues> snapshot;
    if (base) snapshot = base->empty() ? FlatValues{} : FlatValues{{kCopyright, *base}};
    const auto set = DiffEngine::diff(projectWith(local), listing, snapshot);
    const Change expected{kCopyright, remote, local};
    if (set == ChangeSet{}) return "in sync";
    if (set == ChangeSet{{expected}, {}, {}, {}}) return "change";
    if (set == ChangeSet{{}, {expected}, {}, {}}) return "conflict";
    if (set == ChangeSet{{}, {}, {expected}, {}}) return "drift";
    if (set.blocked.size() == 1 && set.blocked[0].change == expected && !set.hasPushableChanges())
        return "blocked";
    return "something else";
}

constexpr std::nullopt_t noSnapshot = std::nullopt;

TEST(DiffEngine, ClassifiesAValueByWhichSideMoved) {
    struct Row {
        const char* when;
        std::optional<std::string> base;
        std::string local, remote, outcome;
    };
    const Row rows[] = {
        {"both sides agree, whatever the base says", "z", "a", "a", "in sync"},
        {"only a final line feed differs", "z", "a\n", "a", "in sync"},
        {"both sides emptied what the base has", "z", "", "", "in sync"},
        {"only the remote side moved", "a", "a", "b", "drift"},
        {"the local side moved by white space alone", "a", "a \n", "b", "drift"},
        {"only the local side moved", "a", "b", "a", "change"},
        {"the remote side moved by white space alone", "a", "b", "a\n", "change"},
        {"the local side was emptied", "a", "", "a", "change"},
        {"both sides moved apart", "a", "b", "c", "conflict"},
        {"no snapshot, remote value only", noSnapshot, "", "x", "drift"},
        {"no snapshot, local value only", noSnapshot, "x", "", "change"},
        {"no snapshot, both have a value", noSnapshot, "x", "y", "change"},
        {"an empty snapshot is a snapshot", "", "x", "y", "conflict"},
        {"an empty snapshot, remote value only", "", "", "x", "drift"},
        {"an empty snapshot, local value only", "", "x", "", "change"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(outcomeOf(row.base, row.local, row.remote, listingWith(row.remote)), row.outcome);
    }
}

TEST(DiffEngine, ABlockedValueIsNowhereElseWhetherChangeOrConflict) {
    for (const auto* base : {"a", "c"}) {
        auto listing = listingWith("a");
        listing.ids.versions[StorePlatform::iOS].state = "IN_REVIEW";
        EXPECT_EQ(outcomeOf(base, "b", "a", listing), "blocked") << base;
    }
}

TEST(DiffEngine, DriftIsNeverBlocked) {
    auto listing = listingWith("b");
    listing.ids.versions[StorePlatform::iOS].state = "IN_REVIEW";
    EXPECT_EQ(outcomeOf("a", "a", "b", listing), "drift");
}

TEST(DiffEngine, ListsAreInTheOrderOfKeys) {
    Project local;
    local.app.info.primaryCategory = "GAMES";
    local.pages[{"summer"}].name = "Summer";
    local.setValue("Neu", ListingField::whatsNew, kGerman, StorePlatform::iOS);
    const auto set = DiffEngine::diff(local, editableListing(), std::nullopt);
    std::vector<std::string> ids;
    for (const auto& change : set.changes) ids.push_back(change.key.id());
    EXPECT_EQ(ids,
              (std::vector<std::string>{"IOS/de-DE/whatsNew", "app/primaryCategory", "pages/summer/name"}));
}

TEST(DiffEngine, OnlyChangesAndConflictsArePushable) {
    const Change change{kCopyright, "a", "b"};
    EXPECT_TRUE((ChangeSet{{change}, {}, {}, {}}).hasPushableChanges());
    EXPECT_TRUE((ChangeSet{{}, {change}, {}, {}}).hasPushableChanges());
    const ChangeSet rest{{}, {}, {change}, {{change, {BlockReason::NoRemoteVersion{}}}}};
    EXPECT_FALSE(rest.hasPushableChanges());
    EXPECT_FALSE(rest.isInSync());
    EXPECT_TRUE(ChangeSet{}.isInSync());
}

}  // namespace
}  // namespace kestrin
