// The commands that bring a pushed listing to people: a new version, the checklist and App Review, custom product
// pages and tests.
#pragma once

#include <optional>
#include <string>

#include "ASCKit/Resources/AppStoreVersions.h"
#include "ASCKit/Resources/ReviewSubmissions.h"
#include "KestrinCLI/CommandLine.h"
#include "KestrinCLI/Console.h"
#include "SyncEngine/Push/PushReview.h"
#include "SyncEngine/Release/SubmissionPreflight.h"

namespace kestrin {

// An item of the checklist in one line: the mark of its status ("✓", "✗", or "?" for what a person must look at), what
// is checked, and behind it the details of a failure.
std::string describe(const PreflightItem& item);

// The project's custom product pages, then its tests with their treatments, each in the order of the slugs, with the
// states that App Store Connect names.
void printProductPages(const Project& project, const RemoteIDs& remote, Console& console);

// The version that App Store Connect has made, by the number that it gives it; by the `wanted` one where it names none.
void printCreated(const ASCAppStoreVersion& version, const StorePlatform& platform, const std::string& wanted,
                  Console& console);

// The state in which a submission is now; "submitted" where App Store Connect doesn't say.
void printSubmitted(const std::optional<ASCReviewSubmission>& submission, Console& console);

namespace ReleaseCommands {

// Adds a version to the app, once the user agrees. It isn't in the project until the next pull.
int createVersion(const Arguments& args, Console& console);

// Shows the checklist and, when nothing on it has failed and the user agrees, sends the version to App Review. With
// `--check` it ends with the checklist: status 0 when the version could be sent.
int submit(const Arguments& args, Console& console);

// Lists the custom product pages and tests of the project.
int pages(const Arguments& args, Console& console);

// Sends the named page, or the named test, to App Review once the user agrees.
int submitPage(const Arguments& args, Console& console);
int submitTest(const Arguments& args, Console& console);

// Shows the treatments of the named test to people, once the user agrees.
int startTest(const Arguments& args, Console& console);

}  // namespace ReleaseCommands
}  // namespace kestrin
