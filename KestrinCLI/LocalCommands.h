// The commands that need only a project package, or nothing: no credentials, no network.
#pragma once

#include <string>

#include "KestrinCLI/CommandLine.h"
#include "KestrinCLI/Console.h"
#include "KestrinModel/ListingValidator.h"

namespace kestrin {

// An issue in one line, its place first: "iOS de-DE keywords: duplicate keywords foto, bild". An issue of the app
// info has no platform.
std::string describe(const ListingIssue& issue);

namespace LocalCommands {

// Prints the issues of the project's texts. Status 1 if one of them is over its limit: what only may be over it,
// and duplicate keywords, are worth a line but don't stop anyone.
int check(const Arguments& args, Console& console);

// Prints what the project is about.
int inspect(const Arguments& args, Console& console);

// Prints the project format that this program writes.
int version(const Arguments& args, Console& console);

}  // namespace LocalCommands

}  // namespace kestrin
