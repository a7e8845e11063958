// Runs code in a process of its own and decides on each of its changes to the file system: let it be, let it fail,
// or end the process there.
//
// The kernel hands every such system call over before it happens (seccomp(2), user notification, Linux 5.5), so that
// none is overlooked, whichever function of the C library it comes from. Needs no privileges.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace kestrin {

struct Verdict {
    enum class Kind { proceed, fail, kill };
    Kind kind = Kind::proceed;
    int error = 0;  // for fail: the errno that the caller sees

    static Verdict proceed() { return {}; }
    static Verdict fail(int error) { return {Kind::fail, error}; }
    static Verdict kill() { return {Kind::kill, 0}; }
};

struct SupervisedOutcome {
    bool wasKilled = false;
    std::string error;  // of what the code threw, the sentence; "" when it ended well
    std::vector<std::string>
        calls;  // the names of the calls that change something, in order; the killed one is last
};

// Calls are counted from 0. Opening a file counts only when that could make it, as "open". Throws std::system_error
// when the kernel can't do this.
SupervisedOutcome supervise(const std::function<void()>& code,
                            const std::function<Verdict(std::size_t index, const std::string& call)>& judge);

// The same with every call let be.
SupervisedOutcome supervise(const std::function<void()>& code);

// Without a judge: whether `code`, run in a process of its own, threw, and what. For what a process can't take back,
// such as giving up its privileges.
std::string errorInOwnProcess(const std::function<void()>& code);

}  // namespace kestrin
