// The commands that talk to App Store Connect without a project: the shortest road through the client.
#pragma once

#include "KestrinCLI/CommandLine.h"
#include "KestrinCLI/Console.h"

namespace kestrin::APICommands {

// One app a line: its id, bundle ID and name with tabs in between.
int apps(const Arguments& args, Console& console);

// The published reference data of the asset library, as the service sends them, and an empty line.
int dumpRefData(const Arguments& args, Console& console);

// One reply to a GET of the given path and query, as the service sends it, and an empty line.
int get(const Arguments& args, Console& console);

}  // namespace kestrin::APICommands
