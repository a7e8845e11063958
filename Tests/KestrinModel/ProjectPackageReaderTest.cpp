// How a package reads: ProjectPackageCodec::read.
#include <gtest/gtest.h>

#include <functional>

#include "KestrinModel/PackageNameError.h"
#include "KestrinModel/ProjectFormatError.h"
#include "KestrinModel/ProjectPackageCodec.h"
#include "Tests/Support/PackageTrees.h"
#include "Tests/Support/Repeated.h"

namespace kestrin {
namespace {

using E = ProjectFormatError;

// A package of the manifest and these files.
Project reading(Listing files) {
    files.emplace("Kestrin.json", manifestText());
    return ProjectPackageCodec::read(treeOf(files));
}

E::Kind faultOf(const Listing& files) {
    try {
        ProjectPackageCodec::read(treeOf(files));
    } catch (const E& error) {
        return error.kind;
    }
    ADD_FAILURE() << "read without a fault";
    return E::NotAPackage{};
}

E::Kind faultOfManifest(const std::string& bytes) {
    return faultOf({{"Kestrin.json", bytes}});
}

// The manifest

TEST(PackageReader, TheManifestIsTheOneFileThatMustBeThere) {
    EXPECT_EQ(faultOf({}), E::Kind(E::MissingManifest{}));
    EXPECT_EQ(faultOf({{"App/info.json", "{}"}}), E::Kind(E::MissingManifest{}));
    const auto project = reading({});
    EXPECT_EQ(project.manifest.app.bundleID, "com.example.app");
    EXPECT_TRUE(project.platforms.empty());
}

TEST(PackageReader, AFolderIsNoManifestEvenBesideTheLegacyOne) {
    EXPECT_EQ(faultOf({{"Kestrin.json/x", ""}}), E::Kind(E::MissingManifest{}));
    EXPECT_EQ(faultOf({{"Kestrin.json/x", ""}, {"Marquel.json", manifestText()}}),
              E::Kind(E::MissingManifest{}));
}

TEST(PackageReader, ReadsTheLegacyManifestOnlyWithoutTheOther) {
    const Listing legacy{{"Marquel.json", manifestText(",\n  \"from\" : \"Marquel\"")}};
    EXPECT_EQ(ProjectPackageCodec::read(treeOf(legacy)).manifest.unknownFields.at("from"), "Marquel");

    auto both = legacy;
    both.emplace("Kestrin.json", manifestText(",\n  \"from\" : \"Kestrin\""));
    EXPECT_EQ(ProjectPackageCodec::read(treeOf(both)).manifest.unknownFields.at("from"), "Kestrin");
}

TEST(PackageReader, TellsWhatIsWrongWithAManifest) {
    const std::string valid = R"("projectID": "0F9C1B2A-3D4E-4F50-8A6B-7C8D9E0F1A2B")";
    const std::string format = R"("format": "com.brennoway.kestrin.project")";
    const struct {
        const char* when;
        std::string manifest;
        E::Kind fault;
    } rows[] = {
        {"empty", "", E::CorruptManifest{}},
        {"not JSON", "{", E::CorruptManifest{}},
        {"not an object", "[]", E::CorruptManifest{}},
        {"not UTF-8", "{\"format\": \"\xff\"}", E::CorruptManifest{}},
        {"nested 100,000 deep", repeated(100'000, "["), E::CorruptManifest{}},
        {"no format", "{\"schemaVersion\": 1, " + valid + "}", E::CorruptManifest{}},
        {"a format that is no string", R"({"format": 1, "schemaVersion": 1})", E::CorruptManifest{}},
        {"another format", R"({"format": "com.example.other", "schemaVersion": 9})",
         E::WrongFormat{"com.example.other"}},
        {"no version", "{" + format + ", " + valid + "}", E::InvalidSchemaVersion{}},
        {"a version as a string", "{" + format + R"(, "schemaVersion": "1"})", E::InvalidSchemaVersion{}},
        {"a version with a fraction", "{" + format + R"(, "schemaVersion": 1.5})", E::InvalidSchemaVersion{}},
        {"version null", "{" + format + R"(, "schemaVersion": null})", E::InvalidSchemaVersion{}},
        {"version 0", "{" + format + R"(, "schemaVersion": 0})", E::InvalidSchemaVersion{}},
        {"version 2", "{" + format + R"(, "schemaVersion": 2})", E::NewerSchemaVersion{2}},
        {"no project ID", "{" + format + R"(, "schemaVersion": 1})", E::CorruptManifest{}},
        {"a project ID that is none", "{" + format + R"(, "schemaVersion": 1, "projectID": "1"})",
         E::CorruptManifest{}},
        {"platforms that are no list",
         "{" + format + R"(, "schemaVersion": 1, "platforms": {}, )" + valid + "}", E::CorruptManifest{}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(faultOfManifest(row.manifest), row.fault);
    }
}

TEST(PackageReader, BothFormatIdentifiersAreKnown) {
    for (const char* format : {"com.brennoway.kestrin.project", "com.brennoway.marquel.project"}) {
        auto manifest = manifestText();
        const std::string current = "com.brennoway.kestrin.project";
        manifest.replace(manifest.find(current), current.size(), format);
        EXPECT_NO_THROW(ProjectPackageCodec::read(treeOf({{"Kestrin.json", manifest}}))) << format;
    }
}

TEST(PackageReader, AVersionWrittenAsAWholeFloatIsAnInteger) {
    auto manifest = manifestText();
    manifest.replace(manifest.find("\"schemaVersion\" : 1"), 19, "\"schemaVersion\" : 1.0");
    EXPECT_NO_THROW(ProjectPackageCodec::read(treeOf({{"Kestrin.json", manifest}})));
}

// Damaged files

TEST(PackageReader, NamesTheDamagedFileByItsPath) {
    const char* const damaged[] = {
        "App/info.json",
        "App/Locales/de.json",
        "iOS/version.json",
        "iOS/review.json",
        "iOS/Locales/de/listing.json",
        "iOS/Locales/de/placements.json",
        "WATCH_OS/version.json",
        "Pages/summer/page.json",
        "Pages/summer/Locales/de/placements.json",
        "Experiments/icons/experiment.json",
        "Experiments/icons/Treatments/blue/treatment.json",
        "Experiments/icons/Treatments/blue/Locales/de/placements.json",
    };
    for (const std::string path : damaged) {
        SCOPED_TRACE(path);
        Listing files{
            {"Kestrin.json", manifestText()},
            {"iOS/version.json", "{}"},
            {"Pages/summer/page.json", "{}"},
            {"Experiments/icons/experiment.json", "{}"},
            {"Experiments/icons/Treatments/blue/treatment.json", "{}"},
        };
        for (const std::string& bytes :
             {std::string(), std::string("[]"), std::string("{\"a\":"), std::string("\xff"),
              "{\"a\":" + repeated(100'000, "[") + repeated(100'000, "]") + "}"}) {
            files[path] = bytes;
            EXPECT_EQ(faultOf(files), E::Kind(E::CorruptFile{path})) << bytes.substr(0, 20);
        }
    }
}

TEST(PackageReader, TheFirstDamagedFileEndsTheRead) {
    const Listing files{{"Kestrin.json", manifestText()},
                        {"Pages/a/page.json", ""},
                        {"iOS/version.json", ""},
                        {"App/info.json", ""}};
    EXPECT_EQ(faultOf(files), E::Kind(E::CorruptFile{"App/info.json"}));
}

TEST(PackageReader, AFolderInAFilesPlaceIsNoFile) {
    const auto project = reading({{"App/info.json/x", ""},
                                  {"App/Locales/de.json/x", ""},
                                  {"iOS/version.json/x", ""},
                                  {"iOS/review.json/x", ""},
                                  {"iOS/Locales/de/listing.json/x", ""},
                                  {"iOS/Locales/de/description.txt/x", ""},
                                  {"iOS/Locales/de/placements.json/x", ""},
                                  {"Pages/a/page.json/x", ""}});
    EXPECT_EQ(project.app, AppListing());
    EXPECT_EQ(project[StorePlatform::iOS], PlatformListing());
    EXPECT_EQ(project.platforms.size(), 1u);
    EXPECT_TRUE(project.pages.empty());
}

// The app

TEST(PackageReader, ReadsTheAppsLocalesFromFilesThatEndInJSON) {
    const auto project = reading({{"App/info.json", R"({"primaryCategory": "GAMES"})"},
                                  {"App/Locales/de-DE.json", R"({"name": "Foo", "keywords": "kept"})"},
                                  {"App/Locales/fr.JSON", R"({"name": "Foo"})"},
                                  {"App/Locales/it.txt", R"({"name": "Foo"})"},
                                  {"App/Locales/en.json/x", R"({"name": "Foo"})"},
                                  {"App/de.json", R"({"name": "Foo"})"}});
    EXPECT_EQ(project.app.info.primaryCategory, "GAMES");
    EXPECT_EQ(project.app.locales,
              (LocalizedTexts{
                  {{"de-DE"}, LocalizedFields({{ListingField::name, "Foo"}}, {{"keywords", "kept"}})}}));
}

TEST(PackageReader, AFileThatYieldsNothingLeavesNoLocale) {
    const auto project = reading({{"App/Locales/de.json", "{}"}, {"App/Locales/fr.json", R"({"name": ""})"}});
    EXPECT_TRUE(project.app.locales.empty());
}

// Platforms

TEST(PackageReader, AFolderIsAPlatformByItsVersionOrItsLocales) {
    const auto project = reading({{"iOS/version.json", "{}"},
                                  {"macOS/Locales/", ""},
                                  {"WATCH_OS/version.json", "{}"},
                                  {"Docs/readme.md", ""},
                                  {"Media/Locales", "a file"},
                                  {"Media2/version.json/x", "a folder"},
                                  {"version.json", "a file at the root"},
                                  {"App/version.json", "{}"},
                                  {"Pages/version.json", "{}"},
                                  {"Experiments/Locales/", ""}});
    std::vector<std::string> platforms;
    for (const auto& entry : project.platforms) platforms.push_back(entry.first.rawValue);
    EXPECT_EQ(platforms, (std::vector<std::string>{"IOS", "MAC_OS", "Media2", "WATCH_OS"}));
}

TEST(PackageReader, OfTwoFoldersOfOnePlatformTheLastNameCounts) {
    const auto project = reading({{"IOS/version.json", R"({"versionString": "1"})"},
                                  {"iOS/version.json", R"({"versionString": "2"})"}});
    EXPECT_EQ(project.platforms.size(), 1u);
    EXPECT_EQ(project[StorePlatform::iOS].version.versionString, "2");
}

TEST(PackageReader, ReadsAllOfAPlatform) {
    const auto project =
        reading({{"iOS/version.json", R"({"versionString": "1.2", "new": 1})"},
                 {"iOS/review.json", R"({"notes": "Hi"})"},
                 {"iOS/Locales/de-DE/listing.json", R"({"keywords": "a,b", "description": "unknown here"})"},
                 {"iOS/Locales/de-DE/description.txt", "One\r\nTwo\n\n"},
                 {"iOS/Locales/de-DE/promotional-text.txt", "Now"},
                 {"iOS/Locales/de-DE/whats-new.txt", "\n"},
                 {"iOS/Locales/de-DE/placements.json", R"({"g": {"t": [{"asset": "1"}]}})"},
                 {"iOS/Locales/fr/placements.json", R"({"g": {"t": []}})"},
                 {"iOS/Locales/fr/description.txt", ""},
                 {"iOS/Locales/notes.md", "a file"}});
    const auto& listing = project[StorePlatform::iOS];
    EXPECT_EQ(listing.version, (VersionContent{"1.2", std::nullopt, std::nullopt, {{"new", 1}}}));
    EXPECT_EQ(listing.review.notes, "Hi");
    EXPECT_EQ(listing.locales, (LocalizedTexts{{{"de-DE"},
                                                LocalizedFields({{ListingField::keywords, "a,b"},
                                                                 {ListingField::description, "One\nTwo\n"},
                                                                 {ListingField::promotionalText, "Now"}},
                                                                {{"description", "unknown here"}})}}));
    EXPECT_EQ(listing.media, (LocalizedMedia{{{"de-DE"}, {{{"g", "t"}, {MediaItem::remote("1")}}}}}));
}

TEST(PackageReader, ALocaleWithNothingInItLeavesNoEntry) {
    const auto project = reading({{"iOS/Locales/de/notes.md", "x"},
                                  {"iOS/Locales/fr/", ""},
                                  {"iOS/Locales/it/listing.json", "{}"},
                                  {"iOS/Locales/it/description.txt", "\n"},
                                  {"iOS/Locales/it/placements.json", "{}"},
                                  {"iOS/Locales/ja/placements.json", R"({"g": {"t": []}})"}});
    EXPECT_EQ(project[StorePlatform::iOS], PlatformListing());
    EXPECT_EQ(project.platforms.size(), 1u);
}

// Pages and tests

TEST(PackageReader, APageIsAFolderWithAPageFile) {
    const auto project =
        reading({{"Pages/summer/page.json", R"({"name": "Summer", "locales": ["fr", "de"]})"},
                 {"Pages/summer/Locales/it/promotional-text.txt", "Ciao\n"},
                 {"Pages/summer/Locales/it/placements.json", R"({"g": {"t": [{"file": "a"}]}})"},
                 {"Pages/summer/Locales/es/promotional-text.txt", "\n"},
                 {"Pages/draft/notes.md", "x"},
                 {"Pages/draft/Locales/it/promotional-text.txt", "x"},
                 {"Pages/page.json", "not a folder"}});
    ASSERT_EQ(project.pages.size(), 1u);
    const auto& page = project.pages.at({"summer"});
    EXPECT_EQ(page.name, "Summer");
    EXPECT_EQ(page.locales, (std::vector<StoreLocale>{{"fr"}, {"de"}})) << "the file's, in its order";
    EXPECT_EQ(page.promotionalText, (std::map<StoreLocale, std::string>{{{"it"}, "Ciao"}}));
    EXPECT_EQ(page.media, (LocalizedMedia{{{"it"}, {{{"g", "t"}, {MediaItem::file("a")}}}}}));
}

TEST(PackageReader, ATestAndItsTreatmentsAreFoldersWithTheirFiles) {
    const auto project = reading(
        {{"Experiments/icons/experiment.json", R"({"name": "Icons", "trafficProportion": 30})"},
         {"Experiments/icons/Treatments/blue/treatment.json", R"({"name": "Blue", "locales": ["b", "a"]})"},
         {"Experiments/icons/Treatments/blue/Locales/de/placements.json",
          R"({"g": {"t": [{"asset": "1"}]}})"},
         {"Experiments/icons/Treatments/draft/Locales/de/placements.json", "not read"},
         {"Experiments/draft/Treatments/blue/treatment.json", "not read"},
         {"Experiments/experiment.json", "not a folder"}});
    ASSERT_EQ(project.experiments.size(), 1u);
    const auto& experiment = project.experiments.at({"icons"});
    EXPECT_EQ(experiment.name, "Icons");
    EXPECT_EQ(experiment.platform, StorePlatform::iOS);
    EXPECT_EQ(experiment.trafficProportion, 30);
    ASSERT_EQ(experiment.treatments.size(), 1u);
    const auto& treatment = experiment.treatments.at({"blue"});
    EXPECT_EQ(treatment.locales, (std::vector<StoreLocale>{{"b"}, {"a"}}));
    EXPECT_EQ(treatment.media, (LocalizedMedia{{{"de"}, {{{"g", "t"}, {MediaItem::remote("1")}}}}}));
}

// Names

TEST(PackageReader, ADecomposedNameIsTheSameNameAsItsComposedForm) {
    const auto project = reading({{"Pages/e\u0301te\u0301/page.json", R"({"name": "Summer"})"},
                                  {"iOS/Locales/x-\u0061\u0301/description.txt", "Hi"}});
    EXPECT_EQ(project.pages.at({"\u00E9t\u00E9"}).name, "Summer");
    EXPECT_EQ(project.value(ListingField::description, {"x-\u00E1"}, StorePlatform::iOS), "Hi");
}

TEST(PackageReader, RefusesANameThatCantBeUsedWhereItWouldMeanSomething) {
    const struct {
        const char* when;
        std::string path;
        std::string refused;
    } rows[] = {
        {"a platform", "i\xffOS/version.json", "i\xffOS"},
        {"a platform's locale", "iOS/Locales/d\xff/notes.md", "iOS/Locales/d\xff"},
        {"an app locale", "App/Locales/d\xff.json", "App/Locales/d\xff.json"},
        {"an app locale of no name", "App/Locales/.json", "App/Locales/.json"},
        {"a page", "Pages/s\xff/page.json", "Pages/s\xff"},
        {"a page's locale", "Pages/s/Locales/d\xff/x", "Pages/s/Locales/d\xff"},
        {"a test", "Experiments/s\xff/experiment.json", "Experiments/s\xff"},
        {"a treatment", "Experiments/s/Treatments/b\xff/treatment.json", "Experiments/s/Treatments/b\xff"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.when);
        Listing files{{"Pages/s/page.json", "{}"}, {"Experiments/s/experiment.json", "{}"}, {row.path, "{}"}};
        try {
            reading(files);
            ADD_FAILURE() << "read";
        } catch (const PackageNameError& error) {
            EXPECT_EQ(error.kind, PackageNameError::Kind(PackageNameError::UnusableOnDisk{row.refused}));
        }
    }
}

TEST(PackageReader, ANameThatIsntUTF8MattersNowhereElse) {
    EXPECT_NO_THROW(reading({{"\xff", "x"},
                             {"\xff\xff/x", ""},
                             {"App/\xff/x", ""},
                             {"App/Locales/\xff.txt", ""},
                             {"iOS/Locales/\xff", "a file"},
                             {"iOS/Locales/de/\xff", ""},
                             {"Pages/\xff/notes.md", "no page"},
                             {"Experiments/\xff/x", "no test"}}));
}

}  // namespace
}  // namespace kestrin
