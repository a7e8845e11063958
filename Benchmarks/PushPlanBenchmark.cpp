// What the plan of a push costs in which every value of the large listing has changed, per value, and whether it stays
// that way as the listing grows.
#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include <vector>

#include "Benchmarks/LargeListing.h"
#include "SyncEngine/Content/ContentGraph.h"
#include "SyncEngine/Push/PushPlanner.h"

namespace kestrin {
namespace {

// App Store Connect has every parent of the project, and nothing of what is in them.
RemoteListing remoteOf(const Project& project) {
    RemoteListing remote;
    remote.appID = "7";
    remote.ids.appInfoID = "info";
    for (const auto& [platform, content] : project.platforms) {
        auto& version = remote.ids.versions[platform];
        version.id = platform.rawValue;
        for (const auto& [locale, fields] : content.locales) version.localizations[locale] = "localization";
    }
    for (const auto& [slug, page] : project.pages) {
        auto& known = remote.ids.pages[slug];
        known.id = slug.rawValue;
        for (const auto& locale : page.locales) known.localizations[locale] = "localization";
    }
    for (const auto& [slug, experiment] : project.experiments) {
        auto& known = remote.ids.experiments[slug];
        known.id = slug.rawValue;
        for (const auto& [name, treatment] : experiment.treatments) known.treatments[name].id = name.rawValue;
    }
    return remote;
}

void plan(benchmark::State& state) {
    const auto project = LargeListing::make(static_cast<int>(state.range(0)));
    const auto remote = remoteOf(project);
    std::vector<Change> changes;
    for (const auto& [key, value] : ContentGraph::flatten(project)) changes.push_back({key, "", value});

    std::size_t steps = 0;
    for (auto _ : state) {
        const auto planned = PushPlanner::plan(changes, remote, {}, std::nullopt);
        steps = planned.size();
        benchmark::DoNotOptimize(planned);
    }
    state.counters["values"] = static_cast<double>(changes.size());
    state.counters["steps"] = static_cast<double>(steps);
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    state.counters["peak_MiB"] = static_cast<double>(usage.ru_maxrss) / 1024;
}
BENCHMARK(plan)->ArgName("times")->Arg(1)->Arg(2)->Arg(4)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kestrin
