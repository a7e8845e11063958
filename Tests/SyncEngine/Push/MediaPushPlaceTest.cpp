#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <set>

#include "KestrinCore/StableJSON.h"
#include "Tests/Support/ListingNames.h"
#include "Tests/SyncEngine/Push/MediaPushWorld.h"

namespace kestrin {
namespace {

using Kind = ASCLibraryAsset::Kind;
using namespace std::string_literals;

// Each letter is an asset: "AB" wants or holds asset A, then B; its placement is "pA". The second placement of an asset
// in a slot is in lower case: "Aa".
MediaItems wanted(const std::string& letters) {
    MediaItems items;
    for (const char letter : letters) items.push_back(MediaItem::remote(std::string(1, letter)));
    return items;
}

std::vector<ExistingPlacement> held(const std::string& letters) {
    std::vector<ExistingPlacement> existing;
    for (const char letter : letters) {
        const char asset = static_cast<char>(std::toupper(letter));
        existing.push_back({std::string("p") + letter, std::string(1, asset)});
    }
    return existing;
}

SlotPlacement slotOf(const std::string& desired, const std::string& existing,
                     std::optional<std::int64_t> maxCount = std::nullopt) {
    return {{PlacementTarget::Version{StorePlatform::iOS, "V", "L"}},
            kGerman,
            kSlot,
            wanted(desired),
            held(existing),
            maxCount};
}

// Keeps one slot as the service does, and what it was asked in short: "+A" a placement of A, "-pA" a deletion, "=pA,pB"
// an order. New placements are "n1", "n2", … and come to stand at the end.
class PlacementServer {
 public:
    explicit PlacementServer(std::vector<ExistingPlacement> held)
        : slot(std::move(held)), fewest(slot.size()), most(slot.size()) {}

    ScriptedTransport::Step step() {
        return [this](const HTTPRequest& request, const std::stop_token&) {
            auto reply = answer(request);
            fewest = std::min(fewest, slot.size());
            most = std::max(most, slot.size());
            return reply;
        };
    }

    std::string assets() const {
        std::string letters;
        for (const auto& placement : slot) letters += placement.assetID;
        return letters;
    }

    std::vector<ExistingPlacement> slot;
    std::size_t fewest, most;  // that it held at any time
    std::string log;

 private:
    HTTPResponse answer(const HTTPRequest& request) {
        const auto path = request.url.path();
        if (!log.empty()) log += " ";
        if (request.method == "DELETE") {
            const auto id = path.substr(path.rfind('/') + 1);
            log += "-" + id;
            std::erase_if(slot, [&](const auto& placement) { return placement.placementID == id; });
            return {204, {}, ""};
        }
        const auto body = StableJSON::decode(std::get<std::string>(*request.body));
        const auto& relationships = member(body, {"data", "relationships"});
        return path == "/v1/appAssetLibraryPlacements" ? create(relationships) : order(relationships);
    }

    HTTPResponse create(const JSONValue& relationships) {
        const auto asset = *member(relationships, {"image", "data", "id"}).stringValue();
        const auto id = "n" + std::to_string(++made_);
        log += "+" + asset;
        slot.push_back({id, asset});
        return {201, {}, R"({"data":{"type":"appAssetLibraryPlacements","id":")" + id + "\"}}"};
    }

    HTTPResponse order(const JSONValue& relationships) {
        std::vector<ExistingPlacement> ordered;
        std::string ids;
        for (const auto& item : *member(relationships, {"orderedPlacements", "data"}).arrayValue()) {
            const auto& id = *member(item, {"id"}).stringValue();
            ids += (ids.empty() ? "" : ",") + id;
            std::copy_if(slot.begin(), slot.end(), std::back_inserter(ordered),
                         [&](const auto& placement) { return placement.placementID == id; });
        }
        slot = ordered;
        log += "=" + ids;
        return {201, {}, R"({"data":{"type":"o","id":"o"}})"};
    }

    int made_ = 0;
};

PlacementServer afterPlacing(const SlotPlacement& placement) {
    PlacementServer server(placement.existing);
    MediaPushWorld world(times(20, server.step()));
    world.context.place(placement, world.state, world.client);
    return server;
}

std::string requestsFor(const SlotPlacement& placement) {
    return afterPlacing(placement).log;
}

TEST(MediaPushPlace, TakesAsFewRequestsAsTheSlotNeeds) {
    const struct {
        const char* when;
        std::string wanted, held;
        std::optional<std::int64_t> maxCount;
        const char* requests;
    } rows[] = {
        {"nothing wanted, nothing held", "", "", {}, ""},
        {"as wanted", "AB", "AB", {}, ""},
        {"one alone", "A", "A", {}, ""},
        {"a slot is filled in the wanted order, and needs no ordering", "ABC", "", {}, "+A +B +C"},
        {"new ones behind those that were there need no ordering", "ABC", "A", {}, "+B +C"},
        {"a new one in front does", "BA", "A", {}, "+B =n1,pA"},
        {"reversing a full slot is one ordering", "CBA", "ABC", 3, "=pC,pB,pA"},
        {"emptying deletes all in their order, and orders nothing", "", "ABC", {}, "-pA -pB -pC"},
        {"what is left is in order", "AC", "ABC", {}, "-pB"},
        {"one is left, so there is nothing to order", "C", "ABC", {}, "-pA -pB"},
        {"replaced without a limit: created, then deleted", "ADC", "ABC", {}, "+D -pB =pA,n1,pC"},
        {"replaced in a full slot: deleted, then created", "ADC", "ABC", 3, "-pB +D =pA,n1,pC"},
        {"replaced where the limit just has room: created first", "ADC", "ABC", 4, "+D -pB =pA,n1,pC"},
        {"the only one replaced", "B", "A", {}, "+B -pA"},
        {"the only one replaced in a slot of one", "B", "A", 1, "-pA +B"},
        {"the last replaced needs no ordering", "ABD", "ABC", {}, "+D -pC"},
        {"a limit of none deletes first", "A", "B", 0, "-pB +A"},
        {"nothing to delete under a limit", "AB", "A", 1, "+B"},
        {"an asset that stands twice loses its second placement", "AB", "AaB", {}, "-pa"},
        {"it counts under the limit as long as it is there", "ABC", "AaB", 3, "-pa +C"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(requestsFor(slotOf(row.wanted, row.held, row.maxCount)), row.requests);
    }
}

// Some of the letters, in any order. For use in a property.
std::string arbitrarySome(std::string letters) {
    for (auto left = letters.size(); left > 1; --left)
        std::swap(letters[left - 1], letters[*rc::gen::inRange<std::size_t>(0, left)]);
    letters.resize(*rc::gen::inRange<std::size_t>(0, letters.size() + 1));
    return letters;
}

RC_GTEST_PROP(MediaPushPlace, WhateverASlotHoldsItEndsAsWantedWithinItsLimitAndWithoutAStepTooMuch, ()) {
    const auto wantedLetters = arbitrarySome("ABCDEF");
    const auto heldLetters = arbitrarySome("ABCDEFabcdef");
    const auto room = *rc::gen::inRange<std::int64_t>(-1, 4);
    const auto larger = std::max(std::ssize(wantedLetters), std::ssize(heldLetters));
    const auto limit = room < 0 ? std::nullopt : std::optional<std::int64_t>(larger + room);
    std::set<char> heldAssets;
    for (const char letter : heldLetters) heldAssets.insert(static_cast<char>(std::toupper(letter)));
    const auto kept = std::count_if(wantedLetters.begin(), wantedLetters.end(),
                                    [&](char letter) { return heldAssets.contains(letter); });

    const auto server = afterPlacing(slotOf(wantedLetters, heldLetters, limit));

    const auto requests = [&](char mark) { return std::count(server.log.begin(), server.log.end(), mark); };
    RC_ASSERT(server.assets() == wantedLetters);
    RC_ASSERT(requests('+') == std::ssize(wantedLetters) - kept);
    RC_ASSERT(requests('-') == std::ssize(heldLetters) - kept);
    RC_ASSERT(requests('=') <= 1);
    RC_ASSERT(!limit || static_cast<std::int64_t>(server.most) <= *limit);
    RC_ASSERT(limit || server.fewest == std::min(wantedLetters.size(), heldLetters.size()));
    RC_ASSERT(afterPlacing(slotOf(wantedLetters, wantedLetters, limit)).log.empty());
}

TEST(MediaPushPlace, AnAssetWantedTwiceAndHeldOnceIsKeptOnceAndNamedTwiceInTheOrder) {
    EXPECT_EQ(requestsFor(slotOf("AA", "A")), "=pA,pA");
}

TEST(MediaPushPlace, AnAssetWantedTwiceAndHeldTwiceKeepsItsFirstPlacementAlone) {
    EXPECT_EQ(requestsFor(slotOf("AA", "Aa")), "-pa =pA,pA");
}

TEST(MediaPushPlace, AnAssetWantedTwiceAndNotHeldIsPlacedTwiceAndTheLaterOneIsOrdered) {
    EXPECT_EQ(requestsFor(slotOf("AA", "")), "+A +A =n2,n2");
}

TEST(MediaPushPlace, SendsTypeGroupAssetAndParent) {
    MediaPushWorld world({reply(201, R"({"data":{"type":"p","id":"n1"}})"), reply(204),
                          reply(201, R"({"data":{"type":"o","id":"o"}})")});
    ASCLibraryAsset video;
    video.kind = Kind::video;
    world.context.knownAssets["B"] = video;

    world.context.place(slotOf("BA", "AC"), world.state, world.client);

    EXPECT_EQ(world.requests(),
              "POST /v1/appAssetLibraryPlacements\n"
              "DELETE /v1/appAssetLibraryPlacements/pC\n"
              "POST /v1/appAssetLibraryPlacementOrderingRequests\n");
    EXPECT_EQ(StableJSON::decode(world.body(0)),
              StableJSON::decode(R"({"data":{"type":"appAssetLibraryPlacements",
        "attributes":{"placementType":"APP_SCREENSHOT","placementGroup":"IPHONE_67"},"relationships":{
            "video":{"data":{"type":"appAssetLibraryVideos","id":"B"}},
            "appStoreVersionLocalization":{"data":{"type":"appStoreVersionLocalizations","id":"L"}}}}})"));
    EXPECT_EQ(StableJSON::decode(world.body(2)),
              StableJSON::decode(R"({"data":{"type":"appAssetLibraryPlacementOrderingRequests",
        "attributes":{"placementGroup":"IPHONE_67"},"relationships":{
            "orderedPlacements":{"data":[{"type":"appAssetLibraryPlacements","id":"n1"},
                                         {"type":"appAssetLibraryPlacements","id":"pA"}]},
            "appStoreVersionLocalization":{"data":{"type":"appStoreVersionLocalizations","id":"L"}}}}})"));
}

// The first relationship that a new placement of `placement` names besides its asset.
std::string parentFor(PlacementTarget target, const RunState& state) {
    MediaPushWorld world({reply(201, R"({"data":{"type":"p","id":"n1"}})")});
    auto placement = slotOf("A", "");
    placement.target = std::move(target);
    const auto failure = failureOf([&] { world.context.place(placement, state, world.client); });
    if (!failure.empty()) return failure;
    const auto body = StableJSON::decode(world.body(0));
    for (const auto& [key, value] : *member(body, {"data", "relationships"}).objectValue()) {
        if (key != "image") return key + " " + *member(value, {"data", "id"}).stringValue();
    }
    return "none";
}

TEST(MediaPushPlace, TheParentIsTheOneInThePlanOrElseTheOneThatThisRunMade) {
    RunState made;
    made.versionLocalizations["V/de-DE"] = "L1";
    made.pageLocalizations["summer/de-DE"] = "L2";
    made.treatmentLocalizations["icons/blue/de-DE"] = "L3";
    const Slug summer{"summer"}, icons{"icons"}, blue{"blue"};
    const std::string missing =
        "Add text for de-DE and push it before its media: App Store Connect places media on a localization.";
    using T = PlacementTarget;
    const struct {
        const char* when;
        PlacementTarget target;
        const RunState& state;
        std::string parent;
    } rows[] = {
        {"version, planned",
         {T::Version{StorePlatform::iOS, "V", "L"}},
         made,
         "appStoreVersionLocalization L"},
        {"version, made", {T::Version{StorePlatform::iOS, "V", {}}}, made, "appStoreVersionLocalization L1"},
        {"another version", {T::Version{StorePlatform::iOS, "W", {}}}, made, missing},
        {"page, planned", {T::Page{summer, "L"}}, made, "appCustomProductPageLocalization L"},
        {"page, made", {T::Page{summer, {}}}, made, "appCustomProductPageLocalization L2"},
        {"page, nowhere", {T::Page{summer, {}}}, {}, missing},
        {"treatment, planned",
         {T::Treatment{icons, blue, "L"}},
         made,
         "appStoreVersionExperimentTreatmentLocalization L"},
        {"treatment, made",
         {T::Treatment{icons, blue, {}}},
         made,
         "appStoreVersionExperimentTreatmentLocalization L3"},
        {"treatment, nowhere", {T::Treatment{icons, blue, {}}}, {}, missing},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(parentFor(row.target, row.state), row.parent);
    }
}

// The kind under which asset "A" is placed.
std::string kindPlaced(const KnownAssets& known, const std::vector<ASCLibraryAsset>& library) {
    MediaPushWorld world({reply(201, R"({"data":{"type":"p","id":"n1"}})")});
    world.context.knownAssets = known;
    world.context.index = LibraryIndex(library);
    world.context.place(slotOf("A", ""), world.state, world.client);
    return world.body(0).find("appAssetLibraryVideos") == std::string::npos ? "image" : "video";
}

TEST(MediaPushPlace, TheKindOfAnAssetIsLookedUpInTheListingThenInTheLibrary) {
    ASCLibraryAsset image, video;
    image.id = video.id = "A";
    video.kind = Kind::video;
    EXPECT_EQ(kindPlaced({}, {}), "image") << "an asset that nothing knows";
    EXPECT_EQ(kindPlaced({{"A", video}}, {}), "video");
    EXPECT_EQ(kindPlaced({}, {video}), "video");
    EXPECT_EQ(kindPlaced({{"A", image}}, {video}), "image");
    EXPECT_EQ(kindPlaced({{"A", video}}, {image}), "video");
}

TEST(MediaPushPlace, AFileIsTheAssetThatThisRunEnsuredForItsDigest) {
    MediaPushWorld world(
        {reply(201, R"({"data":{"type":"p","id":"n1"}})"), reply(201, R"({"data":{"type":"p","id":"n2"}})")});
    world.context.hashes = {{"a.png", "hash-a"}, {"b.mp4", "hash-b"}};
    world.state.assets = {{"hash-a", {"A", Kind::image}}, {"hash-b", {"B", Kind::video}}};
    auto placement = slotOf("", "");
    placement.desired = {MediaItem::file("a.png"), MediaItem::file("b.mp4")};

    world.context.place(placement, world.state, world.client);

    EXPECT_NE(world.body(0).find("appAssetLibraryImages"), std::string::npos);
    EXPECT_NE(world.body(1).find("appAssetLibraryVideos"), std::string::npos);
}

TEST(MediaPushPlace, AFileThatTheSlotAlreadyHoldsCostsNothing) {
    MediaPushWorld world;
    world.context.hashes = {{"a.png", "hash-a"}};
    world.state.assets = {{"hash-a", {"A", Kind::image}}};
    auto placement = slotOf("", "A");
    placement.desired = {MediaItem::file("a.png")};

    world.context.place(placement, world.state, world.client);

    EXPECT_EQ(world.requests(), "");
}

TEST(MediaPushPlace, AFileWithoutDigestOrWithoutAssetIsMissingBeforeAnyRequest) {
    const struct {
        const char* when;
        std::map<std::string, std::string> hashes;
        text::TextMap<RunState::Asset> assets;
    } rows[] = {
        {"its asset wasn't among the selected steps", {{"a.png", "hash-a"}}, {}},
        {"the asset of another content", {{"a.png", "hash-a"}}, {{"hash-b", {"B", Kind::image}}}},
        {"a file of a page or treatment alone, uploaded under its path for want of a digest",
         {},
         {{"missing:a.png", {"A", Kind::image}}}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.when);
        MediaPushWorld world;
        world.context.hashes = row.hashes;
        world.state.assets = row.assets;
        auto placement = slotOf("", "Z");
        placement.desired = {MediaItem::remote("Q"), MediaItem::file("a.png")};

        EXPECT_EQ(failureOf([&] { world.context.place(placement, world.state, world.client); }),
                  "Couldn’t find the media file a.png.");
        EXPECT_EQ(world.requests(), "");
    }
}

TEST(MediaPushPlace, AFailedRequestEndsTheStepAndLeavesTheSlotAsItThenStands) {
    MediaPushWorld world({reply(201, R"({"data":{"type":"p","id":"n1"}})"), reply(409)});
    EXPECT_THROW(world.context.place(slotOf("BC", "A"), world.state, world.client), ASCError);
    EXPECT_EQ(world.requests(), "POST /v1/appAssetLibraryPlacements\nPOST /v1/appAssetLibraryPlacements\n");
}

}  // namespace
}  // namespace kestrin
