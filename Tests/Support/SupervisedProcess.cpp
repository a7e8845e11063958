#include "Tests/Support/SupervisedProcess.h"

#include <fcntl.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <poll.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <map>
#include <system_error>

#include "KestrinCore/Files.h"

namespace kestrin {
namespace {

using files::Descriptor;

[[noreturn]] void fail(const char* what) {
    throw std::system_error(errno, std::generic_category(), what);
}

// All calls that change files or folders; what one architecture doesn't have, its C library doesn't use.
const std::map<int, const char*> kChanges = {
#ifdef SYS_mkdir
    {SYS_mkdir, "mkdir"},           {SYS_rmdir, "rmdir"},        {SYS_unlink, "unlink"},
    {SYS_rename, "rename"},         {SYS_link, "link"},          {SYS_symlink, "symlink"},
    {SYS_mknod, "mknod"},           {SYS_chmod, "chmod"},        {SYS_chown, "chown"},
    {SYS_lchown, "chown"},          {SYS_creat, "open"},         {SYS_utimes, "utime"},
#endif
#ifdef SYS_renameat
    {SYS_renameat, "rename"},
#endif
    {SYS_mkdirat, "mkdir"},         {SYS_unlinkat, "unlink"},    {SYS_renameat2, "renameat2"},
    {SYS_linkat, "link"},           {SYS_symlinkat, "symlink"},  {SYS_mknodat, "mknod"},
    {SYS_fchmod, "chmod"},          {SYS_fchmodat, "chmod"},     {SYS_fchown, "chown"},
    {SYS_fchownat, "chown"},        {SYS_utimensat, "utime"},    {SYS_truncate, "truncate"},
    {SYS_ftruncate, "truncate"},    {SYS_fallocate, "truncate"}, {SYS_write, "write"},
    {SYS_writev, "write"},          {SYS_pwrite64, "write"},     {SYS_sendfile, "write"},
    {SYS_copy_file_range, "write"}, {SYS_setxattr, "setxattr"},  {SYS_lsetxattr, "setxattr"},
    {SYS_fsetxattr, "setxattr"},    {SYS_fsync, "fsync"},        {SYS_fdatasync, "fsync"},
    {SYS_syncfs, "syncfs"},         {SYS_sync, "sync"},
};

sock_filter statement(unsigned code, std::uint32_t k) {
    return {static_cast<std::uint16_t>(code), 0, 0, k};
}

sock_filter jumpUnlessEqual(std::uint32_t value, std::uint8_t over) {
    return {BPF_JMP | BPF_JEQ | BPF_K, 0, over, value};
}

// Hands over the calls above, and the opening of files with O_CREAT.
std::vector<sock_filter> filter() {
    const auto number = statement(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr));
    const auto handOver = statement(BPF_RET | BPF_K, SECCOMP_RET_USER_NOTIF);
    const auto pass = statement(BPF_RET | BPF_K, SECCOMP_RET_ALLOW);
    const auto flagsOf = [](std::size_t argument) {
        const auto offset = offsetof(seccomp_data, args) + argument * sizeof(std::uint64_t);
        return statement(BPF_LD | BPF_W | BPF_ABS, static_cast<std::uint32_t>(offset));
    };
    std::vector<sock_filter> program = {number};
    for (const auto& [call, name] : kChanges) {
        program.push_back(jumpUnlessEqual(static_cast<std::uint32_t>(call), 1));
        program.push_back(handOver);
    }
    const auto addOpening = [&](std::uint32_t call, std::size_t flagsArgument) {
        program.push_back(jumpUnlessEqual(call, 4));
        program.push_back(flagsOf(flagsArgument));
        program.push_back({BPF_JMP | BPF_JSET | BPF_K, 0, 1, O_CREAT});
        program.push_back(handOver);
        program.push_back(pass);
    };
#ifdef SYS_open
    addOpening(SYS_open, 1);
#endif
    addOpening(SYS_openat, 2);
    program.push_back(pass);
    return program;
}

std::string nameOf(int call) {
    const auto name = kChanges.find(call);
    return name == kChanges.end() ? "open" : name->second;
}

// A message of one byte and, with it, a descriptor.
struct DescriptorMessage {
    DescriptorMessage() {
        message.msg_iov = &data;
        message.msg_iovlen = 1;
        message.msg_control = control.data();
        message.msg_controllen = control.size();
    }
    DescriptorMessage(const DescriptorMessage&) = delete;
    DescriptorMessage& operator=(const DescriptorMessage&) = delete;

    msghdr message{};

 private:
    char byte = 0;
    iovec data{&byte, 1};
    alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int))> control{};
};

void sendDescriptor(int socket, int descriptor) {
    DescriptorMessage sent;
    auto* header = CMSG_FIRSTHDR(&sent.message);
    header->cmsg_level = SOL_SOCKET;
    header->cmsg_type = SCM_RIGHTS;
    header->cmsg_len = CMSG_LEN(sizeof(int));
    std::memcpy(CMSG_DATA(header), &descriptor, sizeof descriptor);
    if (sendmsg(socket, &sent.message, 0) != 1) fail("sendmsg");
}

Descriptor receiveDescriptor(int socket) {
    DescriptorMessage received;
    if (recvmsg(socket, &received.message, MSG_CMSG_CLOEXEC) != 1) return {};
    const auto* header = CMSG_FIRSTHDR(&received.message);
    if (!header) return {};
    int descriptor = -1;
    std::memcpy(&descriptor, CMSG_DATA(header), sizeof descriptor);
    return Descriptor(descriptor);
}

Descriptor installFilter() {
    auto instructions = filter();
    sock_fprog program{static_cast<unsigned short>(instructions.size()), instructions.data()};
    if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0) fail("prctl");
    const auto listener =
        syscall(SYS_seccomp, SECCOMP_SET_MODE_FILTER, SECCOMP_FILTER_FLAG_NEW_LISTENER, &program);
    if (listener < 0) fail("seccomp");
    return Descriptor(static_cast<int>(listener));
}

std::string sentenceOf(const std::function<void()>& code) {
    try {
        code();
        return {};
    } catch (const std::exception& error) {
        return error.what();
    }
}

// A process with a socket to this one. The child's side doesn't return.
class Child {
 public:
    explicit Child(const std::function<void(int socket)>& code) {
        int ends[2];
        if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) fail("socketpair");
        socket_ = Descriptor(ends[0]);
        Descriptor theirs(ends[1]);
        process_ = fork();
        if (process_ < 0) fail("fork");
        if (process_ > 0) return;
        socket_ = Descriptor();
        code(theirs.number());
        _exit(0);  // no destructors, no reports at exit: they are the parent's
    }

    int socket() const { return socket_.number(); }
    void kill() const { ::kill(process_, SIGKILL); }

    // What the child sent until its end; whether it came to its end by itself.
    std::string rest() const {
        std::string text;
        std::array<char, 4096> buffer{};
        for (;;) {
            const auto got = recv(socket(), buffer.data(), buffer.size(), 0);
            if (got <= 0) return text;
            text.append(buffer.data(), static_cast<std::size_t>(got));
        }
    }
    bool wasKilled() const {
        int status = 0;
        if (waitpid(process_, &status, 0) != process_) fail("waitpid");
        return WIFSIGNALED(status);
    }

 private:
    Descriptor socket_;
    pid_t process_ = -1;
};

void sendAll(int socket, const std::string& text) {
    for (std::size_t sent = 0; sent < text.size();) {
        const auto some = send(socket, text.data() + sent, text.size() - sent, MSG_NOSIGNAL);
        if (some <= 0) return;
        sent += static_cast<std::size_t>(some);
    }
}

// What is written into pipes changes no file; sanitizers probe the memory that way.
bool writesElsewhere(const seccomp_notif& call) {
    const bool isWrite = call.data.nr == SYS_write || call.data.nr == SYS_writev;
    if (!isWrite) return false;
    const auto file = "/proc/" + std::to_string(call.pid) + "/fd/" + std::to_string(call.data.args[0]);
    struct stat status {};
    return stat(file.c_str(), &status) == 0 && !S_ISREG(status.st_mode);
}

// Waits for the next call that is handed over; false at the end of the process.
bool nextCall(int listener, int socket, seccomp_notif& call) {
    for (;;) {
        std::array<pollfd, 2> wait = {pollfd{listener, POLLIN, 0}, pollfd{socket, POLLIN, 0}};
        if (poll(wait.data(), wait.size(), -1) < 0 && errno != EINTR) fail("poll");
        if (wait[0].revents & POLLIN) {
            call = {};
            if (ioctl(listener, SECCOMP_IOCTL_NOTIF_RECV, &call) == 0) return true;
            if (errno != ENOENT && errno != EINTR) fail("SECCOMP_IOCTL_NOTIF_RECV");
        } else if (wait[0].revents || wait[1].revents) {
            return false;
        }
    }
}

void answer(int listener, const seccomp_notif& call, const Verdict& verdict) {
    seccomp_notif_resp reply{};
    reply.id = call.id;
    if (verdict.kind == Verdict::Kind::fail) {
        reply.error = -verdict.error;
    } else {
        reply.flags = SECCOMP_USER_NOTIF_FLAG_CONTINUE;
    }
    if (ioctl(listener, SECCOMP_IOCTL_NOTIF_SEND, &reply) != 0) fail("SECCOMP_IOCTL_NOTIF_SEND");
}

}  // namespace

SupervisedOutcome supervise(const std::function<void()>& code,
                            const std::function<Verdict(std::size_t, const std::string&)>& judge) {
    const Child child([&](int socket) {
        auto listener = installFilter();
        sendDescriptor(socket, listener.number());
        listener = Descriptor();
        sendAll(socket, sentenceOf(code));
    });
    const auto listener = receiveDescriptor(child.socket());
    if (!listener) throw std::system_error(ENOSYS, std::generic_category(), "seccomp user notification");

    SupervisedOutcome outcome;
    seccomp_notif call{};
    while (nextCall(listener.number(), child.socket(), call)) {
        if (writesElsewhere(call)) {
            answer(listener.number(), call, Verdict::proceed());
            continue;
        }
        const auto name = nameOf(call.data.nr);
        outcome.calls.push_back(name);
        const auto verdict = judge(outcome.calls.size() - 1, name);
        if (verdict.kind == Verdict::Kind::kill) {
            child.kill();
            break;
        }
        answer(listener.number(), call, verdict);
    }
    outcome.error = child.rest();
    outcome.wasKilled = child.wasKilled();
    return outcome;
}

SupervisedOutcome supervise(const std::function<void()>& code) {
    return supervise(code, [](std::size_t, const std::string&) { return Verdict::proceed(); });
}

std::string errorInOwnProcess(const std::function<void()>& code) {
    const Child child([&](int socket) { sendAll(socket, sentenceOf(code)); });
    auto error = child.rest();
    if (child.wasKilled()) throw std::runtime_error("the process was killed");
    return error;
}

}  // namespace kestrin
