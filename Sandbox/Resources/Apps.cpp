#include "Sandbox/Reads.h"
#include "Sandbox/Resources/Endpoints.h"
#include "Sandbox/Resources/Values.h"

namespace kestrin::sandbox {
namespace {

QueryRules appRules() {
    QueryRules rules;
    rules.includes = {"appEncryptionDeclarations",
                      "ciProduct",
                      "betaGroups",
                      "appStoreVersions",
                      "preReleaseVersions",
                      "betaAppLocalizations",
                      "builds",
                      "betaLicenseAgreement",
                      "betaAppReviewDetail",
                      "appInfos",
                      "appClips",
                      "endUserLicenseAgreement",
                      "inAppPurchases",
                      "subscriptionGroups",
                      "gameCenterEnabledVersions",
                      "appCustomProductPages",
                      "inAppPurchasesV2",
                      "promotedPurchases",
                      "appEvents",
                      "reviewSubmissions",
                      "subscriptionGracePeriod",
                      "gameCenterDetail",
                      "appStoreVersionExperimentsV2"};
    rules.fields = {"apps",
                    "appEncryptionDeclarations",
                    "ciProducts",
                    "betaGroups",
                    "appStoreVersions",
                    "preReleaseVersions",
                    "betaAppLocalizations",
                    "builds",
                    "betaLicenseAgreements",
                    "betaAppReviewDetails",
                    "appInfos",
                    "appClips",
                    "endUserLicenseAgreements",
                    "inAppPurchases",
                    "subscriptionGroups",
                    "gameCenterEnabledVersions",
                    "appCustomProductPages",
                    "promotedPurchases",
                    "appEvents",
                    "reviewSubmissions",
                    "subscriptionGracePeriods",
                    "gameCenterDetails",
                    "appStoreVersionExperiments"};
    rules.relationshipLimits = {"appClips",
                                "appCustomProductPages",
                                "appEncryptionDeclarations",
                                "appEvents",
                                "appInfos",
                                "appStoreVersionExperimentsV2",
                                "appStoreVersions",
                                "betaAppLocalizations",
                                "betaGroups",
                                "builds",
                                "gameCenterEnabledVersions",
                                "inAppPurchases",
                                "inAppPurchasesV2",
                                "preReleaseVersions",
                                "promotedPurchases",
                                "reviewSubmissions",
                                "subscriptionGroups"};
    return rules;
}

QueryRules appListRules() {
    auto rules = appRules();
    rules.filters = {{"name"},
                     {"bundleId"},
                     {"sku"},
                     {"id"},
                     {"appStoreVersions"},
                     {"appStoreVersions.appStoreState", kAppStoreStates},
                     {"appStoreVersions.appVersionState", kAppVersionStates},
                     {"appStoreVersions.platform", kPlatforms},
                     {"reviewSubmissions.state", kSubmissionStates},
                     {"reviewSubmissions.platform", kPlatforms}};
    rules.exists = {"gameCenterEnabledVersions"};
    rules.sorts = {"name", "bundleId", "sku"};
    return rules;
}

}  // namespace

void addAppEndpoints(Router& router) {
    router.add(listEndpoint("/v1/apps", appListRules(), {.type = "apps"}));
    router.add(readEndpoint("/v1/apps/{id}", appRules(), "apps"));
}

}  // namespace kestrin::sandbox
