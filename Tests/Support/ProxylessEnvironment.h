// The process's environment without the proxies that the machine may have set, put back when the test ends.
#pragma once

#include <cstdlib>
#include <map>
#include <optional>
#include <string>

namespace kestrin {

class ProxylessEnvironment {
 public:
    ProxylessEnvironment() {
        for (const char* name :
             {"http_proxy", "https_proxy", "HTTPS_PROXY", "all_proxy", "ALL_PROXY", "no_proxy", "NO_PROXY"}) {
            const char* value = std::getenv(name);
            before_.emplace(name, value ? std::optional<std::string>(value) : std::nullopt);
            unsetenv(name);
        }
    }
    ~ProxylessEnvironment() {
        for (const auto& [name, value] : before_)
            value ? setenv(name.c_str(), value->c_str(), 1) : unsetenv(name.c_str());
    }
    ProxylessEnvironment(const ProxylessEnvironment&) = delete;
    ProxylessEnvironment& operator=(const ProxylessEnvironment&) = delete;

    // One of the names above.
    void set(const char* name, const std::string& value) { setenv(name, value.c_str(), 1); }

 private:
    std::map<std::string, std::optional<std::string>> before_;
};

}  // namespace kestrin
