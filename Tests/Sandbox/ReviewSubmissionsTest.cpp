// From an empty submission to the verdict of App Review.
#include "Sandbox/Resources/Reviewing.h"

#include "Tests/Sandbox/SandboxFixture.h"

namespace kestrin::sandbox {
namespace {

using testing::ElementsAre;

class ReviewSubmissions : public SandboxFixture {
 protected:
    ReviewSubmissions() {
        version = idOf("appStoreVersions", {{"versionString", "2.4"}});
        page = idOf("appCustomProductPageVersions", {{"state", "PREPARE_FOR_SUBMISSION"}});
        experiment = idOf("appStoreVersionExperiments", {{"state", "PREPARE_FOR_SUBMISSION"}});
    }

    // Gives the version everything that a review needs.
    void complete() {
        edit("appStoreVersionLocalizations", {{"appStoreVersion", version}, {"locale", "ja"}}, "whatsNew",
             "月の満ち欠け。");
        edit("builds", {{"version", "241"}}, "usesNonExemptEncryption", false);
        sandbox.service().with([&](State& state) {
            state.store.relate(state.store.at("appStoreVersions", version), "build",
                               state.store.first("builds", {{"version", "241"}})->ref);
        });
    }
    void edit(const std::string& type, const std::vector<std::pair<std::string, std::string>>& conditions,
              const std::string& attribute, const Json& value) {
        const auto id = idOf(type, conditions);
        sandbox.service().with([&](State& state) { state.store.at(type, id).attributes[attribute] = value; });
    }
    std::string stateOf(const std::string& type, const std::string& id) {
        return sandbox.service().with([&](State& state) { return reviewState(state.store.at(type, id)); });
    }

    Received create(const Json& attributes = {{"platform", "IOS"}}, const std::string& app = kApp) {
        return post("/v1/reviewSubmissions",
                    createBody("reviewSubmissions", attributes, {{"app", {"apps", app}}}));
    }
    std::string made() { return create().json["data"]["id"]; }
    Received add(const std::string& submission, const std::string& relationship, const Ref& thing) {
        return post(
            "/v1/reviewSubmissionItems",
            createBody("reviewSubmissionItems", Json::object(),
                       {{"reviewSubmission", {"reviewSubmissions", submission}}, {relationship, thing}}));
    }
    Received addVersion(const std::string& submission) {
        return add(submission, "appStoreVersion", {"appStoreVersions", version});
    }
    Received addPage(const std::string& submission) {
        return add(submission, "appCustomProductPageVersion", {"appCustomProductPageVersions", page});
    }
    Received addExperiment(const std::string& submission,
                           const std::string& relationship = "appStoreVersionExperimentV2") {
        return add(submission, relationship, {"appStoreVersionExperiments", experiment});
    }
    Received update(const std::string& submission, const Json& attributes) {
        return patch("/v1/reviewSubmissions/" + submission,
                     updateBody("reviewSubmissions", submission, attributes));
    }
    Received submit(const std::string& submission) { return update(submission, {{"submitted", true}}); }
    Received open() {
        return get(
            "/v1/reviewSubmissions?filter%5Bapp%5D=1234567890&filter%5Bplatform%5D=IOS&"
            "filter%5Bstate%5D=READY_FOR_REVIEW&limit=1");
    }
    Received items(const std::string& submission) {
        return get("/v1/reviewSubmissions/" + submission + "/items?limit=200");
    }
    Received review(const std::string& verdict) {
        return sendBare({"POST", "/sandbox/review", {}, dumped({{"verdict", verdict}}), 1});
    }
    // The version, complete and with App Review.
    std::string submittedVersion() {
        complete();
        const auto submission = made();
        EXPECT_EQ(addVersion(submission).status, 201);
        EXPECT_EQ(submit(submission).status, 200);
        return submission;
    }

    std::string version, page, experiment;
};

TEST_F(ReviewSubmissions, AreMadeAndFoundWhileTheyAreOpen) {
    EXPECT_THAT(open().ids(), ElementsAre());
    const auto created = create();
    ASSERT_EQ(created.status, 201);
    EXPECT_EQ(created.attributes()["state"], "READY_FOR_REVIEW");
    EXPECT_TRUE(created.attributes()["submittedDate"].is_null());
    EXPECT_THAT(open().ids(), ElementsAre(created.json["data"]["id"].get<std::string>()));
}

TEST_F(ReviewSubmissions, AreListedForOneAppOnly) {
    const auto reply = get("/v1/reviewSubmissions");
    EXPECT_EQ(reply.status, 400);
    EXPECT_EQ(reply.code(), "PARAMETER_ERROR.REQUIRED");
    EXPECT_EQ(reply.place(), "filter[app]");
}

TEST_F(ReviewSubmissions, AreOneOfAPlatformUntilItIsSent) {
    const auto first = made();
    EXPECT_EQ(create().code(), "STATE_ERROR.ENTITY_STATE_INVALID");
    EXPECT_EQ(create({{"platform", "MAC_OS"}}).status, 201);
    EXPECT_EQ(create({{"platform", "IOS"}}, "1234567891").status, 201);
    addPage(first);
    submit(first);
    EXPECT_EQ(create().status, 201);
}

TEST_F(ReviewSubmissions, AreListedTheNewestFirst) {
    const auto first = made();
    const auto second = create({{"platform", "MAC_OS"}}).json["data"]["id"].get<std::string>();
    EXPECT_THAT(get("/v1/reviewSubmissions?filter%5Bapp%5D=1234567890").ids(), ElementsAre(second, first));
}

TEST_F(ReviewSubmissions, TakeEachKindOfThing) {
    complete();
    const auto submission = made();
    EXPECT_EQ(addVersion(submission).status, 201);
    EXPECT_EQ(addPage(submission).status, 201);
    EXPECT_EQ(addExperiment(submission, "appStoreVersionExperiment").status, 201)
        << "by the name that the first API has for it";

    EXPECT_EQ(items(submission).ids().size(), 3u);
    EXPECT_EQ(items(submission).attributes()["state"], "READY_FOR_REVIEW");
    EXPECT_EQ(stateOf("appStoreVersions", version), "READY_FOR_REVIEW");
    EXPECT_EQ(stateOf("appCustomProductPageVersions", page), "READY_FOR_REVIEW");
    EXPECT_EQ(stateOf("appStoreVersionExperiments", experiment), "READY_FOR_REVIEW");
}

TEST_F(ReviewSubmissions, RefuseAnItemOfNothingOrOfTwoThings) {
    const auto submission = made();
    const auto item = [&](const std::vector<std::pair<std::string, Ref>>& related) {
        return post("/v1/reviewSubmissionItems",
                    createBody("reviewSubmissionItems", Json::object(), related));
    };
    const std::pair<std::string, Ref> container{"reviewSubmission", {"reviewSubmissions", submission}};
    const std::pair<std::string, Ref> aPage{"appCustomProductPageVersion",
                                            {"appCustomProductPageVersions", page}};
    const std::pair<std::string, Ref> aTest{"appStoreVersionExperimentV2",
                                            {"appStoreVersionExperiments", experiment}};
    EXPECT_EQ(item({container}).code(), "ENTITY_ERROR.RELATIONSHIP.REQUIRED");
    EXPECT_EQ(item({container, aPage, aTest}).code(), "ENTITY_ERROR.RELATIONSHIP.INVALID");
    EXPECT_EQ(item({aPage}).place(), "/data/relationships/reviewSubmission");
    EXPECT_EQ(items(submission).ids().size(), 0u);
}

TEST_F(ReviewSubmissions, RefuseAThingOfAnotherPlatformOrApp) {
    complete();
    const auto mac = create({{"platform", "MAC_OS"}}).json["data"]["id"].get<std::string>();
    EXPECT_EQ(addVersion(mac).place(), "/data/relationships/appStoreVersion");
    EXPECT_EQ(addExperiment(mac).code(), "ENTITY_ERROR.RELATIONSHIP.INVALID");
    const auto other = create({{"platform", "IOS"}}, "1234567891").json["data"]["id"].get<std::string>();
    EXPECT_EQ(addPage(other).code(), "ENTITY_ERROR.RELATIONSHIP.INVALID");
}

TEST_F(ReviewSubmissions, RefuseAThingThatIsInASubmissionAlready) {
    const auto submission = made();
    EXPECT_EQ(addPage(submission).status, 201);
    EXPECT_EQ(addPage(submission).code(), "STATE_ERROR.ITEM_PART_OF_ANOTHER_SUBMISSION");
    EXPECT_EQ(items(submission).ids().size(), 1u);
}

TEST_F(ReviewSubmissions, RefuseAThingThatIsNotBeingPrepared) {
    const auto submission = made();
    const auto onSale = idOf("appStoreVersions", {{"versionString", "2.3"}, {"platform", "IOS"}});
    EXPECT_EQ(add(submission, "appStoreVersion", {"appStoreVersions", onSale}).code(),
              "STATE_ERROR.ENTITY_STATE_INVALID");
}

TEST_F(ReviewSubmissions, TellEverythingThatAVersionLacks) {
    edit("appStoreVersions", {{"versionString", "2.4"}}, "copyright", nullptr);
    edit("appStoreVersionLocalizations", {{"appStoreVersion", version}, {"locale", "de-DE"}}, "supportUrl",
         "");
    edit("appStoreReviewDetails", {{"appStoreVersion", version}}, "contactPhone", nullptr);
    const auto detail = idOf("appStoreReviewDetails", {{"appStoreVersion", version}});
    const auto german =
        idOf("appStoreVersionLocalizations", {{"appStoreVersion", version}, {"locale", "de-DE"}});
    const auto japanese =
        idOf("appStoreVersionLocalizations", {{"appStoreVersion", version}, {"locale", "ja"}});

    const auto refused = addVersion(made());

    ASSERT_EQ(refused.status, 409);
    EXPECT_EQ(refused.code(), "STATE_ERROR.ENTITY_STATE_INVALID");
    const auto associated = refused.json["errors"][0]["meta"]["associatedErrors"];
    std::map<std::string, std::vector<std::string>> told;
    for (const auto& [path, list] : associated.items()) {
        for (const auto& each : list) told[path].push_back(each["source"]["pointer"]);
    }
    const std::map<std::string, std::vector<std::string>> expected{
        {"/v1/appStoreVersions/" + version, {"/data/attributes/copyright", "/data/relationships/build"}},
        {"/v1/appStoreVersionLocalizations/" + german, {"/data/attributes/supportUrl"}},
        {"/v1/appStoreVersionLocalizations/" + japanese, {"/data/attributes/whatsNew"}},
        {"/v1/appStoreReviewDetails/" + detail, {"/data/attributes/contactPhone"}}};
    EXPECT_EQ(told, expected);
    EXPECT_EQ(stateOf("appStoreVersions", version), "PREPARE_FOR_SUBMISSION");
}

struct Lack {
    const char* what;
    std::function<void(State&, const std::string& version)> take;
    const char* pointer;
};

const Lack kLacks[] = {
    {"App Review details",
     [](State& state, const std::string& version) {
         state.store.remove(state.store.first("appStoreReviewDetails", {{"appStoreVersion", version}})->ref);
     },
     "/data/relationships/appStoreReviewDetail"},
    {"the password of the demo account",
     [](State& state, const std::string& version) {
         state.store.first("appStoreReviewDetails", {{"appStoreVersion", version}})
             ->attributes["demoAccountPassword"] = nullptr;
     },
     "/data/attributes/demoAccountPassword"},
    {"screenshots in the primary language",
     [](State& state, const std::string& version) {
         const auto english =
             state.store
                 .first("appStoreVersionLocalizations", {{"appStoreVersion", version}, {"locale", "en-US"}})
                 ->id();
         for (const auto* placement :
              state.store.pointing("appAssetLibraryPlacements", "appStoreVersionLocalization", english)) {
             state.store.remove(placement->ref);
         }
     },
     "/data/relationships/placements"},
    {"an answer about encryption",
     [](State& state, const std::string&) {
         state.store.first("builds", {{"version", "241"}})->attributes["usesNonExemptEncryption"] = nullptr;
     },
     "/data/attributes/usesNonExemptEncryption"},
    {"a build that hasn't expired",
     [](State& state, const std::string&) {
         state.store.first("builds", {{"version", "241"}})->attributes["expired"] = true;
     },
     "/data/attributes/expired"},
    {"a privacy policy",
     [](State& state, const std::string&) {
         state.store
             .first("appInfoLocalizations",
                    {{"appInfo.state", "PREPARE_FOR_SUBMISSION"}, {"locale", "en-US"}})
             ->attributes["privacyPolicyUrl"] = nullptr;
     },
     "/data/attributes/privacyPolicyUrl"},
    {"a category",
     [](State& state, const std::string&) {
         state.store.relate(*state.store.first("appInfos", {{"state", "PREPARE_FOR_SUBMISSION"}}),
                            "primaryCategory", std::nullopt);
     },
     "/data/relationships/primaryCategory"},
};

TEST_F(ReviewSubmissions, AskAVersionForEachThingThatAReviewNeeds) {
    complete();
    const auto whole = sandbox.service().with([](State& state) { return stateJSON(state); });
    for (const auto& row : kLacks) {
        SCOPED_TRACE(row.what);
        EXPECT_EQ(sendBare({"PUT", "/sandbox/state", {}, dumped(whole), 1}).status, 204);
        sandbox.service().with([&](State& state) { row.take(state, version); });
        const auto refused = addVersion(made());
        ASSERT_EQ(refused.status, 409);
        const auto associated = refused.json["errors"][0]["meta"]["associatedErrors"];
        ASSERT_EQ(associated.size(), 1u);
        EXPECT_EQ(associated.begin().value()[0]["source"]["pointer"], row.pointer);
    }
}

TEST_F(ReviewSubmissions, AskForWhatIsNewOnlyInAnUpdate) {
    complete();
    edit("appStoreVersionLocalizations", {{"appStoreVersion", version}, {"locale", "ja"}}, "whatsNew",
         nullptr);
    sandbox.service().with([&](State& state) {
        state.store.remove(
            state.store.first("appStoreVersions", {{"versionString", "2.3"}, {"platform", "IOS"}})->ref);
    });
    EXPECT_EQ(addVersion(made()).status, 201);
}

TEST_F(ReviewSubmissions, AskAPageForALocalizationAndATestForATreatment) {
    sandbox.service().with([&](State& state) {
        for (const auto* each :
             state.store.pointing("appCustomProductPageLocalizations", "appCustomProductPageVersion", page)) {
            state.store.remove(each->ref);
        }
        for (const auto* each : state.store.pointing("appStoreVersionExperimentTreatments",
                                                     "appStoreVersionExperimentV2", experiment)) {
            state.store.remove(each->ref);
        }
    });
    const auto submission = made();
    EXPECT_EQ(addPage(submission).code(), "STATE_ERROR.ENTITY_STATE_INVALID");
    EXPECT_EQ(addExperiment(submission).code(), "STATE_ERROR.ENTITY_STATE_INVALID");
}

TEST_F(ReviewSubmissions, GoToAppReviewWithEverythingInThem) {
    const auto submission = submittedVersion();

    const auto read =
        get("/v1/reviewSubmissions?filter%5Bapp%5D=1234567890&include=appStoreVersionForReview");
    EXPECT_EQ(read.attributes()["state"], "WAITING_FOR_REVIEW");
    EXPECT_FALSE(read.attributes()["submittedDate"].is_null());
    EXPECT_EQ(read.json["included"][0]["id"], version);
    EXPECT_EQ(stateOf("appStoreVersions", version), "WAITING_FOR_REVIEW");
    EXPECT_FALSE(idOf("appInfos", {{"state", "WAITING_FOR_REVIEW"}}).empty());
    const auto text = idOf("appStoreVersionLocalizations", {{"appStoreVersion", version}, {"locale", "ja"}});
    EXPECT_EQ(patch("/v1/appStoreVersionLocalizations/" + text,
                    updateBody("appStoreVersionLocalizations", text, {{"whatsNew", "x"}}))
                  .code(),
              "STATE_ERROR.ENTITY_STATE_INVALID");
}

TEST_F(ReviewSubmissions, TakeTheMediaAlongThatWereNotApprovedYet) {
    const auto moon = idOf("appAssetLibraryImages", {{"fileName", "moon.png"}});
    const auto tide = idOf("appAssetLibraryImages", {{"fileName", "tide-1.png"}});
    const auto submission = made();
    EXPECT_EQ(addExperiment(submission).status, 201);
    EXPECT_EQ(get("/v1/appAssetLibraryImages/" + moon).attributes()["state"], "READY_FOR_REVIEW");
    submit(submission);
    EXPECT_EQ(get("/v1/appAssetLibraryImages/" + moon).attributes()["state"], "WAITING_FOR_REVIEW");
    review("approve");
    EXPECT_EQ(get("/v1/appAssetLibraryImages/" + moon).attributes()["state"], "APPROVED");
    EXPECT_EQ(get("/v1/appAssetLibraryImages/" + tide).attributes()["state"], "APPROVED");
}

TEST_F(ReviewSubmissions, AreNotSentEmptyNorTwice) {
    const auto submission = made();
    EXPECT_EQ(submit(submission).code(), "STATE_ERROR.ENTITY_STATE_INVALID");
    addPage(submission);
    EXPECT_EQ(submit(submission).status, 200);
    EXPECT_EQ(submit(submission).code(), "STATE_ERROR.ENTITY_STATE_INVALID");
    EXPECT_EQ(addExperiment(submission).code(), "STATE_ERROR.ENTITY_STATE_INVALID");
}

TEST_F(ReviewSubmissions, AreNotSentWithAThingThatLacksSomethingMeanwhile) {
    complete();
    const auto submission = made();
    addVersion(submission);
    edit("appStoreVersions", {{"versionString", "2.4"}}, "copyright", nullptr);
    EXPECT_EQ(submit(submission).status, 409);
    EXPECT_EQ(stateOf("appStoreVersions", version), "READY_FOR_REVIEW");
}

struct BadUpdate {
    const char* when;
    Json attributes;
    const char* pointer;
};

TEST_F(ReviewSubmissions, RefuseAWrongChange) {
    const auto submission = made();
    addPage(submission);
    const BadUpdate rows[] = {
        {"not submitted", {{"submitted", false}}, "submitted"},
        {"not cancelled", {{"canceled", false}}, "canceled"},
        {"sent and cancelled", {{"submitted", true}, {"canceled", true}}, "canceled"},
        {"a text", {{"submitted", "true"}}, "submitted"},
        {"another platform with an item in it", {{"platform", "MAC_OS"}}, "platform"},
        {"no platform", {{"platform", "ANDROID"}}, "platform"},
        {"the state itself", {{"state", "COMPLETE"}}, "state"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.when);
        const auto reply = update(submission, row.attributes);
        EXPECT_EQ(reply.status, 409);
        EXPECT_EQ(reply.place(), std::string("/data/attributes/") + row.pointer);
    }
    EXPECT_EQ(open().ids().size(), 1u);
}

TEST_F(ReviewSubmissions, AreTakenBackAndAfterAWhileDone) {
    const auto submission = submittedVersion();

    EXPECT_EQ(update(submission, {{"canceled", true}}).attributes()["state"], "CANCELING");

    EXPECT_EQ(stateOf("appStoreVersions", version), "DEVELOPER_REJECTED");
    EXPECT_FALSE(idOf("appInfos", {{"state", "DEVELOPER_REJECTED"}}).empty());
    EXPECT_EQ(items(submission).attributes()["state"], "REMOVED");
    const auto list = [&] {
        return get("/v1/reviewSubmissions?filter%5Bapp%5D=1234567890").attributes()["state"];
    };
    EXPECT_EQ(list(), "CANCELING");
    EXPECT_EQ(list(), "CANCELING");
    EXPECT_EQ(list(), "COMPLETE");
    EXPECT_EQ(update(submission, {{"canceled", true}}).status, 409);
    EXPECT_EQ(addVersion(made()).status, 201) << "it can be submitted again";
}

TEST_F(ReviewSubmissions, AreNotTakenBackBeforeTheyAreSent) {
    EXPECT_EQ(update(made(), {{"canceled", true}}).code(), "STATE_ERROR.ENTITY_STATE_INVALID");
}

TEST_F(ReviewSubmissions, PutAPageBackIntoPreparationWhenTheyAreTakenBack) {
    const auto submission = made();
    addPage(submission);
    submit(submission);
    update(submission, {{"canceled", true}});
    EXPECT_EQ(stateOf("appCustomProductPageVersions", page), "PREPARE_FOR_SUBMISSION");
}

TEST_F(ReviewSubmissions, ReleaseAnApprovedVersion) {
    const auto before = idOf("appStoreVersions", {{"versionString", "2.3"}, {"platform", "IOS"}});
    const auto mac = idOf("appStoreVersions", {{"versionString", "2.3"}, {"platform", "MAC_OS"}});
    const auto submission = submittedVersion();

    EXPECT_EQ(review("begin").status, 200);
    EXPECT_EQ(stateOf("appStoreVersions", version), "IN_REVIEW");
    EXPECT_EQ(review("approve").status, 200);

    EXPECT_EQ(stateOf("reviewSubmissions", submission), "COMPLETE");
    EXPECT_EQ(stateOf("appStoreVersions", version), "READY_FOR_DISTRIBUTION");
    EXPECT_EQ(stateOf("appStoreVersions", before), "REPLACED_WITH_NEW_VERSION");
    EXPECT_EQ(stateOf("appStoreVersions", mac), "READY_FOR_DISTRIBUTION");
    const auto infos = get("/v1/apps/1234567890/appInfos");
    EXPECT_EQ(infos.attributes(0)["state"], "REPLACED_WITH_NEW_INFO");
    EXPECT_EQ(infos.attributes(1)["state"], "READY_FOR_DISTRIBUTION");
    EXPECT_EQ(review("approve").status, 404) << "nothing is with App Review any more";
}

struct ReleaseRow {
    const char* releaseType;
    const char* versionState;
    const char* appInfoState;
};

TEST_F(ReviewSubmissions, LeaveAnApprovedVersionToItsReleaseType) {
    for (const auto& row : {ReleaseRow{"MANUAL", "PENDING_DEVELOPER_RELEASE", "PENDING_RELEASE"},
                            ReleaseRow{"SCHEDULED", "PENDING_APPLE_RELEASE", "PENDING_RELEASE"}}) {
        SCOPED_TRACE(row.releaseType);
        edit("appStoreVersions", {{"versionString", "2.4"}}, "releaseType", row.releaseType);
        sandbox.service().with([&](State& state) {
            setReviewState(state, state.store.at("appStoreVersions", version), "PREPARE_FOR_SUBMISSION");
        });
        submittedVersion();
        review("approve");
        EXPECT_EQ(stateOf("appStoreVersions", version), row.versionState);
        EXPECT_FALSE(idOf("appInfos", {{"state", row.appInfoState}}).empty());
    }
}

TEST_F(ReviewSubmissions, HaveUnresolvedIssuesAfterARejectionAndCanBeSentAgain) {
    const auto submission = submittedVersion();
    review("reject");
    EXPECT_EQ(stateOf("reviewSubmissions", submission), "UNRESOLVED_ISSUES");
    EXPECT_EQ(stateOf("appStoreVersions", version), "REJECTED");
    EXPECT_EQ(items(submission).attributes()["state"], "REJECTED");
    EXPECT_EQ(open().ids().size(), 0u);

    const auto another = made();
    EXPECT_EQ(addVersion(another).code(), "STATE_ERROR.ITEM_PART_OF_ANOTHER_SUBMISSION");
    EXPECT_EQ(submit(submission).status, 200);
    EXPECT_EQ(stateOf("appStoreVersions", version), "WAITING_FOR_REVIEW");
}

TEST_F(ReviewSubmissions, ApproveAPageAndRetireTheVersionBeforeIt) {
    const auto owner = sandbox.service().with([&](State& state) {
        return state.store.at("appCustomProductPageVersions", page).relatedID("appCustomProductPage");
    });
    const auto before = sandbox.service().with([&](State& state) {
        return state.store
            .add("appCustomProductPageVersions", {{"version", "0"}, {"state", "APPROVED"}},
                 {{"appCustomProductPage", {"appCustomProductPages", owner}}})
            .id();
    });
    const auto submission = made();
    addPage(submission);
    submit(submission);
    review("approve");
    EXPECT_EQ(stateOf("appCustomProductPageVersions", page), "APPROVED");
    EXPECT_EQ(stateOf("appCustomProductPageVersions", before), "REPLACED_WITH_NEW_VERSION");
}

TEST_F(ReviewSubmissions, LetATestStartOnceItIsApproved) {
    const auto start = [&] {
        return patch("/v2/appStoreVersionExperiments/" + experiment,
                     updateBody("appStoreVersionExperiments", experiment, {{"started", true}}));
    };
    const auto submission = made();
    addExperiment(submission);
    submit(submission);
    EXPECT_EQ(start().status, 409);
    review("approve");
    EXPECT_EQ(start().status, 200);
}

TEST_F(ReviewSubmissions, KnowThreeVerdicts) {
    submittedVersion();
    EXPECT_EQ(review("perhaps").status, 400);
    EXPECT_EQ(sendBare({"POST", "/sandbox/review", {}, "{}", 1}).status, 400);
    EXPECT_EQ(review("begin").status, 200);
}

}  // namespace
}  // namespace kestrin::sandbox
