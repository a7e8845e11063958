// What kestrin-sandbox does from its first line to its last.
#pragma once

#include <string>
#include <vector>

namespace kestrin::sandbox {

// `words` without the name of the program. Blocks SIGINT, SIGTERM, SIGUSR1 and SIGCHLD in this thread, for they are
// waited for. Returns the exit status: 0, that of the command, 2 for words that aren't understood, 1 for a sandbox
// that couldn't start.
int runProgram(const std::vector<std::string>& words);

}  // namespace kestrin::sandbox
