// How fast replies become typed records, beside the time in which the JSON library alone parses the same bytes.
#include <benchmark/benchmark.h>

#include <nlohmann/json.hpp>
#include <string>

#include "ASCKit/ASCClient.h"
#include "ASCKit/Resources/AssetLibraryRefData.h"
#include "ASCKit/Resources/Placements.h"

namespace kestrin {
namespace {

using Json = nlohmann::json;

constexpr int kIndentation = 2;  // as the service writes

// A full page: placements, as a pull reads them more often than anything else.
const std::string& page() {
    static const std::string text = [] {
        Json data = Json::array();
        for (int i = 0; i < 200; ++i) {
            const auto id = "6f1c9a52-7d0e-4b8b-9e63-" + std::to_string(100000000000 + i);
            const auto self = "https://api.example.com/v1/appAssetLibraryPlacements/" + id;
            data.push_back(
                {{"type", "appAssetLibraryPlacements"},
                 {"id", id},
                 {"attributes",
                  {{"placementGroup", "IPHONE_67"},
                   {"placementType", "APP_SCREENSHOT"},
                   {"placementGroupPosition", i % 10},
                   {"state", "APPROVED"}}},
                 {"relationships",
                  {{"image",
                    {{"data", {{"type", "appAssetLibraryImages"}, {"id", id}}},
                     {"links", {{"self", self + "/relationships/image"}, {"related", self + "/image"}}}}},
                   {"video", {{"data", nullptr}}}}},
                 {"links", {{"self", self}}}});
        }
        return Json{{"data", data}, {"links", {{"self", "https://api.example.com/v1/placements"}}}}.dump(
            kIndentation);
    }();
    return text;
}

Json imageSpec(int number) {
    return {{"specId", "IMAGE_SPECIFICATION_" + std::to_string(number)},
            {"shortName", "6.7″ portrait"},
            {"dimensions",
             {{"minWidth", number}, {"maxWidth", number}, {"minHeight", 2796}, {"maxHeight", 2796}}},
            {"aspectRatio", "9:16"},
            {"alphaAllowed", false},
            {"fileExtensions", {".png", ".jpg", ".jpeg"}},
            {"maxFileSize", 20000000}};
}

Json placementType(int number) {
    Json mappings = Json::array();
    for (int group = 0; group < 500; ++group) {
        Json specs = Json::array();
        for (int spec = 0; spec < 10; ++spec)
            specs.push_back("IMAGE_SPECIFICATION_" + std::to_string(spec * group));
        mappings.push_back({{"placementGroupId", "GROUP_" + std::to_string(group)}, {"specs", specs}});
    }
    return {{"placementTypeId", "PLACEMENT_TYPE_" + std::to_string(number)},
            {"acceptsAssetCategories", {"APP_SCREENSHOTS_AND_PREVIEWS"}},
            {"specMappings", mappings}};
}

// Of some 20 MB: a thousand times what the service publishes.
const std::string& referenceDocument() {
    static const std::string text = [] {
        Json groups = Json::array(), types = Json::array(), specs = Json::array(), classes = Json::array();
        for (int i = 0; i < 500; ++i) {
            const auto id = std::to_string(i);
            groups.push_back({{"placementProfileGroupId", "GROUP_" + id},
                              {"platform", "IOS"},
                              {"displayClassId", "CLASS_" + id}});
            classes.push_back({{"displayClassId", "CLASS_" + id},
                               {"deviceFamily", "iPhone"},
                               {"screenDimensions", {"1290x2796"}}});
        }
        for (int i = 0; i < 30; ++i) types.push_back(placementType(i));
        for (int i = 0; i < 25000; ++i) specs.push_back(imageSpec(i));
        const Json attributes = {{"placementProfileGroups", groups},
                                 {"placementTypes", types},
                                 {"imageSpecs", specs},
                                 {"displayClasses", classes}};
        return Json{{"data", {{"type", "appAssetLibraryRefData"}, {"id", "1"}, {"attributes", attributes}}}}
            .dump(kIndentation);
    }();
    return text;
}

void report(benchmark::State& state, const std::string& bytes) {
    state.counters["MB"] = static_cast<double>(bytes.size()) / 1e6;
    state.counters["MB_per_second"] = benchmark::Counter(static_cast<double>(bytes.size()) / 1e6,
                                                         benchmark::Counter::kIsIterationInvariantRate);
}

// Once before it is measured: that leaves the heap as this very operation leaves it, whatever ran before.
template <class Operation>
void measure(benchmark::State& state, const std::string& bytes, const Operation& operation) {
    operation();
    for (auto _ : state) operation();
    report(state, bytes);
}

void parseAlone(benchmark::State& state, const std::string& (*bytes)()) {
    measure(state, bytes(), [&] { benchmark::DoNotOptimize(Json::parse(bytes())); });
}

void decodePage(benchmark::State& state) {
    measure(state, page(), [&] {
        const auto document = ASCClient::decode(page(), "");
        const std::vector<ASCPlacement> placements(document.data.begin(), document.data.end());
        if (placements.size() != 200 || !placements.back().assetID) state.SkipWithError("not what was sent");
        benchmark::DoNotOptimize(placements);
    });
}

void decodeReferenceDocument(benchmark::State& state) {
    measure(state, referenceDocument(), [&] {
        const auto document = ASCClient::decode(referenceDocument(), "");
        const auto data = AssetLibraryRefData::fromAttributes(document.data.at(0).attributes);
        if (data.specs.size() != 25000) state.SkipWithError("not what was sent");
        benchmark::DoNotOptimize(data);
    });
}

BENCHMARK(decodePage)->Name("replies/200 resources, decoded")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(parseAlone, page, page)
    ->Name("replies/200 resources, parsed by nlohmann alone")
    ->Unit(benchmark::kMillisecond);
BENCHMARK(decodeReferenceDocument)
    ->Name("replies/reference document, decoded")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(parseAlone, referenceDocument, referenceDocument)
    ->Name("replies/reference document, parsed by nlohmann alone")
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kestrin
