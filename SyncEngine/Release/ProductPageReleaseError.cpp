#include "SyncEngine/Release/ProductPageReleaseError.h"

#include "KestrinCore/Message.h"

namespace kestrin {

std::string ProductPageReleaseError::errorDescription() const {
    return std::visit(
        Overloaded{
            [](const NotSubmittable& error) {
                return message::localized("productPageReleaseErrorNotSubmittable",
                                          "This can’t be sent to App Review while it’s {state}.",
                                          {{"state", error.state}});
            },
            [](const NotStartable& error) {
                return message::localized("productPageReleaseErrorNotStartable",
                                          "Only an approved test can be started. This one is {state}.",
                                          {{"state", error.state}});
            },
            [](const NotPushed&) {
                return message::localized("productPageReleaseErrorNotPushed",
                                          "Push this first: App Store Connect doesn’t have it yet.");
            },
            [](const UnpushedChanges&) {
                return message::localized(
                    "productPageReleaseErrorUnpushedChanges",
                    "This has changes that haven’t been pushed. Push them first, so App Review sees them.");
            },
            [](const SubmissionInProgress&) {
                return message::localized(
                    "productPageReleaseErrorSubmissionInProgress",
                    "Another submission is being put together in App Store Connect. Send or remove it there "
                    "first, so it isn’t sent along with this.");
            },
        },
        kind);
}

}  // namespace kestrin
