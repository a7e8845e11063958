// What flattening a project to keys and sorting keys costs per key, and whether it stays that way as a listing grows.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <map>
#include <random>
#include <vector>

#include "Benchmarks/LargeListing.h"
#include "Benchmarks/WhenDoubled.h"
#include "SyncEngine/Content/ContentGraph.h"

namespace kestrin {
namespace {

using Keys = std::vector<ContentKey>;

const Project& listing(std::int64_t times) {
    static std::map<std::int64_t, Project> made;
    const auto found = made.find(times);
    if (found != made.end()) return found->second;
    return made.emplace(times, LargeListing::make(static_cast<int>(times))).first->second;
}

// In no order.
Keys shuffledKeys(std::int64_t times) {
    Keys keys;
    for (const auto& [key, value] : ContentGraph::flatten(listing(times))) keys.push_back(key);
    std::shuffle(keys.begin(), keys.end(), std::mt19937_64(1));
    return keys;
}

void reportPerKey(benchmark::State& state, std::size_t keys) {
    state.counters["keys"] = static_cast<double>(keys);
    // Printed with an SI prefix: "250n" is 250 nanoseconds per key.
    state.counters["s_per_key"] =
        benchmark::Counter(static_cast<double>(keys),
                           benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void flatten(benchmark::State& state) {
    const auto& project = listing(state.range(0));
    for (auto _ : state) benchmark::DoNotOptimize(ContentGraph::flatten(project));
    reportPerKey(state, ContentGraph::flatten(project).size());
}
BENCHMARK(flatten)->ArgName("times")->Arg(1)->Arg(2)->Arg(4)->Unit(benchmark::kMillisecond);

void sortKeys(benchmark::State& state) {
    const auto shuffled = shuffledKeys(state.range(0));
    for (auto _ : state) {
        state.PauseTiming();
        auto keys = shuffled;
        state.ResumeTiming();
        std::sort(keys.begin(), keys.end());
        benchmark::DoNotOptimize(keys);
    }
    reportPerKey(state, shuffled.size());
}
BENCHMARK(sortKeys)->ArgName("times")->Arg(1)->Arg(2)->Arg(4)->Unit(benchmark::kMillisecond);

void lookUpValues(benchmark::State& state) {
    const auto& project = listing(state.range(0));
    const auto keys = shuffledKeys(state.range(0));
    for (auto _ : state) {
        for (const auto& key : keys) benchmark::DoNotOptimize(ContentGraph::value(key, project));
    }
    reportPerKey(state, keys.size());
}
BENCHMARK(lookUpValues)->ArgName("times")->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond);

void parseIDs(benchmark::State& state) {
    const auto keys = shuffledKeys(state.range(0));
    for (auto _ : state) {
        for (const auto& key : keys) benchmark::DoNotOptimize(ContentKey::fromID(key.id()));
    }
    reportPerKey(state, keys.size());
}
BENCHMARK(parseIDs)->ArgName("times")->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond);

void sortKeysDoubled(benchmark::State& state) {
    const std::map<int, Keys> shuffled = {{1, shuffledKeys(1)}, {2, shuffledKeys(2)}};
    reportRatioWhenDoubled(state, [&](int times) {
        auto keys = shuffled.at(times);
        std::sort(keys.begin(), keys.end());
        benchmark::DoNotOptimize(keys);
    });
}
BENCHMARK(sortKeysDoubled)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kestrin
