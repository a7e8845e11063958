#include "Sandbox/Schema.h"

#include <algorithm>
#include <stdexcept>

namespace kestrin::sandbox {
namespace {

using Reach = Relationship::Reach;
using Shows = Relationship::Shows;

Relationship one(std::string name, std::string type) {
    return {std::move(name), std::move(type), Reach::one};
}
Relationship bare(std::string name, std::string type, Shows shows = Shows::included) {
    return {std::move(name), std::move(type), Reach::one, {}, shows};
}
Relationship owner(std::string name, std::string type) {
    return {std::move(name), std::move(type), Reach::one, {}, Shows::included, true};
}
Relationship many(std::string name, std::string type, std::string inverse) {
    return {std::move(name), std::move(type), Reach::many, std::move(inverse)};
}
Relationship inverseOne(std::string name, std::string type, std::string inverse) {
    return {std::move(name), std::move(type), Reach::inverseOne, std::move(inverse)};
}
Relationship absent(std::string name) {
    return {std::move(name)};
}

ResourceType apps() {
    return {"apps",
            "v1",
            {"name", "bundleId", "sku", "primaryLocale", "accessibilityUrl", "isOrEverWasMadeForKids",
             "subscriptionStatusUrl", "subscriptionStatusUrlVersion", "subscriptionStatusUrlForSandbox",
             "subscriptionStatusUrlVersionForSandbox", "contentRightsDeclaration",
             "streamlinedPurchasingEnabled"},
            {many("appInfos", "appInfos", "app"),
             many("appStoreVersions", "appStoreVersions", "app"),
             many("builds", "builds", "app"),
             many("preReleaseVersions", "preReleaseVersions", "app"),
             many("appCustomProductPages", "appCustomProductPages", "app"),
             many("appStoreVersionExperimentsV2", "appStoreVersionExperiments", "app"),
             many("reviewSubmissions", "reviewSubmissions", "app"),
             absent("assetLibrary"),
             absent("appEncryptionDeclarations"),
             absent("ciProduct"),
             absent("betaTesters"),
             absent("betaGroups"),
             absent("betaAppLocalizations"),
             absent("betaLicenseAgreement"),
             absent("betaAppReviewDetail"),
             absent("appClips"),
             absent("appPricePoints"),
             absent("endUserLicenseAgreement"),
             absent("appPriceSchedule"),
             absent("appAvailabilityV2"),
             absent("inAppPurchases"),
             absent("subscriptionGroups"),
             absent("gameCenterEnabledVersions"),
             absent("perfPowerMetrics"),
             absent("inAppPurchasesV2"),
             absent("promotedPurchases"),
             absent("appEvents"),
             absent("subscriptionGracePeriod"),
             absent("customerReviews"),
             absent("gameCenterDetail"),
             absent("alternativeDistributionKey"),
             absent("analyticsReportRequests"),
             absent("marketplaceSearchDetail")}};
}

ResourceType appInfos() {
    return {"appInfos",
            "v1",
            {"state", "appStoreState", "appStoreAgeRating", "australiaAgeRating", "brazilAgeRating",
             "brazilAgeRatingV2", "franceAgeRating", "koreaAgeRating", "kidsAgeBand"},
            {owner("app", "apps"), many("appInfoLocalizations", "appInfoLocalizations", "appInfo"),
             one("primaryCategory", "appCategories"), one("primarySubcategoryOne", "appCategories"),
             one("primarySubcategoryTwo", "appCategories"), one("secondaryCategory", "appCategories"),
             one("secondarySubcategoryOne", "appCategories"), one("secondarySubcategoryTwo", "appCategories"),
             absent("ageRatingDeclaration"), absent("territoryAgeRatings")}};
}

ResourceType appInfoLocalizations() {
    return {"appInfoLocalizations",
            "v1",
            {"locale", "name", "subtitle", "privacyPolicyUrl", "privacyChoicesUrl", "privacyPolicyText"},
            {owner("appInfo", "appInfos")}};
}

ResourceType appCategories() {
    return {"appCategories", "v1", {"platforms"}, {absent("subcategories"), absent("parent")}};
}

ResourceType appStoreVersions() {
    return {"appStoreVersions",
            "v1",
            {"platform", "versionString", "appStoreState", "appVersionState", "copyright", "reviewType",
             "releaseType", "earliestReleaseDate", "usesIdfa", "downloadable", "createdDate"},
            {owner("app", "apps"),
             many("appStoreVersionLocalizations", "appStoreVersionLocalizations", "appStoreVersion"),
             one("build", "builds"),
             inverseOne("appStoreReviewDetail", "appStoreReviewDetails", "appStoreVersion"),
             absent("ageRatingDeclaration"), absent("appStoreVersionPhasedRelease"),
             absent("gameCenterAppVersion"), absent("routingAppCoverage"),
             absent("appStoreVersionSubmission"), absent("appClipDefaultExperience"),
             absent("appStoreVersionExperiments"), absent("appStoreVersionExperimentsV2"),
             absent("customerReviews"), absent("alternativeDistributionPackage")}};
}

ResourceType appStoreVersionLocalizations() {
    return {
        "appStoreVersionLocalizations",
        "v1",
        {"locale", "description", "keywords", "marketingUrl", "promotionalText", "supportUrl", "whatsNew"},
        {owner("appStoreVersion", "appStoreVersions"),
         many("placements", "appAssetLibraryPlacements", "appStoreVersionLocalization"),
         absent("appScreenshotSets"), absent("appPreviewSets"), absent("searchKeywords")}};
}

ResourceType appStoreReviewDetails() {
    return {"appStoreReviewDetails",
            "v1",
            {"contactFirstName", "contactLastName", "contactPhone", "contactEmail", "demoAccountName",
             "demoAccountPassword", "demoAccountRequired", "notes"},
            {owner("appStoreVersion", "appStoreVersions"), absent("appStoreReviewAttachments")}};
}

ResourceType builds() {
    return {"builds",
            "v1",
            {"version", "uploadedDate", "expirationDate", "expired", "minOsVersion", "lsMinimumSystemVersion",
             "computedMinMacOsVersion", "computedMinVisionOsVersion", "iconAssetToken", "processingState",
             "buildAudienceType", "usesNonExemptEncryption"},
            {{"app", "apps", Reach::one, {}, Shows::links, true},
             one("preReleaseVersion", "preReleaseVersions"),
             inverseOne("appStoreVersion", "appStoreVersions", "build"),
             inverseOne("buildUpload", "buildUploads", "build"),
             absent("individualTesters"),
             absent("betaGroups"),
             absent("betaBuildLocalizations"),
             absent("appEncryptionDeclaration"),
             absent("betaAppReviewSubmission"),
             absent("buildBetaDetail"),
             absent("icons"),
             absent("buildBundles"),
             absent("perfPowerMetrics"),
             absent("diagnosticSignatures")}};
}

ResourceType preReleaseVersions() {
    return {
        "preReleaseVersions",
        "v1",
        {"version", "platform"},
        {{"app", "apps", Reach::one, {}, Shows::links, true}, many("builds", "builds", "preReleaseVersion")}};
}

ResourceType appCustomProductPages() {
    return {"appCustomProductPages",
            "v1",
            {"name", "url", "visible"},
            {owner("app", "apps"),
             many("appCustomProductPageVersions", "appCustomProductPageVersions", "appCustomProductPage")}};
}

ResourceType appCustomProductPageVersions() {
    return {"appCustomProductPageVersions",
            "v1",
            {"version", "state", "deepLink"},
            {owner("appCustomProductPage", "appCustomProductPages"),
             many("appCustomProductPageLocalizations", "appCustomProductPageLocalizations",
                  "appCustomProductPageVersion")}};
}

ResourceType appCustomProductPageLocalizations() {
    return {"appCustomProductPageLocalizations",
            "v1",
            {"locale", "promotionalText"},
            {owner("appCustomProductPageVersion", "appCustomProductPageVersions"),
             many("placements", "appAssetLibraryPlacements", "appCustomProductPageLocalization"),
             absent("appScreenshotSets"), absent("appPreviewSets"), absent("searchKeywords")}};
}

ResourceType appStoreVersionExperiments() {
    return {"appStoreVersionExperiments",
            "v2",
            {"name", "platform", "trafficProportion", "state", "reviewRequired", "startDate", "endDate"},
            {owner("app", "apps"), bare("latestControlVersion", "appStoreVersions"),
             many("appStoreVersionExperimentTreatments", "appStoreVersionExperimentTreatments",
                  "appStoreVersionExperimentV2"),
             absent("controlVersions"), absent("appStoreVersion")}};
}

ResourceType appStoreVersionExperimentTreatments() {
    return {"appStoreVersionExperimentTreatments",
            "v1",
            {"name", "appIcon", "appIconName", "promotedDate"},
            {owner("appStoreVersionExperimentV2", "appStoreVersionExperiments"),
             many("appStoreVersionExperimentTreatmentLocalizations",
                  "appStoreVersionExperimentTreatmentLocalizations", "appStoreVersionExperimentTreatment"),
             absent("appStoreVersionExperiment")}};
}

ResourceType appStoreVersionExperimentTreatmentLocalizations() {
    return {
        "appStoreVersionExperimentTreatmentLocalizations",
        "v1",
        {"locale"},
        {owner("appStoreVersionExperimentTreatment", "appStoreVersionExperimentTreatments"),
         many("placements", "appAssetLibraryPlacements", "appStoreVersionExperimentTreatmentLocalization"),
         absent("appScreenshotSets"), absent("appPreviewSets")}};
}

ResourceType appAssetLibraries() {
    return {"appAssetLibraries", "v1", {}, {owner("app", "apps")}};
}

ResourceType appAssetLibraryImages() {
    return {"appAssetLibraryImages",
            "v1",
            {"category", "createdDate", "lastModifiedDate", "fileName", "fileSize", "imageAsset",
             "referenceName", "specId", "state", "stateDetails", "uploadOperations"},
            {{"assetLibrary", "appAssetLibraries", Reach::one, {}, Shows::included, true},
             many("placements", "appAssetLibraryPlacements", "image")}};
}

ResourceType appAssetLibraryVideos() {
    return {"appAssetLibraryVideos",
            "v1",
            {"category", "createdDate", "lastModifiedDate", "fileName", "fileSize", "previewFrameImage",
             "previewFrameTimeCode", "referenceName", "specId", "state", "stateDetails", "uploadOperations",
             "videoAsset"},
            {{"assetLibrary", "appAssetLibraries", Reach::one, {}, Shows::included, true},
             many("placements", "appAssetLibraryPlacements", "video")}};
}

ResourceType appAssetLibraryPlacements() {
    return {"appAssetLibraryPlacements",
            "v1",
            {"mediaType", "placementType", "placementGroup", "createdDate", "lastModifiedDate", "state",
             "stateDetails"},
            {bare("image", "appAssetLibraryImages", Shows::data),
             bare("video", "appAssetLibraryVideos", Shows::data),
             owner("appStoreVersionLocalization", "appStoreVersionLocalizations"),
             owner("appCustomProductPageLocalization", "appCustomProductPageLocalizations"),
             owner("appStoreVersionExperimentTreatmentLocalization",
                   "appStoreVersionExperimentTreatmentLocalizations"),
             absent("appEventLocalization")}};
}

ResourceType appAssetLibraryRefData() {
    return {"appAssetLibraryRefData",
            "v1",
            {"features", "placementProfileGroups", "imageSpecs", "videoSpecs", "placementTypes",
             "displayClasses"},
            {}};
}

ResourceType reviewSubmissions() {
    return {"reviewSubmissions",
            "v1",
            {"platform", "submittedDate", "state"},
            {owner("app", "apps"), many("items", "reviewSubmissionItems", "reviewSubmission"),
             bare("appStoreVersionForReview", "appStoreVersions"), absent("submittedByActor"),
             absent("lastUpdatedByActor")}};
}

ResourceType reviewSubmissionItems() {
    return {"reviewSubmissionItems",
            "v1",
            {"state"},
            {owner("reviewSubmission", "reviewSubmissions"), owner("appStoreVersion", "appStoreVersions"),
             owner("appCustomProductPageVersion", "appCustomProductPageVersions"),
             owner("appStoreVersionExperimentV2", "appStoreVersionExperiments"),
             absent("appStoreVersionExperiment"), absent("appEvent")}};
}

ResourceType buildUploads() {
    return {
        "buildUploads",
        "v1",
        {"cfBundleShortVersionString", "cfBundleVersion", "createdDate", "uploadedDate", "platform", "state"},
        {owner("app", "apps"), bare("build", "builds"), bare("assetFile", "buildUploadFiles"),
         bare("assetDescriptionFile", "buildUploadFiles"), bare("assetSpiFile", "buildUploadFiles"),
         many("buildUploadFiles", "buildUploadFiles", "buildUpload")}};
}

ResourceType buildUploadFiles() {
    return {"buildUploadFiles",
            "v1",
            {"assetDeliveryState", "assetToken", "assetType", "fileName", "fileSize", "sourceFileChecksums",
             "uploadOperations", "uti"},
            {owner("buildUpload", "buildUploads")}};
}

const std::vector<ResourceType>& allTypes() {
    static const std::vector<ResourceType> types{apps(),
                                                 appInfos(),
                                                 appInfoLocalizations(),
                                                 appCategories(),
                                                 appStoreVersions(),
                                                 appStoreVersionLocalizations(),
                                                 appStoreReviewDetails(),
                                                 builds(),
                                                 preReleaseVersions(),
                                                 appCustomProductPages(),
                                                 appCustomProductPageVersions(),
                                                 appCustomProductPageLocalizations(),
                                                 appStoreVersionExperiments(),
                                                 appStoreVersionExperimentTreatments(),
                                                 appStoreVersionExperimentTreatmentLocalizations(),
                                                 appAssetLibraries(),
                                                 appAssetLibraryImages(),
                                                 appAssetLibraryVideos(),
                                                 appAssetLibraryPlacements(),
                                                 appAssetLibraryRefData(),
                                                 reviewSubmissions(),
                                                 reviewSubmissionItems(),
                                                 buildUploads(),
                                                 buildUploadFiles()};
    return types;
}

}  // namespace

const Relationship* ResourceType::relationship(std::string_view wanted) const {
    const auto found = std::find_if(relationships.begin(), relationships.end(),
                                    [&](const Relationship& each) { return each.name == wanted; });
    return found == relationships.end() ? nullptr : &*found;
}

bool ResourceType::hasField(std::string_view field) const {
    return relationship(field) != nullptr ||
           std::find(attributes.begin(), attributes.end(), field) != attributes.end();
}

const ResourceType* findResourceType(std::string_view name) {
    const auto& types = allTypes();
    const auto found =
        std::find_if(types.begin(), types.end(), [&](const ResourceType& each) { return each.name == name; });
    return found == types.end() ? nullptr : &*found;
}

const ResourceType& resourceType(std::string_view name) {
    if (const auto* type = findResourceType(name)) return *type;
    throw std::logic_error("no resource type " + std::string(name));
}

}  // namespace kestrin::sandbox
