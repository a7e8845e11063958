// The commands that compare a project with App Store Connect.
#pragma once

#include "KestrinCLI/CommandLine.h"
#include "KestrinCLI/Console.h"

namespace kestrin::SyncCommands {

// Brings the live listing into the project at the path, which is made at the very end if it isn't there. A pull that
// fails leaves the package as it was. Conflicts aren't a failure.
int pull(const Arguments& args, Console& console);

// What differs. Status 1 if anything does.
int diff(const Arguments& args, Console& console);

// Whether anything differs, and what. Status 1 if anything does.
int verify(const Arguments& args, Console& console);

// Sends local changes, those of `--locales` if given, and conflicts too with `--include-conflicts`; shows first what
// differs and what would be written, and asks. Reads everything back. Status 1 for a no, for conflicts with nothing
// to push, and when something reads back differently. The package is never written.
int push(const Arguments& args, Console& console);

}  // namespace kestrin::SyncCommands
