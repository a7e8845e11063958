// The commands that convert between a project package and a fastlane deliver folder; no credentials, and no network but
// for the screenshots that an export is told to download.
#pragma once

#include "KestrinCLI/CommandLine.h"
#include "KestrinCLI/Console.h"

namespace kestrin::FastlaneCommands {

// Brings the texts of a deliver folder into a project, which `--bundle-id` lets come into being. They are always
// those of iOS. The package is written only when everything was read.
int importFastlane(const Arguments& args, Console& console);

// Writes the listing of a platform out as a deliver folder, and tells what had to stay behind. With
// `--download-screenshots` the screenshots that exist only on App Store Connect are fetched first, as far as the last
// pull or push has seen them; a download that fails ends the command before anything is written.
int exportFastlane(const Arguments& args, Console& console);

}  // namespace kestrin::FastlaneCommands
