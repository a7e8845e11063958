// What it takes to look into a build: inspect-build FILE. Prints the milliseconds of the first time, and the median of a
// hundred further ones.
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <chrono>

#include "AssetPipeline/BuildArchive/BuildArchiveInspector.h"

namespace {

double millisecondsOfOneLook(const char* file) {
    const auto start = std::chrono::steady_clock::now();
    kestrin::BuildArchiveInspector::inspect(file);
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

}  // namespace

int main(int count, char** words) {
    if (count != 2) return 1;
    try {
        const auto first = millisecondsOfOneLook(words[1]);
        std::array<double, 100> further{};
        for (auto& time : further) time = millisecondsOfOneLook(words[1]);
        std::nth_element(further.begin(), further.begin() + 50, further.end());
        fmt::print("{:.3f} {:.3f}\n", first, further[50]);
    } catch (const kestrin::Error& error) {
        fmt::print(stderr, "{}\n", error.errorDescription());
        return 1;
    }
}
