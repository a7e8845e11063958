#include "Sandbox/Program/Program.h"

#include <fmt/format.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <system_error>

#include "KestrinCore/Files.h"
#include "Sandbox/Program/Options.h"

extern char** environ;

namespace kestrin::sandbox {
namespace {

constexpr std::uintmax_t kLargestKeyFile = 1 << 20;
constexpr int kSignalExit = 128;  // what a shell adds to the number of the signal that ended a command

// A folder of its own for the private key, gone when the sandbox is.
class KeyFolder {
 public:
    KeyFolder() {
        auto name = (std::filesystem::temp_directory_path() / "kestrin-sandbox-XXXXXX").string();
        if (::mkdtemp(name.data()) == nullptr) throw std::system_error(errno, std::generic_category(), name);
        path_ = name;
    }
    ~KeyFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    KeyFolder(const KeyFolder&) = delete;
    KeyFolder& operator=(const KeyFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }

 private:
    std::filesystem::path path_;
};

Credential credentialOf(const Options& options) {
    auto credential = newCredential();
    if (options.privateKey) credential.privateKeyPEM = files::readWhole(*options.privateKey, kLargestKeyFile);
    if (!options.keyID.empty()) credential.keyID = options.keyID;
    credential.issuerID = options.issuerID.value_or(credential.issuerID);
    if (options.readsOnly) credential.role = AccessKey::Role::developer;
    return credential;
}

// As a shell reads it back.
std::string quoted(const std::string& text) {
    constexpr std::string_view kPlain = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-./:";
    if (!text.empty() && text.find_first_not_of(kPlain) == std::string::npos) return text;
    std::string result = "'";
    for (const char c : text) result += c == '\'' ? "'\\''" : std::string(1, c);
    return result + "'";
}

std::string exportLines(const std::map<std::string, std::string>& environment) {
    std::string lines;
    for (const auto& [name, value] : environment) lines += fmt::format("export {}={}\n", name, quoted(value));
    return lines;
}

std::string logLine(const LoggedRequest& entry) {
    const auto status = entry.status == 0 ? std::string("-") : std::to_string(entry.status);
    const auto fault = entry.fault.empty() ? std::string() : fmt::format(" ({})", entry.fault);
    return fmt::format("{} {}{}\n", entry.line(), status, fault);
}

// The signals that the program waits for, blocked in every thread that is started from now on.
sigset_t blockSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int number : {SIGINT, SIGTERM, SIGUSR1, SIGCHLD}) sigaddset(&signals, number);
    ::pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    return signals;
}

// A command that runs beside the sandbox, with its environment on top of ours.
class Command {
 public:
    Command(const std::vector<std::string>& words, const std::map<std::string, std::string>& environment) {
        for (const auto& [name, value] : environment) ::setenv(name.c_str(), value.c_str(), 1);
        std::vector<char*> arguments;
        for (const auto& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
        arguments.push_back(nullptr);

        // The command is to see signals as if it had been started alone; the HTTP library ignores SIGPIPE.
        sigset_t none, pipe;
        sigemptyset(&none);
        sigemptyset(&pipe);
        sigaddset(&pipe, SIGPIPE);
        posix_spawnattr_t attributes;
        ::posix_spawnattr_init(&attributes);
        ::posix_spawnattr_setsigmask(&attributes, &none);
        ::posix_spawnattr_setsigdefault(&attributes, &pipe);
        ::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
        const int error =
            ::posix_spawnp(&process_, arguments[0], nullptr, &attributes, arguments.data(), environ);
        ::posix_spawnattr_destroy(&attributes);
        if (error != 0) throw std::system_error(error, std::generic_category(), words.front());
    }

    void pass(int signal) const { ::kill(process_, signal); }

    // Its exit status once it has ended.
    std::optional<int> ended() const {
        int status = 0;
        if (::waitpid(process_, &status, WNOHANG) != process_) return std::nullopt;
        if (WIFEXITED(status)) return WEXITSTATUS(status);
        return WIFSIGNALED(status) ? std::optional(kSignalExit + WTERMSIG(status)) : std::nullopt;
    }

 private:
    pid_t process_ = 0;
};

class Program {
 public:
    explicit Program(const Options& options)
        : options_(options), sandbox_(options.settings, seedOf(options), credentialOf(options)) {
        for (const auto& fault : options.faults) sandbox_.service().addFault(fault);
        if (options.logFile) openLog(*options.logFile);
    }

    int run() {
        const auto signals = blockSignals();
        sandbox_.start(options_.port);
        const auto environment = sandbox_.environment(keys_.path());
        announce(environment);
        std::optional<Command> command;
        if (!options_.command.empty()) command.emplace(options_.command, environment);
        const int status = await(signals, command);
        sandbox_.stop();
        saveState();
        return status;
    }

 private:
    void openLog(const std::filesystem::path& path) {
        log_.open(path, std::ios::trunc);
        if (!log_) throw std::runtime_error(fmt::format("couldn't write {}", path.string()));
        sandbox_.service().setObserver(
            [this](const LoggedRequest& entry) { log_ << logLine(entry) << std::flush; });
    }

    // Standard output belongs to the command, if there is one.
    void announce(const std::map<std::string, std::string>& environment) const {
        if (options_.envFile) files::writeAtomically(*options_.envFile, exportLines(environment));
        if (!options_.command.empty()) return;
        fmt::print("App Store Connect is at {}. For the sandboxed executable:\n\n{}\n", sandbox_.url(),
                   exportLines(environment));
        std::fflush(stdout);
    }

    int await(const sigset_t& signals, const std::optional<Command>& command) {
        for (;;) {
            int signal = 0;
            if (::sigwait(&signals, &signal) != 0) continue;
            if (signal == SIGUSR1) {
                saveState();
            } else if (signal == SIGCHLD) {
                if (const auto status = command ? command->ended() : std::nullopt) return *status;
            } else if (command) {
                command->pass(signal);
            } else {
                return 0;
            }
        }
    }

    void saveState() {
        if (!options_.stateFile) return;
        const auto state = sandbox_.service().with([](State& held) { return stateJSON(held); });
        files::writeAtomically(*options_.stateFile, state.dump(2) + "\n");
        if (!options_.command.empty()) return;
        fmt::print("The state is in {}.\n", options_.stateFile->string());
        std::fflush(stdout);
    }

    const Options& options_;
    KeyFolder keys_;
    std::ofstream log_;  // outlives the service that writes to it
    Sandbox sandbox_;
};

}  // namespace

int runProgram(const std::vector<std::string>& words) {
    try {
        const auto options = parseOptions(words);
        if (options.showsHelp) {
            fmt::print("{}", usageText());
            return 0;
        }
        return Program(options).run();
    } catch (const UsageError& error) {
        fmt::print(stderr, "kestrin-sandbox: {}. See --help.\n", error.what());
        return 2;
    } catch (const std::exception& error) {
        fmt::print(stderr, "kestrin-sandbox: {}\n", error.what());
        return 1;
    }
}

}  // namespace kestrin::sandbox
