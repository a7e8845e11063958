// The command line of kestrin-sandbox.
#pragma once

#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "Sandbox/Sandbox.h"

namespace kestrin::sandbox {

struct Options {
    bool showsHelp = false;
    int port = 0;  // 0: any that is free
    std::string seed = "everyday";
    std::optional<std::filesystem::path> stateToLoad;  // in place of the seed
    Settings settings;
    std::vector<std::string> faults;  // as Fault::parse reads them
    std::string keyID;                // "" for the usual one
    std::optional<std::string> issuerID;
    bool readsOnly = false;  // whether the key has the role of a developer
    std::optional<std::filesystem::path> privateKey, envFile, stateFile, logFile;
    std::vector<std::string> command;  // to run while the sandbox stands; empty: until a signal
};

// What is wrong with the words, in one sentence.
struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// `words` without the name of the program. Throws UsageError.
Options parseOptions(const std::vector<std::string>& words);

// What --help prints.
std::string usageText();

// The resources to start with. Throws std::runtime_error for a file that can't be read.
Seed seedOf(const Options& options);

}  // namespace kestrin::sandbox
