#include "Tests/EndToEnd/Runner/Stage.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>
#ifdef __linux__
#include <linux/capability.h>
#include <sys/prctl.h>
#endif

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <system_error>

namespace kestrin::endtoend {
namespace {

namespace fs = std::filesystem;
using files::Descriptor;
using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds kPatience{120};
constexpr std::chrono::seconds kTimeToLeave{2};
constexpr int kLargestPiece = 1 << 21;

constexpr const char* kHandedOn[] = {"ASAN_OPTIONS",      "LSAN_OPTIONS", "UBSAN_OPTIONS",
                                     "LLVM_PROFILE_FILE", "GCOV_PREFIX",  "GCOV_PREFIX_STRIP"};

[[noreturn]] void failNow(const std::string& what) {
    throw std::system_error(errno, std::generic_category(), what);
}

sockaddr_un addressOf(const std::string& name) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (name.size() >= sizeof address.sun_path) throw std::runtime_error("too long for a socket: " + name);
    std::memcpy(address.sun_path, name.c_str(), name.size());
    return address;
}

Descriptor socketAt(const std::string& name) {
    Descriptor made(socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    const auto address = addressOf(name);
    if (!made || bind(made.number(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        failNow("socket " + name);
    }
    return made;
}

Descriptor connectedTo(const std::string& queueName, const std::string& name) {
    auto made = socketAt(name);
    const auto address = addressOf(queueName);
    if (connect(made.number(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        failNow("socket " + name);
    }
    // As far as the system allows; what it cuts off only makes the largest piece smaller.
    setsockopt(made.number(), SOL_SOCKET, SO_SNDBUF, &kLargestPiece, sizeof kLargestPiece);
    return made;
}

// A pipe that holds all that is typed, and then its end.
Descriptor inputHolding(const std::string& typed) {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) failNow("pipe");
    Descriptor reading(ends[0]);
    const Descriptor writing(ends[1]);
    fcntl(writing.number(), F_SETFL,
          O_NONBLOCK);  // rather an error than a wait for a reader that isn't there
    files::writeAll(writing, typed, "the typed lines");
    return reading;
}

void giveUpRootsPowers() {
#ifdef __linux__
    if (geteuid() != 0) return;
    for (unsigned long power = 0; prctl(PR_CAPBSET_READ, power) >= 0; ++power) {
        if (prctl(PR_CAPBSET_DROP, power) != 0) {
            std::perror("can't give up root's powers");
            _exit(127);
        }
    }
#endif
}

void makeRemovable(const fs::path& folder) {
    std::error_code ignored;
    fs::permissions(folder, fs::perms::owner_all, fs::perm_options::add, ignored);
    for (const auto& entry : fs::directory_iterator(folder, ignored)) {
        if (!entry.is_symlink(ignored) && entry.is_directory(ignored)) makeRemovable(entry.path());
    }
}

int exitStatus(int waited) {
    return WIFEXITED(waited) ? WEXITSTATUS(waited) : 128 + WTERMSIG(waited);
}

// SIGCHLD is blocked but while ppoll waits, so that the end of a child always interrupts the wait.
class ChildSignal {
 public:
    ChildSignal() {
        struct sigaction action {};
        action.sa_handler = [](int) {};
        sigaction(SIGCHLD, &action, nullptr);
        sigset_t child;
        sigemptyset(&child);
        sigaddset(&child, SIGCHLD);
        sigprocmask(SIG_BLOCK, &child, &whileWaiting_);
        sigdelset(&whileWaiting_, SIGCHLD);
    }
    ~ChildSignal() { sigprocmask(SIG_SETMASK, &whileWaiting_, nullptr); }
    ChildSignal(const ChildSignal&) = delete;
    ChildSignal& operator=(const ChildSignal&) = delete;

    void waitFor(const Descriptor& input, std::chrono::seconds atMost) const {
        pollfd ready{input.number(), POLLIN, 0};
        const timespec limit{atMost.count(), 0};
        ppoll(&ready, 1, &limit, &whileWaiting_);
    }

 private:
    sigset_t whileWaiting_{};
};

// What a command leaves running becomes our child when the command ends, and so can be seen to end too.
void adoptOrphans() {
#ifdef __linux__
    prctl(PR_SET_CHILD_SUBREAPER, 1);
#endif
}

bool isRunning(pid_t group) {
    while (waitpid(-group, nullptr, WNOHANG) > 0) continue;
    return kill(-group, 0) == 0;
}

}  // namespace

Stage::Output::Output(const fs::path& folder)
    : errorAddress_(folder / "error"), buffer_(kLargestPiece, '\0') {
    const std::string queueName = folder / "queue";
    queue_ = socketAt(queueName);
    standardOutput_ = connectedTo(queueName, folder / "output");
    standardError_ = connectedTo(queueName, errorAddress_);
}

std::vector<Piece> Stage::Output::pieces() {
    std::vector<Piece> pieces;
    for (;;) {
        sockaddr_un from{};
        socklen_t size = sizeof from;
        const auto got = recvfrom(queue_.number(), buffer_.data(), buffer_.size(), MSG_DONTWAIT,
                                  reinterpret_cast<sockaddr*>(&from), &size);
        if (got < 0) return pieces;
        const char mark = errorAddress_ == from.sun_path ? '!' : '>';
        pieces.push_back({mark, buffer_.substr(0, static_cast<std::size_t>(got))});
    }
}

Stage::Stage(const Props& props) : output_(folder_.path()) {
    adoptOrphans();
    for (const char* name : {"bin", "home", "tmp", "work"}) fs::create_directory(folder_ / name);
    for (const auto& [name, program] : props.programs) {
        fs::create_symlink(fs::absolute(program), folder_ / "bin" / name);
    }
    environment_ = {
        "PATH=" + (folder_ / "bin").string() + ":" + fs::absolute(props.tools).string() +
            ":/usr/local/bin:/usr/bin:/bin:/usr/sbin:/sbin",
        "HOME=" + (folder_ / "home").string(),
        "TMPDIR=" + (folder_ / "tmp").string(),
        "FIXTURES=" + fs::absolute(props.fixtures).string(),
        "LC_ALL=C.UTF-8",
        "TZ=UTC",
    };
    for (const char* name : kHandedOn) {
        if (const char* value = std::getenv(name)) environment_.push_back(std::string(name) + "=" + value);
    }
}

Stage::~Stage() {
    for (const auto group : groups_) kill(-group, SIGTERM);
    const auto deadline = Clock::now() + kTimeToLeave;
    for (const auto group : groups_) {
        while (isRunning(group) && Clock::now() < deadline) usleep(1000);
        kill(-group, SIGKILL);
    }
    makeRemovable(folder_.path());
}

void Stage::becomeShell(const Exchange& exchange, int input) {
    setpgid(0, 0);
    if (dup2(input, 0) < 0 || dup2(output_.standardOutput().number(), 1) < 0 ||
        dup2(output_.standardError().number(), 2) < 0 || chdir((folder_ / "work").c_str()) != 0) {
        _exit(127);
    }
    std::signal(SIGPIPE, SIG_DFL);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    umask(022);
    giveUpRootsPowers();

    const std::string script = "test ! -f ~/.profile || . ~/.profile\n" + exchange.script;
    const char* const words[] = {"sh", exchange.setsTheStage ? "-ec" : "-c", script.c_str(), nullptr};
    std::vector<char*> environment;
    for (auto& variable : environment_) environment.push_back(variable.data());
    environment.push_back(nullptr);
    execve("/bin/sh", const_cast<char* const*>(words), environment.data());
    _exit(127);
}

pid_t Stage::start(const Exchange& exchange) {
    const auto input = inputHolding(exchange.typed);
    const pid_t shell = fork();
    if (shell < 0) failNow("fork");
    if (shell == 0) becomeShell(exchange, input.number());
    setpgid(shell, shell);  // here too: whichever of the two comes first
    groups_.push_back(shell);
    return shell;
}

std::vector<std::string> Stage::play(const Exchange& exchange) {
    const ChildSignal childSignal;
    const pid_t shell = start(exchange);
    const auto deadline = Clock::now() + kPatience;
    std::vector<Piece> pieces;
    bool isLate = false;
    int waited = 0;
    for (bool hasEnded = false; !hasEnded;) {
        hasEnded = waitpid(shell, &waited, WNOHANG) == shell;
        for (auto& piece : output_.pieces()) pieces.push_back(std::move(piece));
        if (hasEnded) break;
        childSignal.waitFor(output_.queue(), kPatience);
        if (!isLate && Clock::now() > deadline) {
            isLate = true;
            kill(-shell, SIGKILL);
        }
    }
    if (!isRunning(shell)) std::erase(groups_, shell);
    auto shown = shownLines(pieces, exitStatus(waited));
    if (isLate) shown.push_back("killed after " + std::to_string(kPatience.count()) + " seconds");
    return shown;
}

}  // namespace kestrin::endtoend
