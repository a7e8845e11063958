// What it takes to look into a build: inspect-build FILE. Prints the milliseconds of the best of a hundred times.
#include <fmt/format.h>

#include <algorithm>
#include <chrono>

#include "AssetPipeline/BuildArchive/BuildArchiveInspector.h"

int main(int count, char** words) {
    if (count != 2) return 1;
    std::chrono::duration<double, std::milli> best = std::chrono::hours(1);
    try {
        for (int i = 0; i < 100; ++i) {
            const auto start = std::chrono::steady_clock::now();
            kestrin::BuildArchiveInspector::inspect(words[1]);
            best = std::min<decltype(best)>(best, std::chrono::steady_clock::now() - start);
        }
    } catch (const kestrin::Error& error) {
        fmt::print(stderr, "{}\n", error.errorDescription());
        return 1;
    }
    fmt::print("{:.3f} ms\n", best.count());
}
