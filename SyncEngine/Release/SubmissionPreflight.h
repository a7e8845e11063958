// The checklist of what App Review needs of a version, made from what has been read already.
//
// A pure function: no network, no clock. It reads the project as it stands and the review that was made of it just
// before.
//
//   check             is in the list                 passes when                             details of a failure
//   versionEditable   always                         the version's state can be edited       the state, or "—"
//   buildAttached     always                         the version has a build                 "—"
//   buildProcessed    with a build                   it is "VALID" and hasn't expired        its state, or "—"
//   exportCompliance  with a build                   the question has an answer, even "no"   the build number
//   changesPushed     always                         nothing is left to push                 the key of each change
//   requiredText      always                         no required text is missing             a line per locale
//   screenshots       with a primary locale          the main device has screenshots there   the primary locale
//   limits            always                         no text is over its limit               "{locale} {field}"
//   reviewContact     always                         name, phone and email are there         the missing ones
//   demoAccount       where an account is required   it has a name                           "demoAccountName"
//   appPrivacy, ageRating, pricing                   never: the API doesn't tell them, so a person must look
//
// "—" stands where there is no version, no build, or no state to name. A check that is left out hasn't passed: it
// doesn't apply.
#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "ASCKit/Resources/Builds.h"
#include "SyncEngine/Push/PushReview.h"

namespace kestrin {

struct PreflightItem {
    enum class Check {
        versionEditable,
        buildAttached,
        buildProcessed,
        exportCompliance,
        changesPushed,
        requiredText,
        screenshots,
        limits,
        reviewContact,
        demoAccount,
        appPrivacy,
        ageRating,
        pricing,
    };

    struct Failed {
        std::vector<std::string> details;
        bool operator==(const Failed&) const = default;
    };
    struct Passed {
        bool operator==(const Passed&) const = default;
    };
    struct Manual {  // the program can't know; a person must look. Holds nothing up.
        bool operator==(const Manual&) const = default;
    };
    using Status = std::variant<Failed, Passed, Manual>;

    Check check;
    Status status;

    bool hasFailed() const { return std::holds_alternative<Failed>(status); }

    bool operator==(const PreflightItem&) const = default;
};

namespace SubmissionPreflight {

// The items in the order of the cases of PreflightItem::Check. `build` is the one that the version has, if any.
//
// Changes and conflicts of another platform don't count against the version; those of the app, of custom product
// pages and of tests do, for whoever submits means the listing to be what the project says.
std::vector<PreflightItem> check(const Project& project, const StorePlatform& platform,
                                 const PushReview& review, const std::optional<ASCBuild>& build);

// Whether any item has failed.
bool hasFailed(const std::vector<PreflightItem>& items);

}  // namespace SubmissionPreflight
}  // namespace kestrin
