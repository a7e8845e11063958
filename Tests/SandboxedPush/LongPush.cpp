#include "Tests/SandboxedPush/LongPush.h"

#include <stdexcept>

#include "Tests/SandboxedPush/ProjectEdit.h"
#include "Tests/Support/PNGBytes.h"

namespace kestrin::LongPush {
namespace {

constexpr std::uint32_t kWatchWidth = 312, kWatchHeight = 390;
// Less than the file of the header, which goes out in several parts then.
constexpr std::uint64_t kPartSize = 2000;

constexpr std::uint32_t kHeaderWidth = 1280, kHeaderHeight = 720;

std::string picture(std::uint32_t width, std::uint32_t height, std::string colour) {
    return plainPNG(PNGImage::Colour::rgb, std::move(colour), width, height).bytes();
}

void addFiles(PushStage& stage) {
    stage.addFile("Media/red.png", picture(kWatchWidth, kWatchHeight, "\xF0\x10\x10"));
    stage.addFile("Media/blue.png", picture(kWatchWidth, kWatchHeight, "\x10\x10\xF0"));
    stage.addFile("Media/glass.png",
                  plainPNG(PNGImage::Colour::rgba, "\x10\xF0\x10\x80", kWatchWidth, kWatchHeight).bytes());
    stage.addFile("Media/header-old.png", picture(kHeaderWidth, kHeaderHeight, "\x20\x20\x20"));
    stage.addFile("Media/header-new.png", picture(kHeaderWidth, kHeaderHeight, "\xE0\xE0\xE0"));
}

// The slot holds as much as it can before the push that is tested.
void fillHeader(Project& project) {
    ProjectEdit(project).set("IOS/en-US" + kHeader, "file:Media/header-old.png");
}

void editTexts(ProjectEdit& edit) {
    edit.set("app/primaryCategory", "NEWS");
    edit.set("app/secondaryCategory", "");
    edit.set("app/de-DE/subtitle", "");
    edit.set("app/fr-FR/name", "Notes de marée");
    edit.set("IOS/version/copyright", "2027 Example Ltd");
    edit.set("IOS/version/releaseType", "MANUAL");
    edit.set("MAC_OS/version/copyright", "2027 Example Ltd");
    edit.set("IOS/en-US/whatsNew", "New: tides.\r\nFixed: the moon. ");
    edit.set("IOS/en-US/promotionalText", "");
    edit.set("IOS/fr-FR/description", "Écrivez ce que la marée apporte.");
    edit.set("MAC_OS/de-DE/keywords", "gezeiten,mond");
    edit.set("IOS/review/notes", "Tap the sun.");
    edit.set("IOS/review/demoAccountRequired", "false");
    edit.set("MAC_OS/review/contactEmail", "ada@example.com");
}

void editPages(ProjectEdit& edit) {
    const auto tide = edit.item("IOS/en-US" + kPhoneScreenshots, 0);
    edit.set("pages/autumn/name", "Autumn leaves");
    edit.set("pages/autumn/visible", "true");
    edit.set("pages/autumn/deepLink", "");
    edit.set("pages/autumn/de-DE/promotionalText", "Blätter fallen.");
    edit.set("pages/autumn/fr-FR" + kPhoneScreenshots, tide);
    edit.set("pages/spring/name", "Spring");
    edit.set("pages/spring/visible", "true");
    edit.set("pages/spring/deepLink", "https://example.com/spring");
    edit.set("pages/spring/en-US/promotionalText", "Blossoms.");
    edit.set("pages/spring/de-DE" + kPhoneScreenshots, tide);
}

void editTests(ProjectEdit& edit) {
    const auto tide = edit.item("IOS/en-US" + kPhoneScreenshots, 0);
    edit.set("experiments/moon-icon/trafficProportion", "40");
    edit.set("experiments/moon-icon/treatments/full-moon/appIconName", "");
    edit.set("experiments/moon-icon/treatments/full-moon/de-DE" + kPhoneScreenshots, tide);
    edit.set("experiments/moon-icon/treatments/crescent/name", "Crescent");
    edit.set("experiments/sun-icon/name", "Sun icon");
    edit.set("experiments/sun-icon/trafficProportion", "30");
    edit.set("experiments/sun-icon/treatments/bright/name", "Bright");
    edit.set("experiments/sun-icon/treatments/bright/appIconName", "SunIcon");
    edit.set("experiments/sun-icon/treatments/bright/en-US" + kPhoneScreenshots, tide);
}

void editMedia(ProjectEdit& edit) {
    const auto tide = [&](std::size_t n) { return edit.item("IOS/de-DE" + kPhoneScreenshots, n); };
    const auto moon = edit.item("experiments/moon-icon/treatments/half-moon/en-US" + kPhoneScreenshots, 0);
    edit.set("IOS/en-US" + kWatchScreenshots,
             "file:Media/red.png\nfile:Media/blue.png\nfile:Media/glass.png");
    edit.set("IOS/en-US" + kPhoneScreenshots, moon + "\n" + tide(1));  // one replaced, one removed
    edit.set("IOS/ja" + kPhoneScreenshots, "");                        // emptied
    edit.set("IOS/fr-FR" + kWatchScreenshots, "file:Media/red.png");   // one file in several slots
    edit.set("IOS/en-US" + kHeader, "file:Media/header-new.png");      // full: emptied, then filled
    edit.set("IOS/de-DE" + kPhoneScreenshots, tide(2) + "\n" + tide(0) + "\n" + tide(1));  // reordered
}

void change(Project& project) {
    ProjectEdit edit(project);
    editTexts(edit);
    editPages(edit);
    editTests(edit);
    editMedia(edit);
}

void mustSucceed(const Ended& ended) {
    if (ended.status != 0) throw std::runtime_error(ended.output + ended.errors);
}

}  // namespace

StartingPoint start() {
    PushStage stage;
    const Arguments pull{"pull", stage.package(), "--bundle-id", PushStage::kBundleID};
    mustSucceed(stage.run(pull));
    mustSucceed(stage.run({"version", "create", stage.package(), "2.4", "--platform", "MAC_OS", "--yes"}));
    mustSucceed(stage.run(pull));
    addFiles(stage);
    stage.edit(fillHeader);
    mustSucceed(stage.push());
    stage.edit(change);
    auto point = stage.here();
    point.home.erase(".kestrin/state/refdata.json");  // so that they are read on the way
    point.uploadPartSize = kPartSize;
    return point;
}

}  // namespace kestrin::LongPush
