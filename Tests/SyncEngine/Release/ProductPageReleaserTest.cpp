#include "SyncEngine/Release/ProductPageReleaser.h"

#include <gtest/gtest.h>

#include <functional>

#include "SyncEngine/Pull/SyncError.h"
#include "SyncEngine/Release/ProductPageReleaseError.h"
#include "Tests/ASCKit/ClientOutcome.h"
#include "Tests/Support/ListingNames.h"
#include "Tests/Support/ScriptedClient.h"
#include "Tests/SyncEngine/Release/SubmissionTraffic.h"

namespace kestrin {
namespace {

using Refusal = ProductPageReleaseError;
using Lines = std::vector<std::string>;

const Slug kOther{"other"};

constexpr const char* kOneItem = R"({"data":[{"type":"reviewSubmissionItems","id":"I"}]})";
constexpr const char* kSubmissionOfPages = R"({"data":{"type":"reviewSubmissions","id":"S"}})";

std::string find(const std::string& platform) {
    return "GET /v1/reviewSubmissions?filter%5Bapp%5D=7&filter%5Bplatform%5D=" + platform +
           "&filter%5Bstate%5D=READY_FOR_REVIEW&limit=1";
}
std::string create(const std::string& platform) {
    return R"(POST /v1/reviewSubmissions {"data":{"attributes":{"platform":")" + platform +
           R"("},"relationships":{"app":{"data":{"id":"7","type":"apps"}}},"type":"reviewSubmissions"}})";
}
const std::string kCount = "GET /v1/reviewSubmissions/S/items?limit=200";
const std::string kAddPage =
    R"(POST /v1/reviewSubmissionItems {"data":{"attributes":{},"relationships":{"appCustomProductPageVersion":{"data":{"id":"PV","type":"appCustomProductPageVersions"}},"reviewSubmission":{"data":{"id":"S","type":"reviewSubmissions"}}},"type":"reviewSubmissionItems"}})";
const std::string kAddTest =
    R"(POST /v1/reviewSubmissionItems {"data":{"attributes":{},"relationships":{"appStoreVersionExperimentV2":{"data":{"id":"E","type":"appStoreVersionExperiments"}},"reviewSubmission":{"data":{"id":"S","type":"reviewSubmissions"}}},"type":"reviewSubmissionItems"}})";

// A page and a Mac test that were pushed and can be sent.
struct SentWorld {
    explicit SentWorld(std::vector<ScriptedTransport::Step> script = {}) : api(std::move(script)) {
        project.manifest.app.ascAppID = "7";
        review.remote.ids.pages[kPage] = {"P", {}, "PV", "PREPARE_FOR_SUBMISSION", {}, {}};
        review.remote.ids.experiments[kTest] = {"E", "PREPARE_FOR_SUBMISSION", {}};
        review.remote.experiments[kTest].platform = StorePlatform::macOS;
    }

    ScriptedClient api;
    Project project;
    PushReview review;
    ProductPageReleaser releaser{api.client};

    auto submitPage() { return releaser.submitPage(kPage, project, review); }
    auto submitTest() { return releaser.submitExperiment(kTest, project, review); }
    void startTest() { releaser.startExperiment(kTest, review); }
};

using Operation = void (*)(SentWorld&);
void submitPage(SentWorld& world) {
    world.submitPage();
}
void submitTest(SentWorld& world) {
    world.submitTest();
}
void startTest(SentWorld& world) {
    world.startTest();
}

// The error, or nothing when the call got as far as the first request.
std::optional<Refusal::Kind> refusal(SentWorld& world, Operation operation) {
    try {
        operation(world);
    } catch (const Refusal& failure) {
        return failure.kind;
    } catch (const ASCError&) {
        return std::nullopt;
    }
    return std::nullopt;
}

SentWorld refusingWorld() {
    return SentWorld(times(1, reply(403, "{}")));
}

TEST(ProductPageReleaser, SendsAPageUnderIOSInANewSubmission) {
    SentWorld world(
        {reply(200, kNone), reply(201, kSubmissionOfPages), reply(201, kItem), reply(200, kSent)});
    const auto submission = world.submitPage();
    ASSERT_TRUE(submission);
    EXPECT_EQ(submission->state, "WAITING_FOR_REVIEW");
    EXPECT_EQ(world.api.requests(), (Lines{find("IOS"), create("IOS"), kAddPage, kSend}));
}

TEST(ProductPageReleaser, SendsATestUnderItsOwnPlatform) {
    SentWorld world(
        {reply(200, kNone), reply(201, kSubmissionOfPages), reply(201, kItem), reply(200, kSent)});
    EXPECT_TRUE(world.submitTest());
    EXPECT_EQ(world.api.requests(), (Lines{find("MAC_OS"), create("MAC_OS"), kAddTest, kSend}));
}

TEST(ProductPageReleaser, SendsATestOfUnknownPlatformUnderIOS) {
    SentWorld world(
        {reply(200, kNone), reply(201, kSubmissionOfPages), reply(201, kItem), reply(200, kSent)});
    world.review.remote.experiments.clear();
    world.submitTest();
    EXPECT_EQ(world.api.requests()[0], find("IOS"));
}

TEST(ProductPageReleaser, TakesAnEmptyOpenSubmissionUpAgain) {
    SentWorld world({reply(200, kSubmissionOfPages), reply(200, kNone), reply(201, kItem), reply(204)});
    EXPECT_FALSE(world.submitPage()) << "an empty reply says nothing and is a success";
    EXPECT_EQ(world.api.requests(), (Lines{find("IOS"), kCount, kAddPage, kSend}));
}

TEST(ProductPageReleaser, NeverJoinsASubmissionThatHoldsSomething) {
    for (const auto operation : {submitPage, submitTest}) {
        SentWorld world({reply(200, kSubmissionOfPages), reply(200, kOneItem)});
        EXPECT_EQ(refusal(world, operation), Refusal::Kind(Refusal::SubmissionInProgress{}));
        EXPECT_EQ(world.api.requests().size(), 2u);
    }
}

TEST(ProductPageReleaser, EndsWhenTheItemIsRefusedAsAConflict) {
    SentWorld world({reply(200, kSubmissionOfPages), reply(200, kNone), reply(409, "{}")});
    EXPECT_EQ(outcomeOf([&] { world.submitPage(); }), "http 409 /v1/reviewSubmissionItems");
    EXPECT_TRUE(world.api.server->isAtTheEnd()) << "nothing was sent";
}

TEST(ProductPageReleaser, SendsAndStartsNothingThatIsNotPushed) {
    for (const auto operation : {submitPage, submitTest, startTest}) {
        SentWorld world;
        world.review.remote.ids.pages.clear();
        world.review.remote.ids.experiments.clear();
        EXPECT_EQ(refusal(world, operation), Refusal::Kind(Refusal::NotPushed{}));
        EXPECT_TRUE(world.api.requests().empty());
    }
}

struct ChangeRow {
    const char* when;
    Operation operation;
    ContentKey key;
    bool isOwn;
};

TEST(ProductPageReleaser, SendsNothingWithUnpushedChangesOfItsOwn) {
    const ChangeRow rows[] = {
        {"the page", submitPage, ContentKey::Page{kPage, PageAttribute::visible}, true},
        {"its promotional text", submitPage, ContentKey::PagePromotionalText{kPage, kGerman}, true},
        {"its media", submitPage, ContentKey::PagePlacements{kPage, kGerman, kSlot}, true},
        {"another page", submitPage, ContentKey::Page{kOther, PageAttribute::visible}, false},
        {"another page's media", submitPage, ContentKey::PagePlacements{kOther, kGerman, kSlot}, false},
        {"a test of that name", submitPage, ContentKey::Experiment{kPage, ExperimentAttribute::name}, false},
        {"the version", submitPage, ContentKey::Version{StorePlatform::iOS, VersionAttribute::copyright},
         false},
        {"the test", submitTest, ContentKey::Experiment{kTest, ExperimentAttribute::name}, true},
        {"a treatment", submitTest, ContentKey::Treatment{kTest, kBlue, TreatmentAttribute::name}, true},
        {"a treatment's media", submitTest, ContentKey::TreatmentPlacements{kTest, kBlue, kGerman, kSlot},
         true},
        {"another test's treatment", submitTest,
         ContentKey::Treatment{kOther, kBlue, TreatmentAttribute::name}, false},
        {"a page of that name", submitTest, ContentKey::Page{kTest, PageAttribute::name}, false},
    };
    const auto unpushed = Refusal::Kind(Refusal::UnpushedChanges{});
    for (const auto& row : rows) {
        SCOPED_TRACE(row.when);
        for (const auto list : {&ChangeSet::changes, &ChangeSet::conflicts, &ChangeSet::drift}) {
            auto world = refusingWorld();
            (world.review.changeSet.*list).push_back({row.key, "a", "b"});
            const bool isRefused = row.isOwn && list != &ChangeSet::drift;
            EXPECT_EQ(refusal(world, row.operation), isRefused ? std::optional(unpushed) : std::nullopt);
            EXPECT_EQ(world.api.requests().size(), isRefused ? 0u : 1u);
        }
    }
}

TEST(ProductPageReleaser, SendsOnlyWhatIsInAStateToBeSent) {
    struct Row {
        const char* state;
        bool isSent;
    };
    const Row rows[] = {
        {"PREPARE_FOR_SUBMISSION", true}, {"READY_FOR_REVIEW", true}, {"REJECTED", true},
        {"WAITING_FOR_REVIEW", false},    {"APPROVED", false},        {"", false},
    };
    for (const Row& row : rows) {
        for (const auto operation : {submitPage, submitTest}) {
            SCOPED_TRACE(row.state);
            auto world = refusingWorld();
            world.review.remote.ids.pages[kPage].versionState = row.state;
            world.review.remote.ids.experiments[kTest].state = row.state;
            const Refusal::Kind refused = Refusal::NotSubmittable{row.state};
            EXPECT_EQ(refusal(world, operation), row.isSent ? std::nullopt : std::optional(refused));
        }
    }
}

TEST(ProductPageReleaser, LooksForChangesBeforeTheStateAndForTheAppAfterIt) {
    SentWorld world;
    world.project.manifest.app.ascAppID.reset();
    world.review.remote.ids.pages[kPage].versionState = "APPROVED";
    world.review.changeSet.changes = {{ContentKey::Page{kPage, PageAttribute::name}, "a", "b"}};
    EXPECT_EQ(refusal(world, submitPage), Refusal::Kind(Refusal::UnpushedChanges{}));
    world.review.changeSet = {};
    EXPECT_EQ(refusal(world, submitPage), Refusal::Kind(Refusal::NotSubmittable{"APPROVED"}));
    world.review.remote.ids.pages[kPage].versionState = "REJECTED";
    EXPECT_THROW(world.submitPage(), SyncError);
    EXPECT_TRUE(world.api.requests().empty());
}

TEST(ProductPageReleaser, StartsAnApprovedTest) {
    for (const auto* state : {"APPROVED", "ACCEPTED"}) {
        SCOPED_TRACE(state);
        SentWorld world({reply(200, R"({"data":{"type":"appStoreVersionExperiments","id":"E"}})")});
        world.review.remote.ids.experiments[kTest].state = state;
        world.startTest();
        EXPECT_EQ(
            world.api.requests(),
            Lines{
                R"(PATCH /v2/appStoreVersionExperiments/E {"data":{"attributes":{"started":true},"id":"E","type":"appStoreVersionExperiments"}})"});
    }
}

TEST(ProductPageReleaser, StartsNoOtherTest) {
    for (const auto* state : {"READY_FOR_REVIEW", "REJECTED", "IN_REVIEW", ""}) {
        SentWorld world;
        world.review.remote.ids.experiments[kTest].state = state;
        EXPECT_EQ(refusal(world, startTest), Refusal::Kind(Refusal::NotStartable{state}));
        EXPECT_TRUE(world.api.requests().empty());
    }
}

}  // namespace
}  // namespace kestrin
