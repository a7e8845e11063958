// Custom product pages and product page optimization tests on their way to people: they go to App Review on their
// own, apart from any version.
#pragma once

#include <optional>
#include <set>
#include <string>

#include "ASCKit/ASCClient.h"
#include "ASCKit/Resources/ReviewSubmissions.h"
#include "SyncEngine/Push/PushReview.h"

namespace kestrin {

// Takes a look at both sides that was made just before; what the project holds beyond it isn't seen.
//
// Unlike a version, a page or a test never joins a submission that holds something else, for it would send that
// along. An open one that is empty, as a call that failed on the way leaves it, is taken up again.
class ProductPageReleaser {
 public:
    static const std::set<std::string> submittableStates;
    static const std::set<std::string> startableStates;

    explicit ProductPageReleaser(ASCClient& ascClient) : client_(ascClient) {}

    // Sends the page's version to App Review, always under iOS. The submission as it is then; nullopt where the
    // service doesn't say. ProductPageReleaseError, in this order: not on the service yet, with changes or conflicts
    // of its own that aren't pushed, not in a state to be sent, beside a submission that holds something; SyncError
    // for a project that isn't connected.
    std::optional<ASCReviewSubmission> submitPage(const Slug& slug, const Project& project,
                                                  const PushReview& review);

    // The same for a test, under the platform that it has on the service. Changes of its treatments are its own.
    std::optional<ASCReviewSubmission> submitExperiment(const Slug& slug, const Project& project,
                                                        const PushReview& review);

    // Shows the treatments of an approved test to people. ProductPageReleaseError for one that isn't on the service
    // or isn't approved.
    void startExperiment(const Slug& slug, const PushReview& review);

 private:
    std::optional<ASCReviewSubmission> submit(const Project& project, const StorePlatform& platform,
                                              const ReviewSubmissionItem& item);
    std::string emptySubmission(const std::string& appID, const StorePlatform& platform);

    ASCClient& client_;
};

}  // namespace kestrin
