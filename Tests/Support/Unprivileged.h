// As long as it lives the process may do no more than an ordinary user: what a file's permissions forbid is forbidden
// to root, too, who runs the tests in a container.
#pragma once

#include <unistd.h>

#include <cerrno>
#include <exception>
#include <system_error>

namespace kestrin {

class Unprivileged {
 public:
    Unprivileged() {
        constexpr uid_t kNobody = 65534;
        if (geteuid() == 0 && seteuid(kNobody) != 0) fail();
    }
    ~Unprivileged() {
        if (getuid() == 0 && seteuid(0) != 0) std::terminate();
    }
    Unprivileged(const Unprivileged&) = delete;
    Unprivileged& operator=(const Unprivileged&) = delete;

 private:
    [[noreturn]] static void fail() { throw std::system_error(errno, std::generic_category(), "seteuid"); }
};

}  // namespace kestrin
