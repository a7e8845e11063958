#include "SyncEngine/Release/Releaser.h"

#include <gtest/gtest.h>

#include "SyncEngine/Pull/SyncError.h"
#include "SyncEngine/Release/ReleaseError.h"
#include "Tests/ASCKit/ClientOutcome.h"
#include "Tests/Support/RoutedClient.h"
#include "Tests/Support/ScriptedClient.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/SyncEngine/Release/ReadyVersion.h"
#include "Tests/SyncEngine/Release/SubmissionTraffic.h"

namespace kestrin {
namespace {

using Lines = std::vector<std::string>;

constexpr const char* kSubmission =
    R"({"data":{"type":"reviewSubmissions","id":"S","attributes":{"state":"OPEN"}}})";

const std::string kFind =
    "GET /v1/reviewSubmissions?filter%5Bapp%5D=7&filter%5Bplatform%5D=IOS&filter%5Bstate%5D=READY_FOR_REVIEW"
    "&limit=1";
const std::string kCreate =
    R"(POST /v1/reviewSubmissions {"data":{"attributes":{"platform":"IOS"},"relationships":{"app":{"data":{"id":"7","type":"apps"}}},"type":"reviewSubmissions"}})";
const std::string kAdd =
    R"(POST /v1/reviewSubmissionItems {"data":{"attributes":{},"relationships":{"appStoreVersion":{"data":{"id":"V","type":"appStoreVersions"}},"reviewSubmission":{"data":{"id":"S","type":"reviewSubmissions"}}},"type":"reviewSubmissionItems"}})";

// A version that is ready, a server that follows a script, and a state folder.
struct ReadyWorld : ReadyVersion {
    explicit ReadyWorld(std::vector<ScriptedTransport::Step> script = {}) : api(std::move(script)) {}

    ScriptedClient api;
    TemporaryFolder folder;
    ProjectStateStore store{folder / "state"};
    Releaser releaser{api.client, store};
    std::vector<PreflightItem> items = SubmissionPreflight::check(project, platform, review, build);

    auto submit() { return releaser.submit(project, platform, review, items); }
    // As after a pull.
    void remember() { store.saveRemoteIDs(review.remote.ids, project.manifest.projectID); }
};

template <class Failure, class Call>
std::string sentenceOf(Call&& call) {
    try {
        call();
        return "no error";
    } catch (const Failure& error) {
        return error.errorDescription();
    }
}

const char* const kNoVersion = "App Store Connect has no version for this platform. Create one first.";
const char* const kNotConnected = "This project isn’t connected to an App Store Connect app yet.";

TEST(Releaser, SubmitsInANewSubmissionWhenNoneIsOpen) {
    ReadyWorld world({reply(200, kNone), reply(201, kSubmission), reply(201, kItem), reply(200, kSent)});
    const auto submission = world.submit();
    ASSERT_TRUE(submission);
    EXPECT_EQ(submission->state, "WAITING_FOR_REVIEW");
    EXPECT_EQ(world.api.requests(), (Lines{kFind, kCreate, kAdd, kSend}));
}

TEST(Releaser, SubmitsInTheOpenSubmissionWhateverItHolds) {
    ReadyWorld world({reply(200, kSubmission), reply(201, kItem), reply(200, kSent)});
    world.submit();
    EXPECT_EQ(world.api.requests(), (Lines{kFind, kAdd, kSend})) << "its items aren't even counted";
}

TEST(Releaser, GoesOnWhenTheVersionIsInTheSubmissionAlready) {
    ReadyWorld world({reply(200, kSubmission), reply(409, "{}"), reply(200, kSent)});
    EXPECT_TRUE(world.submit());
    EXPECT_EQ(world.api.requests(), (Lines{kFind, kAdd, kSend}));
}

TEST(Releaser, EndsWithAnyOtherErrorOfTheService) {
    struct Row {
        const char* when;
        std::vector<ScriptedTransport::Step> script;
        const char* outcome;
    };
    const Row rows[] = {
        {"looking for a submission", {reply(403, "{}")}, "http 403 /v1/reviewSubmissions"},
        {"opening one", {reply(200, kNone), reply(409, "{}")}, "http 409 /v1/reviewSubmissions"},
        {"adding the version",
         {reply(200, kSubmission), reply(422, "{}")},
         "http 422 /v1/reviewSubmissionItems"},
        {"sending it",
         {reply(200, kSubmission), reply(201, kItem), reply(409, "{}")},
         "http 409 /v1/reviewSubmissions/S"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.when);
        ReadyWorld world(row.script);
        EXPECT_EQ(outcomeOf([&] { world.submit(); }), row.outcome);
        EXPECT_TRUE(world.api.server->isAtTheEnd());
    }
}

TEST(Releaser, SaysWhyTheVersionWasNotTakenWhenTheSubmissionCannotBeSent) {
    const auto refused = [](const char* detail) {
        return reply(409, std::string(R"({"errors":[{"detail":")") + detail + "\"}]}");
    };
    ReadyWorld world(
        {reply(200, kSubmission), refused("The release notes are missing."), refused("It is empty.")});
    try {
        world.submit();
        FAIL() << "sent nothing at all";
    } catch (const ASCError& error) {
        EXPECT_EQ(error.errorDescription(),
                  "App Store Connect returned an error (409). The release notes are missing. It is empty.");
    }
}

TEST(Releaser, CountsAsSubmittedWhenTheReplyIsEmpty) {
    ReadyWorld world({reply(200, kSubmission), reply(201, kItem), reply(204)});
    EXPECT_FALSE(world.submit());
    EXPECT_TRUE(world.api.server->isAtTheEnd());
}

TEST(Releaser, SubmitsPassedAndManualItemsButNoFailedOne) {
    ReadyWorld world({reply(200, kSubmission), reply(201, kItem), reply(200, kSent)});
    world.items = {{PreflightItem::Check::pricing, PreflightItem::Manual{}},
                   {PreflightItem::Check::limits, PreflightItem::Passed{}}};
    EXPECT_TRUE(world.submit());

    ReadyWorld refused;
    refused.items = {{PreflightItem::Check::limits, PreflightItem::Failed{}}};
    EXPECT_EQ(sentenceOf<ReleaseError>([&] { refused.submit(); }),
              "This version isn’t ready to submit yet. Fix the items marked in the checklist first.");
    EXPECT_TRUE(refused.api.requests().empty());
}

TEST(Releaser, SubmitsNothingForAProjectThatIsNotConnected) {
    ReadyWorld world;
    world.project.manifest.app.ascAppID.reset();
    EXPECT_EQ(sentenceOf<SyncError>([&] { world.submit(); }), kNotConnected);
    EXPECT_TRUE(world.api.requests().empty());
}

TEST(Releaser, SubmitsNothingWithoutAVersionOfThePlatform) {
    ReadyWorld world;
    world.platform = StorePlatform::tvOS;
    EXPECT_EQ(sentenceOf<ReleaseError>([&] { world.submit(); }), kNoVersion);
    EXPECT_TRUE(world.api.requests().empty());
}

TEST(Releaser, LooksForAFailedItemFirstThenForTheAppThenForTheVersion) {
    ReadyWorld world;
    world.items = {{PreflightItem::Check::limits, PreflightItem::Failed{}}};
    world.project.manifest.app.ascAppID.reset();
    world.review.remote.ids.versions.clear();
    EXPECT_THROW(world.submit(), ReleaseError);
    world.items.clear();
    EXPECT_THROW(world.submit(), SyncError);
}

const std::string kAttach =
    R"(PATCH /v1/appStoreVersions/V/relationships/build {"data":{"id":"B","type":"builds"}})";

std::string complianceOf(const char* answer) {
    return std::string(R"(PATCH /v1/builds/B {"data":{"attributes":{"usesNonExemptEncryption":)") + answer +
           R"(},"id":"B","type":"builds"}})";
}

TEST(Releaser, AttachesABuildAndAnswersForItOnlyWhatItHasNotAnswered) {
    struct Row {
        const char* when;
        const char* build;
        std::optional<bool> answer;
        Lines requests;
    };
    const char* const unanswered = "{}";
    const char* const answered = R"({"usesNonExemptEncryption":true})";
    const Row rows[] = {
        {"no answer anywhere", unanswered, std::nullopt, {kAttach}},
        {"the answer is no", unanswered, false, {complianceOf("false"), kAttach}},
        {"the answer is yes", unanswered, true, {complianceOf("true"), kAttach}},
        {"the build has one and is given another", answered, false, {kAttach}},
        {"the build has one", answered, std::nullopt, {kAttach}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.when);
        ReadyWorld world(times(row.requests.size(), reply(200, R"({"data":{"type":"builds","id":"B"}})")));
        world.remember();
        world.releaser.attach(ReadyVersion::builtAs(row.build), world.platform, world.project, row.answer);
        EXPECT_EQ(world.api.requests(), row.requests);
    }
}

TEST(Releaser, AttachesNothingToAVersionThatNoPullHasSeen) {
    ReadyWorld world;
    const auto attach = [&] { world.releaser.attach(*world.build, world.platform, world.project, true); };
    EXPECT_EQ(sentenceOf<ReleaseError>(attach), kNoVersion) << "no remembered state at all";

    world.review.remote.ids.versions.clear();
    world.remember();
    EXPECT_EQ(sentenceOf<ReleaseError>(attach), kNoVersion) << "state without the platform";
    EXPECT_TRUE(world.api.requests().empty());
}

TEST(Releaser, ListsTheBuildsOfAVersion) {
    ReadyWorld world({reply(200, R"({"data":[{"type":"builds","id":"B","attributes":{"version":"42"}}]})")});
    const auto builds = world.releaser.candidateBuilds("7", "1.2", world.platform);
    ASSERT_EQ(builds.size(), 1u);
    EXPECT_EQ(builds[0].buildNumber, "42");
    EXPECT_EQ(world.api.requests(),
              Lines{"GET /v1/builds?filter%5Bapp%5D=7&sort=-uploadedDate&include=preReleaseVersion&limit=50"
                    "&filter%5BpreReleaseVersion.version%5D=1.2&filter%5BpreReleaseVersion.platform%5D=IOS"});
}

TEST(Releaser, CreatesAVersionWithTheCopyrightAndReleaseTypeOfTheProject) {
    struct Row {
        const char* when;
        VersionContent content;
        const char* attributes;
    };
    const Row rows[] = {
        {"both",
         {"1.0", "2026 Ada", "MANUAL", {}},
         R"({"copyright":"2026 Ada","platform":"IOS","releaseType":"MANUAL","versionString":"1.1"})"},
        {"neither", {}, R"({"platform":"IOS","versionString":"1.1"})"},
        {"empty ones are none", {"1.0", "", "", {}}, R"({"platform":"IOS","versionString":"1.1"})"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.when);
        ReadyWorld world({reply(201, R"({"data":{"type":"appStoreVersions","id":"W","attributes":
                                    {"versionString":"1.1","appVersionState":"PREPARE_FOR_SUBMISSION"}}})")});
        world.listing().version = row.content;
        const auto version = world.releaser.createVersion(world.project, world.platform, "1.1");
        EXPECT_EQ(version.state, "PREPARE_FOR_SUBMISSION");
        EXPECT_EQ(
            world.api.requests(),
            Lines{
                std::string(R"(POST /v1/appStoreVersions {"data":{"attributes":)") + row.attributes +
                R"(,"relationships":{"app":{"data":{"id":"7","type":"apps"}}},"type":"appStoreVersions"}})"});
    }
}

TEST(Releaser, CreatesNoVersionForAProjectThatIsNotConnected) {
    ReadyWorld world;
    world.project.manifest.app.ascAppID.reset();
    EXPECT_THROW(world.releaser.createVersion(world.project, world.platform, "1.1"), SyncError);
}

TEST(Releaser, SetsTheDemoAccountPasswordOfTheReviewDetailOrMakesOne) {
    const auto answer = reply(200, R"({"data":{"type":"appStoreReviewDetails","id":"R"}})");
    ReadyWorld world({answer});
    world.remember();
    world.releaser.setDemoAccountPassword("secret", world.platform, world.project);
    EXPECT_EQ(
        world.api.requests(),
        Lines{
            R"(PATCH /v1/appStoreReviewDetails/R {"data":{"attributes":{"demoAccountPassword":"secret"},"id":"R","type":"appStoreReviewDetails"}})"});

    ReadyWorld fresh({answer});
    fresh.remoteVersion().reviewDetailID.reset();
    fresh.remember();
    fresh.releaser.setDemoAccountPassword("secret", fresh.platform, fresh.project);
    EXPECT_EQ(
        fresh.api.requests(),
        Lines{
            R"(POST /v1/appStoreReviewDetails {"data":{"attributes":{"demoAccountPassword":"secret"},"relationships":{"appStoreVersion":{"data":{"id":"V","type":"appStoreVersions"}}},"type":"appStoreReviewDetails"}})"});
}

TEST(Releaser, SetsNoDemoAccountPasswordWithoutAVersion) {
    ReadyWorld world;
    EXPECT_EQ(sentenceOf<ReleaseError>(
                  [&] { world.releaser.setDemoAccountPassword("secret", world.platform, world.project); }),
              kNoVersion);
}

// An app with an iOS version, which `build` may be attached to.
struct RemoteApp : RoutedClient {
    TemporaryFolder folder;
    ReadyVersion ready;

    explicit RemoteApp(const std::string& build) {
        ready.listing().media.clear();  // nor has the version any, so reference data aren't asked for
        answer("/v1/apps/7", R"({"data":{"type":"apps","id":"7"}})");
        answer("/v1/apps/7/appStoreVersions", R"({"data":[{"type":"v","id":"V","attributes":
            {"platform":"IOS","appVersionState":"PREPARE_FOR_SUBMISSION"}}]})");
        answer("/v1/appStoreVersions/V/appStoreReviewDetail", "", 404);
        answer("/v1/appStoreVersions/V",
               R"({"data":{"type":"v","id":"V","relationships":{"build":{"data":)" + build + "}}}}");
    }

    Preflight preflight() {
        return Releaser(client, ProjectStateStore(folder / "state")).preflight(ready.project, ready.platform);
    }
};

constexpr const char* kAttached = R"({"type":"builds","id":"B"})";

TEST(Releaser, PreflightLooksAtTheBuildThatTheVersionHas) {
    RemoteApp app(kAttached);
    app.answer("/v1/builds/B",
               R"({"data":{"type":"builds","id":"B","attributes":{"processingState":"FAILED"}}})");
    const auto preflight = app.preflight();
    EXPECT_EQ(app.paths().back(), "/v1/builds/B");
    ASSERT_GE(preflight.items.size(), 3u);
    EXPECT_EQ(preflight.items[2],
              (PreflightItem{PreflightItem::Check::buildProcessed, PreflightItem::Failed{{"FAILED"}}}));
    EXPECT_EQ(preflight.review.remote.ids.versions.at(StorePlatform::iOS).id, "V");
}

TEST(Releaser, PreflightAsksForNoBuildThatIsNotAttached) {
    RemoteApp app("null");
    const auto preflight = app.preflight();
    EXPECT_EQ(preflight.items[1],
              (PreflightItem{PreflightItem::Check::buildAttached, PreflightItem::Failed{{"—"}}}));
    for (const auto& path : app.paths()) EXPECT_EQ(path.find("/v1/builds"), std::string::npos);
}

TEST(Releaser, PreflightFailsWhereTheBuildCannotBeRead) {
    RemoteApp app(kAttached);
    app.answer("/v1/builds/B", "", 403);
    EXPECT_EQ(outcomeOf([&] { app.preflight(); }), "http 403 /v1/builds/B");
}

}  // namespace
}  // namespace kestrin
