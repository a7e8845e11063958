// A folder of a test's own, removed with all that is in it when the test ends.
#pragma once

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <string_view>
#include <system_error>

namespace kestrin {

class TemporaryFolder {
 public:
    TemporaryFolder() : TemporaryFolder(std::filesystem::temp_directory_path()) {}
    explicit TemporaryFolder(const std::filesystem::path& parent) {
        auto name = (parent / "kestrin-test-XXXXXX").string();
        if (!mkdtemp(name.data())) throw std::system_error(errno, std::generic_category(), name);
        path_ = name;
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    // A place for properties that save hundreds of times and would wait for the disk each time: in memory, where the
    // system has such a place.
    static std::filesystem::path quickPlace() {
        const std::filesystem::path memory = "/dev/shm";
        return access(memory.c_str(), W_OK) == 0 ? memory : std::filesystem::temp_directory_path();
    }

    const std::filesystem::path& path() const { return path_; }
    std::filesystem::path operator/(const std::filesystem::path& relative) const { return path_ / relative; }

    // Writes a file, with the folders on the way to it.
    void write(const std::filesystem::path& relative, std::string_view bytes) const {
        std::filesystem::create_directories((path_ / relative).parent_path());
        std::ofstream file(path_ / relative, std::ios::binary);
        file.exceptions(std::ios::failbit | std::ios::badbit);
        file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        file.close();
    }

    std::string read(const std::filesystem::path& relative) const {
        std::ifstream file(path_ / relative, std::ios::binary);
        if (!file) throw std::system_error(errno, std::generic_category(), (path_ / relative).string());
        return {std::istreambuf_iterator<char>(file), {}};
    }

    bool has(const std::filesystem::path& relative) const {
        return std::filesystem::exists(std::filesystem::symlink_status(path_ / relative));
    }

    // The content of every regular file below the folder, by its path relative to it. Links aren't followed.
    std::map<std::string, std::string> files() const {
        std::map<std::string, std::string> result;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(path_)) {
            if (entry.is_symlink() || !entry.is_regular_file()) continue;
            const auto relative = entry.path().lexically_relative(path_);
            result.emplace(relative.string(), read(relative));
        }
        return result;
    }

 private:
    std::filesystem::path path_;
};

}  // namespace kestrin
