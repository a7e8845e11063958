// What a package is made to hold: ProjectPackageCodec::write.
#include <gtest/gtest.h>

#include <functional>
#include <limits>

#include "KestrinCore/StableJSON.h"
#include "KestrinModel/PackageNameError.h"
#include "KestrinModel/ProjectPackageCodec.h"
#include "Tests/Support/PackageTrees.h"
#include "Tests/Support/TemporaryFolder.h"

namespace kestrin {
namespace {

using ProjectPackageCodec::write;

const char* const kGitAttributes =
    "*.png binary\n*.jpg binary\n*.jpeg binary\n*.heic binary\n*.mp4 binary\n*.mov binary\n";

const LocalizedFields kSomeText({{ListingField::keywords, "a,b"}});
const MediaBySlot kSomeMedia = {{{"g", "t"}, {MediaItem::remote("1")}}};

Listing written(const Project& project, const Listing& previous = {}) {
    return listingOf(write(project, treeOf(previous)));
}

bool has(const Listing& listing, const std::string& path) {
    return listing.contains(path);
}

// The paths written for `project` beyond those of an empty project.
std::vector<std::string> addedPaths(const Project& project) {
    const auto base = written(Project());
    std::vector<std::string> paths;
    for (const auto& entry : written(project)) {
        if (!base.contains(entry.first)) paths.push_back(entry.first);
    }
    return paths;
}

// The table of what is written when

TEST(PackageWriter, AnEmptyProjectHasTheFilesThatEveryProjectHas) {
    const auto listing = written(Project());
    EXPECT_EQ(listing, (Listing{{".gitattributes", kGitAttributes},
                                {"App/Locales/", ""},
                                {"App/info.json", "{\n\n}\n"},
                                {"Kestrin.json", StableJSON::encode(ProjectManifest())}}));
}

TEST(PackageWriter, EachFileIsWrittenWhenItHasContent) {
    using Paths = std::vector<std::string>;
    const auto iOS = [](Project& p) -> PlatformListing& { return p.platforms[StorePlatform::iOS]; };
    const struct {
        const char* when;
        std::function<void(Project&)> change;
        Paths added;
    } rows[] = {
        {"an app locale", [](Project& p) { p.app.locales[{"de"}]; }, {"App/Locales/de.json"}},
        {"a platform", [&](Project& p) { iOS(p); }, {"iOS/Locales/", "iOS/version.json"}},
        {"a platform that is unknown",
         [](Project& p) { p.platforms[{"WATCH_OS"}]; },
         {"WATCH_OS/Locales/", "WATCH_OS/version.json"}},
        {"review details",
         [&](Project& p) { iOS(p).review.notes = ""; },
         {"iOS/Locales/", "iOS/review.json", "iOS/version.json"}},
        {"a locale without texts",
         [&](Project& p) { iOS(p).locales[{"de"}]; },
         {"iOS/Locales/de/", "iOS/version.json"}},
        {"keywords",
         [&](Project& p) { iOS(p).locales[{"de"}].set(ListingField::keywords, "a"); },
         {"iOS/Locales/de/listing.json", "iOS/version.json"}},
        {"a support URL",
         [&](Project& p) { iOS(p).locales[{"de"}].set(ListingField::supportUrl, "a"); },
         {"iOS/Locales/de/listing.json", "iOS/version.json"}},
        {"a marketing URL",
         [&](Project& p) { iOS(p).locales[{"de"}].set(ListingField::marketingUrl, "a"); },
         {"iOS/Locales/de/listing.json", "iOS/version.json"}},
        {"an unknown member",
         [&](Project& p) {
             iOS(p).locales[{"de"}].unknownFields = {{"new", 1}};
         },
         {"iOS/Locales/de/listing.json", "iOS/version.json"}},
        {"a description",
         [&](Project& p) { iOS(p).locales[{"de"}].set(ListingField::description, "a"); },
         {"iOS/Locales/de/description.txt", "iOS/version.json"}},
        {"a promotional text",
         [&](Project& p) { iOS(p).locales[{"de"}].set(ListingField::promotionalText, "a"); },
         {"iOS/Locales/de/promotional-text.txt", "iOS/version.json"}},
        {"what's new",
         [&](Project& p) { iOS(p).locales[{"de"}].set(ListingField::whatsNew, "a"); },
         {"iOS/Locales/de/whats-new.txt", "iOS/version.json"}},
        {"media of a locale without texts",
         [&](Project& p) { iOS(p).media[{"de"}] = kSomeMedia; },
         {"iOS/Locales/de/placements.json", "iOS/version.json"}},
        {"media without any item",
         [&](Project& p) {
             iOS(p).media[{"de"}] = {{{"g", "t"}, {}}};
         },
         {"iOS/Locales/de/", "iOS/version.json"}},
        {"a page", [](Project& p) { p.pages[{"a"}]; }, {"Pages/a/page.json"}},
        {"a page's locale",
         [](Project& p) { p.pages[{"a"}].locales = {{"de"}}; },
         {"Pages/a/Locales/de/", "Pages/a/page.json"}},
        {"a page's text",
         [](Project& p) { p.pages[{"a"}].promotionalText[{"de"}] = "x"; },
         {"Pages/a/Locales/de/promotional-text.txt", "Pages/a/page.json"}},
        {"a page's media",
         [](Project& p) { p.pages[{"a"}].media[{"de"}] = kSomeMedia; },
         {"Pages/a/Locales/de/placements.json", "Pages/a/page.json"}},
        {"a test", [](Project& p) { p.experiments[{"a"}]; }, {"Experiments/a/experiment.json"}},
        {"a treatment",
         [](Project& p) { p.experiments[{"a"}].treatments[{"b"}]; },
         {"Experiments/a/Treatments/b/treatment.json", "Experiments/a/experiment.json"}},
        {"a treatment's locale",
         [](Project& p) { p.experiments[{"a"}].treatments[{"b"}].locales = {{"de"}}; },
         {"Experiments/a/Treatments/b/Locales/de/", "Experiments/a/Treatments/b/treatment.json",
          "Experiments/a/experiment.json"}},
        {"a treatment's media",
         [](Project& p) { p.experiments[{"a"}].treatments[{"b"}].media[{"de"}] = kSomeMedia; },
         {"Experiments/a/Treatments/b/Locales/de/placements.json",
          "Experiments/a/Treatments/b/treatment.json", "Experiments/a/experiment.json"}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.when);
        Project project;
        row.change(project);
        EXPECT_EQ(addedPaths(project), row.added);
    }
}

TEST(PackageWriter, AFileWhoseContentIsGoneGoes) {
    const Listing before{{"iOS/review.json", "{}"},
                         {"iOS/Locales/de/listing.json", "{}"},
                         {"iOS/Locales/de/description.txt", "x"},
                         {"iOS/Locales/de/promotional-text.txt", "x"},
                         {"iOS/Locales/de/whats-new.txt", ""},
                         {"iOS/Locales/de/placements.json", "{}"},
                         {"Pages/a/Locales/de/promotional-text.txt", "x"},
                         {"Pages/a/Locales/de/placements.json", "{}"},
                         {"Experiments/a/Treatments/b/Locales/de/placements.json", "{}"}};
    Project project;
    project.platforms[StorePlatform::iOS].locales[{"de"}];
    project.pages[{"a"}].locales = {{"de"}};
    project.experiments[{"a"}].treatments[{"b"}].locales = {{"de"}};
    EXPECT_EQ(written(project, before), written(project));
}

TEST(PackageWriter, TextsEndInOneLineFeedOfTheFiles) {
    Project project;
    project.setValue("One\r\nTwo\n", ListingField::description, {"de"}, StorePlatform::iOS);
    project.pages[{"a"}].promotionalText[{"de"}] = "Now";
    const auto listing = written(project);
    EXPECT_EQ(listing.at("iOS/Locales/de/description.txt"), "One\nTwo\n\n");
    EXPECT_EQ(listing.at("Pages/a/Locales/de/promotional-text.txt"), "Now\n");
}

TEST(PackageWriter, EachKindOfFileHoldsItsOwnFields) {
    Project project;
    const LocalizedFields everything(
        {{ListingField::name, "N"}, {ListingField::keywords, "K"}, {ListingField::description, "D"}},
        {{"new", 1}});
    project.app.locales[{"de"}] = everything;
    project.platforms[StorePlatform::iOS].locales[{"de"}] = everything;
    const auto listing = written(project);
    EXPECT_EQ(listing.at("App/Locales/de.json"), "{\n  \"name\" : \"N\",\n  \"new\" : 1\n}\n");
    EXPECT_EQ(listing.at("iOS/Locales/de/listing.json"), "{\n  \"keywords\" : \"K\",\n  \"new\" : 1\n}\n");
    EXPECT_EQ(listing.at("iOS/Locales/de/description.txt"), "D\n");
}

// Manifest and .gitattributes

TEST(PackageWriter, TheLegacyManifestGoesAndTheFormatBecomesCurrent) {
    auto legacy = manifestText();
    const std::string current = "com.brennoway.kestrin.project";
    legacy.replace(legacy.find(current), current.size(), "com.brennoway.marquel.project");
    auto previous = treeOf({{"Marquel.json", legacy}});
    const auto project = ProjectPackageCodec::read(previous);
    const auto listing = listingOf(write(project, std::move(previous)));
    EXPECT_FALSE(has(listing, "Marquel.json"));
    EXPECT_EQ(listing.at("Kestrin.json"), manifestText());
}

TEST(PackageWriter, OfBothManifestsTheLegacyOneGoes) {
    auto previous = treeOf({{"Kestrin.json", manifestText()}, {"Marquel.json", "anything"}});
    const auto project = ProjectPackageCodec::read(previous);
    const auto listing = listingOf(write(project, std::move(previous)));
    EXPECT_EQ(listing.at("Kestrin.json"), manifestText());
    EXPECT_FALSE(has(listing, "Marquel.json"));
}

TEST(PackageWriter, GitAttributesAreTheUsersOnceTheyAreThere) {
    EXPECT_EQ(written(Project(), {{".gitattributes", "mine"}}).at(".gitattributes"), "mine");
    EXPECT_EQ(written(Project(), {{".gitattributes/x", "a folder"}}).at(".gitattributes/x"), "a folder");
}

// What the model no longer holds

TEST(PackageWriter, AnAppLocaleThatIsGoneTakesItsFileAway) {
    Project project;
    project.app.locales[{"de"}] = LocalizedFields({{ListingField::name, "N"}});
    const auto listing = written(project, {{"App/Locales/fr.json", "{}"},
                                           {"App/Locales/it.json/x", "a folder of such a name"},
                                           {"App/Locales/notes.md", "stays"},
                                           {"App/Locales/folder/x", "stays"}});
    EXPECT_FALSE(has(listing, "App/Locales/fr.json"));
    EXPECT_FALSE(has(listing, "App/Locales/it.json/x"));
    EXPECT_TRUE(has(listing, "App/Locales/de.json"));
    EXPECT_TRUE(has(listing, "App/Locales/notes.md"));
    EXPECT_TRUE(has(listing, "App/Locales/folder/x"));
}

TEST(PackageWriter, APlatformThatIsGoneTakesItsWholeFolderAway) {
    Project project;
    project.platforms[StorePlatform::iOS];
    project.manifest.platforms = {StorePlatform::tvOS};
    const auto listing = written(project, {{"macOS/version.json", "{}"},
                                           {"macOS/notes.md", "goes"},
                                           {"tvOS/Locales/", ""},
                                           {"WATCH_OS/version.json/x", ""},
                                           {"iOS/notes.md", "stays"},
                                           {"Docs/Locales", "a file: no platform"},
                                           {"Docs/x", "stays"}});
    for (const char* gone :
         {"macOS/notes.md", "macOS/version.json", "tvOS/Locales/", "WATCH_OS/version.json/x"}) {
        EXPECT_FALSE(has(listing, gone)) << gone;
    }
    for (const char* stays : {"iOS/notes.md", "iOS/version.json", "Docs/Locales", "Docs/x"}) {
        EXPECT_TRUE(has(listing, stays)) << stays;
    }
}

TEST(PackageWriter, AFolderNamedByThePlatformsRawValueGivesWayToItsOwn) {
    auto previous =
        treeOf({{"Kestrin.json", manifestText()}, {"IOS/version.json", R"({"versionString": "1"})"}});
    const auto project = ProjectPackageCodec::read(previous);
    const auto listing = listingOf(write(project, std::move(previous)));
    EXPECT_TRUE(has(listing, "iOS/version.json"));
    EXPECT_FALSE(has(listing, "IOS/version.json"));
}

TEST(PackageWriter, ALocaleThatIsGoneTakesItsWholeFolderAway) {
    Project project;
    project.platforms[StorePlatform::iOS].locales[{"de"}] = kSomeText;
    project.pages[{"a"}].locales = {{"de"}};
    project.experiments[{"a"}].treatments[{"b"}].locales = {{"de"}};
    Listing before;
    for (const std::string folder : {"iOS", "Pages/a", "Experiments/a/Treatments/b"}) {
        before.emplace(folder + "/Locales/fr/notes.md", "goes");
        before.emplace(folder + "/Locales/de/notes.md", "stays");
        before.emplace(folder + "/Locales/plain.md", "stays");
    }
    const auto listing = written(project, before);
    for (const std::string folder : {"iOS", "Pages/a", "Experiments/a/Treatments/b"}) {
        EXPECT_FALSE(has(listing, folder + "/Locales/fr/notes.md")) << folder;
        EXPECT_TRUE(has(listing, folder + "/Locales/de/notes.md")) << folder;
        EXPECT_TRUE(has(listing, folder + "/Locales/plain.md")) << folder;
    }
}

TEST(PackageWriter, APageTestOrTreatmentThatIsGoneTakesItsWholeFolderAway) {
    Project project;
    project.pages[{"a"}];
    project.experiments[{"a"}].treatments[{"b"}];
    const auto listing = written(project, {{"Pages/old/page.json", "{}"},
                                           {"Pages/old/notes.md", "goes"},
                                           {"Pages/draft/notes.md", "stays"},
                                           {"Pages/notes.md", "stays"},
                                           {"Experiments/old/experiment.json", "{}"},
                                           {"Experiments/draft/Treatments/x/treatment.json", "stays"},
                                           {"Experiments/a/Treatments/old/treatment.json", "{}"},
                                           {"Experiments/a/Treatments/draft/x", "stays"}});
    for (const char* gone : {"Pages/old/page.json", "Pages/old/notes.md", "Experiments/old/experiment.json",
                             "Experiments/a/Treatments/old/treatment.json"}) {
        EXPECT_FALSE(has(listing, gone)) << gone;
    }
    for (const char* stays :
         {"Pages/draft/notes.md", "Pages/notes.md", "Experiments/draft/Treatments/x/treatment.json",
          "Experiments/a/Treatments/draft/x"}) {
        EXPECT_TRUE(has(listing, stays)) << stays;
    }
}

TEST(PackageWriter, AFolderForNothingGoesWithItsLastItem) {
    const Listing before{{"Pages/old/page.json", "{}"},
                         {"Experiments/a/experiment.json", "{}"},
                         {"Experiments/a/Treatments/old/treatment.json", "{}"}};
    Project project;
    project.experiments[{"a"}];
    EXPECT_EQ(written(project, before), written(project)) << "neither Pages nor Treatments is left";
    EXPECT_EQ(written(Project(), before), written(Project())) << "nor Experiments";
}

TEST(PackageWriter, AFolderForNothingStaysWhileSomethingIsInIt) {
    const auto listing = written(
        Project(),
        {{"Pages/old/page.json", "{}"}, {"Pages/notes.md", "stays"}, {"Experiments/draft/x", "stays"}});
    EXPECT_TRUE(has(listing, "Pages/notes.md"));
    EXPECT_TRUE(has(listing, "Experiments/draft/x"));
    EXPECT_FALSE(has(listing, "Pages/old/page.json"));
}

TEST(PackageWriter, APagesLocalesFolderIsThereOnlyWithSomethingInIt) {
    Project project;
    project.pages[{"a"}];
    EXPECT_FALSE(has(written(project, {{"Pages/a/Locales/", ""}}), "Pages/a/Locales/"));
    EXPECT_FALSE(has(written(project, {{"Pages/a/Locales/de/x", ""}}), "Pages/a/Locales/"));
    EXPECT_TRUE(has(written(project, {{"Pages/a/Locales/notes.md", ""}}), "Pages/a/Locales/notes.md"));
    project.platforms[StorePlatform::iOS];
    EXPECT_TRUE(has(written(project), "iOS/Locales/")) << "a platform's is always there";
}

TEST(PackageWriter, AFileInTheWayOfAFolderGoes) {
    Project project;
    project.platforms[StorePlatform::iOS].locales[{"de"}] = kSomeText;
    project.pages[{"a"}].locales = {{"de"}};
    project.experiments[{"a"}].treatments[{"b"}].locales = {{"de"}};
    for (const char* inTheWay :
         {"App", "iOS", "iOS/Locales", "iOS/Locales/de", "Pages", "Pages/a", "Pages/a/Locales",
          "Pages/a/Locales/de", "Experiments", "Experiments/a", "Experiments/a/Treatments",
          "Experiments/a/Treatments/b", "Experiments/a/Treatments/b/Locales"}) {
        EXPECT_EQ(written(project, {{inTheWay, "x"}}), written(project)) << inTheWay;
    }
}

// Names

TEST(PackageWriter, RefusesNamesBeforeAnythingIsWritten) {
    Project project;
    project.pages[{"../outside"}];
    EXPECT_THROW(write(project), PackageNameError);
    EXPECT_THROW(write(Project(), {}, {{"../x", "/dev/null"}}), PackageNameError);
}

TEST(PackageWriter, RefusesANameOnDiskThatItWouldHaveToJudge) {
    for (const std::string path :
         {"i\xffOS/version.json", "App/Locales/d\xff.json", "Pages/s\xff/page.json"}) {
        EXPECT_THROW(written(Project(), {{path, "{}"}}), PackageNameError) << path;
    }
    EXPECT_EQ(written(Project(), {{"Pages/s\xff/x", "kept"}}).at("Pages/s\xff/x"), "kept");
}

TEST(PackageWriter, AFolderInEitherSpellingIsTheSameFolder) {
    Project project;
    project.pages[{"\u00E9t\u00E9"}].name = "Summer";
    const auto listing = written(project, {{"Pages/e\u0301te\u0301/page.json", "{}"}});
    EXPECT_TRUE(has(listing, "Pages/e\u0301te\u0301/page.json"));
    EXPECT_FALSE(has(listing, "Pages/\u00E9t\u00E9/page.json"));
}

TEST(PackageWriter, ANumberThatJSONDoesntHaveIsRefused) {
    Project project;
    project.app.info.unknownFields.emplace("x", std::numeric_limits<double>::infinity());
    EXPECT_THROW(write(project), StableJSON::EncodingError);
}

// Added files

TEST(PackageWriter, AddedFilesAreStoredUnderTheirPaths) {
    const TemporaryFolder disk;
    disk.write("a.png", "A");
    disk.write("b.png", "B");
    const auto listing = listingOf(
        write(Project(), treeOf({{"Media", "in the way"}, {"x/y", "old"}}),
              {{"Media/de//1.png", disk / "a.png"}, {"/x/y", disk / "b.png"}, {"top.png", disk / "b.png"}}));
    EXPECT_EQ(listing.at("Media/de/1.png"), "A");
    EXPECT_EQ(listing.at("x/y"), "B");
    EXPECT_EQ(listing.at("top.png"), "B");
}

TEST(PackageWriter, AnAddedFileOfTheSameSizeIsLeftAlone) {
    const TemporaryFolder disk;
    disk.write("a.png", "new");
    EXPECT_EQ(
        listingOf(write(Project(), treeOf({{"a.png", "old"}}), {{"a.png", disk / "a.png"}})).at("a.png"),
        "old");
}

TEST(PackageWriter, AddedFilesComeAfterTheProjectInTheOrderOfTheirPaths) {
    const TemporaryFolder disk;
    disk.write("a.png", "file");
    // "a" is there as a file before "a/b" makes a folder of it.
    const auto listing = listingOf(write(Project(), {}, {{"a/b", disk / "a.png"}, {"a", disk / "a.png"}}));
    EXPECT_EQ(listing.at("a/b"), "file");
    EXPECT_EQ(listingOf(write(Project(), {}, {{"App/info.json", disk / "a.png"}})).at("App/info.json"),
              "file");
}

TEST(PackageWriter, AnAddedFileThatCantBeReadIsRefused) {
    EXPECT_THROW(write(Project(), {}, {{"a.png", "/nonexistent/a.png"}}), FileError);
}

}  // namespace
}  // namespace kestrin
