// Differences and planned writes in words.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "KestrinCLI/Console.h"
#include "SyncEngine/Diff/ChangeSet.h"
#include "SyncEngine/Push/PushStep.h"

namespace kestrin {

// A value on one line: "(empty)" for an empty one, line feeds as "⏎ ", and of more than 70 characters the first 69
// and "…".
std::string preview(std::string_view text);

// "{title} ({count}):" and three lines a change: the key, "- " what is remote, "+ " what is local. An empty list
// prints nothing.
void printChanges(std::string_view title, const std::vector<Change>& changes, Console& console);

// The four lists of a change set, empty ones left out.
void printChangeSet(const ChangeSet& set, Console& console);

// Why a change can't be pushed, to stand behind a colon.
std::string describe(const BlockReason& reason);

// One planned write: "update IOS/de-DE/whatsNew".
std::string describe(const PushStep& step);

}  // namespace kestrin
