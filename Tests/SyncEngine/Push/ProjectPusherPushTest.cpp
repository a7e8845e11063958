#include <gtest/gtest.h>

#include "ASCKit/Resources/Apps.h"
#include "AssetPipeline/MediaHash.h"
#include "KestrinCore/FileError.h"
#include "SyncEngine/Pull/SyncError.h"
#include "SyncEngine/Push/ProjectPusher.h"
#include "SyncEngine/Push/PushError.h"
#include "Tests/Support/PNGBytes.h"
#include "Tests/Support/SupervisedProcess.h"
#include "Tests/SyncEngine/Push/PusherWorld.h"
#include "Tests/SyncEngine/Push/StepText.h"

namespace kestrin {
namespace {

const ContentKey kCopyright = keyOf("IOS/version/copyright");
const ContentKey kWhatsNew = keyOf("IOS/de-DE/whatsNew");

void ignore(const PushEvent&) {}

// A world in which copyright and German what's new were changed here, and whose service takes both.
struct World : PusherWorld {
    PushEventHandler onEvent = ignore;

    World() {
        set("IOS/version/copyright", "2026");
        set("IOS/de-DE/whatsNew", "Neu");
        arrives("2026", "Neu");
    }

    // What the service shows once the write of a kind was made.
    void arrives(const std::string& copyright, const std::string& whatsNew) {
        onEvent = [this, copyright, whatsNew](const PushEvent& event) {
            const auto* finished = std::get_if<PushEvent::Finished>(&event.kind);
            if (!finished) return;
            if (std::holds_alternative<PushStep::UpdateVersion>(finished->step.action))
                remoteCopyright(copyright);
            if (std::holds_alternative<PushStep::UpdateVersionLocalization>(finished->step.action))
                remoteText(whatsNew);
        };
    }

    PushResult push(const PushReview& reviewed, const std::set<ContentKey>& selection,
                    const MediaLocator& locate = {}) {
        return pusher().push(project, reviewed, selection, locate, onEvent);
    }
    PushResult pushAll() { return push(review(), {kCopyright, kWhatsNew}); }

    // How many requests one look at the remote side takes.
    std::size_t requestsOfALook() {
        const auto before = paths().size();
        review();
        return paths().size() - before;
    }

    FlatValues base() { return *store.base(id()); }
};

TEST(ProjectPusherPush, WritesWhatIsSelectedAndVerifiesIt) {
    World world;
    const auto result = world.pushAll();
    EXPECT_TRUE(result.isVerified());
    EXPECT_EQ(StepText::of(result.completed),
              "updateVersion V {copyright=\"2026\"} <- IOS/version/copyright\n"
              "updateVersionLocalization L {whatsNew=\"Neu\"} <- IOS/de-DE/whatsNew\n");
    EXPECT_EQ(world.server->writes, (std::vector<std::string>{"PATCH /v1/appStoreVersions/V",
                                                              "PATCH /v1/appStoreVersionLocalizations/L"}));
}

TEST(ProjectPusherPush, RemembersWhatBothSidesNowAgreeOn) {
    World world;
    world.pushAll();
    EXPECT_EQ(world.base(), (FlatValues{{kCopyright, "2026"}, {kWhatsNew, "Neu"}}));
    EXPECT_EQ(world.store.remoteIDs(world.id())->versions.at(StorePlatform::iOS).id, "V");
    EXPECT_TRUE(std::filesystem::exists(world.store.root / world.id().text() / "remote-assets.json"));
    EXPECT_TRUE(world.review().changeSet.isInSync());
}

TEST(ProjectPusherPush, AProjectThatIsntConnectedIsRefusedBeforeAnyRequest) {
    World world;
    const auto review = world.review();
    world.server->paths.clear();
    world.project.manifest.app.ascAppID.reset();
    EXPECT_THROW(world.push(review, {kCopyright}), SyncError);
    EXPECT_TRUE(world.paths().empty());
}

TEST(ProjectPusherPush, AnEmptySelectionIsOnlyReadBackAndRemembered) {
    World world;
    const auto look = world.requestsOfALook();
    const auto review = world.review();
    world.server->paths.clear();
    const auto result = world.push(review, {});
    EXPECT_TRUE(result.completed.empty());
    EXPECT_TRUE(result.isVerified());
    EXPECT_TRUE(world.server->writes.empty());
    EXPECT_EQ(world.paths().size(), look);
    EXPECT_EQ(world.base(), (FlatValues{{kCopyright, "2025"}, {kWhatsNew, "Alt"}}));
}

// --- The budget

// The error that a push ends in with so many requests left at the review and at its start.
std::string refusal(World& world, const char* atReview, const char* now) {
    const auto limit = [](const char* left) {
        return left ? HTTPHeaders{{"X-Rate-Limit", std::string("user-hour-lim:9;user-hour-rem:") + left}}
                    : HTTPHeaders{};
    };
    world.server->headers = limit(atReview);
    const auto review = world.review();
    world.server->headers = limit(now);
    if (now) ASC::validate(world.client);
    try {
        world.push(review, {kCopyright, kWhatsNew});
    } catch (const PushError& error) {
        return error.errorDescription();
    }
    return "none";
}

constexpr const char* kTooFew =
    "This push needs about 12 requests, but the API key has 11 left this hour. Try again later.";

TEST(ProjectPusherPush, IsNotBegunWithoutEnoughRequestsLeft) {
    World world;
    EXPECT_EQ(refusal(world, "11", nullptr), kTooFew);
    EXPECT_TRUE(world.server->writes.empty());
    EXPECT_FALSE(world.hasState());
    EXPECT_TRUE(world.time.slept.empty()) << "the hour isn't waited for";
}

TEST(ProjectPusherPush, RunsWithExactlyEnoughRequestsLeft) {
    World world;
    EXPECT_EQ(refusal(world, "12", nullptr), "none");
}

TEST(ProjectPusherPush, TheReadingOfTheMomentGoesBeforeThatOfTheReview) {
    World enough;
    EXPECT_EQ(refusal(enough, "11", "12"), "none");
    World tooFew;
    EXPECT_EQ(refusal(tooFew, "12", "11"), kTooFew);
}

TEST(ProjectPusherPush, AnotherClientGoesByTheReadingOfTheReview) {
    World world;
    auto review = world.review();
    review.rateLimit = {3600, 11};
    EXPECT_THROW(world.push(review, {kCopyright, kWhatsNew}), PushError);
}

TEST(ProjectPusherPush, WithoutAnyReadingItRuns) {
    World world;
    EXPECT_EQ(refusal(world, nullptr, nullptr), "none");
}

// --- The read-back

TEST(ProjectPusherPush, WhatReadsBackDifferentlyIsTold) {
    World world;
    world.arrives("2026", "Zensiert");
    const auto result = world.pushAll();
    EXPECT_FALSE(result.isVerified());
    EXPECT_EQ(result.mismatches, (std::vector<Change>{{kWhatsNew, "Zensiert", "Neu"}}));
    EXPECT_EQ(result.completed.size(), 2u);
}

TEST(ProjectPusherPush, TheBaseMovesOnlyForWhatReadsBackEqual) {
    World world;
    world.arrives("2026", "Zensiert");
    world.pushAll();
    EXPECT_EQ(world.base(), (FlatValues{{kCopyright, "2026"}, {kWhatsNew, "Alt"}}));
    const auto again = world.review().changeSet;
    EXPECT_EQ(again.changes.size() + again.conflicts.size(), 1u) << "and stays to be pushed";
}

TEST(ProjectPusherPush, AValueThatDiffersOnlyInItsLineEndsIsVerifiedInTheFormOfTheService) {
    World world;
    world.set("IOS/de-DE/whatsNew", "Neu\r\nHier \n");
    world.arrives("2026", "Neu\\nHier");
    EXPECT_TRUE(world.pushAll().isVerified());
    EXPECT_EQ(world.base().at(kWhatsNew), "Neu\nHier");
}

TEST(ProjectPusherPush, AValueThatWasEmptiedLeavesTheBase) {
    World world;
    world.set("IOS/de-DE/whatsNew", "");
    world.set("IOS/de-DE/keywords", "a");
    world.store.saveBase({{kWhatsNew, "Alt"}, {kCopyright, "2025"}}, world.id());
    world.arrives("2026", "");
    EXPECT_TRUE(world.push(world.review(), {kCopyright, kWhatsNew}).isVerified());
    EXPECT_EQ(world.base(), (FlatValues{{kCopyright, "2026"}}));
}

TEST(ProjectPusherPush, WithoutABaseItStartsFromTheReviewedRemote) {
    World world;
    world.push(world.review(), {kCopyright});
    EXPECT_EQ(world.base(), (FlatValues{{kCopyright, "2026"}, {kWhatsNew, "Alt"}}));
}

TEST(ProjectPusherPush, WhatWasntPushedKeepsItsPlaceInTheBase) {
    World world;
    world.store.saveBase({{kCopyright, "2025"}, {kWhatsNew, "Uralt"}}, world.id());
    world.push(world.review(), {kCopyright});
    EXPECT_EQ(world.base(), (FlatValues{{kCopyright, "2026"}, {kWhatsNew, "Uralt"}}));
}

TEST(ProjectPusherPush, ASelectedConflictIsSentAndAgreedOn) {
    World world;
    world.store.saveBase({{kCopyright, "2025"}, {kWhatsNew, "Uralt"}}, world.id());
    EXPECT_TRUE(world.pushAll().isVerified());
    EXPECT_EQ(world.base(), (FlatValues{{kCopyright, "2026"}, {kWhatsNew, "Neu"}}));
}

// --- Media

const ContentKey kPhoneSlot = keyOf("IOS/de-DE/media/phone/shot");
const ContentKey kPadSlot = keyOf("IOS/de-DE/media/pad/shot");

// A world in which one file is to stand in two empty slots, and whose service takes the upload.
struct MediaWorld : World {
    MediaWorld() {
        folder.write("a.png", plainPNG(PNGImage::Colour::rgb, "abc").bytes());
        for (const auto& key : {kPhoneSlot, kPadSlot}) set(key.id().c_str(), "file:a.png");
        answer("/v1/appAssetLibraryRefData", R"({"data":{"type":"t","id":"1","attributes":{}}})");
        answer("/v1/appAssetLibraryImages",
               R"({"data":{"type":"appAssetLibraryImages","id":"A","attributes":{"uploadOperations":)"
               R"([{"method":"PUT","url":"https://up.example.test/1","offset":0,"length":1}]}}})");
        answer("/v1/appAssetLibraryImages/A",
               R"({"data":{"type":"appAssetLibraryImages","id":"A","attributes":{"state":"COMPLETE"}}})");
        answer("/v1/appAssetLibraryPlacements", R"({"data":{"type":"p","id":"P"}})");
    }

    // From the upload on the library shows the file; the slots of these groups show it too, and no others.
    void arrivesIn(const std::vector<std::string>& groups) {
        onEvent = [this, groups](const PushEvent& event) {
            if (!std::holds_alternative<PushEvent::Finished>(event.kind)) return;
            answer("/v1/appAssetLibraries/7/images",
                   R"({"data":[{"type":"appAssetLibraryImages","id":"A","attributes":{"fileName":"a.png",)"
                   R"("referenceName":"mq-a-)" +
                       MediaHash::md5(folder / "a.png").substr(0, 12) + R"("}}]})");
            std::string placements;
            for (const auto& group : groups) {
                placements += placements.empty() ? "" : ",";
                placements += R"({"type":"p","id":"P-)" + group + R"(","attributes":{"placementGroup":")" +
                              group +
                              R"(","placementType":"shot"},"relationships":{"image":{"data":)"
                              R"({"type":"appAssetLibraryImages","id":"A"}}}})";
            }
            answer(
                "/v1/appStoreVersionLocalizations/L/placements",
                R"({"data":[)" + placements + R"(],"included":[{"type":"appAssetLibraryImages","id":"A"}]})");
        };
    }

    PushResult pushMedia() { return push(review(locator()), {kPhoneSlot, kPadSlot}, locator()); }
};

TEST(ProjectPusherPush, AFileThatWasUploadedAMomentAgoReadsBackAsItsAsset) {
    MediaWorld world;
    world.arrivesIn({"phone", "pad"});
    const auto result = world.pushMedia();
    EXPECT_EQ(StepText::of(result.completed),
              "ensureAsset a.png " + MediaHash::md5(world.folder / "a.png") +
                  " pad/shot\n"
                  "placeMedia version IOS V/L de-DE pad/shot want file:a.png have <- "
                  "IOS/de-DE/media/pad/shot\n"
                  "placeMedia version IOS V/L de-DE phone/shot want file:a.png have <- "
                  "IOS/de-DE/media/phone/shot\n");
    EXPECT_TRUE(result.isVerified());
    EXPECT_EQ(world.base().at(kPhoneSlot), "asset:A");
    EXPECT_EQ(world.base().at(kPadSlot), "asset:A");
    EXPECT_TRUE(world.store.remoteAssets(world.id()).contains("A"));
    EXPECT_TRUE(
        world.project.platforms.at(StorePlatform::iOS).media.at({"de-DE"}).begin()->second[0].asFile())
        << "the project itself stays as it is";
}

TEST(ProjectPusherPush, OfTwoSlotsOnlyTheOneThatReadsBackEqualMovesItsBase) {
    MediaWorld world;
    world.arrivesIn({"phone"});
    EXPECT_EQ(world.pushMedia().mismatches, (std::vector<Change>{{kPadSlot, "", "asset:A"}}));
    EXPECT_EQ(world.base().at(kPhoneSlot), "asset:A");
    EXPECT_FALSE(world.base().contains(kPadSlot));
}

TEST(ProjectPusherPush, WithoutALocatorAFileIsMissingAndTheLibraryIsntRead) {
    MediaWorld world;
    const auto review = world.review();
    EXPECT_THROW(world.push(review, {kPhoneSlot}), PushFailure);
    EXPECT_FALSE(world.wasAsked("/v1/appAssetLibraries/7/images"));
    EXPECT_TRUE(world.server->writes.empty());
}

// --- Failures

// What `push` throws: the sentence and how many steps were completed, or another error's sentence.
std::string outcome(World& world) {
    try {
        world.pushAll();
    } catch (const PushFailure& failure) {
        return std::to_string(failure.completed.size()) + " done: " + failure.errorDescription();
    } catch (const Error& error) {
        return error.errorDescription();
    }
    return "pushed";
}

TEST(ProjectPusherPush, AFailedStepIsToldAfterEverythingWasReadBackAndRemembered) {
    World world;
    world.answer("/v1/appStoreVersionLocalizations/L", R"({"errors":[{"detail":"No."}]})", 409);
    EXPECT_EQ(outcome(world), "1 done: App Store Connect returned an error (409). No.");
    EXPECT_EQ(world.base(), (FlatValues{{kCopyright, "2026"}, {kWhatsNew, "Alt"}}));
    EXPECT_TRUE(world.store.remoteIDs(world.id()));

    const auto left = world.review().changeSet;
    EXPECT_EQ(left.changes, (std::vector<Change>{{kWhatsNew, "Alt", "Neu"}})) << "only what is left";
}

TEST(ProjectPusherPush, AReadBackThatFailsHidesTheFailureAndMovesNoBase) {
    World world;
    world.answer("/v1/appStoreVersionLocalizations/L", "", 409);
    world.onEvent = [&](const PushEvent& event) {
        if (std::holds_alternative<PushEvent::Failed>(event.kind))
            world.answer("/v1/apps/7/appInfos", R"({"errors":[{"detail":"Gone."}]})", 400);
    };
    EXPECT_EQ(outcome(world), "App Store Connect returned an error (400). Gone.");
    EXPECT_FALSE(world.hasState());
}

TEST(ProjectPusherPush, StateThatCantBeWrittenHidesTheFailure) {
    World world;
    world.answer("/v1/appStoreVersionLocalizations/L", "", 409);
    const auto file = "state/" + world.id().text() + "/remote-ids.json";
    const auto review = world.review();
    world.folder.write(file + "/in-the-way", "");
    EXPECT_THROW(world.push(review, {kCopyright, kWhatsNew}), FileError);
    EXPECT_EQ(world.base().at(kCopyright), "2026") << "the base was written before";
    EXPECT_TRUE(world.store.remoteAssets(world.id()).empty());
    EXPECT_FALSE(world.folder.has("state/" + world.id().text() + "/remote-assets.json"));
}

TEST(ProjectPusherPush, AStopEndsItAtOnceWithoutReadBackOrState) {
    World world;
    std::stop_source source;
    const auto review = world.review();
    ProjectPusher pusher(world.client, world.store,
                         {.sleep = world.time.sleep(), .notes = {}, .stop = source.get_token()});
    const auto look = world.paths().size();
    EXPECT_THROW(pusher.push(world.project, review, {kCopyright, kWhatsNew}, {},
                             [&](const PushEvent&) { source.request_stop(); }),
                 Cancelled);
    EXPECT_EQ(world.paths().size(), look + 1) << "the one write that was on its way";
    EXPECT_FALSE(world.hasState());
}

// The files of the state, by their names.
std::map<std::string, std::string> stateFiles(const World& world) {
    std::map<std::string, std::string> files;
    for (const auto& [path, bytes] : world.folder.files()) {
        const auto name = path.substr(path.rfind('/') + 1);
        if (name == "base.json" || name == "remote-ids.json" || name == "remote-assets.json")
            files[name] = bytes;
    }
    return files;
}

TEST(ProjectPusherPush, AProcessThatEndsWhileItRemembersLeavesEachFileOldOrNew) {
    World world;
    world.store.saveBase({{kCopyright, "2025"}, {kWhatsNew, "Alt"}}, world.id());
    world.store.saveRemoteIDs({}, world.id());
    world.store.saveRemoteAssets({{"A", {}}}, world.id());
    const auto review = world.review();
    const auto push = [&] { world.push(review, {kCopyright, kWhatsNew}); };
    const auto before = stateFiles(world);
    const auto calls = supervise(push).calls.size();
    const auto after = stateFiles(world);
    EXPECT_GT(calls, 0u);
    ASSERT_EQ(before.size(), 3u);
    for (std::size_t end = 0; end < calls; ++end) {
        for (const auto& [name, bytes] : before)
            world.folder.write("state/" + world.id().text() + "/" + name, bytes);
        const auto judge = [&](std::size_t call, const std::string&) {
            return call == end ? Verdict::kill() : Verdict::proceed();
        };
        EXPECT_TRUE(supervise(push, judge).wasKilled);
        for (const auto& [name, bytes] : stateFiles(world)) {
            EXPECT_NE(before.at(name), after.at(name));
            EXPECT_TRUE(bytes == before.at(name) || bytes == after.at(name)) << name << " at call " << end;
        }
    }
}

TEST(ProjectPusherPush, ListensToEveryStep) {
    World world;
    std::string news;
    world.onEvent = [&](const PushEvent& event) {
        news += std::visit(Overloaded{[](const PushEvent::Started&) { return "started "; },
                                      [](const PushEvent::Finished&) { return "finished "; },
                                      [](const PushEvent::Failed&) { return "failed "; }},
                           event.kind);
    };
    world.pushAll();
    EXPECT_EQ(news, "started finished started finished ");
}

}  // namespace
}  // namespace kestrin
