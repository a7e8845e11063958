#include "KestrinCLI/SyncCommands.h"

#include <fmt/format.h>

#include "KestrinCLI/ChangePrinting.h"
#include "KestrinCLI/ClientAccess.h"
#include "KestrinCLI/ProjectAccess.h"
#include "KestrinCLI/ProjectReview.h"
#include "KestrinCLI/Wording.h"
#include "KestrinModel/ProjectPackageFile.h"
#include "SyncEngine/Pull/ProjectPuller.h"

namespace kestrin::SyncCommands {
namespace {

void takeRemote(PullResult& result) {
    for (const auto& conflict : result.conflicts)
        ContentGraph::set(conflict.remote, conflict.key, result.project);
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

}  // namespace

int pull(const Arguments& args, Console& console) {
    const auto package = fileURL(args[1]);
    const auto project = loadOrCreate(package, option("--bundle-id", args));
    auto client = makeClient(console);
    auto result =
        ProjectPuller(client, ProjectStateStore::commandLine()).pull(project, mediaLocator(package));
    const bool tookRemote = hasFlag("--take-remote", args);
    if (tookRemote) takeRemote(result);
    ProjectPackageFile::save(result.project, package);
    printPulled(result, lastPathComponent(package), tookRemote, console);
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

}  // namespace kestrin::SyncCommands
