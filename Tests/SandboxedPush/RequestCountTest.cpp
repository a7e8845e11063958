// What each kind of push costs: the requests that go out after the question, and the estimate that stands in the plan.
#include <gtest/gtest.h>

#include "Tests/SandboxedPush/ProjectEdit.h"
#include "Tests/SandboxedPush/PushStage.h"
#include "Tests/Support/MediaTools.h"
#include "Tests/Support/PNGBytes.h"

namespace kestrin {
namespace {

// To read the everyday listing back; a localization, page, test or treatment that is new costs its own reads on top.
// Two more read the library where there are local media.
constexpr std::size_t kReadBack = 31;
constexpr std::size_t kLibrary = 2;

// Reserved, sent in one part, committed, and looked at until it is processed.
constexpr std::size_t kUpload = 6;

struct Scenario {
    const char* push;
    std::function<void(ProjectEdit&)> edit;
    std::size_t requests;  // for the writes
    std::size_t readBack;
    std::size_t estimate;  // of both
};

const Scenario kScenarios[] = {
    {"one text", [](auto& project) { project.set("IOS/de-DE/whatsNew", "Neu"); }, 1, kReadBack,
     1 + kReadBack},
    {"texts of two locales, two platforms and the app",
     [](auto& project) {
         project.set("IOS/de-DE/whatsNew", "Neu");
         project.set("IOS/de-DE/keywords", "neu");
         project.set("IOS/ja/whatsNew", "新");
         project.set("MAC_OS/de-DE/promotionalText", "Neu");
         project.set("app/de-DE/subtitle", "");
     },
     4, kReadBack, 4 + kReadBack},
    {"categories, version and review details",
     [](auto& project) {
         project.set("app/primaryCategory", "NEWS");
         project.set("app/secondaryCategory", "");
         project.set("IOS/version/copyright", "2027");
         project.set("IOS/review/notes", "");
     },
     3, kReadBack, 3 + kReadBack},
    {"a new locale of the app", [](auto& project) { project.set("app/fr-FR/name", "Marée"); }, 1, kReadBack,
     1 + kReadBack},
    {"a new locale of a version", [](auto& project) { project.set("IOS/fr-FR/description", "Marée"); }, 1,
     kReadBack + 1, 1 + kReadBack},
    {"a new locale of the app and a version with two screenshots",
     [](auto& project) {
         project.set("app/fr-FR/name", "Marée");
         project.set("IOS/fr-FR/description", "Marée");
         project.set("IOS/fr-FR" + kPhoneScreenshots, project.item("IOS/en-US" + kPhoneScreenshots, 0) +
                                                          "\n" +
                                                          project.item("IOS/en-US" + kPhoneScreenshots, 1));
     },
     2 + 2, kReadBack + 1, 2 + 3 + kReadBack},
    {"App Review details that are new", [](auto& project) { project.set("MAC_OS/review/notes", "Hi."); }, 1,
     kReadBack, 1 + kReadBack},
    {"name, visibility, deep link and text of a page",
     [](auto& project) {
         project.set("pages/autumn/name", "Fall");
         project.set("pages/autumn/visible", "true");
         project.set("pages/autumn/deepLink", "");
         project.set("pages/autumn/en-US/promotionalText", "");
     },
     3, kReadBack, 3 + kReadBack},
    {"a new page that is visible in two locales",
     [](auto& project) {
         project.set("pages/spring/name", "Spring");
         project.set("pages/spring/visible", "true");
         project.set("pages/spring/en-US/promotionalText", "Blossoms");
         project.set("pages/spring/de-DE/promotionalText", "Blüten");
     },
     3 + 1, kReadBack + 4, 3 + 1 + kReadBack},
    {"a new page with text, deep link, visibility and a screenshot in a locale that has no text",
     [](auto& project) {
         project.set("pages/spring/name", "Spring");
         project.set("pages/spring/visible", "true");
         project.set("pages/spring/deepLink", "https://example.com/spring");
         project.set("pages/spring/en-US/promotionalText", "Blossoms");
         project.set("pages/spring/de-DE" + kPhoneScreenshots,
                     project.item("IOS/en-US" + kPhoneScreenshots, 0));
     },
     3 + 1 + 1, kReadBack + 4, 3 + 1 + 2 + kReadBack},
    {"another screenshot of a page",
     [](auto& project) {
         project.set("pages/autumn/de-DE" + kPhoneScreenshots,
                     project.item("IOS/en-US" + kPhoneScreenshots, 0));
     },
     2, kReadBack, 3 + kReadBack},
    {"a localization of a page for a screenshot alone",
     [](auto& project) {
         project.set("pages/autumn/fr-FR" + kPhoneScreenshots,
                     project.item("IOS/en-US" + kPhoneScreenshots, 0));
     },
     1 + 1, kReadBack + 1, 1 + 2 + kReadBack},
    {"a new test with a treatment and its screenshot",
     [](auto& project) {
         project.set("experiments/sun/name", "Sun");
         project.set("experiments/sun/trafficProportion", "25");
         project.set("experiments/sun/treatments/bright/name", "Bright");
         project.set("experiments/sun/treatments/bright/en-US" + kPhoneScreenshots,
                     project.item("IOS/en-US" + kPhoneScreenshots, 0));
     },
     4, kReadBack + 3, 3 + 2 + kReadBack},
    {"a new test with two treatments, their icons and their screenshots",
     [](auto& project) {
         project.set("experiments/sun/name", "Sun");
         for (const std::string treatment : {"bright", "dim"}) {
             const auto key = "experiments/sun/treatments/" + treatment;
             project.set(key + "/name", treatment);
             project.set(key + "/appIconName", "SunIcon");
             project.set(key + "/en-US" + kPhoneScreenshots,
                         project.item("IOS/en-US" + kPhoneScreenshots, 0));
         }
     },
     1 + 2 * 3, kReadBack + 5, 1 + 2 * 2 + 2 * 2 + kReadBack},
    {"name, share and a treatment of a test, and a treatment that is new to it",
     [](auto& project) {
         project.set("experiments/moon-icon/name", "Moons");
         project.set("experiments/moon-icon/trafficProportion", "40");
         project.set("experiments/moon-icon/treatments/full-moon/name", "Full");
         project.set("experiments/moon-icon/treatments/full-moon/appIconName", "");
         project.set("experiments/moon-icon/treatments/crescent/name", "Crescent");
     },
     3, kReadBack + 1, 3 + kReadBack},
    {"screenshots in another order",
     [](auto& project) {
         const auto slot = "IOS/en-US" + kPhoneScreenshots;
         project.set(slot,
                     project.item(slot, 2) + "\n" + project.item(slot, 1) + "\n" + project.item(slot, 0));
     },
     1, kReadBack, 1 + kReadBack},
    {"the last screenshot removed",
     [](auto& project) {
         const auto slot = "IOS/en-US" + kPhoneScreenshots;
         project.set(slot, project.item(slot, 0) + "\n" + project.item(slot, 1));
     },
     1, kReadBack, 2 + kReadBack},
    {"all screenshots removed", [](auto& project) { project.set("IOS/en-US" + kPhoneScreenshots, ""); }, 3,
     kReadBack, 4 + kReadBack},
    {"the first of two screenshots replaced by another asset of the library",
     [](auto& project) {
         const auto slot = "IOS/en-US" + kPhoneScreenshots;
         const auto moon =
             project.item("experiments/moon-icon/treatments/full-moon/en-US" + kPhoneScreenshots, 0);
         project.set(slot, moon + "\n" + project.item(slot, 1) + "\n" + project.item(slot, 2));
     },
     3, kReadBack, 3 + kReadBack},
    {"a screenshot uploaded",
     [](auto& project) { project.set("IOS/en-US" + kWatchScreenshots, "file:Media/red.png"); }, kUpload + 1,
     kReadBack + kLibrary, 10 + 2 + kReadBack + kLibrary},
    {"one file in three slots",
     [](auto& project) {
         for (const auto* locale : {"IOS/de-DE", "IOS/en-US", "IOS/ja"})
             project.set(locale + kWatchScreenshots, "file:Media/red.png");
     },
     kUpload + 3, kReadBack + kLibrary, 10 + 3 * 2 + kReadBack + kLibrary},
    {"one file in twenty slots, seventeen of them of new locales",
     [](auto& project) {
         for (const std::string locale : {"ar-SA", "cs", "da", "el", "es-ES", "fi", "fr-FR", "he", "hi", "hu",
                                          "id", "it", "ko", "nl-NL", "no", "pl", "sv"})
             project.set("IOS/" + locale + "/description", "Text");
         for (const std::string locale :
              {"ar-SA", "cs", "da", "de-DE", "el", "en-US", "es-ES", "fi", "fr-FR", "he",
               "hi",    "hu", "id", "it",    "ja", "ko",    "nl-NL", "no", "pl",    "sv"})
             project.set("IOS/" + locale + kWatchScreenshots, "file:Media/red.png");
     },
     17 + kUpload + 20, kReadBack + 17 + kLibrary, 17 + 10 + 20 * 2 + kReadBack + kLibrary},
    {"a picture with alpha, which is flattened",
     [](auto& project) { project.set("IOS/en-US" + kWatchScreenshots, "file:Media/glass.png"); }, kUpload + 1,
     kReadBack + kLibrary, 10 + 2 + kReadBack + kLibrary},
    {"a preview", [](auto& project) { project.set("IOS/de-DE" + kPhonePreviews, "file:Media/waves.mp4"); },
     kUpload + 1, kReadBack + kLibrary, 10 + 2 + kReadBack + kLibrary},
    {"two files in one slot",
     [](auto& project) {
         project.set("IOS/en-US" + kWatchScreenshots, "file:Media/red.png\nfile:Media/blue.png");
     },
     2 * kUpload + 2, kReadBack + kLibrary, 2 * 10 + 3 + kReadBack + kLibrary},
};

// The everyday listing, with a macOS version in preparation that has no App Review details, and files in the package.
StartingPoint pulled() {
    PushStage stage;
    const Arguments pull{"pull", stage.package(), "--bundle-id", PushStage::kBundleID};
    EXPECT_EQ(stage.run(pull).status, 0);
    EXPECT_EQ(
        stage.run({"version", "create", stage.package(), "2.4", "--platform", "MAC_OS", "--yes"}).status, 0);
    EXPECT_EQ(stage.run(pull).status, 0);
    constexpr std::uint32_t kWidth = 312, kHeight = 390;
    for (const auto& [name, colour] : {std::pair{"red", "\xF0\x10\x10"}, std::pair{"blue", "\x10\x10\xF0"}}) {
        stage.addFile(std::string("Media/") + name + ".png",
                      plainPNG(PNGImage::Colour::rgb, colour, kWidth, kHeight).bytes());
    }
    stage.addFile("Media/glass.png",
                  plainPNG(PNGImage::Colour::rgba, "\x10\xF0\x10\x80", kWidth, kHeight).bytes());
    const MediaTools tools;
    tools.ffmpeg(
        "-f lavfi -i color=c=navy:s=886x1920:r=30:d=16 -f lavfi -i anullsrc=r=44100:cl=mono -t 16 "
        "-c:v libx264 -preset ultrafast -pix_fmt yuv420p -c:a aac waves.mp4");
    stage.addFile("Media/waves.mp4", tools.folder.read("waves.mp4"));
    return stage.here();
}

// The requests from the first write to the last of the read-back.
struct Requests {
    std::size_t forWrites = 0;
    std::size_t forReadBack = 0;
};

Requests requestsOf(const std::vector<std::string>& lines) {
    const auto isWrite = [](const std::string& line) { return !line.starts_with("GET"); };
    const auto isFirstRead = [](const std::string& line) {
        return line.starts_with("GET /v1/apps/1234567890?");
    };
    const auto firstWrite = std::find_if(lines.begin(), lines.end(), isWrite);
    const auto readBack = std::find_if(firstWrite, lines.end(), isFirstRead);
    return {static_cast<std::size_t>(readBack - firstWrite),
            static_cast<std::size_t>(lines.end() - readBack)};
}

TEST(RequestCount, OfAPushIsThatOfItsWritesAndOfTheReadBack) {
    const auto start = pulled();
    for (const auto& scenario : kScenarios) {
        SCOPED_TRACE(scenario.push);
        PushStage stage(start.edited([&](Project& project) {
            ProjectEdit edit(project);
            scenario.edit(edit);
        }));

        const auto ended = stage.push();

        EXPECT_EQ(ended.status, 0) << ended.output << ended.errors;
        const auto requests = requestsOf(stage.remote().log().lines());
        EXPECT_EQ(requests.forWrites, scenario.requests);
        EXPECT_EQ(requests.forReadBack, scenario.readBack);
        const auto estimate = "(~" + std::to_string(scenario.estimate) + " requests,";
        EXPECT_NE(ended.output.find(estimate), std::string::npos) << ended.output;
    }
}

TEST(RequestCount, OfASecondPushIsNoneBesidesTheLook) {
    const auto start = pulled();
    PushStage stage(start.edited([](Project& project) {
        ProjectEdit(project).set("IOS/en-US" + kWatchScreenshots, "file:Media/red.png");
    }));
    EXPECT_EQ(stage.push().status, 0);
    stage.remote().clearLog();
    const auto again = stage.push();
    EXPECT_EQ(again.output, "Nothing to push.\n");
    EXPECT_EQ(again.status, 0);
    EXPECT_EQ(stage.remote().log().entries().size(), kReadBack + kLibrary);
}

}  // namespace
}  // namespace kestrin
