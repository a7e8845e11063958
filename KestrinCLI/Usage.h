// What `kestrin help` shows.
#pragma once

#include <string_view>

#include "KestrinCLI/Console.h"

namespace kestrin {

// One line per command and option; ends with a line feed.
extern const std::string_view usageText;

void printUsage(Console& console);

}  // namespace kestrin
