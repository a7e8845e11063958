// One planned write, and what it settles.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "KestrinModel/Project.h"
#include "SyncEngine/Content/ContentKey.h"

namespace kestrin {

// What a slot holds at App Store Connect, one placement.
struct ExistingPlacement {
    std::string placementID;
    std::string assetID;
    bool operator==(const ExistingPlacement&) const = default;
};

// The parent that holds a slot. An absent localization doesn't exist yet when the plan is made: it is created earlier
// in the same run and found there.
struct PlacementTarget {
    struct Version {
        StorePlatform platform;
        std::string versionID;
        std::optional<std::string> localizationID;
        bool operator==(const Version&) const = default;
    };
    struct Page {
        Slug page;
        std::optional<std::string> localizationID;
        bool operator==(const Page&) const = default;
    };
    struct Treatment {
        Slug experiment;
        Slug treatment;
        std::optional<std::string> localizationID;
        bool operator==(const Treatment&) const = default;
    };

    std::variant<Version, Page, Treatment> kind;
    bool operator==(const PlacementTarget&) const = default;
};

// What one slot is to hold, and what it holds now.
struct SlotPlacement {
    PlacementTarget target;
    StoreLocale locale;
    PlacementSlot slot;
    MediaItems desired;                       // in their wanted order
    std::vector<ExistingPlacement> existing;  // in their remote order
    std::optional<std::int64_t> maxCount;     // absent: no limit is known
    bool operator==(const SlotPlacement&) const = default;
};

using FieldValues = std::map<ListingField, std::string>;

struct PushStep {
    struct UpdateAppInfoLocalization {
        std::string id;
        FieldValues values;
        bool operator==(const UpdateAppInfoLocalization&) const = default;
    };
    struct CreateAppInfoLocalization {
        std::string appInfoID;
        StoreLocale locale;
        FieldValues values;
        bool operator==(const CreateAppInfoLocalization&) const = default;
    };
    struct UpdateVersionLocalization {
        std::string id;
        FieldValues values;
        bool operator==(const UpdateVersionLocalization&) const = default;
    };
    struct CreateVersionLocalization {
        std::string versionID;
        StoreLocale locale;
        FieldValues values;
        bool operator==(const CreateVersionLocalization&) const = default;
    };
    struct UpdateVersion {
        std::string id;
        std::map<VersionAttribute, std::string> values;
        bool operator==(const UpdateVersion&) const = default;
    };
    struct UpdateCategories {  // an absent category is left alone, an empty one is cleared
        std::string appInfoID;
        std::optional<std::string> primary;
        std::optional<std::string> secondary;
        bool operator==(const UpdateCategories&) const = default;
    };
    struct EnsureAsset {
        std::string path;
        std::string md5;
        PlacementSlot slot;
        bool operator==(const EnsureAsset&) const = default;
    };
    struct PlaceMedia {
        SlotPlacement placement;
        bool operator==(const PlaceMedia&) const = default;
    };
    struct UpdateReviewDetail {
        std::string id;
        std::map<ReviewAttribute, std::string> values;
        bool operator==(const UpdateReviewDetail&) const = default;
    };
    struct CreateReviewDetail {
        std::string versionID;
        std::map<ReviewAttribute, std::string> values;
        bool operator==(const CreateReviewDetail&) const = default;
    };
    struct CreateCustomPage {
        Slug page;
        std::string appID;
        std::string name;
        std::optional<std::string> deepLink;
        std::map<StoreLocale, std::string>
            localizations;  // promotional texts; "" for a locale with media alone
        bool operator==(const CreateCustomPage&) const = default;
    };
    struct UpdateCustomPage {
        Slug page;
        std::optional<std::string> pageID;
        std::optional<std::string> name;
        std::optional<bool> visible;
        bool operator==(const UpdateCustomPage&) const = default;
    };
    struct UpdateCustomPageVersion {
        std::string id;
        std::string deepLink;
        bool operator==(const UpdateCustomPageVersion&) const = default;
    };
    struct UpdateCustomPageLocalization {
        std::string id;
        std::string promotionalText;
        bool operator==(const UpdateCustomPageLocalization&) const = default;
    };
    struct CreateCustomPageLocalization {
        Slug page;
        std::string versionID;
        StoreLocale locale;
        std::string promotionalText;
        bool operator==(const CreateCustomPageLocalization&) const = default;
    };
    struct CreateExperiment {
        Slug experiment;
        std::string appID;
        std::string name;
        StorePlatform platform;
        std::int64_t trafficProportion;
        bool operator==(const CreateExperiment&) const = default;
    };
    struct UpdateExperiment {
        std::string id;
        std::optional<std::string> name;
        std::optional<std::int64_t> trafficProportion;
        bool operator==(const UpdateExperiment&) const = default;
    };
    struct CreateTreatment {
        Slug experiment;
        std::optional<std::string> experimentID;
        Slug treatment;
        std::string name;
        std::optional<std::string> appIconName;
        bool operator==(const CreateTreatment&) const = default;
    };
    struct UpdateTreatment {  // an empty icon name clears it
        std::string id;
        std::optional<std::string> name;
        std::optional<std::string> appIconName;
        bool operator==(const UpdateTreatment&) const = default;
    };
    struct CreateTreatmentLocalization {
        Slug experiment;
        Slug treatment;
        std::optional<std::string> treatmentID;
        StoreLocale locale;
        bool operator==(const CreateTreatmentLocalization&) const = default;
    };

    using Action =
        std::variant<UpdateAppInfoLocalization, CreateAppInfoLocalization, UpdateVersionLocalization,
                     CreateVersionLocalization, UpdateVersion, UpdateCategories, EnsureAsset, PlaceMedia,
                     UpdateReviewDetail, CreateReviewDetail, CreateCustomPage, UpdateCustomPage,
                     UpdateCustomPageVersion, UpdateCustomPageLocalization, CreateCustomPageLocalization,
                     CreateExperiment, UpdateExperiment, CreateTreatment, UpdateTreatment,
                     CreateTreatmentLocalization>;

    Action action;

    // What the step settles once it has succeeded; none for a step that only serves others.
    std::vector<ContentKey> keys;

    // The identity of the step across review and run.
    std::string id() const;

    // Whether it makes something new at App Store Connect.
    bool isCreate() const;

    bool operator==(const PushStep&) const = default;
};

}  // namespace kestrin
