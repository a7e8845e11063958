// Every rule by which a value can't be written, in the order in which the rules apply.
#include <gtest/gtest.h>

#include <functional>

#include "SyncEngine/Diff/DiffEngine.h"
#include "Tests/Support/ListingNames.h"

namespace kestrin {
namespace {

const auto kPlatform = StorePlatform::iOS;

using Reason = std::optional<BlockReason>;
constexpr std::nullopt_t writable = std::nullopt;

// Everything exists on both sides in German and can be written.
struct World {
    Project local;
    RemoteListing remote;

    World() {
        local.setValue("Name", ListingField::name, kGerman, kPlatform);
        local.setValue("Text", ListingField::description, kGerman, kPlatform);
        local.pages[kPage].name = "Page";
        local.experiments[kTest].name = "Test";
        local.experiments[kTest].treatments[kBlue].name = "Blue";
        auto& ids = remote.ids;
        ids.appInfoState = "PREPARE_FOR_SUBMISSION";
        ids.appInfoLocalizations[kGerman] = "A";
        ids.versions[kPlatform] = {"V", "PREPARE_FOR_SUBMISSION", {{kGerman, "L"}}, {}, {}, {}};
        ids.pages[kPage] = {"P", {}, "PV", "PREPARE_FOR_SUBMISSION", {}, {}};
        ids.experiments[kTest] = {"E", "PREPARE_FOR_SUBMISSION", {{kBlue, {"T", {}, {}}}}};
    }
};

struct ReasonRow {
    const char* when;
    ContentKey key;
    std::function<void(World&)> change;
    Reason reason;
};

void expectReasons(const std::vector<ReasonRow>& rows) {
    for (const ReasonRow& row : rows) {
        SCOPED_TRACE(row.when);
        World world;
        row.change(world);
        EXPECT_EQ(DiffEngine::blockReason(row.key, world.local, world.remote), row.reason);
    }
}

template <class Case>
Reason because(Case reason) {
    return BlockReason{reason};
}

void asItIs(World&) {}

TEST(BlockReason, OfTheAppsValues) {
    const ContentKey category = ContentKey::AppInfo{AppInfoAttribute::primaryCategory};
    const ContentKey name = ContentKey::AppInfoLocale{kGerman, ListingField::name};
    const auto inReview = [](World& w) { w.remote.ids.appInfoState = "IN_REVIEW"; };
    const auto noState = [](World& w) { w.remote.ids.appInfoState = std::nullopt; };
    const auto emptied = [](World& w) { w.local.app.locales.clear(); };
    expectReasons({
        {"an editable state", category, asItIs, writable},
        {"no state", category, noState, writable},
        {"any other state", category, inReview, because(BlockReason::AppInfoNotEditable{"IN_REVIEW"})},
        {"a text in an editable state", name, asItIs, writable},
        {"a text without a state", name, noState, writable},
        {"a text in any other state", name, inReview, because(BlockReason::AppInfoNotEditable{"IN_REVIEW"})},
        {"a locale emptied here", name, emptied, because(BlockReason::LocaleRemovedLocally{})},
        {"a locale emptied here goes before the state", name,
         [&](World& w) {
             emptied(w);
             inReview(w);
         },
         because(BlockReason::LocaleRemovedLocally{})},
        {"a locale emptied here that the service doesn't have",
         ContentKey::AppInfoLocale{kFrench, ListingField::name}, asItIs, writable},
        {"a locale with unknown members alone counts as emptied", name,
         [](World& w) {
             w.local.app.locales[kGerman] = LocalizedFields({}, {{"later", 1}});
         },
         because(BlockReason::LocaleRemovedLocally{})},
    });
}

TEST(BlockReason, OfAVersionsAttributesAndReviewDetails) {
    const auto gone = [](World& w) { w.remote.ids.versions.clear(); };
    const auto live = [](World& w) { w.remote.ids.versions[kPlatform].state = "READY_FOR_SALE"; };
    for (const ContentKey& key : {ContentKey(ContentKey::Version{kPlatform, VersionAttribute::copyright}),
                                  ContentKey(ContentKey::Review{kPlatform, ReviewAttribute::notes})}) {
        SCOPED_TRACE(key.id());
        expectReasons({
            {"an editable state", key, asItIs, writable},
            {"no remote version", key, gone, because(BlockReason::NoRemoteVersion{})},
            {"any other state", key, live, because(BlockReason::VersionNotEditable{"READY_FOR_SALE"})},
            {"an unnamed state", key, [](World& w) { w.remote.ids.versions[kPlatform].state = ""; },
             because(BlockReason::VersionNotEditable{""})},
        });
    }
}

TEST(BlockReason, OfAVersionsTexts) {
    const ContentKey text = ContentKey::VersionLocale{kPlatform, kGerman, ListingField::description};
    const ContentKey promotion = ContentKey::VersionLocale{kPlatform, kGerman, ListingField::promotionalText};
    const auto gone = [](World& w) { w.remote.ids.versions.clear(); };
    const auto live = [](World& w) { w.remote.ids.versions[kPlatform].state = "READY_FOR_SALE"; };
    const auto emptied = [](World& w) { w.local.platforms.clear(); };
    expectReasons({
        {"an editable state", text, asItIs, writable},
        {"no remote version", text, gone, because(BlockReason::NoRemoteVersion{})},
        {"a locale emptied here", text, emptied, because(BlockReason::LocaleRemovedLocally{})},
        {"a locale emptied here that the service doesn't have",
         ContentKey::VersionLocale{kPlatform, kFrench, ListingField::description}, asItIs, writable},
        {"any other state", text, live, because(BlockReason::VersionNotEditable{"READY_FOR_SALE"})},
        {"promotional text in any state", promotion, live, writable},
        {"promotional text without a remote version", promotion, gone,
         because(BlockReason::NoRemoteVersion{})},
        {"promotional text of a locale emptied here", promotion, emptied,
         because(BlockReason::LocaleRemovedLocally{})},
    });
}

TEST(BlockReason, OfAVersionsMedia) {
    const ContentKey german = ContentKey::Placements{kPlatform, kGerman, kSlot};
    const ContentKey french = ContentKey::Placements{kPlatform, kFrench, kSlot};
    const auto live = [](World& w) { w.remote.ids.versions[kPlatform].state = "READY_FOR_SALE"; };
    expectReasons({
        {"a locale that the service has", german, asItIs, writable},
        {"a locale that the service has and that was emptied here", german,
         [](World& w) { w.local.platforms.clear(); }, writable},
        {"no remote version", german, [](World& w) { w.remote.ids.versions.clear(); },
         because(BlockReason::NoRemoteVersion{})},
        {"any other state", german, live, because(BlockReason::VersionNotEditable{"READY_FOR_SALE"})},
        {"a locale on neither side", french, asItIs, because(BlockReason::LocalizationMissing{})},
        {"a locale whose text goes out with it", french,
         [](World& w) { w.local.setValue("T", ListingField::keywords, kFrench, kPlatform); }, writable},
        {"the state goes before a missing locale", french, live,
         because(BlockReason::VersionNotEditable{"READY_FOR_SALE"})},
    });
}

TEST(BlockReason, OfCustomPages) {
    const ContentKey deepLink = ContentKey::Page{kPage, PageAttribute::deepLink};
    const ContentKey text = ContentKey::PagePromotionalText{kPage, kGerman};
    const ContentKey media = ContentKey::PagePlacements{kPage, kGerman, kSlot};
    const auto isNew = [](World& w) { w.remote.ids.pages.clear(); };
    const auto removed = [](World& w) { w.local.pages.clear(); };
    const auto approved = [](World& w) { w.remote.ids.pages[kPage].versionState = "APPROVED"; };
    for (const auto attribute : {PageAttribute::name, PageAttribute::visible}) {
        const ContentKey key = ContentKey::Page{kPage, attribute};
        SCOPED_TRACE(key.id());
        expectReasons({
            {"a new page", key, isNew, writable},
            {"removed here", key, removed, because(BlockReason::PageRemovedLocally{})},
            {"lives on the page, whatever its version's state", key, approved, writable},
        });
    }
    for (const ContentKey& key : {deepLink, text, media}) {
        SCOPED_TRACE(key.id());
        expectReasons({
            {"an editable state", key, asItIs, writable},
            {"a new page, whatever the state of others", key, isNew, writable},
            {"removed here", key, removed, because(BlockReason::PageRemovedLocally{})},
            {"any other state", key, approved, because(BlockReason::PageNotEditable{"APPROVED"})},
        });
    }
}

TEST(BlockReason, OfTests) {
    const ContentKey name = ContentKey::Experiment{kTest, ExperimentAttribute::name};
    const ContentKey platform = ContentKey::Experiment{kTest, ExperimentAttribute::platform};
    const auto isNew = [](World& w) { w.remote.ids.experiments.clear(); };
    const auto removed = [](World& w) { w.local.experiments.clear(); };
    const auto running = [](World& w) { w.remote.ids.experiments[kTest].state = "IN_REVIEW"; };
    expectReasons({
        {"an editable state", name, asItIs, writable},
        {"a new test", name, isNew, writable},
        {"a new test's platform", platform, isNew, writable},
        {"removed here", name, removed, because(BlockReason::ExperimentRemovedLocally{})},
        {"an existing test's platform", platform, asItIs, because(BlockReason::ExperimentPlatformFixed{})},
        {"an existing test's platform in any other state", platform, running,
         because(BlockReason::ExperimentPlatformFixed{})},
        {"any other state", name, running, because(BlockReason::ExperimentNotEditable{"IN_REVIEW"})},
    });
}

TEST(BlockReason, OfTreatments) {
    const auto removed = [](World& w) { w.local.experiments[kTest].treatments.clear(); };
    const auto running = [](World& w) { w.remote.ids.experiments[kTest].state = "IN_REVIEW"; };
    for (const ContentKey& key :
         {ContentKey(ContentKey::Treatment{kTest, kBlue, TreatmentAttribute::name}),
          ContentKey(ContentKey::TreatmentPlacements{kTest, kBlue, kGerman, kSlot})}) {
        SCOPED_TRACE(key.id());
        expectReasons({
            {"an editable state", key, asItIs, writable},
            {"a new test", key, [](World& w) { w.remote.ids.experiments.clear(); }, writable},
            {"a test removed here", key, [](World& w) { w.local.experiments.clear(); },
             because(BlockReason::ExperimentRemovedLocally{})},
            {"a treatment removed here has its test's reason", key, removed,
             because(BlockReason::ExperimentRemovedLocally{})},
            {"a treatment on neither side", key,
             [&](World& w) {
                 removed(w);
                 w.remote.ids.experiments[kTest].treatments.clear();
             },
             writable},
            {"any other state", key, running, because(BlockReason::ExperimentNotEditable{"IN_REVIEW"})},
        });
    }
}

}  // namespace
}  // namespace kestrin
