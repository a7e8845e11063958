// Sending things to App Review: a submission is opened, filled, and sent.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "ASCKit/Resources/ResourceRequests.h"

namespace kestrin {

struct ASCReviewSubmission {
    std::string id;
    std::optional<std::string> state;
    std::optional<std::string> platform;

    explicit ASCReviewSubmission(const ResourceObject& resource);
    bool operator==(const ASCReviewSubmission&) const = default;
};

// What can be sent, by its id.
struct ReviewSubmissionItem {
    enum class Kind { appStoreVersion, customProductPageVersion, experiment };
    Kind kind;
    std::string id;
    bool operator==(const ReviewSubmissionItem&) const = default;
};

namespace ASC {

// GET /v1/reviewSubmissions: the newest one that isn't sent yet, if there is one.
std::optional<ASCReviewSubmission> openReviewSubmission(ASCClient& client, const std::string& appID,
                                                        const std::string& platform);

// POST /v1/reviewSubmissions
ASCReviewSubmission createReviewSubmission(ASCClient& client, const std::string& appID,
                                           const std::string& platform);

// POST /v1/reviewSubmissionItems
void addToReviewSubmission(ASCClient& client, const std::string& submissionID,
                           const ReviewSubmissionItem& item);

// GET /v1/reviewSubmissions/{id}/items, all pages: how many there are.
std::size_t reviewSubmissionItemCount(ASCClient& client, const std::string& submissionID);

// PATCH /v1/reviewSubmissions/{id}: sends it. A reply without the submission is a success too.
std::optional<ASCReviewSubmission> submitReviewSubmission(ASCClient& client, const std::string& submissionID);

}  // namespace ASC
}  // namespace kestrin
