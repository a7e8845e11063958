#include "KestrinCLI/ReleaseCommands.h"

#include <fmt/format.h>

#include "KestrinCLI/ClientAccess.h"
#include "KestrinCLI/Confirmation.h"
#include "KestrinCLI/Failure.h"
#include "KestrinCLI/ProjectAccess.h"
#include "KestrinCLI/ProjectReview.h"
#include "KestrinCore/MapLookup.h"
#include "SyncEngine/Pull/ConnectedApp.h"
#include "SyncEngine/Release/ProductPageReleaser.h"
#include "SyncEngine/Release/Releaser.h"

namespace kestrin {
namespace {

const char* label(PreflightItem::Check check) {
    using Check = PreflightItem::Check;
    switch (check) {
        case Check::versionEditable:
            return "Version can be edited";
        case Check::buildAttached:
            return "A build is attached";
        case Check::buildProcessed:
            return "The build is processed";
        case Check::exportCompliance:
            return "Export compliance is answered";
        case Check::changesPushed:
            return "All changes are pushed";
        case Check::requiredText:
            return "Required text is filled in";
        case Check::screenshots:
            return "The primary locale has screenshots";
        case Check::limits:
            return "Every field is within its limit";
        case Check::reviewContact:
            return "App Review contact is complete";
        case Check::demoAccount:
            return "Demo account is named";
        case Check::appPrivacy:
            return "App Privacy (check on App Store Connect)";
        case Check::ageRating:
            return "Age rating (check on App Store Connect)";
        case Check::pricing:
            return "Pricing and availability (check on App Store Connect)";
    }
    return "";
}

std::string mark(const PreflightItem::Status& status) {
    return std::visit(Overloaded{
                          [](const PreflightItem::Passed&) { return "✓"; },
                          [](const PreflightItem::Manual&) { return "?"; },
                          [](const PreflightItem::Failed&) { return "✗"; },
                      },
                      status);
}

constexpr const char* kNotPushed = "not pushed";

void printPage(const Slug& slug, const CustomProductPage& page, const RemotePage* remote, Console& console) {
    const auto url = remote ? remote->url.value_or("") : "";
    console.print(fmt::format("page {}: {} [{}]{}{}", slug.rawValue, page.name,
                              remote ? remote->versionState : kNotPushed, url.empty() ? "" : " ", url));
}

void printTreatment(const Slug& slug, const Treatment& treatment, Console& console) {
    const auto icon = treatment.appIconName.value_or("");
    console.print(fmt::format("  treatment {}: {}{}{}", slug.rawValue, treatment.name,
                              icon.empty() ? "" : ", icon ", icon));
}

void printTest(const Slug& slug, const Experiment& test, const RemoteExperiment* remote, Console& console) {
    const auto& traffic = test.trafficProportion;
    console.print(fmt::format("test {}: {} ({}{}) [{}]", slug.rawValue, test.name, test.platform.rawValue,
                              traffic ? fmt::format(", {}% of traffic", *traffic) : "",
                              remote ? remote->state : kNotPushed));
    for (const auto& [treatmentSlug, treatment] : test.treatments) {
        printTreatment(treatmentSlug, treatment, console);
    }
}

// The page or test that the command names, by the word that it uses for it.
template <class Content>
const Content& named(const Slug& slug, const std::map<Slug, Content>& contents, const std::string& word) {
    const auto* content = valueIn(contents, slug);
    if (!content) fail("no " + word + " named " + slug.rawValue + " in the project");
    return *content;
}

// Sends the page or test that the command names to App Review.
template <class Content>
int submitNamed(const Arguments& args, Console& console, std::map<Slug, Content> Project::*contents,
                std::optional<ASCReviewSubmission> (ProductPageReleaser::*submit)(const Slug&, const Project&,
                                                                                  const PushReview&)) {
    auto reviewed = reviewProject(args[2], console);
    const Slug slug{args[3]};
    const auto& content = named(slug, reviewed.project.*contents, args[0]);
    Confirmation::require(Confirmation::submitItemQuestion(content.name), Confirmation::nothingSent, args,
                          console);
    ProductPageReleaser releaser(reviewed.client);
    printSubmitted((releaser.*submit)(slug, reviewed.project, reviewed.review), console);
    return 0;
}

}  // namespace

std::string describe(const PreflightItem& item) {
    auto line = fmt::format("  {} {}", mark(item.status), label(item.check));
    const auto* failed = std::get_if<PreflightItem::Failed>(&item.status);
    if (failed && !failed->details.empty()) line += fmt::format(": {}", fmt::join(failed->details, "; "));
    return line;
}

void printProductPages(const Project& project, const RemoteIDs& remote, Console& console) {
    if (project.pages.empty() && project.experiments.empty()) {
        console.print("No custom product pages or tests.");
        return;
    }
    for (const auto& [slug, page] : project.pages)
        printPage(slug, page, valueIn(remote.pages, slug), console);
    for (const auto& [slug, test] : project.experiments) {
        printTest(slug, test, valueIn(remote.experiments, slug), console);
    }
}

void printCreated(const ASCAppStoreVersion& version, const StorePlatform& platform, const std::string& wanted,
                  Console& console) {
    console.print(fmt::format("✓ Created {} {} ({}). Run `kestrin pull` to bring it in.", platform.rawValue,
                              version.versionString.value_or(wanted), version.state.value_or("")));
}

void printSubmitted(const std::optional<ASCReviewSubmission>& submission, Console& console) {
    const auto state = submission ? submission->state.value_or("") : "";
    console.print(fmt::format("✓ Submitted for review ({}).", state.empty() ? "submitted" : state));
}

int ReleaseCommands::createVersion(const Arguments& args, Console& console) {
    const auto project = loadProject(args[2]);
    const auto platform = platformOption(args);
    const auto& version = args[3];
    connectedAppID(project);  // nobody is asked about what can't be done
    Confirmation::require(Confirmation::createVersionQuestion(platform, version),
                          Confirmation::nothingCreated, args, console);
    auto client = makeClient(console);
    Releaser releaser(client, ProjectStateStore::commandLine());
    printCreated(releaser.createVersion(project, platform, version), platform, version, console);
    return 0;
}

int ReleaseCommands::submit(const Arguments& args, Console& console) {
    const auto project = loadProject(args[1]);
    const auto platform = platformOption(args);
    auto client = makeClient(console);
    Releaser releaser(client, ProjectStateStore::commandLine());
    const auto preflight = releaser.preflight(project, platform, mediaLocator(fileURL(args[1])));
    console.print(fmt::format("Ready to submit {} {}?", platform.rawValue,
                              project[platform].version.versionString.value_or("")));
    for (const auto& item : preflight.items) console.print(describe(item));
    if (SubmissionPreflight::hasFailed(preflight.items)) fail("not ready: fix the items marked ✗ first");
    if (hasFlag("--check", args)) return 0;
    Confirmation::require(Confirmation::submitVersionQuestion(), Confirmation::nothingSubmitted, args,
                          console);
    printSubmitted(releaser.submit(project, platform, preflight.review, preflight.items), console);
    return 0;
}

int ReleaseCommands::pages(const Arguments& args, Console& console) {
    const auto reviewed = reviewProject(args[1], console);
    printProductPages(reviewed.project, reviewed.review.remote.ids, console);
    return 0;
}

int ReleaseCommands::submitPage(const Arguments& args, Console& console) {
    return submitNamed(args, console, &Project::pages, &ProductPageReleaser::submitPage);
}

int ReleaseCommands::submitTest(const Arguments& args, Console& console) {
    return submitNamed(args, console, &Project::experiments, &ProductPageReleaser::submitExperiment);
}

int ReleaseCommands::startTest(const Arguments& args, Console& console) {
    auto reviewed = reviewProject(args[2], console);
    const Slug slug{args[3]};
    const auto& test = named(slug, reviewed.project.experiments, args[0]);
    Confirmation::require(Confirmation::startTestQuestion(test.name), Confirmation::nothingSent, args,
                          console);
    ProductPageReleaser(reviewed.client).startExperiment(slug, reviewed.review);
    console.print("✓ Started.");
    return 0;
}

}  // namespace kestrin
