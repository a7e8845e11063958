// What belongs to the whole process, changed for the length of a test.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>

namespace kestrin {

class EnvironmentVariable {
 public:
    // nullptr: the variable is missing.
    EnvironmentVariable(const char* name, const char* value) : name_(name) {
        if (const char* before = std::getenv(name)) before_ = before;
        set(value);
    }
    ~EnvironmentVariable() { set(before_ ? before_->c_str() : nullptr); }
    EnvironmentVariable(const EnvironmentVariable&) = delete;
    EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;

 private:
    void set(const char* value) const { value == nullptr ? unsetenv(name_) : setenv(name_, value, 1); }

    const char* name_;
    std::optional<std::string> before_;
};

class CurrentFolder {
 public:
    explicit CurrentFolder(const std::filesystem::path& folder) : before_(std::filesystem::current_path()) {
        std::filesystem::current_path(folder);
    }
    ~CurrentFolder() {
        std::error_code ignored;
        std::filesystem::current_path(before_, ignored);
    }
    CurrentFolder(const CurrentFolder&) = delete;
    CurrentFolder& operator=(const CurrentFolder&) = delete;

 private:
    std::filesystem::path before_;
};

}  // namespace kestrin
