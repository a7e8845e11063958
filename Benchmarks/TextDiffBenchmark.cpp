// What it costs to show two texts word by word: as large as a listing's texts get, and much larger.
#include <benchmark/benchmark.h>

#include <random>
#include <string>

#include "SyncEngine/Diff/TextDiff.h"

namespace kestrin {
namespace {

using Random = std::mt19937_64;

int below(int limit, Random& random) {
    return std::uniform_int_distribution<int>(0, limit - 1)(random);
}

std::string word(Random& random) {
    std::string letters;
    for (int count = 2 + below(7, random); count > 0; --count)
        letters += static_cast<char>('a' + below(26, random));
    return letters;
}

std::string prose(std::size_t bytes, Random& random) {
    std::string text;
    while (text.size() < bytes) text += word(random) + (below(12, random) == 0 ? ". " : " ");
    text.resize(bytes);
    return text;
}

// `count` Han characters, one after another from the `first` on.
std::string han(int count, int first) {
    std::string text;
    for (int i = 0; i < count; ++i) {
        const int scalar = first + i % 8000;
        text += static_cast<char>(0xE0 | scalar >> 12);
        text += static_cast<char>(0x80 | (scalar >> 6 & 0x3F));
        text += static_cast<char>(0x80 | (scalar & 0x3F));
    }
    return text;
}

// The text with so many of its words replaced, evenly spread.
std::string withChanges(std::string text, std::size_t count, Random& random) {
    for (std::size_t i = count; i-- > 0;) {
        const auto start = text.find(' ', text.size() / count * i) + 1;
        text.replace(start, text.find(' ', start) - start, word(random));
    }
    return text;
}

// `bar` is what the time has to stay under, where there is such a thing.
void compare(benchmark::State& state, const std::string& from, const std::string& to, const char* bar = "") {
    for (auto _ : state) benchmark::DoNotOptimize(TextDiff::words(from, to));
    state.SetLabel(bar);
}

const char* barOfUnrelatedTexts(std::int64_t characters) {
    return characters == 4000 ? "at most 20 ms" : "";
}

void textDiffUnrelatedProse(benchmark::State& state) {
    Random random(1);
    const auto bytes = static_cast<std::size_t>(state.range(0));
    const auto from = prose(bytes, random);
    compare(state, from, prose(bytes, random), barOfUnrelatedTexts(state.range(0)));
}
BENCHMARK(textDiffUnrelatedProse)->ArgName("bytes")->Arg(4000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);

// The worst there is: every character is a word, and none occurs twice.
void textDiffUnrelatedHan(benchmark::State& state) {
    const auto count = static_cast<int>(state.range(0));
    compare(state, han(count, 0x4E00), han(count, 0x7000), barOfUnrelatedTexts(count));
}
BENCHMARK(textDiffUnrelatedHan)->ArgName("characters")->Arg(4000)->Arg(40000)->Unit(benchmark::kMillisecond);

void textDiffMegabyteWith100Changes(benchmark::State& state) {
    Random random(1);
    const auto from = prose(1'000'000, random);
    compare(state, from, withChanges(from, 100, random), "at most 300 ms");
}
BENCHMARK(textDiffMegabyteWith100Changes)->Unit(benchmark::kMillisecond);

void textDiffMegabyteOfHanWith100Changes(benchmark::State& state) {
    const auto from = han(333'333, 0x4E00);
    auto to = from;
    for (std::size_t i = 100; i-- > 0;) to.replace(i * 9999, 3, "新的");
    compare(state, from, to, "at most 300 ms");
}
BENCHMARK(textDiffMegabyteOfHanWith100Changes)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kestrin
