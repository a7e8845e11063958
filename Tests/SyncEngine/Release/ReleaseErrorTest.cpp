#include "SyncEngine/Release/ReleaseError.h"

#include <gtest/gtest.h>

#include "SyncEngine/Release/ProductPageReleaseError.h"

namespace kestrin {
namespace {

TEST(ReleaseError, SaysWhatToDo) {
    struct Row {
        ReleaseError::Kind kind;
        const char* sentence;
    };
    const Row rows[] = {
        {ReleaseError::NoVersion{StorePlatform::iOS},
         "App Store Connect has no version for this platform. Create one first."},
        {ReleaseError::BuildNotFound{"42"}, "No processed build 42 was found for this version."},
        {ReleaseError::PreflightFailed{},
         "This version isn’t ready to submit yet. Fix the items marked in the checklist first."},
    };
    for (const Row& row : rows) EXPECT_EQ(ReleaseError(row.kind).errorDescription(), row.sentence);
}

TEST(ProductPageReleaseError, SaysWhatToDo) {
    using Failure = ProductPageReleaseError;
    struct Row {
        Failure::Kind kind;
        const char* sentence;
    };
    const Row rows[] = {
        {Failure::NotSubmittable{"IN_REVIEW"}, "This can’t be sent to App Review while it’s IN_REVIEW."},
        {Failure::NotStartable{"REJECTED"}, "Only an approved test can be started. This one is REJECTED."},
        {Failure::NotPushed{}, "Push this first: App Store Connect doesn’t have it yet."},
        {Failure::UnpushedChanges{},
         "This has changes that haven’t been pushed. Push them first, so App Review sees them."},
        {Failure::SubmissionInProgress{},
         "Another submission is being put together in App Store Connect. Send or remove it there first, so "
         "it "
         "isn’t sent along with this."},
    };
    for (const Row& row : rows) EXPECT_EQ(Failure(row.kind).errorDescription(), row.sentence);
}

}  // namespace
}  // namespace kestrin
