// What comparing and merging cost when every value of the large listing has changed, and whether it stays that way as
// the listing grows. Both sides are in memory: reading them is measured by Benchmarks/run-pull.
#include <benchmark/benchmark.h>

#include <map>
#include <optional>
#include <stdexcept>
#include <string>

#include "Benchmarks/LargeListing.h"
#include "Benchmarks/WhenDoubled.h"
#include "SyncEngine/Diff/DiffEngine.h"
#include "SyncEngine/Pull/PullMerger.h"

namespace kestrin {
namespace {

constexpr const char* kEditable = "PREPARE_FOR_SUBMISSION";

std::string changedValue(const ContentKey& key, const std::string& value) {
    if (key.isMedia()) return value + "\nasset:another";
    if (value == "true" || value == "false") return value == "true" ? "false" : "true";
    const auto* experiment = key.as<ContentKey::Experiment>();
    if (experiment && experiment->attribute == ExperimentAttribute::trafficProportion) return "7";
    return value + " and more";
}

// The project with another value for each that it has. The platform of a test can't be pushed, whatever it is.
Project changed(Project project) {
    for (const auto& [key, value] : ContentGraph::flatten(project))
        ContentGraph::set(changedValue(key, value), key, project);
    return project;
}

template <class Owner, class Remote>
void addLocalizations(const Owner& owner, Remote& remote) {
    for (const auto& locale : owner.locales) remote.localizations[locale] = "localization";
}

// The project as it was fetched, with everything in a state in which it can be written.
RemoteListing fetched(const Project& project) {
    RemoteListing remote;
    remote.app = project.app;
    remote.platforms = project.platforms;
    remote.pages = project.pages;
    remote.experiments = project.experiments;
    remote.ids.appInfoState = kEditable;
    for (const auto& [platform, content] : project.platforms) {
        auto& version = remote.ids.versions[platform];
        version.state = kEditable;
        for (const auto& [locale, fields] : content.locales) version.localizations[locale] = "localization";
    }
    for (const auto& [slug, page] : project.pages) {
        auto& known = remote.ids.pages[slug];
        known.versionState = kEditable;
        addLocalizations(page, known);
    }
    for (const auto& [slug, experiment] : project.experiments) {
        auto& known = remote.ids.experiments[slug];
        known.state = kEditable;
        for (const auto& [name, treatment] : experiment.treatments)
            addLocalizations(treatment, known.treatments[name]);
    }
    return remote;
}

// Two sides that agreed on the remote one, and the edited project.
struct Sides {
    explicit Sides(int times)
        : remote(fetched(LargeListing::make(times))),
          agreed(LargeListing::make(times)),
          edited(changed(agreed)),
          base(remote.values()) {}

    RemoteListing remote;
    Project agreed;
    Project edited;
    std::optional<FlatValues> base;
};

const Sides& sides(std::int64_t times) {
    static std::map<std::int64_t, Sides> made;
    return made.try_emplace(times, static_cast<int>(times)).first->second;
}

void require(bool isMeasuredWhatShouldBe) {
    if (!isMeasuredWhatShouldBe) throw std::logic_error("not every value has changed");
}

void diff(benchmark::State& state) {
    const auto& [remote, agreed, edited, base] = sides(state.range(0));
    ChangeSet set;
    for (auto _ : state) set = DiffEngine::diff(edited, remote, base);
    require(set.changes.size() + set.blocked.size() == base->size() && set.drift.empty());
    state.counters["changes"] = static_cast<double>(set.changes.size());
}
BENCHMARK(diff)->ArgName("times")->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond);

void diffDoubled(benchmark::State& state) {
    reportRatioWhenDoubled(state, [](int times) {
        const auto& [remote, agreed, edited, base] = sides(times);
        benchmark::DoNotOptimize(DiffEngine::diff(edited, remote, base));
    });
}
BENCHMARK(diffDoubled)->Iterations(10)->Unit(benchmark::kMillisecond);  // the best of ten

// Everything changed there and nothing here.
void merge(benchmark::State& state) {
    const auto& listing = sides(state.range(0));
    const auto remote = fetched(listing.edited);
    std::size_t updated = 0;
    for (auto _ : state) updated = PullMerger::merge(listing.agreed, remote, listing.base).updatedKeys.size();
    require(updated == listing.base->size());
    state.counters["updated"] = static_cast<double>(updated);
}
BENCHMARK(merge)->ArgName("times")->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kestrin
