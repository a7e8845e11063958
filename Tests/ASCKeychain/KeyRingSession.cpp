#include "Tests/ASCKeychain/KeyRingSession.h"

// clang-format off: the second header needs the first
#define SECRET_API_SUBJECT_TO_CHANGE
#include <libsecret/secret.h>
// clang-format on

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <stdexcept>
#include <system_error>
#include <thread>
#include <utility>

namespace kestrin {
namespace {

// A bus for one user on which everything is allowed and nothing is started by itself.
constexpr const char* kBusConfiguration =
    R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:tmpdir=/tmp</listen>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow send_destination="*"/>
    <allow receive_sender="*"/>
    <allow own="*"/>
  </policy>
</busconfig>
)";

struct Pipe {
    int ends[2];
    Pipe() {
        if (pipe2(ends, O_CLOEXEC) != 0) throw std::system_error(errno, std::generic_category(), "pipe");
    }
    ~Pipe() {
        closeEnd(0);
        closeEnd(1);
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;
    void closeEnd(int end) {
        if (ends[end] >= 0) close(std::exchange(ends[end], -1));
    }
};

std::string lineFrom(int descriptor) {
    std::string line;
    char c = 0;
    while (read(descriptor, &c, 1) == 1 && c != '\n') line += c;
    return line;
}

void check(GError* error) {
    if (!error) return;
    const std::string text = error->message;
    g_error_free(error);
    throw std::runtime_error(text);
}

SecretService* service() {
    GError* error = nullptr;
    auto* found = secret_service_get_sync(SECRET_SERVICE_OPEN_SESSION, nullptr, &error);
    check(error);
    return found;
}

GList* itemsOf(const std::string& serviceName, const std::string& account) {
    auto* attributes = g_hash_table_new(g_str_hash, g_str_equal);
    g_hash_table_insert(attributes, const_cast<char*>("service"), const_cast<char*>(serviceName.c_str()));
    g_hash_table_insert(attributes, const_cast<char*>("account"), const_cast<char*>(account.c_str()));
    GError* error = nullptr;
    auto* items =
        secret_service_search_sync(service(), nullptr, attributes, SECRET_SEARCH_ALL, nullptr, &error);
    g_hash_table_unref(attributes);
    check(error);
    if (g_list_length(items) > 1) throw std::runtime_error("more than one item");
    return items;
}

bool hasDefaultCollection() {
    auto* found = secret_service_get_sync(SECRET_SERVICE_OPEN_SESSION, nullptr, nullptr);
    if (!found) return false;
    auto* collection = secret_collection_for_alias_sync(found, SECRET_COLLECTION_DEFAULT,
                                                        SECRET_COLLECTION_NONE, nullptr, nullptr);
    g_object_unref(found);
    if (collection) g_object_unref(collection);
    return collection != nullptr;
}

}  // namespace

KeyRingSession::KeyRingSession(Serving serving) {
    std::filesystem::create_directory(folder_ / "run");
    std::filesystem::permissions(folder_ / "run", std::filesystem::perms::owner_all);
    environment_ = {{"PATH", "/usr/bin:/bin:/usr/local/bin"}, {"HOME", folder_.path()},
                    {"XDG_RUNTIME_DIR", folder_ / "run"},     {"XDG_DATA_HOME", folder_ / "data"},
                    {"XDG_CONFIG_HOME", folder_ / "config"},  {"XDG_CACHE_HOME", folder_ / "cache"}};
    environment_["DBUS_SESSION_BUS_ADDRESS"] = startBus();
    setenv("DBUS_SESSION_BUS_ADDRESS", environment_["DBUS_SESSION_BUS_ADDRESS"].c_str(), 1);
    if (serving == Serving::keyRing) startKeyRing();
}

KeyRingSession::~KeyRingSession() {
    // GLib would end this process together with its bus.
    if (auto* bus = g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr)) {
        g_dbus_connection_set_exit_on_close(bus, FALSE);
        g_object_unref(bus);
    }
    for (auto daemon = daemons_.rbegin(); daemon != daemons_.rend(); ++daemon) {
        kill(*daemon, SIGTERM);
        waitpid(*daemon, nullptr, 0);
    }
}

pid_t KeyRingSession::start(const std::vector<std::string>& command, int input, int output) {
    std::vector<std::string> settings;
    for (const auto& [name, value] : environment_) settings.push_back(name + "=" + value);
    std::vector<char*> arguments, environment;
    for (const auto& word : command) arguments.push_back(const_cast<char*>(word.c_str()));
    for (const auto& setting : settings) environment.push_back(const_cast<char*>(setting.c_str()));
    arguments.push_back(nullptr);
    environment.push_back(nullptr);

    const auto parent = getpid();
    const auto child = fork();
    if (child < 0) throw std::system_error(errno, std::generic_category(), "fork");
    if (child == 0) {
        prctl(PR_SET_PDEATHSIG, SIGTERM);
        if (getppid() != parent) _exit(126);
        const int nothing = open("/dev/null", O_RDWR | O_CLOEXEC);
        dup2(input >= 0 ? input : nothing, 0);
        dup2(output >= 0 ? output : nothing, 1);
        dup2(nothing, 2);
        execvpe(arguments[0], arguments.data(), environment.data());
        _exit(127);
    }
    daemons_.push_back(child);
    return child;
}

std::string KeyRingSession::startBus() {
    folder_.write("bus.conf", kBusConfiguration);
    Pipe address;
    start({"dbus-daemon", "--config-file=" + (folder_ / "bus.conf").string(), "--nofork", "--nopidfile",
           "--print-address=1"},
          -1, address.ends[1]);
    address.closeEnd(1);
    auto line = lineFrom(address.ends[0]);
    if (line.empty()) throw std::runtime_error("dbus-daemon doesn't start");
    return line;
}

void KeyRingSession::startKeyRing() {
    Pipe password;
    start({"gnome-keyring-daemon", "--foreground", "--unlock", "--components=secrets"}, password.ends[0], -1);
    if (write(password.ends[1], "password", 8) != 8) throw std::runtime_error("the daemon takes no password");
    password.closeEnd(1);

    // Nobody tells when the daemon has taken its name on the bus.
    const auto giveUp = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (!hasDefaultCollection()) {
        if (std::chrono::steady_clock::now() > giveUp) {
            throw std::runtime_error("gnome-keyring-daemon doesn't start");
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
}

void KeyRingSession::lock() {
    GError* error = nullptr;
    auto* collection = secret_collection_for_alias_sync(service(), SECRET_COLLECTION_DEFAULT,
                                                        SECRET_COLLECTION_NONE, nullptr, &error);
    check(error);
    auto* collections = g_list_append(nullptr, collection);
    const auto locked = secret_service_lock_sync(service(), collections, nullptr, nullptr, &error);
    g_list_free_full(collections, g_object_unref);
    check(error);
    if (locked != 1) throw std::runtime_error("the collection stays open");
}

std::optional<std::string> KeyRingSession::label(const std::string& serviceName, const std::string& account) {
    auto* items = itemsOf(serviceName, account);
    if (!items) return std::nullopt;
    auto* text = secret_item_get_label(SECRET_ITEM(items->data));
    const std::string label = text;
    g_free(text);
    g_list_free_full(items, g_object_unref);
    return label;
}

void KeyRingSession::setLabel(const std::string& serviceName, const std::string& account,
                              const std::string& label) {
    auto* items = itemsOf(serviceName, account);
    if (!items) throw std::runtime_error("no such item");
    GError* error = nullptr;
    secret_item_set_label_sync(SECRET_ITEM(items->data), label.c_str(), nullptr, &error);
    g_list_free_full(items, g_object_unref);
    check(error);
}

}  // namespace kestrin
