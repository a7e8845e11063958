#include "SyncEngine/Release/BuildUploader.h"

#include <gtest/gtest.h>

#include "KestrinCore/FileError.h"
#include "KestrinCore/StableJSON.h"
#include "SyncEngine/Release/BuildUploadError.h"
#include "Tests/ASCKit/ClientOutcome.h"
#include "Tests/Support/Generators.h"
#include "Tests/Support/ScriptedClient.h"
#include "Tests/Support/TemporaryFolder.h"

namespace kestrin {
namespace {

using namespace std::chrono_literals;
using Lines = std::vector<std::string>;
using Progress = BuildUploadProgress;
using Step = ScriptedTransport::Step;

constexpr const char* kUpload = R"({"data":{"type":"buildUploads","id":"U"}})";

std::string fileReply(const std::string& operations) {
    return R"({"data":{"type":"buildUploadFiles","id":"F","attributes":{"uploadOperations":[)" + operations +
           "]}}}";
}

std::string operation(int offset, int length) {
    return R"({"method":"PUT","url":"https://up.example.test/)" + std::to_string(offset) + R"(","offset":)" +
           std::to_string(offset) + R"(,"length":)" + std::to_string(length) +
           R"(,"requestHeaders":[{"name":"X-Part","value":"p"}]})";
}

std::string state(const std::string& state, const std::string& more = "", const std::string& build = "") {
    const auto relationship =
        build.empty() ? "" : R"(,"relationships":{"build":{"data":{"type":"builds","id":")" + build + "\"}}}";
    return R"({"data":{"type":"buildUploads","id":"U","attributes":{"state":{"state":")" + state + "\"" +
           more + "}}" + relationship + "}}";
}

std::string outline(const Progress& progress) {
    return std::visit(Overloaded{
                          [](const Progress::Sending& p) {
                              return "sending " + std::to_string(p.part) + " of " + std::to_string(p.of);
                          },
                          [](const Progress::Processing& p) { return "processing " + p.state; },
                          [](const Progress::Hashing&) { return std::string("hashing"); },
                          [](const Progress::Reserving&) { return std::string("reserving"); },
                          [](const Progress::Committing&) { return std::string("committing"); },
                      },
                      progress.kind);
}

// A build of six bytes, a server that follows a script, and a clock of the test's own.
struct UploadWorld {
    explicit UploadWorld(std::vector<Step> script = {}) : api(std::move(script)) {
        folder.write("App.ipa", "abcdef");
    }

    auto upload() {
        return uploader.upload(file, info, "7", [this](const Progress& step) {
            progress.push_back(outline(step));
            if (onProgress) onProgress(progress.back());
        });
    }
    auto waitForBuild() {
        return uploader.waitForBuild("U",
                                     [this](const Progress& step) { progress.push_back(outline(step)); });
    }
    // The requests in order, without their queries and bodies.
    Lines requests() const {
        Lines lines;
        for (std::size_t i = 0; i < api.server->sent.size(); ++i) {
            const auto line = api.line(i);
            lines.push_back(line.substr(0, line.find('?')));
        }
        return lines;
    }

    ScriptedClient api;
    TemporaryFolder folder;
    std::filesystem::path file = folder / "App.ipa";
    BuildArchiveInfo info{.bundleID = "com.example.glowworm",
                          .shortVersion = "1.4",
                          .buildVersion = "27",
                          .platform = "IOS",
                          .fileSize = 6};
    Lines progress;
    std::function<void(const std::string&)> onProgress;
    BuildUploader uploader{api.client, {.pollInterval = 15s, .timeout = 1800s}, api.time.sleep()};
};

// A script from the reservation on: these parts, the commit, and a build that is complete at once.
std::vector<Step> scriptFor(const std::string& operations, std::vector<Step> parts) {
    std::vector<Step> script = {reply(201, kUpload), reply(201, fileReply(operations))};
    script.insert(script.end(), parts.begin(), parts.end());
    script.push_back(reply(200));
    script.push_back(reply(200, state("COMPLETE", "", "B")));
    return script;
}

template <class Failure, class Call>
std::optional<typename Failure::Kind> kindOf(Call&& call) {
    try {
        call();
        return std::nullopt;
    } catch (const Failure& error) {
        return error.kind;
    }
}

template <class Call>
std::optional<BuildUploadError::Kind> errorOf(Call&& call) {
    return kindOf<BuildUploadError>(std::forward<Call>(call));
}

TEST(BuildUploader, SendsOnePartAndTellsEachStep) {
    UploadWorld world(scriptFor(operation(0, 6), {reply(200)}));

    const auto result = world.upload();

    EXPECT_EQ(result, (BuildUploadResult{"U", "B", {}}));
    EXPECT_EQ(world.progress, (Lines{"hashing", "reserving", "sending 0 of 1", "sending 1 of 1", "committing",
                                     "processing COMPLETE"}));
    EXPECT_EQ(world.requests(),
              (Lines{"POST /v1/buildUploads", "POST /v1/buildUploadFiles", "PUT https://up.example.test/0",
                     "PATCH /v1/buildUploadFiles/F", "GET /v1/buildUploads/U"}));
    EXPECT_TRUE(world.api.time.slept.empty());
}

TEST(BuildUploader, SaysWhatItUploadsAndTheDigestOfTheWhole) {
    UploadWorld world(scriptFor(operation(0, 6), {reply(200)}));

    world.upload();

    const auto sent = [&](std::size_t n) { return StableJSON::decode(world.api.body(n)); };
    EXPECT_EQ(sent(0), StableJSON::decode(R"({"data":{"type":"buildUploads",
        "attributes":{"cfBundleShortVersionString":"1.4","cfBundleVersion":"27","platform":"IOS"},
        "relationships":{"app":{"data":{"id":"7","type":"apps"}}}}})"));
    EXPECT_EQ(sent(1), StableJSON::decode(R"({"data":{"type":"buildUploadFiles",
        "attributes":{"assetType":"ASSET","fileName":"App.ipa","fileSize":6,"uti":"com.apple.ipa"},
        "relationships":{"buildUpload":{"data":{"id":"U","type":"buildUploads"}}}}})"));
    // The MD5 of "abcdef".
    EXPECT_EQ(sent(3),
              StableJSON::decode(R"({"data":{"type":"buildUploadFiles","id":"F","attributes":{"uploaded":true,
        "sourceFileChecksums":{"file":{"algorithm":"MD5","hash":"e80b5017098950fc58aad83c8c14978e"}}}}})"));
}

TEST(BuildUploader, APackageHasATypeOfItsOwn) {
    UploadWorld world(scriptFor(operation(0, 6), {reply(200)}));
    world.info.kind = BuildArchiveInfo::Kind::pkg;
    world.upload();
    EXPECT_NE(world.api.body(1).find(R"("uti" : "com.apple.pkg")"), std::string::npos);
}

TEST(BuildUploader, ANameThatIsNoTextIsRepaired) {
    UploadWorld world(scriptFor(operation(0, 6), {reply(200)}));
    world.folder.write("App\xFF.ipa", "abcdef");
    world.file = world.folder / "App\xFF.ipa";
    world.upload();
    EXPECT_NE(world.api.body(1).find(R"("fileName" : "App�.ipa")"), std::string::npos);
}

TEST(BuildUploader, SendsTheRangesInTheOrderGivenWithTheirHeaders) {
    UploadWorld world(scriptFor(operation(4, 2) + "," + operation(0, 2) + "," + operation(2, 2),
                                {reply(200), reply(200), reply(200)}));

    world.upload();

    const auto& sent = world.api.server->sent;
    ASSERT_EQ(sent.size(), 7u);
    EXPECT_EQ(std::get<FileRange>(*sent[2].body), (FileRange{world.file, 4, 2}));
    EXPECT_EQ(std::get<FileRange>(*sent[3].body), (FileRange{world.file, 0, 2}));
    EXPECT_EQ(std::get<FileRange>(*sent[4].body), (FileRange{world.file, 2, 2}));
    EXPECT_EQ(sent[4].headers, (HTTPHeaders{{"X-Part", "p"}}));
    EXPECT_EQ(Lines(world.progress.begin() + 2, world.progress.begin() + 6),
              (Lines{"sending 0 of 3", "sending 1 of 3", "sending 2 of 3", "sending 3 of 3"}));
}

TEST(BuildUploader, ItsPartsAreOneUploadToWhoeverShowsHowFarItIs) {
    UploadWorld world(scriptFor(operation(0, 4) + "," + operation(4, 2), {reply(200), reply(200)}));

    world.upload();

    const UploadNews none{.fileName = "App.ipa", .sent = 0, .total = 6};
    auto first = none, both = none, over = none;
    first.sent = 4;
    both.sent = over.sent = 6;
    over.isOver = true;
    EXPECT_EQ(world.api.uploadNews, (std::vector{none, first, both, over}));
}

TEST(BuildUploader, APartThatFailsTwiceAndThenWorksIsNoFailure) {
    UploadWorld world(
        scriptFor(operation(0, 6), {reply(500), fail(TransportError::Code::timedOut), reply(200)}));
    EXPECT_EQ(world.upload().buildID, "B");
    EXPECT_EQ(world.requests()[4], "PUT https://up.example.test/0");
    EXPECT_EQ(world.api.time.slept, (std::vector<Seconds>{1s, 2s}));
}

TEST(BuildUploader, APartThatIsRefusedEndsTheUpload) {
    UploadWorld world(
        {reply(201, kUpload), reply(201, fileReply(operation(0, 3) + "," + operation(3, 3))), reply(403)});
    EXPECT_EQ(outcomeOf([&] { world.upload(); }), "http 403 upload");
    EXPECT_EQ(world.api.server->sent.size(), 3u);
    EXPECT_EQ(world.progress.back(), "sending 0 of 2");
}

TEST(BuildUploader, AnyRequestThatFailsEndsTheUploadWithTheClientsError) {
    const std::vector<Step> whole = scriptFor(operation(0, 6), {reply(200)});
    for (const std::size_t failing : {0u, 1u, 3u, 4u}) {
        SCOPED_TRACE(failing);
        auto script = std::vector<Step>(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(failing));
        script.push_back(reply(409));
        UploadWorld world(script);
        EXPECT_EQ(outcomeOf([&] { world.upload(); }).substr(0, 8), "http 409");
        EXPECT_TRUE(world.api.server->isAtTheEnd());
    }
}

TEST(BuildUploader, WithoutAVersionOrABuildNumberNothingHappens) {
    for (auto versions : {&BuildArchiveInfo::shortVersion, &BuildArchiveInfo::buildVersion}) {
        for (const std::optional<std::string>& value :
             {std::optional<std::string>(), std::optional<std::string>("")}) {
            UploadWorld world;
            world.info.*versions = value;
            EXPECT_EQ(errorOf([&] { world.upload(); }),
                      BuildUploadError::Kind(BuildUploadError::MissingVersions{}));
            EXPECT_TRUE(world.progress.empty());
            EXPECT_TRUE(world.api.server->sent.empty());
        }
    }
}

TEST(BuildUploader, WithoutAPlaceToSendToItFails) {
    UploadWorld world({reply(201, kUpload), reply(201, fileReply(""))});
    EXPECT_EQ(errorOf([&] { world.upload(); }),
              BuildUploadError::Kind(BuildUploadError::NoUploadOperations{}));
    EXPECT_EQ(world.progress, (Lines{"hashing", "reserving"}));
}

TEST(BuildUploader, AFileThatChangesWhileItIsSentIsAnErrorOfItsOwn) {
    using Change = std::function<void(UploadWorld&)>;
    const std::pair<const char*, Change> changes[] = {
        {"it is written to", [](UploadWorld& world) { world.folder.write("App.ipa", "ABCDEF"); }},
        {"it grows", [](UploadWorld& world) { world.folder.write("App.ipa", "abcdefg"); }},
        {"it grows, and says that it didn't",
         [](UploadWorld& world) {
             const auto before = std::filesystem::last_write_time(world.file);
             world.folder.write("App.ipa", "abcdefg");
             std::filesystem::last_write_time(world.file, before);
         }},
        {"it shrinks", [](UploadWorld& world) { world.folder.write("App.ipa", "abc"); }},
        {"another one takes its place",
         [](UploadWorld& world) {
             world.folder.write("New.ipa", "abcdef");
             std::filesystem::last_write_time(world.folder / "New.ipa",
                                              std::filesystem::last_write_time(world.file));
             std::filesystem::rename(world.folder / "New.ipa", world.file);
         }},
    };
    for (const auto& [what, change] : changes) {
        SCOPED_TRACE(what);
        UploadWorld world({reply(201, kUpload),
                           reply(201, fileReply(operation(0, 3) + "," + operation(3, 3))), reply(200),
                           reply(200)});
        std::filesystem::last_write_time(world.file, std::filesystem::file_time_type::clock::now() - 1h);
        world.onProgress = [&, change = change](const std::string& step) {
            if (step == "sending 1 of 2") change(world);
        };
        EXPECT_EQ(errorOf([&] { world.upload(); }),
                  BuildUploadError::Kind(BuildUploadError::FileChanged{"App.ipa"}));
        EXPECT_EQ(world.api.server->sent.size(), 4u);  // nothing is committed
    }
}

TEST(BuildUploader, AFileThatChangesIsToldRatherThanWhatItMakesOfThePart) {
    const FileError unreadable(FileError::Operation::read, "App.ipa",
                               std::make_error_code(std::errc::io_error));
    const std::pair<const char*, Step> failures[] = {
        {"the part is too short for the service", reply(400)},
        {"the part can't be read to its end", [&](auto&&...) -> HTTPResponse { throw unreadable; }},
    };
    for (const auto& [what, failure] : failures) {
        SCOPED_TRACE(what);
        UploadWorld world({reply(201, kUpload), reply(201, fileReply(operation(0, 6))), failure});
        world.onProgress = [&](const std::string& step) {
            if (step == "sending 0 of 1") world.folder.write("App.ipa", "abc");
        };
        EXPECT_EQ(errorOf([&] { world.upload(); }),
                  BuildUploadError::Kind(BuildUploadError::FileChanged{"App.ipa"}));
    }
}

TEST(BuildUploader, AFileThatCannotBeReadButIsTheSameIsTheFileError) {
    const FileError unreadable(FileError::Operation::read, "App.ipa",
                               std::make_error_code(std::errc::io_error));
    UploadWorld world({reply(201, kUpload), reply(201, fileReply(operation(0, 6))),
                       [&](auto&&...) -> HTTPResponse { throw unreadable; }});
    EXPECT_THROW(world.upload(), FileError);
}

TEST(BuildUploader, AFileThatIsNotTheOneThatWasInspectedIsNotSent) {
    UploadWorld world;
    world.folder.write("App.ipa", "abcdefg");
    EXPECT_EQ(errorOf([&] { world.upload(); }),
              BuildUploadError::Kind(BuildUploadError::FileChanged{"App.ipa"}));
    EXPECT_TRUE(world.api.server->sent.empty());
}

TEST(BuildUploader, AFileThatVanishesIsNamed) {
    for (const char* when : {"hashing", "sending 0 of 1"}) {
        SCOPED_TRACE(when);
        UploadWorld world({reply(201, kUpload), reply(201, fileReply(operation(0, 6))), reply(200)});
        world.onProgress = [&](const std::string& step) {
            if (step == when) std::filesystem::remove(world.file);
        };
        try {
            world.upload();
            FAIL() << "uploaded what isn't there";
        } catch (const FileError& error) {
            EXPECT_EQ(error.errorDescription(),
                      "Couldn’t read “" + world.file.string() + "”: No such file or directory.");
        }
    }
}

TEST(BuildUploaderPolling, WaitsOneIntervalBetweenTwoLooks) {
    UploadWorld world({reply(200, state("AWAITING_UPLOAD")), reply(200, state("PROCESSING")),
                       reply(200, state("COMPLETE", "", "B"))});
    EXPECT_EQ(world.waitForBuild(), (BuildUploadResult{"U", "B", {}}));
    EXPECT_EQ(world.progress,
              (Lines{"processing AWAITING_UPLOAD", "processing PROCESSING", "processing COMPLETE"}));
    EXPECT_EQ(world.api.time.slept, (std::vector<Seconds>{15s, 15s}));
    EXPECT_EQ(world.api.line(0), "GET /v1/buildUploads/U?include=build");
}

TEST(BuildUploaderPolling, AStateThatNobodyKnowsIsStillProcessing) {
    UploadWorld world({reply(200, state("FERMENTING")),
                       reply(200, R"({"data":{"type":"buildUploads","id":"U"}})"), reply(200),
                       reply(200, state("COMPLETE"))});
    world.waitForBuild();
    EXPECT_EQ(world.progress,
              (Lines{"processing FERMENTING", "processing ", "processing ", "processing COMPLETE"}));
}

TEST(BuildUploaderPolling, ABuildThatIsNotListedYetHasNoID) {
    UploadWorld world({reply(200, state("COMPLETE"))});
    EXPECT_EQ(world.waitForBuild(), (BuildUploadResult{"U", std::nullopt, {}}));
}

TEST(BuildUploaderPolling, PassesTheWarningsOn) {
    UploadWorld world(
        {reply(200, state("COMPLETE", R"(,"warnings":[{"description":"Too large."},{"code":"W2"}])"))});
    EXPECT_EQ(world.waitForBuild().warnings, (Lines{"Too large.", "W2"}));
}

TEST(BuildUploaderPolling, ARejectionHasTheErrorsOfTheService) {
    UploadWorld world(
        {reply(200, state("FAILED", R"(,"errors":[{"description":"No icon."},{"code":"E2"}])"))});
    EXPECT_EQ(errorOf([&] { world.waitForBuild(); }),
              BuildUploadError::Kind(BuildUploadError::Rejected{{"No icon.", "E2"}}));
    UploadWorld bare({reply(200, state("FAILED"))});
    EXPECT_EQ(errorOf([&] { bare.waitForBuild(); }), BuildUploadError::Kind(BuildUploadError::Rejected{}));
}

TEST(BuildUploaderPolling, GivesUpAfterHalfAnHourOf121Looks) {
    UploadWorld world(times(121, reply(200, state("PROCESSING"))));
    EXPECT_EQ(errorOf([&] { world.waitForBuild(); }),
              BuildUploadError::Kind(BuildUploadError::StillProcessing{"U"}));
    EXPECT_EQ(world.api.server->sent.size(), 121u);
    EXPECT_EQ(world.api.time.slept, std::vector<Seconds>(120, 15s));
}

TEST(BuildUploaderPolling, ATimeoutThatIsNoMultipleOfTheIntervalIsRoundedUp) {
    UploadWorld world(times(4, reply(200, state("PROCESSING"))));
    BuildUploader uploader(world.api.client, {.pollInterval = 10s, .timeout = 25s}, world.api.time.sleep());
    EXPECT_TRUE(errorOf([&] { uploader.waitForBuild("U", [](const Progress&) {}); }).has_value());
    EXPECT_EQ(world.api.time.slept.size(), 3u);
}

TEST(BuildUploadError, SaysWhatHappened) {
    using E = BuildUploadError;
    const std::pair<E::Kind, const char*> sentences[] = {
        {E::Rejected{{"No icon.", "No name."}}, "App Store Connect rejected the build: No icon. No name."},
        {E::Rejected{}, "App Store Connect rejected the build: "},
        {E::StillProcessing{"U"},
         "The build was uploaded and App Store Connect is still processing it. It will appear in the build "
         "list when "
         "it’s ready."},
        {E::MissingVersions{}, "Enter the version and build number: they couldn’t be read from the file."},
        {E::NoUploadOperations{}, "App Store Connect didn’t accept the upload. Try again."},
        {E::FileChanged{"App.ipa"},
         "“App.ipa” changed while it was uploaded. Upload it again when it is finished."},
    };
    for (const auto& [kind, sentence] : sentences) EXPECT_EQ(E(kind).errorDescription(), sentence);
}

}  // namespace
}  // namespace kestrin
