// Any bytes in any file of a package are read or refused with a message; what was read is written in a form that
// reads back equal and is then stable.
//
// The first byte of the input says which file gets the others.
#include <cstdint>
#include <cstdlib>

#include "KestrinCore/Error.h"
#include "KestrinModel/ProjectPackageCodec.h"

namespace {

using kestrin::PackageFolder;

constexpr std::string_view kManifest = R"({"format": "com.brennoway.kestrin.project", "schemaVersion": 1,)"
                                       R"( "projectID": "0F9C1B2A-3D4E-4F50-8A6B-7C8D9E0F1A2B"})";

// The letter before each is the first byte that means it.
struct Place {
    char letter;
    std::string_view folders[5];
    std::string_view file;
};
constexpr Place kPlaces[] = {
    {'m', {}, "Kestrin.json"},
    {'i', {"App"}, "info.json"},
    {'a', {"App", "Locales"}, "de.json"},
    {'v', {"iOS"}, "version.json"},
    {'r', {"iOS"}, "review.json"},
    {'l', {"iOS", "Locales", "de"}, "listing.json"},
    {'d', {"iOS", "Locales", "de"}, "description.txt"},
    {'p', {"iOS", "Locales", "de"}, "placements.json"},
    {'g', {"Pages", "a"}, "page.json"},
    {'e', {"Experiments", "a"}, "experiment.json"},
    {'t', {"Experiments", "a", "Treatments", "b"}, "treatment.json"},
};

void require(bool holds) {
    if (!holds) std::abort();
}

void put(PackageFolder& package, const Place& place, std::string bytes) {
    auto* folder = &package;
    for (const auto name : place.folders) {
        if (!name.empty()) folder = &folder->directory(name);
    }
    folder->setFile(place.file, std::move(bytes));
}

PackageFolder packageWith(std::string_view input) {
    PackageFolder package;
    package.setFile("Kestrin.json", std::string(kManifest));
    package.directory("Experiments").directory("a").setFile("experiment.json", "{}");
    for (const auto& place : kPlaces) {
        if (input.front() == place.letter) put(package, place, std::string(input.substr(1)));
    }
    return package;
}

void check(std::string_view input) {
    const auto project = kestrin::ProjectPackageCodec::read(packageWith(input));
    auto written = kestrin::ProjectPackageCodec::write(project, packageWith(input));
    require(kestrin::ProjectPackageCodec::read(written) == project);
    const auto fresh = kestrin::ProjectPackageCodec::write(project);
    require(kestrin::ProjectPackageCodec::read(fresh) == project);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    try {
        check({reinterpret_cast<const char*>(data), size});
    } catch (const kestrin::Error& error) {
        require(!error.errorDescription().empty());
    }
    return 0;
}
