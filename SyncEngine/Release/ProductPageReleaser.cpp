#include "SyncEngine/Release/ProductPageReleaser.h"

#include <algorithm>

#include "ASCKit/Resources/Experiments.h"
#include "KestrinCore/MapLookup.h"
#include "SyncEngine/Pull/ConnectedApp.h"
#include "SyncEngine/Release/ProductPageReleaseError.h"

namespace kestrin {
namespace {

using Failure = ProductPageReleaseError;

// What App Store Connect has under the slug.
template <class Record>
const Record& pushed(const std::map<Slug, Record>& records, const Slug& slug) {
    const auto* record = valueIn(records, slug);
    if (!record) throw Failure(Failure::NotPushed{});
    return *record;
}

template <class IsOwn>
void requireNothingUnpushed(const ChangeSet& set, IsOwn&& isOwn) {
    for (const auto* candidates : {&set.changes, &set.conflicts}) {
        const bool hasOwn = std::any_of(candidates->begin(), candidates->end(),
                                        [&](const Change& change) { return isOwn(change.key); });
        if (hasOwn) throw Failure(Failure::UnpushedChanges{});
    }
}

void requireSubmittable(const std::string& state) {
    if (!ProductPageReleaser::submittableStates.contains(state))
        throw Failure(Failure::NotSubmittable{state});
}

bool isOfExperiment(const ContentKey& key, const Slug& slug) {
    const auto path = key.experiment();
    return path && path->experiment == slug;
}

}  // namespace

const std::set<std::string> ProductPageReleaser::submittableStates = {"PREPARE_FOR_SUBMISSION",
                                                                      "READY_FOR_REVIEW", "REJECTED"};
const std::set<std::string> ProductPageReleaser::startableStates = {"APPROVED", "ACCEPTED"};

std::optional<ASCReviewSubmission> ProductPageReleaser::submitPage(const Slug& slug, const Project& project,
                                                                   const PushReview& review) {
    const auto& page = pushed(review.remote.ids.pages, slug);
    requireNothingUnpushed(review.changeSet, [&](const ContentKey& key) { return key.page() == slug; });
    requireSubmittable(page.versionState);
    return submit(project, StorePlatform::iOS,
                  {ReviewSubmissionItem::Kind::customProductPageVersion, page.versionID});
}

std::optional<ASCReviewSubmission> ProductPageReleaser::submitExperiment(const Slug& slug,
                                                                         const Project& project,
                                                                         const PushReview& review) {
    const auto& experiment = pushed(review.remote.ids.experiments, slug);
    requireNothingUnpushed(review.changeSet,
                           [&](const ContentKey& key) { return isOfExperiment(key, slug); });
    requireSubmittable(experiment.state);
    const auto* content = valueIn(review.remote.experiments, slug);
    return submit(project, content ? content->platform : StorePlatform::iOS,
                  {ReviewSubmissionItem::Kind::experiment, experiment.id});
}

void ProductPageReleaser::startExperiment(const Slug& slug, const PushReview& review) {
    const auto& experiment = pushed(review.remote.ids.experiments, slug);
    if (!startableStates.contains(experiment.state)) throw Failure(Failure::NotStartable{experiment.state});
    ASC::updateExperiment(client_, experiment.id, {.started = true});
}

std::optional<ASCReviewSubmission> ProductPageReleaser::submit(const Project& project,
                                                               const StorePlatform& platform,
                                                               const ReviewSubmissionItem& item) {
    const auto submissionID = emptySubmission(connectedAppID(project), platform);
    ASC::addToReviewSubmission(client_, submissionID, item);
    return ASC::submitReviewSubmission(client_, submissionID);
}

std::string ProductPageReleaser::emptySubmission(const std::string& appID, const StorePlatform& platform) {
    const auto open = ASC::openReviewSubmission(client_, appID, platform.rawValue);
    if (!open) return ASC::createReviewSubmission(client_, appID, platform.rawValue).id;
    if (ASC::reviewSubmissionItemCount(client_, open->id) != 0)
        throw Failure(Failure::SubmissionInProgress{});
    return open->id;
}

}  // namespace kestrin
