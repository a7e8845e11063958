#include "SyncEngine/Release/ReleaseError.h"

#include "KestrinCore/Message.h"

namespace kestrin {

std::string ReleaseError::errorDescription() const {
    return std::visit(
        Overloaded{
            [](const NoVersion&) {
                return message::localized(
                    "releaseErrorNoVersion",
                    "App Store Connect has no version for this platform. Create one first.");
            },
            [](const BuildNotFound& error) {
                return message::localized("releaseErrorBuildNotFound",
                                          "No processed build {number} was found for this version.",
                                          {{"number", error.number}});
            },
            [](const PreflightFailed&) {
                return message::localized("releaseErrorPreflightFailed",
                                          "This version isn’t ready to submit yet. Fix the items marked in "
                                          "the checklist first.");
            },
        },
        kind);
}

}  // namespace kestrin
