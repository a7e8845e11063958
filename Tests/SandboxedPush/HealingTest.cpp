// Whatever happens on the way of a long push, and at whichever of its requests: the message is right, what is
// remembered is true, nothing is uploaded twice, and pushing again ends as if nothing had happened.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <regex>
#include <set>

#include "SyncEngine/Content/FlatValues.h"
#include "Tests/SandboxedPush/LongPush.h"

namespace kestrin {
namespace {

using Kind = Trouble::Kind;

constexpr const char* kReserve = "POST /v1/appAssetLibraryImages";
constexpr const char* kPart = "PUT /uploads/";
constexpr const char* kCommit = "PATCH /v1/appAssetLibraryImages/";

std::size_t ticksIn(const std::string& output) {
    std::size_t ticks = 0;
    for (auto at = output.find("  ✓ "); at != std::string::npos; at = output.find("  ✓ ", at + 1)) ++ticks;
    return ticks;
}

// A long push that nothing disturbs, and where it leads.
struct Undisturbed {
    StartingPoint start = LongPush::start();
    std::string remoteBefore, remoteAfter;
    std::map<std::string, std::string> remoteBesides;  // afterwards, but for the upload of that name
    FlatValues baseBefore;
    RemoteIDs idsBefore;
    std::vector<std::string> requests;  // "POST /v1/appInfoLocalizations"; the first has the number 1
    std::size_t firstWrite = 0;         // what comes before is the review
    std::size_t readBack = 0;           // the number of its first request
    std::size_t writes = 0;             // steps of the plan

    Undisturbed() {
        PushStage stage(start);
        const auto id = stage.project().manifest.projectID;
        baseBefore = *stage.store().base(id);
        idsBefore = *stage.store().remoteIDs(id);
        remoteBefore = stage.remoteContent();
        const auto ended = stage.push();
        EXPECT_EQ(ended.status, 0) << ended.output << ended.errors;
        remoteAfter = stage.remoteContent();
        for (const auto& [file, states] : stage.uploads()) remoteBesides[file] = stage.remoteContent(file);
        requests = stage.remote().log().lines();
        writes = ticksIn(ended.output);
        for (std::size_t n = 1; n <= requests.size(); ++n) {
            if (requests[n - 1].starts_with("GET /v1/apps/1234567890?")) readBack = n;
            if (firstWrite == 0 && !requests[n - 1].starts_with("GET")) firstWrite = n;
        }
        EXPECT_EQ(stage.run({"verify", stage.package()}).status, 0);
    }

    const std::string& request(std::size_t place) const { return requests.at(place - 1); }
    bool isOfReview(std::size_t place) const { return place < firstWrite; }
    bool isOfPlan(std::size_t place) const { return place >= firstWrite && place < readBack; }
};

const Undisturbed& undisturbed() {
    static const Undisturbed run;
    return run;
}

// Whether the client comes through trouble that passes by sending the request again. A POST isn't sent again where the
// service may have acted on it. The addresses of uploads take no token, so there is none to be refreshed.
bool isSentAgain(const Trouble& trouble, const std::string& request) {
    if (trouble.lasts || trouble.kind == Kind::conflict || trouble.kind == Kind::killedAfter) return false;
    if (trouble.kind == Kind::unauthorized) return !request.starts_with(kPart);
    return !request.starts_with("POST");
}

// Whether an asset is left in the library under the name of a file whose bytes it doesn't have.
bool leavesAnEmptyAsset(const Trouble& trouble, const std::string& request) {
    const bool isActedOn = trouble.kind == Kind::lostReply || trouble.kind == Kind::killedAfter;
    if (request == kReserve) return isActedOn;
    if (request.starts_with(kPart)) return !isSentAgain(trouble, request);
    return request.starts_with(kCommit) && !isActedOn && !isSentAgain(trouble, request);
}

// The files of the home folder that belong to the project: reference data are nobody's.
std::map<std::string, std::string> withoutRefData(std::map<std::string, std::string> home) {
    std::erase_if(home, [](const auto& file) { return file.first.ends_with("refdata.json"); });
    return home;
}

// "PATCH /v1/appInfos/{id}" for the request of any app info, without its query.
std::string kindOf(const std::string& request) {
    static const std::regex id("/([0-9a-f]{8}-[0-9a-f-]{27}|[0-9]{10})(?=/|$)");
    return std::regex_replace(request.substr(0, request.find('?')), id, "/{id}");
}

// But for videos, which go the way of images.
TEST(LongPush, HasEveryKindOfWriteThatAPushHas) {
    std::set<std::string> writes;
    for (const auto& request : undisturbed().requests) {
        if (!request.starts_with("GET")) writes.insert(kindOf(request));
    }
    EXPECT_THAT(writes,
                testing::ElementsAre("DELETE /v1/appAssetLibraryPlacements/{id}",                 //
                                     "PATCH /v1/appAssetLibraryImages/{id}",                      //
                                     "PATCH /v1/appCustomProductPageLocalizations/{id}",          //
                                     "PATCH /v1/appCustomProductPageVersions/{id}",               //
                                     "PATCH /v1/appCustomProductPages/{id}",                      //
                                     "PATCH /v1/appInfoLocalizations/{id}",                       //
                                     "PATCH /v1/appInfos/{id}",                                   //
                                     "PATCH /v1/appStoreReviewDetails/{id}",                      //
                                     "PATCH /v1/appStoreVersionExperimentTreatments/{id}",        //
                                     "PATCH /v1/appStoreVersionLocalizations/{id}",               //
                                     "PATCH /v1/appStoreVersions/{id}",                           //
                                     "PATCH /v2/appStoreVersionExperiments/{id}",                 //
                                     "POST /v1/appAssetLibraryImages",                            //
                                     "POST /v1/appAssetLibraryPlacementOrderingRequests",         //
                                     "POST /v1/appAssetLibraryPlacements",                        //
                                     "POST /v1/appCustomProductPageLocalizations",                //
                                     "POST /v1/appCustomProductPages",                            //
                                     "POST /v1/appInfoLocalizations",                             //
                                     "POST /v1/appStoreReviewDetails",                            //
                                     "POST /v1/appStoreVersionExperimentTreatmentLocalizations",  //
                                     "POST /v1/appStoreVersionExperimentTreatments",              //
                                     "POST /v1/appStoreVersionLocalizations",                     //
                                     "POST /v2/appStoreVersionExperiments",                       //
                                     "PUT /uploads/appAssetLibraryImages/{id}"));
}

TEST(LongPush, ReadsAllThatAPushReads) {
    const auto isRead = [](const std::string& kind) {
        const auto& requests = undisturbed().requests;
        return std::any_of(requests.begin(), requests.end(),
                           [&](const auto& request) { return kindOf(request) == "GET " + kind; });
    };
    for (const auto* kind : {"/v1/appAssetLibraries/{id}/images", "/v1/appAssetLibraries/{id}/videos",
                             "/v1/appAssetLibraryRefData", "/v1/appAssetLibraryImages/{id}",
                             "/v1/appCustomProductPages/{id}/appCustomProductPageVersions"})
        EXPECT_TRUE(isRead(kind)) << kind;
    EXPECT_TRUE(undisturbed().isOfReview(1));
    EXPECT_TRUE(undisturbed().isOfPlan(undisturbed().readBack - 1));
    EXPECT_LT(undisturbed().readBack, undisturbed().requests.size());
}

class Healing : public testing::TestWithParam<Trouble> {
 protected:
    const Undisturbed& expected = undisturbed();

    // The push, with trouble at one of its requests.
    Ended disturbedPush(PushStage& stage, std::size_t place) {
        stage.trouble().arm(GetParam(), place);
        auto ended = stage.push();
        stage.trouble().disarm();
        return ended;
    }

    // How the error begins; "" where the client comes through by itself.
    std::string sentence(const std::string& request) const {
        if (isSentAgain(GetParam(), request)) return sentenceOfTheSecondTime(request);
        switch (GetParam().kind) {
            case Kind::serverError:
                return "App Store Connect returned an error (500). Trouble 500.";
            case Kind::conflict:
                return "App Store Connect returned an error (409). Trouble 409.";
            case Kind::unauthorized:
                if (request.starts_with(kPart))
                    return "App Store Connect returned an error (401). Trouble 401.";
                return "App Store Connect didn’t accept this API key. Check the key ID and issuer ID, and "
                       "that "
                       "the key hasn’t been revoked.";
            case Kind::lostRequest:
            case Kind::lostReply:
                return "Couldn’t reach App Store Connect. Check your internet connection.";
            case Kind::killedAfter:
                return "";
        }
        return "";
    }

    // Some writes can't be done twice, and the service says so.
    std::string sentenceOfTheSecondTime(const std::string& request) const {
        if (GetParam().kind != Kind::lostReply) return "";
        if (request.starts_with("DELETE")) return "App Store Connect returned an error (404).";
        if (request.starts_with(kCommit)) return "App Store Connect returned an error (409).";
        return "";
    }

    void expectRightEnd(const Ended& ended, std::size_t place) const {
        EXPECT_EQ(ended.wasKilled, GetParam().kind == Kind::killedAfter);
        if (ended.wasKilled) return;
        const auto why = sentence(expected.request(place));
        const auto done = std::to_string(ticksIn(ended.output));
        if (why.empty()) {
            EXPECT_EQ(ended.status, 0);
            EXPECT_EQ(ended.errors, "");
            EXPECT_TRUE(ended.output.ends_with("✓ Pushed and verified " + done + " writes.\n"));
            return;
        }
        EXPECT_EQ(ended.status, 1);
        if (!expected.isOfPlan(place)) {
            EXPECT_EQ(ended.errors, "kestrin: " + why + "\n");
            return;
        }
        const auto beginning =
            "kestrin: stopped after " + done + " of " + std::to_string(expected.writes) + " writes: " + why;
        EXPECT_EQ(ended.errors.substr(0, beginning.size()), beginning);
        EXPECT_TRUE(ended.errors.ends_with(". Run push again to send the rest.\n")) << ended.errors;
        const auto lastLine = ended.output.rfind('\n', ended.output.size() - 2) + 1;
        EXPECT_EQ(ended.output.substr(lastLine, 6), "  ✗ ") << ended.output;
    }

    // What is remembered is what was remembered before or what App Store Connect holds now; the latter without fail
    // where a step has failed and all that went out before it was read back.
    void expectTrueMemory(PushStage& stage, const Ended& ended, std::size_t place) const {
        const bool isReadBack = !ended.wasKilled && ended.status != 0 && expected.isOfPlan(place);
        const bool isNew = withoutRefData(stage.here().home) != withoutRefData(expected.start.home);
        if (!isNew && !isReadBack) return;
        const auto id = stage.project().manifest.projectID;
        const auto remote = stage.remoteListing();
        const auto values = remote.values();
        const auto base = stage.store().base(id);
        ASSERT_TRUE(base);
        FlatValue::forEach(expected.baseBefore, *base, values,
                           [](const ContentKey& key, const std::string& before, const std::string& remembered,
                              const std::string& there) {
                               if (remembered == before) return;
                               EXPECT_EQ(remembered, there) << key;
                           });
        const auto ids = stage.store().remoteIDs(id);
        EXPECT_TRUE(ids == remote.ids || (!isReadBack && ids == expected.idsBefore));
        EXPECT_TRUE(!isReadBack || (*base != expected.baseBefore) == (ticksIn(ended.output) > 0));
        for (const auto& [asset, known] : stage.store().remoteAssets(id))
            EXPECT_TRUE(remote.assets.contains(asset)) << asset;
    }

    void expectEachFileOnce(PushStage& stage) const {
        const auto uploads = stage.uploads();
        EXPECT_EQ(uploads.size(), expected.remoteBesides.size());
        for (const auto& [file, states] : uploads) EXPECT_EQ(states.size(), 1u) << file;
        std::map<std::string, int> commits;
        const auto log = stage.remote().log();
        for (const auto& request : log.entries()) {
            if (request.line().starts_with(kCommit) && request.status == 200) ++commits[request.target];
        }
        for (const auto& [asset, count] : commits) EXPECT_EQ(count, 1) << asset;
    }

    // At how many requests an upload can be cut so that an empty asset is left.
    std::size_t cutsOfUploads() const {
        std::size_t parts = 0;
        for (const auto& request : expected.requests) parts += request.starts_with(kPart);
        EXPECT_GT(parts, LongPush::kUploads) << "one of the files has several";
        const auto isCut = [](const char* request) {
            return leavesAnEmptyAsset(GetParam(), request) ? 1u : 0u;
        };
        return LongPush::kUploads * (isCut(kReserve) + isCut(kCommit)) + parts * isCut(kPart);
    }

    void expectNothingDeletedButPlacements(PushStage& stage) const {
        const auto log = stage.remote().log();
        EXPECT_EQ(log.count("DELETE"), log.count("DELETE", "/v1/appAssetLibraryPlacements/"));
    }
};

TEST_P(Healing, PushingAgainEndsAsIfNothingHadHappened) {
    for (std::size_t place = 1; place <= expected.requests.size(); ++place) {
        const auto& request = expected.request(place);
        if (leavesAnEmptyAsset(GetParam(), request)) continue;  // the test below
        SCOPED_TRACE(std::to_string(place) + ": " + request);
        PushStage stage(expected.start);

        const auto ended = disturbedPush(stage, place);

        expectRightEnd(ended, place);
        expectTrueMemory(stage, ended, place);
        if (ended.status != 0 && expected.isOfReview(place)) {  // then the next push is the undisturbed one
            EXPECT_TRUE(stage.here().home == expected.start.home);
            EXPECT_TRUE(stage.remoteContent() == expected.remoteBefore);
            continue;
        }
        if (ended.wasKilled || ended.status != 0) {
            const auto again = stage.pushConflictsToo();
            EXPECT_EQ(again.status, 0) << ended.errors << again.output << again.errors;
        }
        stage.letProcessingEnd();
        EXPECT_TRUE(stage.remoteContent() == expected.remoteAfter);
        expectEachFileOnce(stage);
        expectNothingDeletedButPlacements(stage);
    }
}

// All that the next push goes by is the digest in the name of the asset, so it takes the empty one for the file. It
// places it, and is told by the service that all is as it was sent.
TEST_P(Healing, AnUploadCutBeforeItsCommitLeavesAnAssetThatTheNextPushTakesForTheFile) {
    std::size_t cuts = 0;
    for (std::size_t place = expected.firstWrite; place < expected.readBack; ++place) {
        const auto& request = expected.request(place);
        if (!leavesAnEmptyAsset(GetParam(), request)) continue;
        ++cuts;
        SCOPED_TRACE(std::to_string(place) + ": " + request);
        PushStage stage(expected.start);

        const auto ended = disturbedPush(stage, place);
        expectRightEnd(ended, place);
        expectTrueMemory(stage, ended, place);
        const auto again = stage.pushConflictsToo();

        EXPECT_EQ(again.status, 0) << again.output << again.errors;
        EXPECT_TRUE(again.errors.starts_with("App Store Connect still waits for the bytes of "))
            << again.errors;
        stage.letProcessingEnd();
        std::vector<std::string> empty;
        for (const auto& [file, states] : stage.uploads()) {
            if (states.front() == "AWAITING_UPLOAD") empty.push_back(file);
        }
        ASSERT_EQ(empty.size(), 1u);
        EXPECT_NE(again.errors.find(empty[0]), std::string::npos);
        EXPECT_TRUE(stage.remoteContent(empty[0]) == expected.remoteBesides.at(empty[0]));
        expectEachFileOnce(stage);
        expectNothingDeletedButPlacements(stage);
    }
    EXPECT_EQ(cuts, cutsOfUploads());
}

TEST(PassingTrouble, AtEveryRequestThatIsSentAgainIsComeThroughInOnePush) {
    for (const auto kind : {Kind::serverError, Kind::unauthorized, Kind::lostRequest}) {
        const Trouble trouble{kind, false};
        SCOPED_TRACE(nameOf(trouble));
        PushStage stage(undisturbed().start);
        stage.trouble().armAtEach(kind, [&](const std::string& line) { return isSentAgain(trouble, line); });

        const auto ended = stage.push();

        EXPECT_EQ(ended.status, 0) << ended.output;
        EXPECT_EQ(ended.errors, "");
        EXPECT_TRUE(stage.remoteContent() == undisturbed().remoteAfter);
        const auto& requests = undisturbed().requests;
        EXPECT_EQ(stage.trouble().strikes(),
                  std::count_if(requests.begin(), requests.end(),
                                [&](const auto& line) { return isSentAgain(trouble, line); }));
    }
}

INSTANTIATE_TEST_SUITE_P(AtEveryRequest, Healing,
                         testing::Values(Trouble{Kind::serverError, true}, Trouble{Kind::conflict, false},
                                         Trouble{Kind::unauthorized, true}, Trouble{Kind::lostRequest, true},
                                         Trouble{Kind::lostReply, false}, Trouble{Kind::lostReply, true},
                                         Trouble{Kind::killedAfter, false}),
                         testing::PrintToStringParamName());

}  // namespace
}  // namespace kestrin
