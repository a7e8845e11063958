// The enumerations of App Store Connect that requests are checked against.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kestrin::sandbox {

using Values = std::vector<std::string>;

inline const Values kPlatforms{"IOS", "MAC_OS", "TV_OS", "VISION_OS"};
inline const Values kReleaseTypes{"MANUAL", "AFTER_APPROVAL", "SCHEDULED"};
inline const Values kReviewTypes{"APP_STORE", "NOTARIZATION"};
inline const Values kAppVersionStates{"ACCEPTED",
                                      "DEVELOPER_REJECTED",
                                      "IN_REVIEW",
                                      "INVALID_BINARY",
                                      "METADATA_REJECTED",
                                      "PENDING_APPLE_RELEASE",
                                      "PENDING_DEVELOPER_RELEASE",
                                      "PREPARE_FOR_SUBMISSION",
                                      "PROCESSING_FOR_DISTRIBUTION",
                                      "READY_FOR_DISTRIBUTION",
                                      "READY_FOR_REVIEW",
                                      "REJECTED",
                                      "REPLACED_WITH_NEW_VERSION",
                                      "WAITING_FOR_EXPORT_COMPLIANCE",
                                      "WAITING_FOR_REVIEW"};
inline const Values kAppStoreStates{"ACCEPTED",
                                    "DEVELOPER_REMOVED_FROM_SALE",
                                    "DEVELOPER_REJECTED",
                                    "IN_REVIEW",
                                    "INVALID_BINARY",
                                    "METADATA_REJECTED",
                                    "PENDING_APPLE_RELEASE",
                                    "PENDING_CONTRACT",
                                    "PENDING_DEVELOPER_RELEASE",
                                    "PREPARE_FOR_SUBMISSION",
                                    "PREORDER_READY_FOR_SALE",
                                    "PROCESSING_FOR_APP_STORE",
                                    "READY_FOR_REVIEW",
                                    "READY_FOR_SALE",
                                    "REJECTED",
                                    "REMOVED_FROM_SALE",
                                    "WAITING_FOR_EXPORT_COMPLIANCE",
                                    "WAITING_FOR_REVIEW",
                                    "REPLACED_WITH_NEW_VERSION",
                                    "NOT_APPLICABLE"};
inline const Values kSubmissionStates{"READY_FOR_REVIEW",  "WAITING_FOR_REVIEW", "IN_REVIEW",
                                      "UNRESOLVED_ISSUES", "CANCELING",          "COMPLETING",
                                      "COMPLETE"};
inline const Values kProcessingStates{"PROCESSING", "FAILED", "INVALID", "VALID"};
inline const Values kPageVersionStates{"PREPARE_FOR_SUBMISSION",
                                       "READY_FOR_REVIEW",
                                       "WAITING_FOR_REVIEW",
                                       "IN_REVIEW",
                                       "ACCEPTED",
                                       "APPROVED",
                                       "REPLACED_WITH_NEW_VERSION",
                                       "REJECTED"};
inline const Values kExperimentStates{"PREPARE_FOR_SUBMISSION",
                                      "READY_FOR_REVIEW",
                                      "WAITING_FOR_REVIEW",
                                      "IN_REVIEW",
                                      "ACCEPTED",
                                      "APPROVED",
                                      "REJECTED",
                                      "COMPLETED",
                                      "STOPPED"};
inline const Values kAssetCategories{"CREATIVE_ASSETS", "APP_SCREENSHOTS_AND_PREVIEWS"};
inline const Values kAssetStates{"AWAITING_UPLOAD",
                                 "UPLOAD_COMPLETE",
                                 "FAILED",
                                 "COMPLETE",
                                 "PREPARE_FOR_SUBMISSION",
                                 "READY_FOR_REVIEW",
                                 "WAITING_FOR_REVIEW",
                                 "IN_REVIEW",
                                 "ACCEPTED",
                                 "APPROVED",
                                 "REJECTED",
                                 "ARCHIVED"};
inline const Values kPlacementStates{"ASSET_PROCESSING",
                                     "FAILED",
                                     "PARENT_PREPARE_FOR_SUBMISSION",
                                     "PARENT_READY_FOR_REVIEW",
                                     "PARENT_WAITING_FOR_REVIEW",
                                     "PARENT_IN_REVIEW",
                                     "PARENT_APPROVED"};
inline const Values kPlacementTypes{"APP_SCREENSHOT",
                                    "IMESSAGE_APP_SCREENSHOT",
                                    "APP_PREVIEW",
                                    "PRODUCT_PAGE_HEADER_ASSET",
                                    "APP_STORE_SEARCH_RESULTS_ASSET",
                                    "SEARCH_RESULTS_ADS_ASSET",
                                    "TODAY_TAB_ADS_ASSET",
                                    "EVENT_CARD_ASSET",
                                    "EVENT_DETAILS_PAGE_ASSET",
                                    "RETENTION_MESSAGE_ASSET"};
inline const Values kFeatures{"APP_STORE_VERSIONS",
                              "CUSTOM_PRODUCT_PAGES",
                              "PRODUCT_PAGE_OPTIMIZATIONS",
                              "IN_APP_EVENTS",
                              "IN_APP_PURCHASES",
                              "SUBSCRIPTIONS",
                              "RETENTION_MESSAGING",
                              "GAME_CENTER",
                              "APP_CLIPS",
                              "APPLE_ADS"};

}  // namespace kestrin::sandbox
