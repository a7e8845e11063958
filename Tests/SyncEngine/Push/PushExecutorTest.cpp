#include "SyncEngine/Push/PushExecutor.h"

#include <gtest/gtest.h>

#include <type_traits>

#include "KestrinCore/StableJSON.h"
#include "SyncEngine/Push/MediaPushError.h"
#include "SyncEngine/Push/PushStepError.h"
#include "Tests/Support/ListingNames.h"
#include "Tests/Support/ScriptedClient.h"
#include "Tests/SyncEngine/Push/StepText.h"

namespace kestrin {
namespace {

const Slug kSummer{"summer"};
const Slug kIcons{"icons"};

using Field = ListingField;
using Steps = std::vector<PushStep>;

// What the service answers to a write.
ScriptedTransport::Step made(const std::string& id) {
    return reply(201, R"({"data":{"type":"t","id":")" + id + R"("}})");
}

// A list of resources that have an id and a locale.
ScriptedTransport::Step localizations(const std::vector<std::pair<std::string, std::string>>& all) {
    std::string items;
    for (const auto& [id, locale] : all) {
        items += items.empty() ? "" : ",";
        items += R"({"type":"t","id":")" + id + R"(","attributes":{"locale":")" + locale + R"("}})";
    }
    return reply(200, R"({"data":[)" + items + "]}");
}

// A client between the executor and a script, and the news of the run.
struct PushRun : ScriptedClient {
    using ScriptedClient::ScriptedClient;

    std::string news;  // "started …", "finished …" and "failed …: …", a line each
    std::optional<MediaPushContext> media;

    Steps push(const Steps& steps) {
        return PushExecutor{client, media, stopSource.get_token()}.run(steps, [this](const PushEvent& event) {
            news +=
                std::visit(
                    Overloaded{
                        [](const PushEvent::Started& e) { return "started " + e.step.id(); },
                        [](const PushEvent::Finished& e) { return "finished " + e.step.id(); },
                        [](const PushEvent::Failed& e) { return "failed " + e.step.id() + ": " + e.message; },
                    },
                    event.kind) +
                "\n";
        });
    }

    // The sentence of the failure that the steps end in.
    std::string failure(const Steps& steps) {
        try {
            push(steps);
        } catch (const PushFailure& failure) {
            return failure.errorDescription();
        }
        return "no failure";
    }

    // What was sent: method, path and compact body of each request, a line each.
    std::string sent() const {
        std::string lines;
        for (std::size_t n = 0; n < server->sent.size(); ++n) {
            lines += line(n);
            if (!body(n).empty()) lines += " " + StableJSON::encodeCompact(StableJSON::decode(body(n)));
            lines += "\n";
        }
        return lines;
    }
};

PushStep stepFor(PushStep::Action action, const char* key = "IOS/version/copyright") {
    return {std::move(action), {*ContentKey::fromID(key)}};
}

PushStep anyStep(const char* key = "IOS/version/copyright") {
    return stepFor(PushStep::UpdateVersion{"V", {{VersionAttribute::copyright, "2026"}}}, key);
}

TEST(PushExecutor, SendsOneWriteForEachOfTheseActions) {
    struct Row {
        const char* action;
        PushStep::Action step;
        const char* sent;
    };
    const Row
        rows
            [] =
                {
                    {"an app info localization is updated, an empty value as null",
                     PushStep::UpdateAppInfoLocalization{"L", {{Field::name, "Tide"}, {Field::subtitle, ""}}},
                     R"(PATCH /v1/appInfoLocalizations/L {"data":{"attributes":{"name":"Tide","subtitle":null},"id":"L","type":"appInfoLocalizations"}})"},
                    {"an app info localization is created with its locale",
                     PushStep::CreateAppInfoLocalization{"AI", kGerman, {{Field::name, "Tide"}}},
                     R"(POST /v1/appInfoLocalizations {"data":{"attributes":{"locale":"de-DE","name":"Tide"},"relationships":{"appInfo":{"data":{"id":"AI","type":"appInfos"}}},"type":"appInfoLocalizations"}})"},
                    {"a version localization is updated",
                     PushStep::UpdateVersionLocalization{"L",
                                                         {{Field::whatsNew, "Neu"}, {Field::keywords, ""}}},
                     R"(PATCH /v1/appStoreVersionLocalizations/L {"data":{"attributes":{"keywords":null,"whatsNew":"Neu"},"id":"L","type":"appStoreVersionLocalizations"}})"},
                    {"a version localization is created",
                     PushStep::CreateVersionLocalization{"V", kGerman, {{Field::whatsNew, "Neu"}}},
                     R"(POST /v1/appStoreVersionLocalizations {"data":{"attributes":{"locale":"de-DE","whatsNew":"Neu"},"relationships":{"appStoreVersion":{"data":{"id":"V","type":"appStoreVersions"}}},"type":"appStoreVersionLocalizations"}})"},
                    {"a create without any text is sent all the same",
                     PushStep::CreateVersionLocalization{"V", kGerman, {}},
                     R"(POST /v1/appStoreVersionLocalizations {"data":{"attributes":{"locale":"de-DE"},"relationships":{"appStoreVersion":{"data":{"id":"V","type":"appStoreVersions"}}},"type":"appStoreVersionLocalizations"}})"},
                    {"a version",
                     PushStep::UpdateVersion{"V",
                                             {{VersionAttribute::versionString, "2.0"},
                                              {VersionAttribute::copyright, ""},
                                              {VersionAttribute::releaseType, "MANUAL"}}},
                     R"(PATCH /v1/appStoreVersions/V {"data":{"attributes":{"copyright":null,"releaseType":"MANUAL","versionString":"2.0"},"id":"V","type":"appStoreVersions"}})"},
                    {"both categories", PushStep::UpdateCategories{"AI", "GAMES", "BOOKS"},
                     R"(PATCH /v1/appInfos/AI {"data":{"id":"AI","relationships":{"primaryCategory":{"data":{"id":"GAMES","type":"appCategories"}},"secondaryCategory":{"data":{"id":"BOOKS","type":"appCategories"}}},"type":"appInfos"}})"},
                    {"only the primary category", PushStep::UpdateCategories{"AI", "GAMES", std::nullopt},
                     R"(PATCH /v1/appInfos/AI {"data":{"id":"AI","relationships":{"primaryCategory":{"data":{"id":"GAMES","type":"appCategories"}}},"type":"appInfos"}})"},
                    {"an empty category clears it", PushStep::UpdateCategories{"AI", std::nullopt, ""},
                     R"(PATCH /v1/appInfos/AI {"data":{"id":"AI","relationships":{"secondaryCategory":{"data":null}},"type":"appInfos"}})"},
                    {"review details are updated",
                     PushStep::UpdateReviewDetail{
                         "R", {{ReviewAttribute::notes, "Hi"}, {ReviewAttribute::contactPhone, ""}}},
                     R"(PATCH /v1/appStoreReviewDetails/R {"data":{"attributes":{"contactPhone":null,"notes":"Hi"},"id":"R","type":"appStoreReviewDetails"}})"},
                    {"review details are created",
                     PushStep::CreateReviewDetail{"V", {{ReviewAttribute::notes, "Hi"}}},
                     R"(POST /v1/appStoreReviewDetails {"data":{"attributes":{"notes":"Hi"},"relationships":{"appStoreVersion":{"data":{"id":"V","type":"appStoreVersions"}}},"type":"appStoreReviewDetails"}})"},
                    {"the name of a page", PushStep::UpdateCustomPage{kSummer, "P", "Summer", std::nullopt},
                     R"(PATCH /v1/appCustomProductPages/P {"data":{"attributes":{"name":"Summer"},"id":"P","type":"appCustomProductPages"}})"},
                    {"the visibility of a page",
                     PushStep::UpdateCustomPage{kSummer, "P", std::nullopt, false},
                     R"(PATCH /v1/appCustomProductPages/P {"data":{"attributes":{"visible":false},"id":"P","type":"appCustomProductPages"}})"},
                    {"neither of them: the page as it is",
                     PushStep::UpdateCustomPage{kSummer, "P", std::nullopt, std::nullopt},
                     R"(PATCH /v1/appCustomProductPages/P {"data":{"id":"P","type":"appCustomProductPages"}})"},
                    {"the deep link of a page", PushStep::UpdateCustomPageVersion{"PV", "tide://x"},
                     R"(PATCH /v1/appCustomProductPageVersions/PV {"data":{"attributes":{"deepLink":"tide://x"},"id":"PV","type":"appCustomProductPageVersions"}})"},
                    {"an empty deep link is null", PushStep::UpdateCustomPageVersion{"PV", ""},
                     R"(PATCH /v1/appCustomProductPageVersions/PV {"data":{"attributes":{"deepLink":null},"id":"PV","type":"appCustomProductPageVersions"}})"},
                    {"the text of a page", PushStep::UpdateCustomPageLocalization{"PL", "Sun"},
                     R"(PATCH /v1/appCustomProductPageLocalizations/PL {"data":{"attributes":{"promotionalText":"Sun"},"id":"PL","type":"appCustomProductPageLocalizations"}})"},
                    {"an empty text of a page is null", PushStep::UpdateCustomPageLocalization{"PL", ""},
                     R"(PATCH /v1/appCustomProductPageLocalizations/PL {"data":{"attributes":{"promotionalText":null},"id":"PL","type":"appCustomProductPageLocalizations"}})"},
                    {"a page localization with a text",
                     PushStep::CreateCustomPageLocalization{kSummer, "PV", kGerman, "Sonne"}, R"(POST /v1/appCustomProductPageLocalizations {"data":{"attributes":{"locale":"de-DE","promotionalText":"Sonne"},"relationships":{"appCustomProductPageVersion":{"data":{"id":"PV","type":"appCustomProductPageVersions"}}},"type":"appCustomProductPageLocalizations"}})"},
                    {"a page localization for media alone has no text",
                     PushStep::CreateCustomPageLocalization{kSummer, "PV", kGerman, ""},
                     R"(POST /v1/appCustomProductPageLocalizations {"data":{"attributes":{"locale":"de-DE"},"relationships":{"appCustomProductPageVersion":{"data":{"id":"PV","type":"appCustomProductPageVersions"}}},"type":"appCustomProductPageLocalizations"}})"},
                    {"a test is created under v2",
                     PushStep::CreateExperiment{kIcons, "7", "Icons", StorePlatform::iOS, 50},
                     R"(POST /v2/appStoreVersionExperiments {"data":{"attributes":{"name":"Icons","platform":"IOS","trafficProportion":50},"relationships":{"app":{"data":{"id":"7","type":"apps"}}},"type":"appStoreVersionExperiments"}})"},
                    {"a test is updated under v2 and never started",
                     PushStep::UpdateExperiment{"E", "Icons", 25},
                     R"(PATCH /v2/appStoreVersionExperiments/E {"data":{"attributes":{"name":"Icons","trafficProportion":25},"id":"E","type":"appStoreVersionExperiments"}})"},
                    {"only the share of a test", PushStep::UpdateExperiment{"E", std::nullopt, 25},
                     R"(PATCH /v2/appStoreVersionExperiments/E {"data":{"attributes":{"trafficProportion":25},"id":"E","type":"appStoreVersionExperiments"}})"},
                    {"a treatment of an existing test",
                     PushStep::CreateTreatment{kIcons, "E", kBlue, "Blue", "IconBlue"},
                     R"(POST /v1/appStoreVersionExperimentTreatments {"data":{"attributes":{"appIconName":"IconBlue","name":"Blue"},"relationships":{"appStoreVersionExperimentV2":{"data":{"id":"E","type":"appStoreVersionExperiments"}}},"type":"appStoreVersionExperimentTreatments"}})"},
                    {"a treatment without an icon",
                     PushStep::CreateTreatment{kIcons, "E", kBlue, "Blue", std::nullopt},
                     R"(POST /v1/appStoreVersionExperimentTreatments {"data":{"attributes":{"name":"Blue"},"relationships":{"appStoreVersionExperimentV2":{"data":{"id":"E","type":"appStoreVersionExperiments"}}},"type":"appStoreVersionExperimentTreatments"}})"},
                    {"name and icon of a treatment", PushStep::UpdateTreatment{"T", "Blue", "IconBlue"},
                     R"(PATCH /v1/appStoreVersionExperimentTreatments/T {"data":{"attributes":{"appIconName":"IconBlue","name":"Blue"},"id":"T","type":"appStoreVersionExperimentTreatments"}})"},
                    {"an empty icon is null", PushStep::UpdateTreatment{"T", std::nullopt, ""},
                     R"(PATCH /v1/appStoreVersionExperimentTreatments/T {"data":{"attributes":{"appIconName":null},"id":"T","type":"appStoreVersionExperimentTreatments"}})"},
                    {"a localization of an existing treatment",
                     PushStep::CreateTreatmentLocalization{kIcons, kBlue, "T", kGerman},
                     R"(POST /v1/appStoreVersionExperimentTreatmentLocalizations {"data":{"attributes":{"locale":"de-DE"},"relationships":{"appStoreVersionExperimentTreatment":{"data":{"id":"T","type":"appStoreVersionExperimentTreatments"}}},"type":"appStoreVersionExperimentTreatmentLocalizations"}})"},
                };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.action);
        PushRun run({made("new")});
        const Steps steps{stepFor(row.step)};
        EXPECT_EQ(run.push(steps), steps);
        EXPECT_EQ(run.sent(), std::string(row.sent) + "\n");
    }
}

TEST(PushExecutor, WhetherADemoAccountIsRequiredIsATruthValue) {
    struct Row {
        const char* value;
        const char* sent;
    };
    for (const Row& row :
         {Row{"true", "true"}, Row{"false", "false"}, Row{"yes", "false"}, Row{"", "null"}}) {
        SCOPED_TRACE(row.value);
        PushRun run({made("new")});
        run.push({stepFor(
            PushStep::UpdateReviewDetail{"R", {{ReviewAttribute::demoAccountRequired, row.value}}})});
        EXPECT_EQ(run.sent(),
                  std::string(
                      R"(PATCH /v1/appStoreReviewDetails/R {"data":{"attributes":{"demoAccountRequired":)") +
                      row.sent + R"(},"id":"R","type":"appStoreReviewDetails"}})" + "\n");
    }
}

TEST(PushExecutor, EveryTextOfAListingGoesUnderItsOwnName) {
    for (const auto field : ListingFields::all) {
        PushRun run({made("new")});
        run.push({stepFor(PushStep::UpdateVersionLocalization{"L", {{field, "x"}}})});
        const auto sent = StableJSON::decode(run.body(0));
        const JSONObject expected{{std::string(rawValue(field)), "x"}};
        EXPECT_EQ(*sent.objectValue()->at("data").objectValue()->at("attributes").objectValue(), expected);
    }
}

// --- The run

TEST(PushExecutor, NoStepsAreDoneAtOnceAndWithoutNews) {
    PushRun run;
    EXPECT_TRUE(run.push({}).empty());
    EXPECT_EQ(run.news, "");
    EXPECT_EQ(run.sent(), "");
}

TEST(PushExecutor, TellsOfEachStepAsItStartsAndFinishes) {
    PushRun run({made("1"), made("2")});
    run.push({anyStep("IOS/version/copyright"), anyStep("MAC_OS/version/copyright")});
    EXPECT_EQ(run.news,
              "started IOS/version/copyright\n"
              "finished IOS/version/copyright\n"
              "started MAC_OS/version/copyright\n"
              "finished MAC_OS/version/copyright\n");
}

TEST(PushExecutor, StopsAtTheFirstFailureAndSaysWhatWasDone) {
    PushRun run({made("1"), reply(422, R"({"errors":[{"detail":"Too long."}]})")});
    const auto first = anyStep("IOS/version/copyright");
    const auto second = anyStep("MAC_OS/version/copyright");
    try {
        run.push({first, second, anyStep("TV_OS/version/copyright")});
        ADD_FAILURE() << "no failure";
    } catch (const PushFailure& failure) {
        EXPECT_EQ(failure.completed, Steps{first});
        EXPECT_EQ(failure.failed, second);
        EXPECT_EQ(failure.errorDescription(), "App Store Connect returned an error (422). Too long.");
        try {
            std::rethrow_exception(failure.underlying);
        } catch (const ASCError& error) {
            EXPECT_EQ(error.as<ASCError::HTTP>()->status, 422);
        }
    }
    EXPECT_EQ(run.news,
              "started IOS/version/copyright\n"
              "finished IOS/version/copyright\n"
              "started MAC_OS/version/copyright\n"
              "failed MAC_OS/version/copyright: App Store Connect returned an error (422). Too long.\n");
}

TEST(PushExecutor, AStopBetweenTwoStepsIsNoFailureOfAStep) {
    PushRun run({[&run](auto&&...) {
        run.stopSource.request_stop();
        return HTTPResponse{200, {}, ""};
    }});
    EXPECT_THROW(run.push({anyStep(), anyStep()}), Cancelled);
    EXPECT_EQ(run.news, "started IOS/version/copyright\nfinished IOS/version/copyright\n");
}

TEST(PushExecutor, AStopWithinAStepIsThatStepsFailure) {
    PushRun run({fail(TransportError::Code::cancelled)});
    EXPECT_EQ(run.failure({anyStep()}), "Cancelled.");
}

TEST(PushExecutor, WhatTheListenerThrowsEndsTheRunAsItIs) {
    PushRun run({made("1")});
    const PushExecutor executor{run.client, std::nullopt};
    struct Closed {};
    int calls = 0;
    const auto closed = [&](const PushEvent&) {
        if (++calls == 2) throw Closed{};
    };
    EXPECT_THROW(executor.run({anyStep(), anyStep()}, closed), Closed);
    EXPECT_EQ(run.server->sent.size(), 1u) << "no further step was tried";
}

// --- Ids that the run has made

TEST(PushExecutor, ANewTestItsTreatmentAndTheTreatmentsLocalizationGoOutInOneRun) {
    PushRun run({made("E1"), made("T1"), made("L1")});
    const Steps steps{
        stepFor(PushStep::CreateExperiment{kIcons, "7", "Icons", StorePlatform::iOS, 50},
                "experiments/icons/name"),
        stepFor(PushStep::CreateTreatment{kIcons, std::nullopt, kBlue, "Blue", std::nullopt},
                "experiments/icons/treatments/blue/name"),
        {PushStep::CreateTreatmentLocalization{kIcons, kBlue, std::nullopt, kGerman}, {}},
    };
    EXPECT_EQ(run.push(steps), steps);
    EXPECT_NE(run.body(1).find(R"("id" : "E1")"), std::string::npos) << run.body(1);
    EXPECT_NE(run.body(2).find(R"("id" : "T1")"), std::string::npos) << run.body(2);
}

TEST(PushExecutor, AParentThatIsNeitherKnownNorMadeIsNamed) {
    struct Row {
        PushStep::Action action;
        const char* sentence;
    };
    const Row rows[] = {
        {PushStep::UpdateCustomPage{kSummer, std::nullopt, std::nullopt, true},
         "page summer doesn’t exist on App Store Connect yet. Push it first, with its name."},
        {PushStep::CreateTreatment{kIcons, std::nullopt, kBlue, "Blue", std::nullopt},
         "test icons doesn’t exist on App Store Connect yet. Push it first, with its name."},
        {PushStep::CreateTreatmentLocalization{kIcons, kBlue, std::nullopt, kGerman},
         "treatment icons/blue doesn’t exist on App Store Connect yet. Push it first, with its name."},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.sentence);
        PushRun run;
        EXPECT_EQ(run.failure({{row.action, {}}}), row.sentence);
        EXPECT_EQ(run.sent(), "");
    }
}

TEST(PushExecutor, AnIdThatTheActionCarriesWins) {
    PushRun page({made("P1"), localizations({{"PV1", ""}}), localizations({}), made("known")});
    page.push({
        {PushStep::CreateCustomPage{kSummer, "7", "Summer", std::nullopt, {}}, {}},
        {PushStep::UpdateCustomPage{kSummer, "known", std::nullopt, true}, {}},
    });
    EXPECT_EQ(page.line(3), "PATCH /v1/appCustomProductPages/known");

    PushRun run({made("E1"), made("T1"), made("L1")});
    run.push({
        {PushStep::CreateExperiment{kIcons, "7", "Icons", StorePlatform::iOS, 50}, {}},
        {PushStep::CreateTreatment{kIcons, "known", kBlue, "Blue", std::nullopt}, {}},
        {PushStep::CreateTreatmentLocalization{kIcons, kBlue, "known too", kGerman}, {}},
    });
    EXPECT_NE(run.body(1).find(R"("id" : "known")"), std::string::npos) << run.body(1);
    EXPECT_NE(run.body(2).find(R"("id" : "known too")"), std::string::npos) << run.body(2);
}

// --- New pages

const PushStep::CreateCustomPage kNewPage{
    kSummer, "7", "Summer", "tide://x", {{kFrench, "Soleil"}, {kGerman, ""}}};

TEST(PushExecutor, ANewPageIsCreatedWholeAndReadBackForItsIds) {
    PushRun run({made("P1"), localizations({{"PV1", ""}, {"PV0", ""}}),
                 localizations({{"PL-de", "de-DE"}, {"PL-fr", "fr-FR"}}), made("P1")});
    run.push({{kNewPage, {}}, {PushStep::UpdateCustomPage{kSummer, std::nullopt, std::nullopt, true}, {}}});
    EXPECT_EQ(
        run.sent(),
        R"(POST /v1/appCustomProductPages {"data":{"attributes":{"name":"Summer"},"relationships":{"app":{"data":{"id":"7","type":"apps"}},"appCustomProductPageVersions":{"data":[{"id":"${version}","type":"appCustomProductPageVersions"}]}},"type":"appCustomProductPages"},"included":[{"attributes":{"deepLink":"tide://x"},"id":"${version}","relationships":{"appCustomProductPageLocalizations":{"data":[{"id":"${localization-de-DE}","type":"appCustomProductPageLocalizations"},{"id":"${localization-fr-FR}","type":"appCustomProductPageLocalizations"}]}},"type":"appCustomProductPageVersions"},{"attributes":{"locale":"de-DE"},"id":"${localization-de-DE}","type":"appCustomProductPageLocalizations"},{"attributes":{"locale":"fr-FR","promotionalText":"Soleil"},"id":"${localization-fr-FR}","type":"appCustomProductPageLocalizations"}]})"
        "\n"
        "GET /v1/appCustomProductPages/P1/appCustomProductPageVersions?limit=200\n"
        "GET /v1/appCustomProductPageVersions/PV1/appCustomProductPageLocalizations?limit=200\n"
        R"(PATCH /v1/appCustomProductPages/P1 {"data":{"attributes":{"visible":true},"id":"P1","type":"appCustomProductPages"}})"
        "\n");
}

TEST(PushExecutor, ANewPageWithoutAVersionFailsItsStep) {
    PushRun run({made("P1"), reply(200, R"({"data":[]})")});
    try {
        run.push({{kNewPage, {}}});
        ADD_FAILURE() << "no failure";
    } catch (const PushFailure& failure) {
        EXPECT_TRUE(failure.completed.empty());
        try {
            std::rethrow_exception(failure.underlying);
        } catch (const ASCError& error) {
            EXPECT_EQ(error, ASCError(ASCError::InvalidResponse{
                                 "/v1/appCustomProductPages/P1/appCustomProductPageVersions"}));
        }
    }
}

// --- A localization that is already there

const PushStep::CreateVersionLocalization kNewGerman{"V", kGerman, {{Field::whatsNew, "Neu"}}};

TEST(PushExecutor, AVersionLocalizationThatIsAlreadyThereIsUpdated) {
    PushRun run({reply(409), localizations({{"L-fr", "fr-FR"}, {"L-de", "de-DE"}, {"L-de2", "de-DE"}}),
                 made("L-de")});
    const Steps steps{stepFor(kNewGerman, "IOS/de-DE/whatsNew")};
    EXPECT_EQ(run.push(steps), steps);
    EXPECT_EQ(run.line(1), "GET /v1/appStoreVersions/V/appStoreVersionLocalizations?limit=200");
    EXPECT_EQ(run.line(2), "PATCH /v1/appStoreVersionLocalizations/L-de");
    EXPECT_EQ(
        StableJSON::encodeCompact(StableJSON::decode(run.body(2))),
        R"({"data":{"attributes":{"whatsNew":"Neu"},"id":"L-de","type":"appStoreVersionLocalizations"}})");
    EXPECT_EQ(run.news, "started IOS/de-DE/whatsNew\nfinished IOS/de-DE/whatsNew\n");
}

TEST(PushExecutor, AConflictForAnyOtherReasonStaysTheFailure) {
    PushRun run({reply(409, R"({"errors":[{"detail":"Not now."}]})"), localizations({{"L-fr", "fr-FR"}})});
    EXPECT_EQ(run.failure({{kNewGerman, {}}}), "App Store Connect returned an error (409). Not now.");
}

TEST(PushExecutor, AFailureOnTheWayToTheLocalizationThatIsThereFailsTheStep) {
    PushRun unread({reply(409, R"({"errors":[{"detail":"Exists."}]})"),
                    reply(404, R"({"errors":[{"detail":"Gone."}]})")});
    EXPECT_EQ(unread.failure({{kNewGerman, {}}}), "App Store Connect returned an error (404). Gone.");

    PushRun refused({reply(409, R"({"errors":[{"detail":"Exists."}]})"), localizations({{"L-de", "de-DE"}}),
                     reply(409, R"({"errors":[{"detail":"Locked."}]})")});
    EXPECT_EQ(refused.failure({{kNewGerman, {}}}), "App Store Connect returned an error (409). Locked.");
    EXPECT_EQ(refused.server->sent.size(), 3u) << "the update isn't looked into again";
}

TEST(PushExecutor, OnlyAConflictIsLookedInto) {
    for (const int status : {400, 403, 422, 500}) {
        PushRun run({reply(status, R"({"errors":[{"detail":"No."}]})")});
        EXPECT_NE(run.failure({{kNewGerman, {}}}).find("No."), std::string::npos) << status;
        EXPECT_EQ(run.server->sent.size(), 1u) << status;
    }
}

TEST(PushExecutor, AConflictOfAnyOtherCreateFailsItsStep) {
    const PushStep::Action creates[] = {
        PushStep::CreateAppInfoLocalization{"AI", kGerman, {{Field::name, "Tide"}}},
        PushStep::CreateReviewDetail{"V", {}},
        kNewPage,
        PushStep::CreateCustomPageLocalization{kSummer, "PV", kGerman, ""},
        PushStep::CreateExperiment{kIcons, "7", "Icons", StorePlatform::iOS, 50},
        PushStep::CreateTreatment{kIcons, "E", kBlue, "Blue", std::nullopt},
        PushStep::CreateTreatmentLocalization{kIcons, kBlue, "T", kGerman},
    };
    for (const auto& action : creates) {
        SCOPED_TRACE(StepText::of(PushStep{action, {}}));
        PushRun run({reply(409, R"({"errors":[{"detail":"Exists."}]})")});
        EXPECT_EQ(run.failure({{action, {}}}), "App Store Connect returned an error (409). Exists.");
        EXPECT_EQ(run.server->sent.size(), 1u);
    }
}

// --- Media

PushStep placing(PlacementTarget target, MediaItems desired, const StoreLocale& locale = kGerman) {
    return {PushStep::PlaceMedia{{std::move(target), locale, kSlot, std::move(desired), {}, {}}}, {}};
}

// Everything is in the library under the digest 0123456789ab.
MediaPushContext mediaContext() {
    MediaPushContext context{};
    context.libraryID = "7";
    ASCLibraryAsset asset;
    asset.id = "A";
    asset.fileName = "a.png";
    asset.referenceName = "mq-a-0123456789ab";
    context.index = LibraryIndex({asset});
    context.hashes = {{"Media/a.png", "0123456789abcdef0123456789abcdef"}};
    return context;
}

TEST(PushExecutor, AMediaStepWithoutMediaToWorkWithFails) {
    const Steps steps[] = {
        {{PushStep::EnsureAsset{"Media/a.png", "0123", kSlot}, {}}},
        {placing({PlacementTarget::Page{kSummer, "PL"}}, {})},
    };
    for (const auto& step : steps) {
        PushRun run;
        EXPECT_EQ(run.failure(step), "App Store Connect didn’t accept the upload. Try again.");
        EXPECT_EQ(run.sent(), "");
    }
}

// An asset that is ready, then the placement that is made of it on the localization `parent`.
void expectPlacedOn(const char* parent, std::vector<ScriptedTransport::Step> before, Steps steps,
                    const PlacementTarget& target) {
    SCOPED_TRACE(parent);
    auto script = std::move(before);
    script.push_back(made("A"));
    script.push_back(made("new placement"));
    PushRun run(std::move(script));
    run.media = mediaContext();
    steps.push_back({PushStep::EnsureAsset{"Media/a.png", "0123456789abcdef0123456789abcdef", kSlot}, {}});
    steps.push_back(placing(target, {MediaItem::file("Media/a.png")}));

    EXPECT_EQ(run.push(steps), steps);

    const auto last = run.server->sent.size() - 1;
    EXPECT_EQ(run.line(last), "POST /v1/appAssetLibraryPlacements");
    EXPECT_NE(run.body(last).find(R"("id" : ")" + std::string(parent)), std::string::npos) << run.body(last);
    EXPECT_NE(run.body(last).find(R"("id" : "A")"), std::string::npos) << run.body(last);
}

TEST(PushExecutor, MediaFindTheLocalizationThatTheRunHasMade) {
    expectPlacedOn("made-version-localization", {made("made-version-localization")}, {{kNewGerman, {}}},
                   {PlacementTarget::Version{StorePlatform::iOS, "V", std::nullopt}});
    expectPlacedOn("found-version-localization",
                   {reply(409), localizations({{"found-version-localization", "de-DE"}}), made("x")},
                   {{kNewGerman, {}}}, {PlacementTarget::Version{StorePlatform::iOS, "V", std::nullopt}});
    expectPlacedOn("new-page-localization",
                   {made("P1"), localizations({{"PV1", ""}}),
                    localizations({{"new-page-localization", "de-DE"}, {"PL-fr", "fr-FR"}})},
                   {{kNewPage, {}}}, {PlacementTarget::Page{kSummer, std::nullopt}});
    expectPlacedOn("page-localization", {made("page-localization")},
                   {{PushStep::CreateCustomPageLocalization{kSummer, "PV", kGerman, ""}, {}}},
                   {PlacementTarget::Page{kSummer, std::nullopt}});
    expectPlacedOn("treatment-localization", {made("treatment-localization")},
                   {{PushStep::CreateTreatmentLocalization{kIcons, kBlue, "T", kGerman}, {}}},
                   {PlacementTarget::Treatment{kIcons, kBlue, std::nullopt}});
}

}  // namespace
}  // namespace kestrin
