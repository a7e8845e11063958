// How much memory a piece of code takes at its highest.
#pragma once

#include <malloc.h>

#include <cstddef>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <string>

namespace kestrin {

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define KESTRIN_ADDRESS_SANITIZER  // as clang tells of it
#endif
#elif defined(__SANITIZE_ADDRESS__)
#define KESTRIN_ADDRESS_SANITIZER  // as g++ does
#endif

#ifdef KESTRIN_ADDRESS_SANITIZER
// The address sanitizer surrounds every allocation with guards, and keeps up to 256 MB of what was freed and
// the shadow of it all.
inline constexpr std::size_t memoryFactor = 12, keptOfWhatWasFreed = std::size_t{256} << 20;
#else
inline constexpr std::size_t memoryFactor = 1, keptOfWhatWasFreed = 0;
#endif

// In bytes beyond what the process had before, as the kernel counts pages. Those of the program itself count as well
// when they are first touched, some MiB of them, so a bound of less fails with the machine. Code that throws is an
// error of the test.
inline std::size_t peakMemoryOf(const std::function<void()>& code) {
    const auto kibibytes = [](const std::string& field) {
        std::ifstream status("/proc/self/status");
        for (std::string line; std::getline(status, line);) {
            if (line.starts_with(field + ":")) return std::stoull(line.substr(field.size() + 1));
        }
        throw std::runtime_error("the kernel doesn't tell " + field);
    };
    malloc_trim(0);
    std::ofstream("/proc/self/clear_refs") << "5" << std::flush;  // the highest count begins anew
    const auto before = kibibytes("VmRSS");
    code();
    const auto highest = kibibytes("VmHWM");
    return highest > before ? static_cast<std::size_t>(highest - before) * 1024 : 0;
}

}  // namespace kestrin
