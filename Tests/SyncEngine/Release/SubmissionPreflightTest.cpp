#include "SyncEngine/Release/SubmissionPreflight.h"

#include <gtest/gtest.h>

#include <functional>

#include "Tests/Support/ListingNames.h"
#include "Tests/Support/Repeated.h"
#include "Tests/SyncEngine/Release/ReadyVersion.h"

namespace kestrin {
namespace {

using Check = PreflightItem::Check;
using Details = std::vector<std::string>;

std::vector<PreflightItem> itemsOf(const ReadyVersion& version) {
    return SubmissionPreflight::check(version.project, version.platform, version.review, version.build);
}

// "passed", "manual", "failed: a | b", or "left out".
std::string outcome(const ReadyVersion& version, Check check) {
    for (const auto& item : itemsOf(version)) {
        if (item.check != check) continue;
        if (std::holds_alternative<PreflightItem::Passed>(item.status)) return "passed";
        if (std::holds_alternative<PreflightItem::Manual>(item.status)) return "manual";
        std::string text = "failed:";
        for (const auto& detail : std::get<PreflightItem::Failed>(item.status).details) {
            text.append(text.back() == ':' ? " " : " | ").append(detail);
        }
        return text;
    }
    return "left out";
}

struct OutcomeRow {
    const char* when;
    std::function<void(ReadyVersion&)> change;
    const char* outcome;
};

void expectOutcomes(Check check, const std::vector<OutcomeRow>& rows) {
    for (const OutcomeRow& row : rows) {
        SCOPED_TRACE(row.when);
        ReadyVersion version;
        row.change(version);
        EXPECT_EQ(outcome(version, check), row.outcome);
    }
}

void nothing(ReadyVersion&) {}

std::vector<Check> checksOf(const std::vector<PreflightItem>& items) {
    std::vector<Check> checks;
    for (const auto& item : items) checks.push_back(item.check);
    return checks;
}

TEST(SubmissionPreflight, AReadyVersionPassesAllButWhatOnlyAPersonCanSee) {
    ReadyVersion version;
    version.listing().review.demoAccountRequired = true;
    version.listing().review.demoAccountName = "demo";
    const PreflightItem::Status passed = PreflightItem::Passed{}, manual = PreflightItem::Manual{};
    EXPECT_EQ(itemsOf(version), (std::vector<PreflightItem>{
                                    {Check::versionEditable, passed},
                                    {Check::buildAttached, passed},
                                    {Check::buildProcessed, passed},
                                    {Check::exportCompliance, passed},
                                    {Check::changesPushed, passed},
                                    {Check::requiredText, passed},
                                    {Check::screenshots, passed},
                                    {Check::limits, passed},
                                    {Check::reviewContact, passed},
                                    {Check::demoAccount, passed},
                                    {Check::appPrivacy, manual},
                                    {Check::ageRating, manual},
                                    {Check::pricing, manual},
                                }));
    EXPECT_FALSE(SubmissionPreflight::hasFailed(itemsOf(version)));
}

TEST(SubmissionPreflight, AnEmptyProjectFailsEverythingThatAppliesAndLeavesTheRestOut) {
    const auto items = SubmissionPreflight::check(Project(), StorePlatform::iOS, PushReview(), std::nullopt);
    EXPECT_EQ(checksOf(items),
              (std::vector{Check::versionEditable, Check::buildAttached, Check::changesPushed,
                           Check::requiredText, Check::limits, Check::reviewContact, Check::appPrivacy,
                           Check::ageRating, Check::pricing}));
    EXPECT_TRUE(SubmissionPreflight::hasFailed(items));
}

TEST(SubmissionPreflight, TheVersionIsInAStateInWhichItCanBeEdited) {
    expectOutcomes(
        Check::versionEditable,
        {
            {"in preparation", nothing, "passed"},
            {"rejected", [](auto& v) { v.remoteVersion().state = "METADATA_REJECTED"; }, "passed"},
            {"ready for review", [](auto& v) { v.remoteVersion().state = "READY_FOR_REVIEW"; }, "passed"},
            {"on sale", [](auto& v) { v.remoteVersion().state = "READY_FOR_SALE"; },
             "failed: READY_FOR_SALE"},
            {"no version", [](auto& v) { v.review.remote.ids.versions.clear(); }, "failed: —"},
            {"only one of another platform", [](auto& v) { v.platform = StorePlatform::tvOS; }, "failed: —"},
        });
}

TEST(SubmissionPreflight, GoesOnAfterAFailure) {
    ReadyVersion version;
    version.remoteVersion().state = "WAITING_FOR_REVIEW";
    EXPECT_EQ(outcome(version, Check::versionEditable), "failed: WAITING_FOR_REVIEW");
    EXPECT_EQ(outcome(version, Check::buildAttached), "passed");
    EXPECT_EQ(itemsOf(version).size(), 12u);
}

TEST(SubmissionPreflight, ABuildIsAttached) {
    expectOutcomes(Check::buildAttached,
                   {
                       {"a build", nothing, "passed"},
                       {"none", [](auto& v) { v.remoteVersion().buildID.reset(); }, "failed: —"},
                       {"no version", [](auto& v) { v.review.remote.ids.versions.clear(); }, "failed: —"},
                   });
}

std::function<void(ReadyVersion&)> withBuild(const char* attributes) {
    return [attributes](ReadyVersion& version) { version.build = ReadyVersion::builtAs(attributes); };
}
const auto withoutBuild = [](ReadyVersion& version) { version.build.reset(); };

TEST(SubmissionPreflight, TheBuildIsProcessedAndHasNotExpired) {
    expectOutcomes(
        Check::buildProcessed,
        {
            {"processed", nothing, "passed"},
            {"in processing", withBuild(R"({"processingState":"PROCESSING"})"), "failed: PROCESSING"},
            {"no state", withBuild("{}"), "failed: —"},
            {"expired", withBuild(R"({"processingState":"VALID","expired":true})"), "failed: VALID"},
            {"no build", withoutBuild, "left out"},
        });
}

TEST(SubmissionPreflight, TheExportComplianceQuestionHasAnAnswer) {
    expectOutcomes(Check::exportCompliance,
                   {
                       {"no", withBuild(R"({"usesNonExemptEncryption":false})"), "passed"},
                       {"yes", withBuild(R"({"usesNonExemptEncryption":true})"), "passed"},
                       {"unanswered", withBuild(R"({"version":"42"})"), "failed: 42"},
                       {"no build", withoutBuild, "left out"},
                   });
}

const auto kMac = StorePlatform::macOS;

std::function<void(ReadyVersion&)> withChange(ContentKey key) {
    return [key = std::move(key)](ReadyVersion& version) { version.change(key); };
}

TEST(SubmissionPreflight, ChangesOfTheVersionAndOfAllThatHasNoPlatformArePushed) {
    expectOutcomes(
        Check::changesPushed,
        {
            {"none", nothing, "passed"},
            {"a category", withChange(ContentKey::AppInfo{AppInfoAttribute::primaryCategory}),
             "failed: app/primaryCategory"},
            {"a text of the app", withChange(ContentKey::AppInfoLocale{kGerman, ListingField::name}),
             "failed: app/de-DE/name"},
            {"the version", withChange(ContentKey::Version{StorePlatform::iOS, VersionAttribute::copyright}),
             "failed: IOS/version/copyright"},
            {"another platform's version", withChange(ContentKey::Version{kMac, VersionAttribute::copyright}),
             "passed"},
            {"a text",
             withChange(ContentKey::VersionLocale{StorePlatform::iOS, kGerman, ListingField::keywords}),
             "failed: IOS/de-DE/keywords"},
            {"another platform's text",
             withChange(ContentKey::VersionLocale{kMac, kGerman, ListingField::keywords}), "passed"},
            {"media", withChange(ContentKey::Placements{StorePlatform::iOS, kGerman, kSlot}),
             "failed: IOS/de-DE/media/IPHONE_67/APP_SCREENSHOT"},
            {"another platform's media", withChange(ContentKey::Placements{kMac, kGerman, kSlot}), "passed"},
            {"the review details", withChange(ContentKey::Review{StorePlatform::iOS, ReviewAttribute::notes}),
             "failed: IOS/review/notes"},
            {"another platform's review details",
             withChange(ContentKey::Review{kMac, ReviewAttribute::notes}), "passed"},
            {"a custom page", withChange(ContentKey::Page{kPage, PageAttribute::name}),
             "failed: pages/summer/name"},
            {"a custom page's promotional text", withChange(ContentKey::PagePromotionalText{kPage, kGerman}),
             "failed: pages/summer/de-DE/promotionalText"},
            {"a custom page's media", withChange(ContentKey::PagePlacements{kPage, kGerman, kSlot}),
             "failed: pages/summer/de-DE/media/IPHONE_67/APP_SCREENSHOT"},
            {"a test, whichever platform it is for",
             withChange(ContentKey::Experiment{kTest, ExperimentAttribute::platform}),
             "failed: experiments/icons/platform"},
            {"a treatment", withChange(ContentKey::Treatment{kTest, {"blue"}, TreatmentAttribute::name}),
             "failed: experiments/icons/treatments/blue/name"},
            {"a treatment's media", withChange(ContentKey::TreatmentPlacements{kTest, kBlue, kGerman, kSlot}),
             "failed: experiments/icons/treatments/blue/de-DE/media/IPHONE_67/APP_SCREENSHOT"},
        });
}

TEST(SubmissionPreflight, ConflictsCountAfterChangesAndDriftAndWhatIsBlockedDoNot) {
    ReadyVersion version;
    const ContentKey name = ContentKey::AppInfoLocale{kGerman, ListingField::name};
    const ContentKey subtitle = ContentKey::AppInfoLocale{kGerman, ListingField::subtitle};
    version.review.changeSet.drift = {{name, "a", "b"}};
    version.review.changeSet.blocked = {{{name, "a", "b"}, {BlockReason::NoRemoteVersion{}}}};
    EXPECT_EQ(outcome(version, Check::changesPushed), "passed");

    version.conflict(name);
    version.change(subtitle);
    EXPECT_EQ(outcome(version, Check::changesPushed), "failed: app/de-DE/subtitle | app/de-DE/name");
}

std::function<void(ReadyVersion&)> without(ListingField field, const StoreLocale& locale) {
    return [field, locale](ReadyVersion& version) {
        version.project.setValue("", field, locale, version.platform);
    };
}

TEST(SubmissionPreflight, EveryLocaleHasTheRequiredText) {
    expectOutcomes(
        Check::requiredText,
        {
            {"all there", nothing, "passed"},
            {"no name", without(ListingField::name, kFrench), "failed: fr-FR: name"},
            {"no description", without(ListingField::description, kGerman), "failed: de-DE: description"},
            {"no keywords", without(ListingField::keywords, kGerman), "failed: de-DE: keywords"},
            {"no support address", without(ListingField::supportUrl, kGerman), "failed: de-DE: supportUrl"},
            {"no privacy policy in the primary locale", without(ListingField::privacyPolicyUrl, kGerman),
             "failed: de-DE: privacyPolicyUrl"},
            {"no primary locale to have a privacy policy",
             [](auto& v) {
                 v.project.manifest.primaryLocale.reset();
                 v.project.app.locales[kGerman].set(ListingField::privacyPolicyUrl, "");
             },
             "passed"},
            {"texts of another platform only", [](auto& v) { v.platform = StorePlatform::visionOS; },
             "failed: de-DE: description, keywords, supportUrl | fr-FR: description, keywords, supportUrl"},
            {"a locale that isn't listed lacks everything",
             [](auto& v) { v.project.setValue("Nom", ListingField::subtitle, {"it"}, v.platform); },
             "passed"},
            {"no locales but a primary one", [](auto& v) { v.project.manifest.locales.clear(); }, "passed"},
            {"no locales but a primary one without a privacy policy",
             [](auto& v) {
                 v.project.manifest.locales.clear();
                 v.project.app.locales.clear();
             },
             "failed: de-DE: privacyPolicyUrl"},
        });
}

TEST(SubmissionPreflight, MissingTextsAreListedByLocaleInTheManifestsOrderAndThePrivacyPolicyLast) {
    ReadyVersion version;
    version.project.manifest.locales = {kFrench, kGerman};
    version.project.app.locales.clear();
    version.listing().locales.erase(kFrench);
    EXPECT_EQ(
        outcome(version, Check::requiredText),
        "failed: fr-FR: name, description, keywords, supportUrl | de-DE: name | de-DE: privacyPolicyUrl");
}

std::function<void(ReadyVersion&)> withMedia(const PlacementSlot& slot, const MediaItems& items,
                                             const StorePlatform& platform = StorePlatform::iOS) {
    return [=](ReadyVersion& version) {
        version.platform = platform;
        version.listing().media = {{kGerman, {{slot, items}}}};
    };
}

TEST(SubmissionPreflight, ThePrimaryLocaleHasScreenshotsOfTheMainDevice) {
    const MediaItems one = {MediaItem::file("a.png")};
    expectOutcomes(
        Check::screenshots,
        {
            {"of a phone", nothing, "passed"},
            {"of any phone", withMedia({"IPHONE", "APP_SCREENSHOT"}, one), "passed"},
            {"of a tablet only", withMedia({"IPAD_13", "APP_SCREENSHOT"}, one), "failed: de-DE"},
            {"a preview only", withMedia({"IPHONE_67", "APP_PREVIEW"}, one), "failed: de-DE"},
            {"an empty slot", withMedia({"IPHONE_67", "APP_SCREENSHOT"}, {}), "failed: de-DE"},
            {"no media", [](auto& v) { v.listing().media.clear(); }, "failed: de-DE"},
            {"of a Mac for a Mac", withMedia({"MAC_PROFILE", "APP_SCREENSHOT"}, one, kMac), "passed"},
            {"of a Mac, but in another group", withMedia({"MAC_PROFILE_2", "APP_SCREENSHOT"}, one, kMac),
             "failed: de-DE"},
            {"of a phone for a Mac", withMedia({"IPHONE_67", "APP_SCREENSHOT"}, one, kMac), "failed: de-DE"},
            {"of a Mac for a phone", withMedia({"MAC_PROFILE", "APP_SCREENSHOT"}, one), "failed: de-DE"},
            {"of a phone for a television",
             withMedia({"IPHONE_67", "APP_SCREENSHOT"}, one, StorePlatform::tvOS), "passed"},
            {"in another locale only", [](auto& v) { v.project.manifest.primaryLocale = kFrench; },
             "failed: fr-FR"},
            {"no primary locale", [](auto& v) { v.project.manifest.primaryLocale.reset(); }, "left out"},
        });
}

std::function<void(ReadyVersion&)> withText(ListingField field, const std::string& text,
                                            const StorePlatform& platform = StorePlatform::iOS) {
    return [=](ReadyVersion& version) { version.project.setValue(text, field, kGerman, platform); };
}

TEST(SubmissionPreflight, NoTextIsOverItsLimit) {
    const auto tooLong = repeated(101, "x");
    expectOutcomes(
        Check::limits,
        {
            {"all within", nothing, "passed"},
            {"a text of the app", withText(ListingField::name, repeated(31, "x")), "failed: de-DE name"},
            {"a text of the platform", withText(ListingField::keywords, tooLong), "failed: de-DE keywords"},
            {"a text of another platform", withText(ListingField::keywords, tooLong, kMac), "passed"},
            {"over it only in UTF-16 units", withText(ListingField::name, repeated(30, "🦉")), "passed"},
            {"duplicate keywords", withText(ListingField::keywords, "owl,owl"), "passed"},
            {"two of them",
             [&](auto& v) {
                 withText(ListingField::keywords, tooLong)(v);
                 withText(ListingField::subtitle, tooLong)(v);
             },
             "failed: de-DE subtitle | de-DE keywords"},
        });
}

TEST(SubmissionPreflight, TheReviewContactIsComplete) {
    expectOutcomes(
        Check::reviewContact,
        {
            {"complete", nothing, "passed"},
            {"no first name", [](auto& v) { v.listing().review.contactFirstName.reset(); },
             "failed: contactFirstName"},
            {"no last name", [](auto& v) { v.listing().review.contactLastName.reset(); },
             "failed: contactLastName"},
            {"no phone", [](auto& v) { v.listing().review.contactPhone.reset(); }, "failed: contactPhone"},
            {"an empty email", [](auto& v) { v.listing().review.contactEmail = ""; }, "failed: contactEmail"},
            {"none of it", [](auto& v) { v.listing().review = {}; },
             "failed: contactFirstName | contactLastName | contactPhone | contactEmail"},
            {"another platform", [](auto& v) { v.platform = StorePlatform::tvOS; },
             "failed: contactFirstName | contactLastName | contactPhone | contactEmail"},
        });
}

std::function<void(ReadyVersion&)> withDemoAccount(std::optional<bool> required,
                                                   std::optional<std::string> name) {
    return [=](ReadyVersion& version) {
        version.listing().review.demoAccountRequired = required;
        version.listing().review.demoAccountName = name;
    };
}

TEST(SubmissionPreflight, ADemoAccountThatIsRequiredIsNamed) {
    expectOutcomes(Check::demoAccount,
                   {
                       {"named", withDemoAccount(true, "demo"), "passed"},
                       {"not named", withDemoAccount(true, std::nullopt), "failed: demoAccountName"},
                       {"an empty name", withDemoAccount(true, ""), "failed: demoAccountName"},
                       {"not required", withDemoAccount(false, std::nullopt), "left out"},
                       {"nothing said", withDemoAccount(std::nullopt, "demo"), "left out"},
                   });
}

TEST(SubmissionPreflight, WhatTheApiDoesNotTellIsAlwaysForAPerson) {
    for (const auto check : {Check::appPrivacy, Check::ageRating, Check::pricing}) {
        EXPECT_EQ(outcome(ReadyVersion(), check), "manual");
    }
}

}  // namespace
}  // namespace kestrin
