// A session bus and a key ring of the test's own, in a folder of its own: the user's aren't touched.
//
// The key ring daemon's default collection is open and empty. Both daemons end with the object, and with the test
// process should it crash. Nothing is activated on the bus by itself, so that nobody can be prompted.
#pragma once

#include <sys/types.h>

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "Tests/Support/TemporaryFolder.h"

namespace kestrin {

class KeyRingSession {
 public:
    enum class Serving { keyRing, nothing };

    // Sets DBUS_SESSION_BUS_ADDRESS, which GLib reads once per process: there can be only one session in each.
    explicit KeyRingSession(Serving serving);
    ~KeyRingSession();
    KeyRingSession(const KeyRingSession&) = delete;
    KeyRingSession& operator=(const KeyRingSession&) = delete;

    // Closes the default collection; opening it again takes a password that nobody can be asked for.
    void lock();

    // The label of the one item with these attributes; nullopt when there is none.
    std::optional<std::string> label(const std::string& service, const std::string& account);
    void setLabel(const std::string& service, const std::string& account, const std::string& label);

 private:
    pid_t start(const std::vector<std::string>& command, int input, int output);
    std::string startBus();
    void startKeyRing();

    TemporaryFolder folder_;
    std::map<std::string, std::string> environment_;
    std::vector<pid_t> daemons_;
};

}  // namespace kestrin
