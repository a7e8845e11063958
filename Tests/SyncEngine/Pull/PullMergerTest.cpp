#include "SyncEngine/Pull/PullMerger.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <set>

#include "KestrinCore/UnicodeText.h"
#include "SyncEngine/Diff/DiffEngine.h"
#include "Tests/Support/Generators.h"
#include "Tests/Support/ListingNames.h"
#include "Tests/SyncEngine/Content/AnySides.h"
#include "Tests/SyncEngine/Remote/ListingOf.h"

namespace kestrin {
namespace {

const StoreLocale kEnglish{"en-US"};
const ContentKey kText = ContentKey::VersionLocale{StorePlatform::iOS, kGerman, ListingField::description};

Project projectWith(const std::string& value) {
    Project project;
    ContentGraph::set(value, kText, project);
    return project;
}

TEST(PullMerger, DecidesEachValueByWhichSideMoved) {
    constexpr std::nullopt_t firstPull = std::nullopt;
    struct Row {
        const char* when;
        std::optional<std::string> base;
        std::string local, remote, merged;
        bool updated, conflict;
    };
    const Row rows[] = {
        {"both agree", "z", "a", "a", "a", false, false},
        {"only the remote side moved", "a", "a", "b", "b", true, false},
        {"the remote side was emptied", "a", "a", "", "", true, false},
        {"only the local side moved", "a", "b", "a", "b", false, false},
        {"the local side was emptied", "a", "", "a", "", false, false},
        {"both moved apart", "a", "b", "c", "b", false, true},
        {"a change of white space is a change", "a", "a", "a\n", "a\n", true, false},
        {"a local final line feed is an edit", "a", "a\n", "a", "a\n", false, false},
        {"canonically equal texts are equal", "e\u0301", "é", "x", "x", true, false},
        {"first pull, nothing here", firstPull, "", "a", "a", true, false},
        {"first pull, both have a value", firstPull, "a", "b", "a", false, true},
        {"first pull, only here", firstPull, "a", "", "a", false, true},
        {"an empty snapshot isn't a first pull", "", "a", "", "a", false, false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.when);
        std::optional<FlatValues> base;
        if (row.base) base = row.base->empty() ? FlatValues{} : FlatValues{{kText, *row.base}};

        const auto result =
            PullMerger::merge(projectWith(row.local), listingOf(projectWith(row.remote)), base);

        EXPECT_EQ(ContentGraph::value(kText, result.project), row.merged);
        EXPECT_EQ(result.updatedKeys, row.updated ? std::vector{kText} : std::vector<ContentKey>{});
        std::vector<PullConflict> conflicts;
        if (row.conflict) conflicts.push_back({kText, row.local, row.remote});
        EXPECT_EQ(result.conflicts, conflicts);
        EXPECT_EQ(result.base, ContentGraph::flatten(projectWith(row.remote)))
            << "the remote side, conflicts too";
    }
}

TEST(PullMerger, TakingAMediaListKeepsItsFileNames) {
    Project remote;
    remote.platforms[StorePlatform::iOS].media = {{kGerman, {{kSlot, {MediaItem::remote("1", "one.png")}}}}};
    const auto result = PullMerger::merge(Project{}, listingOf(remote), FlatValues{});
    EXPECT_EQ(result.project.platforms, remote.platforms);
}

TEST(PullMerger, APageDeletedRemotelyGoesWithItsName) {
    Project local;
    local.pages[{"p"}].name = "Page";
    local.pages[{"p"}].deepLink = "edited";
    const ContentKey name = ContentKey::Page{{"p"}, PageAttribute::name};
    const ContentKey deepLink = ContentKey::Page{{"p"}, PageAttribute::deepLink};

    const auto result =
        PullMerger::merge(local, RemoteListing{}, FlatValues{{name, "Page"}, {deepLink, "agreed"}});

    EXPECT_TRUE(result.project.pages.empty());
    EXPECT_EQ(result.updatedKeys, std::vector{name});
    EXPECT_EQ(result.conflicts, (std::vector<PullConflict>{{deepLink, "edited", ""}}));
}

Project listed(const std::vector<StoreLocale>& locales) {
    Project project;
    for (const auto& locale : locales) {
        project.setValue("x", ListingField::name, locale, StorePlatform::iOS);
    }
    return project;
}

TEST(PullMerger, AFirstPullTakesPlatformsLocalesAndPrimaryLocaleFromTheRemoteSide) {
    Project local;
    local.manifest.platforms = {StorePlatform::iOS};
    local.manifest.primaryLocale = kEnglish;
    local.manifest.locales = {kEnglish};
    auto remote = listingOf(listed({kJapanese, kGerman}));
    remote.platforms[StorePlatform::tvOS] = {};
    remote.platforms[StorePlatform::macOS] = {};
    remote.primaryLocale = kJapanese;

    const auto manifest = PullMerger::merge(local, remote, std::nullopt).project.manifest;

    EXPECT_EQ(manifest.platforms, (std::vector{StorePlatform::macOS, StorePlatform::tvOS}));
    EXPECT_EQ(manifest.primaryLocale, kJapanese);
    EXPECT_EQ(manifest.locales, (std::vector{kJapanese, kGerman}))
        << "sorted, then the primary one to the front";
}

TEST(PullMerger, ALaterPullDropsNothingAndAppendsWhatIsInUse) {
    Project local;
    local.manifest.platforms = {StorePlatform::visionOS, StorePlatform::iOS};
    local.manifest.locales = {kJapanese, kEnglish};
    auto remote = listingOf(listed({kGerman}));
    remote.platforms[StorePlatform::macOS] = {};
    remote.primaryLocale = kGerman;

    const auto manifest = PullMerger::merge(local, remote, FlatValues{}).project.manifest;

    EXPECT_EQ(manifest.platforms,
              (std::vector{StorePlatform::iOS, StorePlatform::macOS, StorePlatform::visionOS}));
    EXPECT_EQ(manifest.primaryLocale, std::nullopt);
    EXPECT_EQ(manifest.locales, (std::vector{kJapanese, kEnglish, kGerman}));
}

TEST(PullMerger, APrimaryLocaleThatIsntListedStaysOutOfTheList) {
    Project local;
    local.manifest.primaryLocale = kEnglish;
    local.manifest.locales = {kJapanese};
    EXPECT_EQ(PullMerger::merge(local, RemoteListing{}, FlatValues{}).project.manifest.locales,
              std::vector{kJapanese});
}

TEST(PullMerger, LocalesOfPagesAloneArentInUse) {
    Project remote;
    remote.pages[{"p"}].name = "Page";
    remote.pages[{"p"}].promotionalText[kGerman] = "x";
    EXPECT_TRUE(
        PullMerger::merge(Project{}, listingOf(remote), FlatValues{}).project.manifest.locales.empty());
}

// Properties over any three sides.

RC_GTEST_PROP(PullMergerLaws, PullingTwiceUpdatesNothingTheSecondTime, ()) {
    const auto sides = *anySides();
    const auto remote = listingOf(sides.remote);
    const auto first = PullMerger::merge(sides.local, remote, sides.base);
    const auto second = PullMerger::merge(first.project, remote, first.base);
    RC_ASSERT(second.updatedKeys.empty());
    RC_ASSERT(second.conflicts.empty());
    RC_ASSERT(second.project == first.project);
}

RC_GTEST_PROP(PullMergerLaws, AfterAPullThereIsNoDrift, ()) {
    const auto sides = *anySides();
    const auto remote = listingOf(sides.remote);
    const auto result = PullMerger::merge(sides.local, remote, sides.base);
    RC_ASSERT(DiffEngine::diff(result.project, remote, result.base).drift.empty());
}

RC_GTEST_PROP(PullMergerLaws, WhatAPullLeavesAloneIsNoConflictAfterwards, ()) {
    const auto sides = *anySides();
    const auto remote = listingOf(sides.remote);
    const auto result = PullMerger::merge(sides.local, remote, sides.base);
    RC_ASSERT(DiffEngine::diff(result.project, remote, result.base).conflicts.empty());
}

RC_GTEST_PROP(PullMergerLaws, EqualSidesMergeToThemselves, ()) {
    const auto project = *arbitrary::project();
    const auto result = PullMerger::merge(project, listingOf(project), ContentGraph::flatten(project));
    RC_ASSERT(result.updatedKeys.empty());
    RC_ASSERT(result.conflicts.empty());
    RC_ASSERT(ContentGraph::flatten(result.project) == ContentGraph::flatten(project));
}

RC_GTEST_PROP(PullMergerLaws, AFirstPullIntoAnEmptyProjectIsTheRemoteSide, ()) {
    const auto remote = listingOf(*arbitrary::project());
    const auto result = PullMerger::merge(Project{}, remote, std::nullopt);
    RC_ASSERT(result.conflicts.empty());
    RC_ASSERT(ContentGraph::flatten(result.project) == remote.values());
    RC_ASSERT(DiffEngine::diff(result.project, remote, result.base).isInSync());
}

RC_GTEST_PROP(PullMergerLaws, EveryKeyIsUpdatedKeptOrAConflictAndTheListsAreInKeyOrder, ()) {
    const auto sides = *anySides();
    const auto remote = listingOf(sides.remote);
    const auto result = PullMerger::merge(sides.local, remote, sides.base);
    std::set<ContentKey> conflicts;
    for (const auto& conflict : result.conflicts) {
        conflicts.insert(conflict.key);
        RC_ASSERT(conflict.local == ContentGraph::value(conflict.key, sides.local));
        RC_ASSERT(conflict.remote == ContentGraph::value(conflict.key, sides.remote));
        RC_ASSERT(!text::equal(conflict.local, conflict.remote));
    }
    RC_ASSERT(conflicts.size() == result.conflicts.size());
    for (const auto& key : result.updatedKeys) RC_ASSERT(!conflicts.contains(key));
    RC_ASSERT(std::is_sorted(result.updatedKeys.begin(), result.updatedKeys.end()));
    const auto isBefore = [](const PullConflict& a, const PullConflict& b) { return a.key < b.key; };
    RC_ASSERT(std::is_sorted(result.conflicts.begin(), result.conflicts.end(), isBefore));
    RC_ASSERT(result.base == remote.values());
}

// A test without a name on both sides couldn't be taken away: its name is its life line.
void nameEverything(Project& project) {
    const auto name = [](auto& records) {
        for (auto& [slug, record] : records) {
            if (record.name.empty()) record.name = "Named";
        }
    };
    name(project.pages);
    name(project.experiments);
    for (auto& [slug, experiment] : project.experiments) name(experiment.treatments);
}

RC_GTEST_PROP(PullMergerLaws, AFirstPullThatTakesEveryConflictLeavesNothingDifferent, ()) {
    auto sides = *anySides();
    nameEverything(sides.local);
    nameEverything(sides.remote);
    const auto remote = listingOf(sides.remote);
    auto result = PullMerger::merge(sides.local, remote, std::nullopt);
    for (const auto& conflict : result.conflicts)
        ContentGraph::set(conflict.remote, conflict.key, result.project);
    RC_ASSERT(DiffEngine::diff(result.project, remote, result.base).isInSync());
}

}  // namespace
}  // namespace kestrin
