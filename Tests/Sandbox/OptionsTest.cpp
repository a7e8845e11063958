#include "Sandbox/Program/Options.h"

#include "Tests/Sandbox/SandboxFixture.h"
#include "Tests/Support/TemporaryFolder.h"

namespace kestrin::sandbox {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

TEST(OptionsTest, StandsOnAFreePortWithTheEverydayAppByDefault) {
    const auto options = parseOptions({});
    EXPECT_EQ(options.port, 0);
    EXPECT_EQ(options.seed, "everyday");
    EXPECT_FALSE(options.envFile || options.stateFile || options.logFile || options.privateKey);
    EXPECT_TRUE(options.command.empty());
}

TEST(OptionsTest, TakesAValueBehindABlankOrAnEqualsSign) {
    EXPECT_EQ(parseOptions({"--port", "4711"}).port, 4711);
    EXPECT_EQ(parseOptions({"--port=4711"}).port, 4711);
    EXPECT_EQ(parseOptions({"--fault=GET *#1=status:500"}).faults.front(), "GET *#1=status:500");
    EXPECT_EQ(parseOptions({"--issuer-id="}).issuerID, "");
}

TEST(OptionsTest, ReadsEveryOption) {
    const auto options = parseOptions({"--seed",
                                       "new-app",
                                       "--env-file",
                                       "env",
                                       "--state-file",
                                       "state",
                                       "--log-file",
                                       "log",
                                       "--latency",
                                       "20",
                                       "--fault",
                                       "*#2=drop-before",
                                       "--requests-per-hour",
                                       "50",
                                       "--requests-made",
                                       "49",
                                       "--page-size",
                                       "3",
                                       "--processing-reads",
                                       "0",
                                       "--part-size",
                                       "100",
                                       "--any-media",
                                       "--linked-locales",
                                       "--private-key",
                                       "k.p8",
                                       "--key-id",
                                       "K",
                                       "--issuer-id",
                                       "I",
                                       "--reads-only",
                                       "--load",
                                       "old",
                                       "--help"});
    EXPECT_EQ(options.seed, "new-app");
    EXPECT_EQ(options.envFile, "env");
    EXPECT_EQ(options.stateFile, "state");
    EXPECT_EQ(options.logFile, "log");
    EXPECT_THAT(options.faults, ElementsAre("*=latency:20", "*#2=drop-before"));
    EXPECT_EQ(options.settings.requestsPerHour, 50u);
    EXPECT_EQ(options.settings.requestsMade, 49u);
    EXPECT_EQ(options.settings.largestPage, 3u);
    EXPECT_EQ(options.settings.processingReads, 0);
    EXPECT_EQ(options.settings.uploadPartSize, 100u);
    EXPECT_FALSE(options.settings.inspectsMedia);
    EXPECT_TRUE(options.settings.linksLocales);
    EXPECT_EQ(options.privateKey, "k.p8");
    EXPECT_EQ(options.keyID, "K");
    EXPECT_EQ(options.issuerID, "I");
    EXPECT_TRUE(options.readsOnly);
    EXPECT_EQ(options.stateToLoad, "old");
    EXPECT_TRUE(options.showsHelp);
}

TEST(OptionsTest, LeavesEverythingBehindTwoHyphensToTheCommand) {
    const auto options = parseOptions({"--port", "4711", "--", "kestrin", "--port", "--"});
    EXPECT_EQ(options.port, 4711);
    EXPECT_THAT(options.command, ElementsAre("kestrin", "--port", "--"));
}

struct Mistake {
    std::vector<std::string> words;
    const char* message;
};

const Mistake kMistakes[] = {
    {{"--colour", "red"}, "there is no option \"--colour\""},
    {{"apps"}, "there is no option \"apps\""},
    {{"--port"}, "--port wants a value"},
    {{"--port", "0"}, "--port: \"0\" is no number that it takes"},
    {{"--port", "65536"}, "--port: \"65536\" is no number that it takes"},
    {{"--port", "12x"}, "--port: \"12x\" is no number that it takes"},
    {{"--latency", "-1"}, "--latency: \"-1\" is no number that it takes"},
    {{"--page-size", "0"}, "--page-size: \"0\" is no number that it takes"},
    {{"--seed", "red"}, "--seed: there is no seed \"red\""},
    {{"--fault", "GET /v1/apps"}, "fault \"GET /v1/apps\": there is no \"=\""},
    {{"--reads-only=yes"}, "--reads-only takes no value"},
    {{"--"}, "there is no command behind \"--\""},
};

TEST(OptionsTest, TellsWhichWordIsWrong) {
    for (const auto& row : kMistakes) {
        SCOPED_TRACE(row.message);
        try {
            parseOptions(row.words);
            ADD_FAILURE() << "taken";
        } catch (const UsageError& error) {
            EXPECT_STREQ(error.what(), row.message);
        }
    }
}

TEST(OptionsTest, PrintsALineForEachOption) {
    EXPECT_THAT(usageText(), HasSubstr("\n  --env-file FILE         write the environment"));
    EXPECT_THAT(usageText(), HasSubstr("\n  --reads-only            the key may not write\n"));
}

// The names of the apps that a sandbox with these options begins with.
std::vector<std::string> appNames(const std::vector<std::string>& words) {
    Sandbox sandbox({}, seedOf(parseOptions(words)));
    std::vector<std::string> names;
    sandbox.service().with([&](State& state) {
        for (const auto* app : state.store.all("apps")) names.push_back(app->text("name"));
    });
    return names;
}

TEST(OptionsTest, BeginsWithTheSeedOfThatNameOrWithAFile) {
    const TemporaryFolder folder;
    folder.write("state.json",
                 R"({"resources": [{"type": "apps", "id": "5", "attributes": {"name": "Buoy"}}]})");
    EXPECT_THAT(appNames({}), ElementsAre("Tide Notes", "Lighthouse"));
    EXPECT_THAT(appNames({"--seed", "new-app"}), ElementsAre("Tide Notes"));
    EXPECT_THAT(appNames({"--seed", "empty"}), ElementsAre());
    EXPECT_THAT(appNames({"--load", (folder / "state.json").string()}), ElementsAre("Buoy"));
    EXPECT_THROW(appNames({"--load", (folder / "missing.json").string()}), std::runtime_error);
}

class NewAppTest : public SandboxFixture {
 protected:
    NewAppTest() : SandboxFixture(Settings{}, seeds::newApp) {}
};

TEST_F(NewAppTest, HasAVersionInPreparationWithItsNameAndNothingElse) {
    const auto version = get("/v1/apps/1234567890/appStoreVersions");
    EXPECT_EQ(version.attributes(0)["appVersionState"], "PREPARE_FOR_SUBMISSION");
    const auto texts = get("/v1/appStoreVersions/" + version.ids().at(0) + "/appStoreVersionLocalizations");
    EXPECT_EQ(texts.attributes(0)["locale"], "en-US");
    EXPECT_EQ(texts.attributes(0)["description"], nullptr);
    const auto info = get("/v1/apps/1234567890/appInfos").ids().at(0);
    EXPECT_EQ(get("/v1/appInfos/" + info + "/appInfoLocalizations").attributes(0)["name"], "Tide Notes");
    EXPECT_EQ(get("/v1/builds?filter%5Bapp%5D=1234567890").json["data"].size(), 0u);
}

}  // namespace
}  // namespace kestrin::sandbox
