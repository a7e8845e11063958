#include "SyncEngine/Release/SubmissionPreflight.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>

#include "ASCKit/Resources/AppStoreState.h"
#include "KestrinCore/MapLookup.h"
#include "KestrinModel/FastlaneDeliverExporter.h"
#include "KestrinModel/ListingValidator.h"

namespace kestrin {
namespace {

using Check = PreflightItem::Check;
using Details = std::vector<std::string>;

// nullopt: the check doesn't apply.
using Outcome = std::optional<PreflightItem::Status>;

const std::string kNothing = "—";
constexpr std::string_view kProcessed = "VALID";
constexpr std::string_view kMacScreenshots = "MAC_PROFILE";
constexpr std::string_view kPhoneScreenshots = "IPHONE";

constexpr std::array kRequiredOfTheApp = {ListingField::name};
constexpr std::array kRequiredOfTheVersion = {ListingField::description, ListingField::keywords,
                                              ListingField::supportUrl};

struct ContactField {
    std::optional<std::string> ReviewDetailContent::*value;
    ReviewAttribute attribute;
};
constexpr std::array kContactFields = {
    ContactField{&ReviewDetailContent::contactFirstName, ReviewAttribute::contactFirstName},
    ContactField{&ReviewDetailContent::contactLastName, ReviewAttribute::contactLastName},
    ContactField{&ReviewDetailContent::contactPhone, ReviewAttribute::contactPhone},
    ContactField{&ReviewDetailContent::contactEmail, ReviewAttribute::contactEmail},
};

PreflightItem::Status passesIf(bool holds, Details otherwise) {
    if (holds) return PreflightItem::Passed{};
    return PreflightItem::Failed{std::move(otherwise)};
}

PreflightItem::Status passesWithout(Details failures) {
    return passesIf(failures.empty(), failures);
}

bool isFilled(const std::optional<std::string>& text) {
    return text && !text->empty();
}

class Checklist {
 public:
    Checklist(const Project& ofProject, const StorePlatform& ofPlatform, const PushReview& ofReview,
              const std::optional<ASCBuild>& attached)
        : project(ofProject),
          platform(ofPlatform),
          review(ofReview),
          build(attached),
          version(valueIn(review.remote.ids.versions, platform)),
          listing(project[platform]) {}

    Outcome versionEditable() const {
        return passesIf(version && AppStoreState::editable.contains(version->state),
                        {version ? version->state : kNothing});
    }

    Outcome buildAttached() const { return passesIf(version && version->buildID, {kNothing}); }

    Outcome buildProcessed() const {
        if (!build) return std::nullopt;
        return passesIf(build->processingState == kProcessed && !build->isExpired,
                        {build->processingState.value_or(kNothing)});
    }

    Outcome exportCompliance() const {
        if (!build) return std::nullopt;
        return passesIf(build->usesNonExemptEncryption.has_value(), {build->buildNumber});
    }

    Outcome changesPushed() const {
        Details pending;
        for (const auto* candidates : {&review.changeSet.changes, &review.changeSet.conflicts}) {
            for (const auto& change : *candidates) {
                if (concernsTheVersion(change.key)) pending.push_back(change.key.id());
            }
        }
        return passesWithout(std::move(pending));
    }

    Outcome requiredText() const {
        Details missing;
        for (const auto& locale : project.manifest.locales) {
            const auto fields = missingTexts(locale);
            if (!fields.empty()) missing.push_back(lineFor(locale, fields));
        }
        // Asked for once: App Store Connect shows the policy of the primary locale wherever there is no other.
        const auto& primary = project.manifest.primaryLocale;
        if (primary && isMissing(ListingField::privacyPolicyUrl, *primary)) {
            missing.push_back(lineFor(*primary, {rawValue(ListingField::privacyPolicyUrl)}));
        }
        return passesWithout(std::move(missing));
    }

    Outcome screenshots() const {
        const auto& primary = project.manifest.primaryLocale;
        if (!primary) return std::nullopt;
        const auto* slots = valueIn(listing.media, *primary);
        const bool hasSome = slots && std::any_of(slots->begin(), slots->end(), [this](const auto& slot) {
                                 return isOfMainDevice(slot.first) && !slot.second.empty();
                             });
        return passesIf(hasSome, {primary->rawValue});
    }

    Outcome limits() const {
        Details over;
        for (const auto& issue : ListingValidator::issues(project)) {
            const bool isHere = !issue.platform || *issue.platform == platform;
            if (!isHere || !std::holds_alternative<ListingIssue::OverLimit>(issue.kind)) continue;
            over.push_back(issue.locale.rawValue + " " + std::string(rawValue(issue.field)));
        }
        return passesWithout(std::move(over));
    }

    Outcome reviewContact() const {
        Details missing;
        for (const auto& field : kContactFields) {
            if (!isFilled(listing.review.*field.value)) missing.emplace_back(rawValue(field.attribute));
        }
        return passesWithout(std::move(missing));
    }

    Outcome demoAccount() const {
        if (!listing.review.demoAccountRequired.value_or(false)) return std::nullopt;
        return passesIf(isFilled(listing.review.demoAccountName),
                        {std::string(rawValue(ReviewAttribute::demoAccountName))});
    }

    Outcome manual() const { return PreflightItem::Manual{}; }

 private:
    using FieldNames = std::vector<std::string_view>;

    bool concernsTheVersion(const ContentKey& key) const {
        const auto of = key.platform();
        return !of || *of == platform;
    }

    bool isMissing(ListingField field, const StoreLocale& locale) const {
        return project.value(field, locale, platform).empty();
    }

    FieldNames missingTexts(const StoreLocale& locale) const {
        FieldNames missing;
        const auto look = [&](const auto& fields) {
            for (const auto field : fields) {
                if (isMissing(field, locale)) missing.push_back(rawValue(field));
            }
        };
        look(kRequiredOfTheApp);
        look(kRequiredOfTheVersion);
        return missing;
    }

    static std::string lineFor(const StoreLocale& locale, const FieldNames& fields) {
        return fmt::format("{}: {}", locale.rawValue, fmt::join(fields, ", "));
    }

    bool isOfMainDevice(const PlacementSlot& slot) const {
        if (slot.type != FastlaneDeliverExporter::screenshotType) return false;
        return platform == StorePlatform::macOS ? slot.group == kMacScreenshots
                                                : slot.group.starts_with(kPhoneScreenshots);
    }

    const Project& project;
    const StorePlatform& platform;
    const PushReview& review;
    const std::optional<ASCBuild>& build;
    const RemoteVersion* version;  // nullptr: App Store Connect has none
    const PlatformListing& listing;
};

struct CheckRow {
    Check check;
    Outcome (Checklist::*outcome)() const;
};
constexpr CheckRow kChecks[] = {
    {Check::versionEditable, &Checklist::versionEditable},
    {Check::buildAttached, &Checklist::buildAttached},
    {Check::buildProcessed, &Checklist::buildProcessed},
    {Check::exportCompliance, &Checklist::exportCompliance},
    {Check::changesPushed, &Checklist::changesPushed},
    {Check::requiredText, &Checklist::requiredText},
    {Check::screenshots, &Checklist::screenshots},
    {Check::limits, &Checklist::limits},
    {Check::reviewContact, &Checklist::reviewContact},
    {Check::demoAccount, &Checklist::demoAccount},
    {Check::appPrivacy, &Checklist::manual},
    {Check::ageRating, &Checklist::manual},
    {Check::pricing, &Checklist::manual},
};

}  // namespace

std::vector<PreflightItem> SubmissionPreflight::check(const Project& project, const StorePlatform& platform,
                                                      const PushReview& review,
                                                      const std::optional<ASCBuild>& build) {
    const Checklist checklist(project, platform, review, build);
    std::vector<PreflightItem> items;
    for (const auto& row : kChecks) {
        if (auto status = (checklist.*row.outcome)()) items.push_back({row.check, *std::move(status)});
    }
    return items;
}

bool SubmissionPreflight::hasFailed(const std::vector<PreflightItem>& items) {
    return std::any_of(items.begin(), items.end(),
                       [](const PreflightItem& item) { return item.hasFailed(); });
}

}  // namespace kestrin
