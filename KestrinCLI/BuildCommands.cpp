#include "KestrinCLI/BuildCommands.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>

#include "AssetPipeline/BuildArchive/BuildArchiveInspector.h"
#include "KestrinCLI/ByteCount.h"
#include "KestrinCLI/ClientAccess.h"
#include "KestrinCLI/Failure.h"
#include "KestrinCLI/ProjectAccess.h"
#include "KestrinCLI/Waiting.h"
#include "KestrinCore/UnicodeText.h"
#include "SyncEngine/Pull/ConnectedApp.h"
#include "SyncEngine/Release/BuildUploadError.h"
#include "SyncEngine/Release/ReleaseError.h"
#include "SyncEngine/Release/Releaser.h"

namespace kestrin {
namespace {

using namespace std::chrono_literals;

// Empty counts as absent.
std::string orUnknown(const std::optional<std::string>& text) {
    return text && !text->empty() ? *text : "?";
}

const char* exportCompliance(const std::optional<bool>& usesNonExemptEncryption) {
    if (!usesNonExemptEncryption) return "export compliance unanswered";
    return *usesNonExemptEncryption ? "uses encryption" : "no encryption";
}

void noteForeignBundleID(const BuildArchiveInfo& info, const Project& project, Console& console) {
    const auto& own = project.manifest.app.bundleID;
    if (!info.bundleID || text::equal(*info.bundleID, own)) return;
    console.note(
        fmt::format("Warning: the file's bundle ID is {}, the project's is {}.", *info.bundleID, own));
}

// Nothing for a step that isn't worth a line.
std::optional<std::string> lineFor(const BuildUploadProgress& progress) {
    using P = BuildUploadProgress;
    using Line = std::optional<std::string>;
    return std::visit(Overloaded{
                          [](const P::Hashing&) -> Line { return "  checksumming…"; },
                          [](const P::Reserving&) -> Line { return "  reserving…"; },
                          [](const P::Committing&) -> Line { return "  committing…"; },
                          [](const P::Processing& p) -> Line { return "  App Store Connect: " + p.state; },
                          [](const P::Sending& p) -> Line {
                              if (p.part != p.of) return std::nullopt;
                              return fmt::format("  sent {} part(s)", p.of);
                          },
                      },
                      progress.kind);
}

// The project of the command, its platform's version, and the builds that this version could ship.
struct Candidates {
    Candidates(const Arguments& args, Console& console)
        : project(loadProject(args[2])),
          platform(platformOption(args)),
          appID(connectedAppID(project)),
          versionString(project[platform].version.versionString.value_or("")),
          client(makeClient(console)),
          builds(releaser().candidateBuilds(appID, nonEmpty(versionString), platform)) {}

    Releaser releaser() { return {client, ProjectStateStore::commandLine()}; }

    Project project;
    StorePlatform platform;
    std::string appID;
    std::string versionString;  // "" when the project has none: then builds of any version
    ASCClient client;
    std::vector<ASCBuild> builds;

 private:
    static std::optional<std::string> nonEmpty(const std::string& text) {
        return text.empty() ? std::nullopt : std::optional(text);
    }
};

const ASCBuild& usableBuild(const std::vector<ASCBuild>& builds, const std::string& number) {
    const auto isUsable = [&](const ASCBuild& build) {
        return text::equal(build.buildNumber, number) && build.processingState == "VALID" && !build.isExpired;
    };
    const auto found = std::find_if(builds.begin(), builds.end(), isUsable);
    if (found == builds.end()) throw ReleaseError(ReleaseError::BuildNotFound{number});
    return *found;
}

std::optional<bool> encryptionOption(const Arguments& args) {
    const auto answer = option("--encryption", args);
    return answer ? std::optional(*answer == "yes") : std::nullopt;
}

}  // namespace

std::string describe(const BuildArchiveInfo& info, const std::string& fileName) {
    return fmt::format("{}: {} {} ({}), {}", fileName, info.platform, orUnknown(info.shortVersion),
                       orUnknown(info.buildVersion), byteCount(info.fileSize));
}

std::string describe(const ASCBuild& build) {
    return fmt::format("{} ({})\t{}\t{}{}", orUnknown(build.versionString), build.buildNumber,
                       orUnknown(build.processingState), exportCompliance(build.usesNonExemptEncryption),
                       build.isExpired ? "\texpired" : "");
}

void printUploaded(const BuildUploadResult& result, Console& console) {
    for (const auto& warning : result.warnings) console.print("  warning: " + warning);
    console.print(fmt::format("✓ Uploaded. Build {}.", result.buildID.value_or("(not listed yet)")));
}

int BuildCommands::upload(const Arguments& args, Console& console) {
    const auto project = loadProject(args[2]);
    const auto file = fileURL(args[3]);
    const auto& appID = connectedAppID(project);
    const auto info =
        BuildArchiveInspector::inspect(file).with(option("--version", args), option("--build", args));
    noteForeignBundleID(info, project, console);
    console.print("Uploading " + describe(info, lastPathComponent(file)));

    auto client = makeClient(console);
    BuildUploader uploader(client, {.pollInterval = 15s, .timeout = 1800s}, commandSleep());
    const auto tell = [&](const BuildUploadProgress& progress) {
        if (const auto line = lineFor(progress)) console.print(*line);
    };
    try {
        printUploaded(uploader.upload(file, info, appID, tell), console);
    } catch (const BuildUploadError& error) {
        const auto* processing = std::get_if<BuildUploadError::StillProcessing>(&error.kind);
        if (!processing) throw;
        console.print(
            fmt::format("Uploaded; App Store Connect is still processing it (upload {}). It will appear in "
                        "`kestrin build list` when ready.",
                        processing->uploadID));
    }
    return 0;
}

int BuildCommands::list(const Arguments& args, Console& console) {
    const Candidates candidates(args, console);
    if (candidates.builds.empty()) {
        console.print(
            fmt::format("No builds for {} {}.", candidates.platform.rawValue, candidates.versionString));
    }
    for (const auto& build : candidates.builds) console.print(describe(build));
    return 0;
}

int BuildCommands::attach(const Arguments& args, Console& console) {
    Candidates candidates(args, console);
    const auto& number = args[3];
    const auto& build = usableBuild(candidates.builds, number);
    const auto answer = encryptionOption(args);
    if (!build.usesNonExemptEncryption && !answer) {
        fail("build " + number + " needs an export compliance answer: pass --encryption no (or yes)");
    }
    candidates.releaser().attach(build, candidates.platform, candidates.project, answer);
    console.print(fmt::format("✓ Build {} is attached to {} {}.", number, candidates.platform.rawValue,
                              candidates.versionString));
    return 0;
}

}  // namespace kestrin
