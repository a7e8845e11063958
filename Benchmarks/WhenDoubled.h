// How the time of an operation grows with the listing: with n log n, twice the listing takes a little more than twice
// the time, with a quadratic step four times.
#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <ctime>
#include <limits>

namespace kestrin {

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

// Calls `operation(times)` for once and twice the listing; the counter "ratio" is the time of twice over that of once.
template <class OperationOnListing>
void reportRatioWhenDoubled(benchmark::State& state, const OperationOnListing& operation) {
    BestTime once, twice;
    for (auto _ : state) {
        once.measure([&] { operation(1); });
        twice.measure([&] { operation(2); });
    }
    state.counters["ratio"] = twice.ticks() / once.ticks();
}

}  // namespace kestrin
