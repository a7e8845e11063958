// The commands for builds: sending one to App Store Connect, listing those that are there, and choosing the one that a
// version ships. All of them need a project that is connected to its app.
#pragma once

#include <string>

#include "ASCKit/Resources/Builds.h"
#include "AssetPipeline/BuildArchive/BuildArchiveInfo.h"
#include "KestrinCLI/CommandLine.h"
#include "KestrinCLI/Console.h"
#include "SyncEngine/Release/BuildUploader.h"

namespace kestrin {

// "Glowworm.ipa: IOS 1.4 (27), 12.3 MB"; "?" for a version that isn't known.
std::string describe(const BuildArchiveInfo& info, const std::string& fileName);

// A build in columns with a tab between them: "1.4 (27)", its processing state, the answer to the question about
// encryption, and "expired" for one that is.
std::string describe(const ASCBuild& build);

// The warnings of App Store Connect, and which build it has become, if it is listed already.
void printUploaded(const BuildUploadResult& result, Console& console);

namespace BuildCommands {

// Sends an .ipa or .pkg, tells each step of it, and waits until App Store Connect has made a build of it. That it is
// still at it after half an hour is a success, too: the file is there. `--version` and `--build` stand in for what
// the file says.
int upload(const Arguments& args, Console& console);

// Lists the newest builds of the platform that a version of the project's number could ship.
int list(const Arguments& args, Console& console);

// Makes the newest usable build of that number the one that the platform's version ships. Unless it is answered for
// the build already, `--encryption` must say whether it uses encryption that isn't exempt: only "yes" does.
int attach(const Arguments& args, Console& console);

}  // namespace BuildCommands
}  // namespace kestrin
