#include "ASCKit/Resources/ReviewSubmissions.h"

#include "ASCKit/Resources/ResourceLists.h"

namespace kestrin {

ASCReviewSubmission::ASCReviewSubmission(const ResourceObject& resource)
    : id(resource.id), state(resource.string("state")), platform(resource.string("platform")) {}

namespace ASC {
namespace {

constexpr const char* kSubmissions = "reviewSubmissions";

struct ItemRelationship {
    const char* key;
    const char* type;
};

ItemRelationship relationshipOf(ReviewSubmissionItem::Kind kind) {
    switch (kind) {
        case ReviewSubmissionItem::Kind::appStoreVersion:
            return {"appStoreVersion", "appStoreVersions"};
        case ReviewSubmissionItem::Kind::customProductPageVersion:
            return {"appCustomProductPageVersion", "appCustomProductPageVersions"};
        case ReviewSubmissionItem::Kind::experiment:
            return {"appStoreVersionExperimentV2", "appStoreVersionExperiments"};
    }
    return {};
}

std::optional<ASCReviewSubmission> submissionOf(const std::optional<ResourceObject>& resource) {
    return resource ? std::optional(ASCReviewSubmission(*resource)) : std::nullopt;
}

}  // namespace

std::optional<ASCReviewSubmission> openReviewSubmission(ASCClient& client, const std::string& appID,
                                                        const std::string& platform) {
    ASCRequest request;
    request.path = "/v1/reviewSubmissions";
    request.query = {QueryParameter::filter("app", {appID}), QueryParameter::filter("platform", {platform}),
                     QueryParameter::filter("state", {"READY_FOR_REVIEW"}), QueryParameter::limit(1)};
    return submissionOf(one(client, request));
}

ASCReviewSubmission createReviewSubmission(ASCClient& client, const std::string& appID,
                                           const std::string& platform) {
    return ASCReviewSubmission(create(client, {.type = kSubmissions,
                                               .attributes = {{"platform", platform}},
                                               .relationships = {{"app", relationship("apps", appID)}}}));
}

void addToReviewSubmission(ASCClient& client, const std::string& submissionID,
                           const ReviewSubmissionItem& item) {
    const auto [key, type] = relationshipOf(item.kind);
    create(client, {.type = "reviewSubmissionItems",
                    .relationships = {{"reviewSubmission", relationship(kSubmissions, submissionID)},
                                      {key, relationship(type, item.id)}}});
}

std::size_t reviewSubmissionItemCount(ASCClient& client, const std::string& submissionID) {
    ASCRequest request;
    request.path = "/v1/reviewSubmissions/" + submissionID + "/items";
    request.query = {QueryParameter::limit(kPageSize)};
    return client.all(request).size();
}

std::optional<ASCReviewSubmission> submitReviewSubmission(ASCClient& client,
                                                          const std::string& submissionID) {
    return submissionOf(
        update(client, {.type = kSubmissions, .id = submissionID, .attributes = {{"submitted", true}}}));
}

}  // namespace ASC
}  // namespace kestrin
