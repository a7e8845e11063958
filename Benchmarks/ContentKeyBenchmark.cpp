// What flattening a project to keys and sorting keys costs per key, and whether it stays that way as a listing grows:
// with n log n, twice the listing takes a little more than twice the time, with a quadratic step four times.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <ctime>
#include <limits>
#include <map>
#include <random>
#include <vector>

#include "Benchmarks/LargeListing.h"
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

// Of the processor, the best of all runs, so that what else the machine does doesn't count. A run that isn't measured
// goes first: it leaves the heap and the caches as this very operation leaves them.
class BestTime {
 public:
    template <class Operation>
    void measure(const Operation& operation) {
        operation();
        const auto start = std::clock();
        operation();
        ticks_ = std::min(ticks_, std::clock() - start);
    }
    double ticks() const { return static_cast<double>(ticks_); }

 private:
    std::clock_t ticks_ = std::numeric_limits<std::clock_t>::max();
};

// The time of twice the listing over the time of the listing.
template <class OperationOnListing>
void reportRatioWhenDoubled(benchmark::State& state, const OperationOnListing& operation) {
    BestTime once, twice;
    for (auto _ : state) {
        once.measure([&] { operation(1); });
        twice.measure([&] { operation(2); });
    }
    state.counters["ratio"] = twice.ticks() / once.ticks();
}

void flattenDoubled(benchmark::State& state) {
    const std::map<int, Project> projects = {{1, listing(1)}, {2, listing(2)}};
    reportRatioWhenDoubled(
        state, [&](int times) { benchmark::DoNotOptimize(ContentGraph::flatten(projects.at(times))); });
}
BENCHMARK(flattenDoubled)->Unit(benchmark::kMillisecond);

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
