// The seed for measurements: the large listing, whole.
#include "Benchmarks/LargeListing.h"

#include <fmt/format.h>

#include "Sandbox/Seed.h"
#include "Tests/Sandbox/SandboxFixture.h"

namespace kestrin::sandbox {
namespace {

class LargeSeed : public SandboxFixture {
 protected:
    LargeSeed() : SandboxFixture(Settings{}, seeds::large) {}

    std::vector<std::string> placedFileNames(const Received& placements) {
        std::map<std::string, std::string> names;
        for (const auto& asset : placements.json.at("included")) {
            names[asset.at("id")] = asset.at("attributes").at("fileName");
        }
        std::vector<std::string> list;
        for (const auto& placement : placements.json.at("data")) {
            list.push_back(names.at(placement.at("relationships").at("image").at("data").at("id")));
        }
        return list;
    }
};

// One test: to seed is the work.
TEST_F(LargeSeed, HoldsTheWholeListing) {
    const auto project = LargeListing::make();
    const auto count = [&](const char* type) {
        return sandbox.service().with([&](State& state) { return state.store.all(type).size(); });
    };
    EXPECT_EQ(count("appStoreVersions"), 4u);
    EXPECT_EQ(count("appInfoLocalizations"), 40u);
    EXPECT_EQ(count("appStoreVersionLocalizations"), 4u * 40);
    EXPECT_EQ(count("appCustomProductPageLocalizations"), 70u * 40);
    EXPECT_EQ(count("appStoreVersionExperimentTreatmentLocalizations"), 9u * 40);
    EXPECT_EQ(count("appAssetLibraryPlacements"), 40u * 10 * (4 + 70 * 2 + 9));
    EXPECT_EQ(count("appAssetLibraryImages"), count("appAssetLibraryPlacements"));

    const auto version = idOf("appStoreVersions", {{"platform", "MAC_OS"}});
    const auto texts = get("/v1/appStoreVersions/" + version + "/appStoreVersionLocalizations?limit=200");
    const auto& fields = project.platforms.at(StorePlatform::macOS).locales.begin()->second;
    EXPECT_EQ(texts.attributes(0)["description"], fields[ListingField::description]);
    EXPECT_EQ(texts.attributes(0)["whatsNew"], fields[ListingField::whatsNew]);
    const auto media = get("/v1/appStoreVersionLocalizations/" + texts.ids().at(0) +
                           "/placements?include=image,video&sort=placementGroupPosition&limit=200");
    std::vector<std::string> expected;
    for (int number = 1; number <= 10; ++number) expected.push_back(fmt::format("Screen {}.png", number));
    EXPECT_EQ(placedFileNames(media), expected);

    const auto pages = get(std::string("/v1/apps/") + kApp + "/appCustomProductPages?limit=200");
    EXPECT_EQ(pages.ids().size(), 70u);
    EXPECT_EQ(pages.attributes(0)["name"], project.pages.begin()->second.name);
}

}  // namespace
}  // namespace kestrin::sandbox
