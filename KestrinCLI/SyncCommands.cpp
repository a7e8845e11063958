#include "KestrinCLI/SyncCommands.h"

#include <fmt/format.h>

#include <set>

#include "KestrinCLI/ChangePrinting.h"
#include "KestrinCLI/ClientAccess.h"
#include "KestrinCLI/Confirmation.h"
#include "KestrinCLI/Failure.h"
#include "KestrinCLI/ProjectAccess.h"
#include "KestrinCLI/ProjectReview.h"
#include "KestrinCLI/Waiting.h"
#include "KestrinCLI/Wording.h"
#include "KestrinModel/ProjectPackageFile.h"
#include "SyncEngine/Pull/ProjectPuller.h"
#include "SyncEngine/Push/ProjectPusher.h"

namespace kestrin::SyncCommands {
namespace {

void takeRemote(PullResult& result) {
    for (const auto& conflict : result.conflicts)
        ContentGraph::set(conflict.remote, conflict.key, result.project);
}

// The state is already that after the pull. Where the package can't follow, it goes back to what it was.
void save(const Project& project, const std::filesystem::path& package, const ProjectStateStore& store,
          const ProjectStateStore::Earlier& earlier) {
    try {
        ProjectPackageFile::save(project, package);
    } catch (...) {
        store.restore(earlier, project.manifest.projectID);
        throw;
    }
}

void printPulled(const PullResult& result, const std::string& package, bool tookRemote, Console& console) {
    const auto& manifest = result.project.manifest;
    console.print(fmt::format("Pulled {} into {}:", manifest.app.ascAppID.value_or("?"), package));
    console.print(fmt::format("  {} fields updated from App Store Connect", result.updatedKeys.size()));
    console.print(
        fmt::format("  {} locales, platforms: {}", manifest.locales.size(), commaList(manifest.platforms)));
    if (result.conflicts.empty()) return;
    console.print(fmt::format("  {} conflicts ({}):", result.conflicts.size(),
                              tookRemote ? "took App Store Connect's" : "kept local"));
    for (const auto& conflict : result.conflicts) console.print("    " + conflict.key.id());
}

// The keys to be sent. A filter of locales leaves alone what has no locale.
std::set<ContentKey> selectionOf(const ChangeSet& set, const Arguments& args) {
    const auto locales = localesOption(args);
    std::set<ContentKey> selection;
    const auto select = [&](const std::vector<Change>& candidates) {
        for (const auto& change : candidates) {
            const auto locale = change.key.locale();
            if (!locales || !locale || locales->contains(*locale)) selection.insert(change.key);
        }
    };
    select(set.changes);
    if (hasFlag("--include-conflicts", args)) select(set.conflicts);
    return selection;
}

void printPlan(const std::vector<PushStep>& steps, std::size_t values, std::size_t requests,
               const std::optional<RateLimitStatus>& rateLimit, Console& console) {
    const auto left = rateLimit ? fmt::format(", {} left this hour", rateLimit->remaining) : "";
    console.print("");
    console.print(
        fmt::format("Plan: {} writes for {} values (~{} requests{}).", steps.size(), values, requests, left));
    for (const auto& step : steps) console.print("  " + describe(step));
}

void printEvent(const PushEvent& event, Console& console) {
    std::visit(
        Overloaded{
            [](const PushEvent::Started&) {},
            [&](const PushEvent::Finished& e) { console.print("  ✓ " + describe(e.step)); },
            [&](const PushEvent::Failed& e) { console.print("  ✗ " + describe(e.step) + ": " + e.message); },
        },
        event.kind);
}

int printPushed(const PushResult& result, Console& console) {
    if (result.isVerified()) {
        console.print(fmt::format("✓ Pushed and verified {} writes.", result.completed.size()));
        return 0;
    }
    console.print("Pushed, but App Store Connect reads back differently for:");
    for (const auto& [key, got, sent] : result.mismatches)
        console.print(fmt::format("  {}: sent {}, got {}", key.id(), preview(sent), preview(got)));
    return 1;
}

PushResult pushed(ProjectReview& reviewed, const std::set<ContentKey>& selection, std::size_t total,
                  Console& console) {
    ProjectPusher::Waiting waiting;
    waiting.sleep = commandSleep();
    waiting.notes = waitNotes(console);
    ProjectPusher pusher(reviewed.client, ProjectStateStore::commandLine(), std::move(waiting));
    try {
        return pusher.push(reviewed.project, reviewed.review, selection, reviewed.locate,
                           [&](const PushEvent& event) { printEvent(event, console); });
    } catch (const PushFailure& failure) {
        fail(fmt::format("stopped after {} of {} writes: {}. Run push again to send the rest.",
                         failure.completed.size(), total, failure.errorDescription()));
    }
}

}  // namespace

int pull(const Arguments& args, Console& console) {
    const auto package = fileURL(args[1]);
    auto project = loadOrCreate(package, option("--bundle-id", args));
    auto client = makeClient(console);
    const auto store = ProjectStateStore::commandLine();
    const auto earlier = store.keep(project.manifest.projectID);
    auto result = ProjectPuller(client, store).pull(std::move(project), mediaLocator(package));
    const bool tookRemote = hasFlag("--take-remote", args);
    if (tookRemote) takeRemote(result);
    const auto name = lastPathComponent(package);  // a save may replace the folder that "." means
    save(result.project, package, store, earlier);
    printPulled(result, name, tookRemote, console);
    noteRateLimit(client, console);
    return 0;
}

int diff(const Arguments& args, Console& console) {
    const auto changes = reviewProject(args[1], console).review.changeSet;
    if (changes.isInSync()) {
        console.print("In sync with App Store Connect.");
        return 0;
    }
    printChangeSet(changes, console);
    return 1;
}

int verify(const Arguments& args, Console& console) {
    const auto changes = reviewProject(args[1], console).review.changeSet;
    if (changes.isInSync()) {
        console.print("✓ App Store Connect matches the project.");
        return 0;
    }
    printChangeSet(changes, console);
    console.print("✗ App Store Connect doesn't match the project.");
    return 1;
}

int push(const Arguments& args, Console& console) {
    auto reviewed = reviewProject(args[1], console);
    const auto& review = reviewed.review;
    const auto selection = selectionOf(review.changeSet, args);
    printChangeSet(review.changeSet, console);
    const auto steps = review.steps(selection);
    if (steps.empty()) {
        console.print("Nothing to push.");
        return review.changeSet.conflicts.empty() ? 0 : 1;
    }
    printPlan(steps, selection.size(), review.estimatedRequests(selection), review.rateLimit, console);
    if (!Confirmation::isGiven(Confirmation::pushQuestion(), args, console)) {
        console.print(Confirmation::nothingPushed);
        return 1;
    }
    return printPushed(pushed(reviewed, selection, steps.size(), console), console);
}

}  // namespace kestrin::SyncCommands
