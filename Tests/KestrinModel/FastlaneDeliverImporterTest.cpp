#include "KestrinModel/FastlaneDeliverImporter.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "KestrinCore/FileError.h"
#include "Tests/Support/ListingNames.h"
#include "Tests/Support/TemporaryFolder.h"

namespace kestrin {
namespace {

namespace fs = std::filesystem;
using enum ListingField;

Project imported(const TemporaryFolder& folder, Project into = {}) {
    FastlaneDeliverImporter::importListing(folder.path(), into, kIOS);
    return into;
}

std::vector<std::string> rawValues(const std::vector<StoreLocale>& locales) {
    std::vector<std::string> result;
    for (const auto& locale : locales) result.push_back(locale.rawValue);
    return result;
}

// The name of a German listing after the import of these bytes; "" for no value.
std::string nameImportedFrom(std::string_view bytes) {
    const TemporaryFolder folder;
    folder.write("de-DE/name.txt", bytes);
    return imported(folder).value(name, kGerman, kIOS);
}

TEST(FastlaneDeliverImporter, ReadsEachFieldOfALocaleFromItsFile) {
    struct Row {
        const char* file;
        ListingField field;
    };
    const Row rows[] = {
        {"name.txt", name},
        {"subtitle.txt", subtitle},
        {"privacy_url.txt", privacyPolicyUrl},
        {"description.txt", description},
        {"keywords.txt", keywords},
        {"promotional_text.txt", promotionalText},
        {"release_notes.txt", whatsNew},
        {"support_url.txt", supportUrl},
        {"marketing_url.txt", marketingUrl},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.file);
        const TemporaryFolder folder;
        folder.write(fs::path("metadata/de-DE") / row.file, "Text\n");
        Project expected;
        expected.manifest.locales = {kGerman};
        expected.manifest.platforms = {kIOS};
        expected.setValue("Text", row.field, kGerman, kIOS);

        EXPECT_EQ(imported(folder), expected);
    }
}

TEST(FastlaneDeliverImporter, HasNoFileForThePrivacyChoicesAddress) {
    for (const auto& row : FastlaneDeliverImporter::fileNames) EXPECT_NE(row.field, privacyChoicesUrl);
}

TEST(FastlaneDeliverImporter, ReadsVersionTextsIntoTheGivenPlatform) {
    const TemporaryFolder folder;
    folder.write("de-DE/keywords.txt", "Karte,Weg");
    Project project;

    FastlaneDeliverImporter::importListing(folder.path(), project, StorePlatform::macOS);

    EXPECT_EQ(project.value(keywords, kGerman, StorePlatform::macOS), "Karte,Weg");
    EXPECT_FALSE(project.platforms.contains(kIOS));
    EXPECT_EQ(project.manifest.platforms, std::vector{StorePlatform::macOS});
}

TEST(FastlaneDeliverImporter, TakesAFolderWithoutMetadataForTheMetadataFolderItself) {
    const TemporaryFolder folder;
    folder.write("de-DE/name.txt", "Fernweg");
    EXPECT_EQ(imported(folder).value(name, kGerman, kIOS), "Fernweg");
}

TEST(FastlaneDeliverImporter, LooksNowhereElseWhenThereIsAMetadataFolder) {
    const TemporaryFolder folder;
    folder.write("de-DE/name.txt", "beside it");
    folder.write("copyright.txt", "beside it");
    fs::create_directory(folder / "metadata");

    const auto project = imported(folder);

    EXPECT_TRUE(project.manifest.locales.empty());
    EXPECT_TRUE(project.platforms.empty());
}

TEST(FastlaneDeliverImporter, PassesOverAFileNamedMetadata) {
    const TemporaryFolder folder;
    folder.write("metadata", "");
    folder.write("de-DE/name.txt", "Fernweg");
    EXPECT_EQ(imported(folder).value(name, kGerman, kIOS), "Fernweg");
}

TEST(FastlaneDeliverImporter, KnowsTheFolderOfALocaleByItsWholeName) {
    struct Row {
        const char* folder;
        bool isLocale;
    };
    const Row rows[] = {
        {"de", true},         {"fil", true},         {"en-US", true},   {"zh-Hans", true},
        {"pt-br", true},      {"tmp", true},         {"ar-SA", true},   {"d", false},
        {"deut", false},      {"DE", false},         {"De", false},     {"de-D", false},
        {"de-DEUTS", false},  {"de-", false},        {"-DE", false},    {"de_DE", false},
        {"es-419", false},    {"zh-Hans-CN", false}, {"de-DE ", false}, {" de", false},
        {"de-DE.old", false}, {"d1", false},         {"dé", false},     {"review_information", false},
        {"default", false},   {".git", false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.folder);
        const TemporaryFolder folder;
        folder.write(fs::path(row.folder) / "name.txt", "Name");

        const auto project = imported(folder);

        const StoreLocale locale{row.folder};
        EXPECT_EQ(project.manifest.locales, row.isLocale ? std::vector{locale} : std::vector<StoreLocale>{});
        EXPECT_EQ(project.app.locales.contains(locale), row.isLocale);
    }
}

TEST(FastlaneDeliverImporter, PassesOverAFileWithTheNameOfALocale) {
    const TemporaryFolder folder;
    folder.write("de", "not a folder");
    EXPECT_TRUE(imported(folder).manifest.locales.empty());
}

TEST(FastlaneDeliverImporter, FollowsLinksToFoldersAndFiles) {
    const TemporaryFolder folder;
    folder.write("shared/name.txt", "Fernweg");
    folder.write("keywords", "Karte");
    fs::create_directory_symlink("shared", folder / "de-DE");
    fs::create_symlink("../keywords", folder / "shared/keywords.txt");

    const auto project = imported(folder);

    EXPECT_EQ(project.value(name, kGerman, kIOS), "Fernweg");
    EXPECT_EQ(project.value(keywords, kGerman, kIOS), "Karte");
}

TEST(FastlaneDeliverImporter, LaysTheTextsOfALocaleOverTheDefaults) {
    const TemporaryFolder folder;
    folder.write("default/name.txt", "Wayfarer");
    folder.write("default/support_url.txt", "https://example.com");
    folder.write("de-DE/name.txt", "Fernweg");
    folder.write("fr-FR/subtitle.txt", "Cartes");

    const auto project = imported(folder);

    EXPECT_EQ(project.value(name, kGerman, kIOS), "Fernweg");
    EXPECT_EQ(project.value(name, {"fr-FR"}, kIOS), "Wayfarer");
    EXPECT_EQ(project.value(supportUrl, kGerman, kIOS), "https://example.com");
    EXPECT_EQ(project.value(supportUrl, {"fr-FR"}, kIOS), "https://example.com");
}

TEST(FastlaneDeliverImporter, KeepsTheDefaultWhereALocalesFileIsEmpty) {
    for (const char* nothing : {"", "\n", " \t\r\n", "\uFEFF", "\u00A0"}) {
        SCOPED_TRACE(nothing);
        const TemporaryFolder folder;
        folder.write("default/name.txt", "Wayfarer");
        folder.write("de-DE/name.txt", nothing);
        EXPECT_EQ(imported(folder).value(name, kGerman, kIOS), "Wayfarer");
    }
}

TEST(FastlaneDeliverImporter, GivesALocaleWithAnEmptyFolderTheDefaults) {
    const TemporaryFolder folder;
    folder.write("default/name.txt", "Wayfarer");
    fs::create_directory(folder / "de-DE");
    EXPECT_EQ(imported(folder).value(name, kGerman, kIOS), "Wayfarer");
}

TEST(FastlaneDeliverImporter, NotesALocaleThatHasNoTextsInTheManifestOnly) {
    const TemporaryFolder folder;
    fs::create_directory(folder / "de-DE");

    const auto project = imported(folder);

    EXPECT_EQ(project.manifest.locales, std::vector{kGerman});
    EXPECT_TRUE(project.app.locales.empty());
    EXPECT_TRUE(project.platforms.empty());
}

TEST(FastlaneDeliverImporter, ReadsDefaultsWithoutALocaleIntoNothing) {
    const TemporaryFolder folder;
    folder.write("default/name.txt", "Wayfarer");

    const auto project = imported(folder);

    EXPECT_TRUE(project.manifest.locales.empty());
    EXPECT_TRUE(project.app.locales.empty());
}

TEST(FastlaneDeliverImporter, DropsTrailingWhiteSpaceAndNormalisesLineEnds) {
    struct Row {
        const char* when;
        std::string_view bytes;
        std::string_view text;
    };
    const Row rows[] = {
        {"the final line feed goes", "Fernweg\n", "Fernweg"},
        {"Windows line ends too, and those inside become line feeds", "a\r\n\r\nb\r\n", "a\n\nb"},
        {"old line ends", "a\rb\r", "a\nb"},
        {"every trailing blank of any kind", "a \t\u00A0\u3000\u2028\n", "a"},
        {"leading blanks stay", "\n  a", "\n  a"},
        {"a zero-width space is no white space", "a\u200B\n", "a\u200B"},
        {"a byte order mark is no part of the text", "\uFEFFa\n", "a"},
        {"but one further on is", "a\uFEFF\n", "a\uFEFF"},
        {"NUL is text", std::string_view("a\0b\n", 4), std::string_view("a\0b", 3)},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(nameImportedFrom(row.bytes), row.text);
    }
}

TEST(FastlaneDeliverImporter, CountsAFileThatIsNotUTF8AsMissing) {
    EXPECT_EQ(nameImportedFrom("Caf\xE9"), "");
    EXPECT_EQ(nameImportedFrom("a\xED\xA0\x80z"), "");  // a surrogate
    EXPECT_EQ(nameImportedFrom("\xFF\xFE"
                               "F\0e\0"),
              "");  // UTF-16
}

TEST(FastlaneDeliverImporter, CountsAFileOverSixteenMebibytesAsMissing) {
    const std::string limit(std::size_t{16} << 20, 'x');
    EXPECT_EQ(nameImportedFrom(limit + "x"), "");
    EXPECT_EQ(nameImportedFrom(limit), limit);
}

TEST(FastlaneDeliverImporter, CountsWhatIsNoFileAsMissing) {
    const TemporaryFolder folder;
    folder.write("default/name.txt", "Wayfarer");
    fs::create_directories(folder / "de/name.txt");
    fs::create_directories(folder / "fr");
    fs::create_symlink("nowhere", folder / "fr/name.txt");
    fs::create_directories(folder / "it");
    ASSERT_EQ(mkfifo((folder / "it/name.txt").c_str(), 0600), 0);
    fs::create_directories(folder / "ja");
    fs::create_symlink("/dev/zero", folder / "ja/name.txt");
    fs::create_directories(folder / "ko");
    fs::create_symlink("name.txt", folder / "ko/name.txt");  // to itself

    const auto project = imported(folder);

    for (const char* locale : {"de", "fr", "it", "ja", "ko"}) {
        EXPECT_EQ(project.value(name, {locale}, kIOS), "Wayfarer") << locale;
    }
}

TEST(FastlaneDeliverImporter, AppendsLocalesInTheOrderOfTheirFoldersWithoutSorting) {
    const TemporaryFolder folder;
    for (const char* locale : {"ja", "de-DE", "zh-Hans", "fr-FR", "de"})
        folder.write(fs::path(locale) / "name.txt", "x");
    Project project;
    project.manifest.locales = {{"zh-Hans"}, {"en-US"}};

    EXPECT_EQ(rawValues(imported(folder, project).manifest.locales),
              (std::vector<std::string>{"zh-Hans", "en-US", "de", "de-DE", "fr-FR", "ja"}));
}

TEST(FastlaneDeliverImporter, AddsThePlatformAndSortsThem) {
    const TemporaryFolder folder;
    Project project;
    project.manifest.platforms = {StorePlatform::tvOS, StorePlatform::macOS};

    EXPECT_EQ(imported(folder, project).manifest.platforms,
              (std::vector{kIOS, StorePlatform::macOS, StorePlatform::tvOS}));
}

TEST(FastlaneDeliverImporter, LeavesPlatformsThatHaveItAsTheyStand) {
    const TemporaryFolder folder;
    Project project;
    project.manifest.platforms = {StorePlatform::tvOS, kIOS};
    EXPECT_EQ(imported(folder, project).manifest.platforms, project.manifest.platforms);
}

TEST(FastlaneDeliverImporter, ReadsTheCopyright) {
    const TemporaryFolder folder;
    folder.write("copyright.txt", "2025 Fernweg GmbH\n");
    EXPECT_EQ(imported(folder)[kIOS].version.copyright, "2025 Fernweg GmbH");
}

TEST(FastlaneDeliverImporter, TurnsCategoriesIntoIdentifiers) {
    struct Row {
        const char* file;
        std::optional<std::string> category;
    };
    const Row rows[] = {
        {"MZGenre.GAMES\n", "GAMES"},
        {"Photo Video", "PHOTO_VIDEO"},
        {"MZGenre.Photo Video", "PHOTO_VIDEO"},
        {"HEALTH_AND_FITNESS", "HEALTH_AND_FITNESS"},
        {"a  b", "A__B"},
        {"Éducation", "ÉDUCATION"},
        {"games MZGenre.", "GAMES_MZGENRE."},
        {"MZGenre.MZGenre.x", "MZGENRE.X"},
        {"mzgenre.games", "MZGENRE.GAMES"},
        {"MZGenre.", std::nullopt},
        {" \n", std::nullopt},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.file);
        const TemporaryFolder primary, secondary;
        primary.write("primary_category.txt", row.file);
        secondary.write("secondary_category.txt", row.file);

        EXPECT_EQ(imported(primary).app.info, (AppInfoContent{row.category, std::nullopt, {}}));
        EXPECT_EQ(imported(secondary).app.info, (AppInfoContent{std::nullopt, row.category, {}}));
    }
}

TEST(FastlaneDeliverImporter, ReadsEachReviewFieldFromItsFile) {
    const TemporaryFolder folder;
    folder.write("review_information/first_name.txt", "Ada\n");
    folder.write("review_information/last_name.txt", "Weg\n");
    folder.write("review_information/phone_number.txt", "+49 30 1234\n");
    folder.write("review_information/email_address.txt", "review@example.com\n");
    folder.write("review_information/demo_user.txt", "demo\n");
    folder.write("review_information/demo_password.txt", "secret\n");
    folder.write("review_information/notes.txt", "First\r\nsecond\r\n");
    ReviewDetailContent expected;
    expected.contactFirstName = "Ada";
    expected.contactLastName = "Weg";
    expected.contactPhone = "+49 30 1234";
    expected.contactEmail = "review@example.com";
    expected.demoAccountName = "demo";
    expected.notes = "First\nsecond";

    EXPECT_EQ(imported(folder)[kIOS].review, expected);
}

TEST(FastlaneDeliverImporter, LeavesAReviewFieldWithoutAReadableTextAsItWas) {
    const TemporaryFolder folder;
    folder.write("review_information/first_name.txt", "\n");
    folder.write("review_information/last_name.txt", "\xFF");
    Project project;
    auto& review = project.platforms[kIOS].review;
    review.contactFirstName = "Ada";
    review.contactLastName = "Weg";
    review.notes = "Hello";
    review.demoAccountRequired = false;

    EXPECT_EQ(imported(folder, project).platforms, project.platforms);
}

TEST(FastlaneDeliverImporter, OverwritesWhatTheFolderHasAndKeepsTheRest) {
    const TemporaryFolder folder;
    folder.write("de-DE/name.txt", "Fernweg");
    folder.write("copyright.txt", "2025");
    Project project;
    project.manifest.locales = {kGerman, {"ja"}};
    project.manifest.platforms = {kIOS};
    project.setValue("Old name", name, kGerman, kIOS);
    project.setValue("Old subtitle", subtitle, kGerman, kIOS);
    project.setValue("旅", name, {"ja"}, kIOS);
    project.app.info.primaryCategory = "TRAVEL";
    project.platforms[kIOS].version = {"1.2", "2024", "MANUAL", {{"later", JSONValue(true)}}};
    Media::setItems(project.platforms[kIOS].media, kGerman, {"IPHONE_67", "APP_SCREENSHOT"},
                    {MediaItem::file("Media/a.png")});
    auto expected = project;
    expected.setValue("Fernweg", name, kGerman, kIOS);
    expected.platforms[kIOS].version.copyright = "2025";

    EXPECT_EQ(imported(folder, project), expected);
}

TEST(FastlaneDeliverImporter, BringsInNoMedia) {
    const TemporaryFolder folder;
    folder.write("metadata/de-DE/name.txt", "Fernweg");
    folder.write("screenshots/de-DE/01_iphone_67_hero.png", "png");
    EXPECT_TRUE(imported(folder)[kIOS].media.empty());
}

TEST(FastlaneDeliverImporter, FailsWhenTheFolderCannotBeListedAndLeavesTheProjectAlone) {
    const TemporaryFolder folder;
    folder.write("file", "");
    Project project;
    project.setValue("Name", name, kGerman, kIOS);

    for (const char* missing : {"nowhere", "file"}) {
        SCOPED_TRACE(missing);
        auto target = project;
        try {
            FastlaneDeliverImporter::importListing(folder / missing, target, kIOS);
            ADD_FAILURE() << "the import succeeded";
        } catch (const FileError& error) {
            EXPECT_EQ(error.operation, FileError::Operation::list);
            EXPECT_EQ(error.path, folder / missing);
        }
        EXPECT_EQ(target, project);
    }
}

TEST(FastlaneDeliverImporter, RefusesAFolderWhoseTextsWouldFillTheMemory) {
    const TemporaryFolder folder;
    folder.write("default/description.txt", std::string(std::size_t{16} << 20, 'x'));
    for (const char* locale : {"de", "en", "fr"}) fs::create_directory(folder / locale);
    Project project;

    EXPECT_THROW(FastlaneDeliverImporter::importListing(folder.path(), project, kIOS), FileTooLargeError);
    EXPECT_EQ(project, Project{});
}

}  // namespace
}  // namespace kestrin
