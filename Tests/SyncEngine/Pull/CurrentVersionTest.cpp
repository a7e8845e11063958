#include "SyncEngine/Pull/CurrentVersion.h"

#include <gtest/gtest.h>

#include "ASCKit/Resources/Apps.h"
#include "KestrinCore/StableJSON.h"

namespace kestrin {
namespace {

struct Version {
    const char* id;
    std::optional<std::string> state, created;
};

std::string chosen(const std::vector<Version>& versions) {
    std::vector<ASCAppStoreVersion> made;
    for (const auto& version : versions) {
        JSONObject attributes;
        if (version.state) attributes.emplace("appVersionState", *version.state);
        if (version.created) attributes.emplace("createdDate", *version.created);
        made.emplace_back(ResourceObject{"appStoreVersions", version.id, attributes, {}, {}});
    }
    const auto version = CurrentVersion::currentVersion(made);
    return version ? version->id : "none";
}

TEST(CurrentVersion, OfAPlatformIsWhatIsInPreparationElseLiveElseNewest) {
    struct Row {
        const char* when;
        std::vector<Version> versions;
        const char* chosen;
    };
    const Row rows[] = {
        {"no versions", {}, "none"},
        {"an editable one wins over a newer live one",
         {{"live", "READY_FOR_SALE", "2026-02"}, {"new", "PREPARE_FOR_SUBMISSION", "2026-01"}},
         "new"},
        {"the newest of several editable ones",
         {{"a", "REJECTED", "2026-01"}, {"b", "PREPARE_FOR_SUBMISSION", "2026-02"}},
         "b"},
        {"the newest of several live ones",
         {{"a", "READY_FOR_SALE", "2026-01"}, {"b", "READY_FOR_DISTRIBUTION", "2026-02"}},
         "b"},
        {"a live one wins over a newer one in neither state",
         {{"a", "READY_FOR_SALE", "2026-01"}, {"b", "IN_REVIEW", "2026-02"}},
         "a"},
        {"the newest where none is editable or live",
         {{"a", "IN_REVIEW", "2026-01"}, {"b", "REMOVED_FROM_SALE", "2026-02"}},
         "b"},
        {"no state is chosen only when nothing else is",
         {{"a", std::nullopt, "2026-02"}, {"b", "READY_FOR_SALE", "2026-01"}},
         "b"},
        {"no state alone", {{"a", std::nullopt, "2026-02"}}, "a"},
        {"no date is the oldest", {{"a", "IN_REVIEW", std::nullopt}, {"b", "IN_REVIEW", "2026-01"}}, "b"},
        {"of two alike the first listed", {{"a", "IN_REVIEW", "2026"}, {"b", "IN_REVIEW", "2026"}}, "a"},
        {"dates are compared as text",
         {{"a", "IN_REVIEW", "2026-01-01T00:00:00+09:00"}, {"b", "IN_REVIEW", "2026-01-01T00:00:00+01:00"}},
         "a"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(chosen(row.versions), row.chosen);
    }
}

struct PageVersion {
    const char* id;
    const char* state;
    std::optional<std::string> version;
};

std::string chosenPage(const std::vector<PageVersion>& versions) {
    std::vector<ASCCustomProductPageVersion> made;
    for (const auto& version : versions) {
        JSONObject attributes{{"state", version.state}};
        if (version.version) attributes.emplace("version", *version.version);
        made.emplace_back(ResourceObject{"appCustomProductPageVersions", version.id, attributes, {}, {}});
    }
    const auto version = CurrentVersion::currentPageVersion(made);
    return version ? version->id : "none";
}

TEST(CurrentVersion, OfAPageIsWhatIsInPreparationElseInForceElseHighest) {
    struct Row {
        const char* when;
        std::vector<PageVersion> versions;
        const char* chosen;
    };
    const Row rows[] = {
        {"no versions", {}, "none"},
        {"an editable one wins over a higher one", {{"a", "APPROVED", "9"}, {"b", "REJECTED", "2"}}, "b"},
        {"numbers, not text", {{"a", "APPROVED", "9"}, {"b", "APPROVED", "10"}}, "b"},
        {"a replaced one is skipped though it is higher",
         {{"a", "REPLACED_WITH_NEW_VERSION", "2"}, {"b", "APPROVED", "1"}},
         "b"},
        {"the highest where all are replaced",
         {{"a", "REPLACED_WITH_NEW_VERSION", "1"}, {"b", "REPLACED_WITH_NEW_VERSION", "2"}},
         "b"},
        {"what isn't a number counts as 0", {{"a", "APPROVED", "x"}, {"b", "APPROVED", "1"}}, "b"},
        {"no number counts as 0, and of two alike the first wins",
         {{"a", "APPROVED", std::nullopt}, {"b", "APPROVED", "0"}},
         "a"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(chosenPage(row.versions), row.chosen);
    }
}

TEST(CurrentVersion, OfAppInfosIsTheFirstEditableElseTheFirst) {
    const auto info = [](const char* id, const char* state) {
        return ASCAppInfo(ResourceObject{"appInfos", id, {{"state", state}}, {}, {}});
    };
    const auto live = info("1", "READY_FOR_DISTRIBUTION");
    const auto editable = info("2", "PREPARE_FOR_SUBMISSION");
    EXPECT_EQ(CurrentVersion::current(std::vector{live, editable})->id, "2");
    EXPECT_EQ(CurrentVersion::current(std::vector{live, live})->id, "1");
    EXPECT_EQ(CurrentVersion::current(std::vector<ASCAppInfo>{}), std::nullopt);
}

}  // namespace
}  // namespace kestrin
