#include "KestrinModel/FastlaneDeliverExporter.h"

#include <gtest/gtest.h>

#include "KestrinCore/FileError.h"
#include "KestrinModel/FastlaneDeliverImporter.h"
#include "Tests/Support/ListingNames.h"
#include "Tests/Support/TemporaryFolder.h"

namespace kestrin {
namespace {

namespace fs = std::filesystem;
using enum ListingField;
using FileContents = std::map<std::string, std::string>;

std::optional<fs::path> nowhere(const std::string&) {
    return std::nullopt;
}

FastlaneExportSummary exportTo(const fs::path& target, const Project& project) {
    return FastlaneDeliverExporter::exportListing(project, kIOS, target, nowhere, nowhere);
}

FileContents exported(const Project& project) {
    const TemporaryFolder folder;
    exportTo(folder.path(), project);
    return folder.files();
}

Project withName(const StoreLocale& locale, std::string text) {
    Project project;
    project.manifest.locales = {locale};
    project.setValue(std::move(text), name, locale, kIOS);
    return project;
}

TEST(FastlaneDeliverExporter, WritesEachFieldOfALocaleToItsFile) {
    Project project;
    project.manifest.locales = {kGerman};
    for (const auto field : ListingFields::all) {
        project.setValue("the " + std::string(rawValue(field)), field, kGerman, kIOS);
    }

    EXPECT_EQ(exported(project), (FileContents{
                                     {"metadata/de-DE/name.txt", "the name\n"},
                                     {"metadata/de-DE/subtitle.txt", "the subtitle\n"},
                                     {"metadata/de-DE/privacy_url.txt", "the privacyPolicyUrl\n"},
                                     {"metadata/de-DE/description.txt", "the description\n"},
                                     {"metadata/de-DE/keywords.txt", "the keywords\n"},
                                     {"metadata/de-DE/promotional_text.txt", "the promotionalText\n"},
                                     {"metadata/de-DE/release_notes.txt", "the whatsNew\n"},
                                     {"metadata/de-DE/support_url.txt", "the supportUrl\n"},
                                     {"metadata/de-DE/marketing_url.txt", "the marketingUrl\n"},
                                 }));
}

TEST(FastlaneDeliverExporter, WritesWhatAllLocalesShareBesideThem) {
    Project project;
    project.app.info.primaryCategory = "TRAVEL";
    project.app.info.secondaryCategory = "MZGenre.Photo Video";  // goes out as it stands
    project.platforms[kIOS].version.copyright = "2025 Fernweg GmbH";

    EXPECT_EQ(exported(project), (FileContents{
                                     {"metadata/primary_category.txt", "TRAVEL\n"},
                                     {"metadata/secondary_category.txt", "MZGenre.Photo Video\n"},
                                     {"metadata/copyright.txt", "2025 Fernweg GmbH\n"},
                                 }));
}

TEST(FastlaneDeliverExporter, WritesEachReviewFieldToItsFile) {
    Project project;
    auto& review = project.platforms[kIOS].review;
    review.contactFirstName = "Ada";
    review.contactLastName = "Weg";
    review.contactPhone = "+49 30 1234";
    review.contactEmail = "review@example.com";
    review.demoAccountRequired = true;  // has no file
    review.demoAccountName = "demo";
    review.notes = "First\nsecond";

    EXPECT_EQ(exported(project),
              (FileContents{
                  {"metadata/review_information/first_name.txt", "Ada\n"},
                  {"metadata/review_information/last_name.txt", "Weg\n"},
                  {"metadata/review_information/phone_number.txt", "+49 30 1234\n"},
                  {"metadata/review_information/email_address.txt", "review@example.com\n"},
                  {"metadata/review_information/demo_user.txt", "demo\n"},
                  {"metadata/review_information/notes.txt", "First\nsecond\n"},
              }));
}

TEST(FastlaneDeliverExporter, AppendsOneLineFeedToATextAsItStands) {
    for (const char* text : {"a", "a\n", " a ", "a\r\nb", "\n", "日本語 😀"}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(exported(withName(kGerman, text)),
                  (FileContents{{"metadata/de-DE/name.txt", std::string(text) + "\n"}}));
    }
}

TEST(FastlaneDeliverExporter, WritesTheLocalesOfTheManifestOnly) {
    auto project = withName(kGerman, "Fernweg");
    project.setValue("旅", name, {"ja"}, kIOS);
    EXPECT_EQ(exported(project), (FileContents{{"metadata/de-DE/name.txt", "Fernweg\n"}}));
}

TEST(FastlaneDeliverExporter, WithoutLocalesStillWritesSharedAndReviewFiles) {
    Project project;
    project.setValue("Fernweg", name, kGerman, kIOS);
    project.app.info.primaryCategory = "TRAVEL";
    project.platforms[kIOS].review.notes = "Hello";
    const TemporaryFolder folder;

    const auto summary = exportTo(folder.path(), project);

    EXPECT_EQ(summary.localeCount, 0u);
    EXPECT_EQ(summary.textFileCount, 2u);
    EXPECT_EQ(folder.files(), (FileContents{{"metadata/primary_category.txt", "TRAVEL\n"},
                                            {"metadata/review_information/notes.txt", "Hello\n"}}));
}

TEST(FastlaneDeliverExporter, CountsLocalesWalkedAndTextFilesWritten) {
    Project project;
    project.manifest.locales = {kGerman, {"ja"}, {"fr-FR"}};
    project.setValue("Fernweg", name, kGerman, kIOS);
    project.setValue("Karte", keywords, kGerman, kIOS);
    project.setValue("旅", name, {"ja"}, kIOS);
    project.platforms[kIOS].version.copyright = "2025";
    const TemporaryFolder folder;

    FastlaneExportSummary expected;
    expected.localeCount = 3;
    expected.textFileCount = 4;
    EXPECT_EQ(exportTo(folder.path(), project), expected);
    EXPECT_FALSE(folder.has("metadata/fr-FR")) << "a locale without texts makes no folder";
}

TEST(FastlaneDeliverExporter, WritesVersionTextsOfTheGivenPlatform) {
    Project project;
    project.manifest.locales = {kGerman};
    project.setValue("iOS notes", whatsNew, kGerman, kIOS);
    project.setValue("macOS notes", whatsNew, kGerman, StorePlatform::macOS);
    project.platforms[kIOS].version.copyright = "iOS";
    const TemporaryFolder folder;

    FastlaneDeliverExporter::exportListing(project, StorePlatform::macOS, folder.path(), nowhere, nowhere);

    EXPECT_EQ(folder.files(), (FileContents{{"metadata/de-DE/release_notes.txt", "macOS notes\n"}}));
}

TEST(FastlaneDeliverExporter, ReadsAPlatformThatTheProjectLacksAsEmpty) {
    const TemporaryFolder folder;
    const auto summary = FastlaneDeliverExporter::exportListing(
        withName(kGerman, "Fernweg"), StorePlatform::tvOS, folder.path(), nowhere, nowhere);
    EXPECT_EQ(summary.textFileCount, 1u);
}

TEST(FastlaneDeliverExporter, RemovesTheFileOfATextThatWasCleared) {
    auto project = withName(kGerman, "Fernweg");
    project.setValue("Karte", keywords, kGerman, kIOS);
    project.platforms[kIOS].version.copyright = "2025";
    const TemporaryFolder folder;
    exportTo(folder.path(), project);

    project.setValue("", keywords, kGerman, kIOS);
    project.platforms[kIOS].version.copyright = std::nullopt;
    const auto summary = exportTo(folder.path(), project);

    EXPECT_EQ(summary.textFileCount, 1u);
    EXPECT_EQ(folder.files(), (FileContents{{"metadata/de-DE/name.txt", "Fernweg\n"}}));
}

TEST(FastlaneDeliverExporter, WithOnlyNotesRemovesTheOtherReviewFiles) {
    Project project;
    project.platforms[kIOS].review.notes = "Hello";
    project.platforms[kIOS].review.contactEmail = "";  // an empty text is no text
    const TemporaryFolder folder;
    for (const auto& row : FastlaneDeliverExporter::reviewFileNames) {
        folder.write(fs::path("metadata/review_information") / row.name, "old\n");
    }
    folder.write("metadata/review_information/demo_password.txt", "not ours\n");

    EXPECT_EQ(exportTo(folder.path(), project).textFileCount, 1u);

    EXPECT_EQ(folder.files(),
              (FileContents{{"metadata/review_information/notes.txt", "Hello\n"},
                            {"metadata/review_information/demo_password.txt", "not ours\n"}}));
}

TEST(FastlaneDeliverExporter, CountsAFileThatHoldsTheTextAlreadyWithoutTouchingIt) {
    const auto project = withName(kGerman, "Fernweg");
    const TemporaryFolder folder;
    const auto first = exportTo(folder.path(), project);
    const auto longAgo = fs::file_time_type::clock::now() - std::chrono::hours(1);
    fs::last_write_time(folder / "metadata/de-DE/name.txt", longAgo);

    const auto second = exportTo(folder.path(), project);

    EXPECT_EQ(first, second);
    EXPECT_EQ(second.textFileCount, 1u);
    EXPECT_EQ(fs::last_write_time(folder / "metadata/de-DE/name.txt"), longAgo);
}

TEST(FastlaneDeliverExporter, WritesAFileOfTheSameLengthThatHoldsAnotherText) {
    const TemporaryFolder folder;
    exportTo(folder.path(), withName(kGerman, "Fernweg"));
    exportTo(folder.path(), withName(kGerman, "Fernwag"));
    EXPECT_EQ(folder.read("metadata/de-DE/name.txt"), "Fernwag\n");
}

TEST(FastlaneDeliverExporter, LeavesWhatItDoesNotKnowAlone) {
    const TemporaryFolder folder;
    folder.write("Deliverfile", "app_identifier \"x\"");
    folder.write("metadata/fr-FR/name.txt", "a locale that the project doesn't have\n");
    folder.write("metadata/de-DE/notes.md", "mine");
    const auto before = folder.files();

    exportTo(folder.path(), withName(kGerman, ""));

    EXPECT_EQ(folder.files(), before);
}

TEST(FastlaneDeliverExporter, MakesTheTargetFolderWithItsParents) {
    const TemporaryFolder folder;
    exportTo(folder / "a/b", withName(kGerman, "Fernweg"));
    EXPECT_EQ(folder.files(), (FileContents{{"a/b/metadata/de-DE/name.txt", "Fernweg\n"}}));
}

TEST(FastlaneDeliverExporter, RefusesALocaleThatCannotBeAFoldersNameBeforeItWrites) {
    const std::string names[] = {"", ".", "..", "../x", "a/b", "/etc", "de/", std::string("d\0e", 3)};
    for (const auto& locale : names) {
        SCOPED_TRACE(locale);
        const TemporaryFolder folder;
        auto inManifest = withName(kGerman, "Fernweg");
        inManifest.manifest.locales.push_back({locale});
        auto inMedia = withName(kGerman, "Fernweg");
        Media::setItems(inMedia.platforms[kIOS].media, {locale}, kSlot, {MediaItem::file("a.png")});

        for (const auto& project : {inManifest, inMedia}) {
            try {
                exportTo(folder / "out", project);
                ADD_FAILURE() << "the export succeeded";
            } catch (const FastlaneExportError& error) {
                EXPECT_EQ(error.kind, FastlaneExportError::Kind(FastlaneExportError::UnusableLocale{locale}));
            }
            EXPECT_FALSE(folder.has("out"));
        }
    }
}

TEST(FastlaneDeliverExporter, DoesNotMindALocaleThatItDoesNotExport) {
    auto project = withName(kGerman, "Fernweg");
    Media::setItems(project.platforms[StorePlatform::macOS].media, {".."}, kSlot, {MediaItem::file("a.png")});
    EXPECT_EQ(exported(project).size(), 1u);
}

TEST(FastlaneDeliverExporter, RefusesAFolderThatIsALinkBeforeItWrites) {
    auto project = withName(kGerman, "Fernweg");
    Media::setItems(project.platforms[kIOS].media, kGerman, kSlot, {MediaItem::file("a.png")});
    for (const char* link :
         {"metadata", "metadata/de-DE", "metadata/review_information", "screenshots", "screenshots/de-DE"}) {
        SCOPED_TRACE(link);
        const TemporaryFolder elsewhere, folder;
        fs::create_directories((folder / link).parent_path());
        fs::create_directory_symlink(elsewhere.path(), folder / link);

        try {
            exportTo(folder.path(), project);
            ADD_FAILURE() << "the export succeeded";
        } catch (const FastlaneExportError& error) {
            EXPECT_EQ(error.kind,
                      FastlaneExportError::Kind(FastlaneExportError::LinkInTheWay{folder / link}));
        }
        EXPECT_TRUE(elsewhere.files().empty());
        EXPECT_TRUE(folder.files().empty());
    }
}

TEST(FastlaneDeliverExporter, WritesIntoATargetThatIsALink) {
    const TemporaryFolder folder;
    fs::create_directory(folder / "real");
    fs::create_directory_symlink("real", folder / "link");
    exportTo(folder / "link", withName(kGerman, "Fernweg"));
    EXPECT_EQ(folder.read("real/metadata/de-DE/name.txt"), "Fernweg\n");
}

TEST(FastlaneDeliverExporter, ReplacesALinkInPlaceOfATextFile) {
    const TemporaryFolder folder;
    folder.write("mine.txt", "untouched");
    fs::create_directories(folder / "out/metadata/de-DE");
    fs::create_symlink(folder / "mine.txt", folder / "out/metadata/de-DE/name.txt");
    fs::create_symlink(folder / "mine.txt", folder / "out/metadata/de-DE/keywords.txt");  // its text is empty

    exportTo(folder / "out", withName(kGerman, "Fernweg"));

    EXPECT_EQ(folder.files(),
              (FileContents{{"mine.txt", "untouched"}, {"out/metadata/de-DE/name.txt", "Fernweg\n"}}));
    EXPECT_FALSE(folder.has("out/metadata/de-DE/keywords.txt"));
}

TEST(FastlaneDeliverExporter, StopsWithTheFileSystemsErrorAndKeepsWhatIsWritten) {
    auto project = withName(kGerman, "Fernweg");
    project.setValue("Karte", keywords, kGerman, kIOS);
    const TemporaryFolder folder;
    folder.write("metadata/de-DE/keywords.txt/in the way", "");

    try {
        exportTo(folder.path(), project);
        ADD_FAILURE() << "the export succeeded";
    } catch (const FileError& error) {
        EXPECT_EQ(error.operation, FileError::Operation::write);
        EXPECT_EQ(error.path, folder / "metadata/de-DE/keywords.txt");
    }
    EXPECT_EQ(folder.files(), (FileContents{{"metadata/de-DE/keywords.txt/in the way", ""},
                                            {"metadata/de-DE/name.txt", "Fernweg\n"}}));
}

TEST(FastlaneDeliverExporter, LeavesAFolderInPlaceOfAnEmptyTextAlone) {
    const TemporaryFolder folder;
    folder.write("metadata/de-DE/keywords.txt/mine", "");
    exportTo(folder.path(), withName(kGerman, "Fernweg"));
    EXPECT_TRUE(folder.has("metadata/de-DE/keywords.txt/mine"));
}

TEST(FastlaneDeliverExporter, FailsWhenAFolderCannotBeMade) {
    struct Row {
        const char* when;
        const char* target;
        std::string locale;
    };
    const Row rows[] = {
        {"the target is a file", "file", "de-DE"},
        {"the name of the locale is too long", "out", std::string(300, 'd')},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.when);
        const TemporaryFolder folder;
        folder.write("file", "");
        try {
            exportTo(folder / row.target, withName({row.locale}, "Fernweg"));
            ADD_FAILURE() << "the export succeeded";
        } catch (const FileError& error) {
            EXPECT_EQ(error.operation, FileError::Operation::create);
            EXPECT_EQ(error.path, folder / row.target / "metadata" / row.locale);
        }
    }
}

TEST(FastlaneExportError, SaysWhatIsInTheWay) {
    EXPECT_EQ(FastlaneExportError(FastlaneExportError::UnusableLocale{"../x"}).errorDescription(),
              "This project has a locale named “../x”, which can’t be the name of a folder. "
              "Nothing was exported.");
    EXPECT_EQ(FastlaneExportError(FastlaneExportError::LinkInTheWay{"out/metadata"}).errorDescription(),
              "“out/metadata” is a symbolic link, which may lead to another place. "
              "Remove it or choose another folder. Nothing was exported.");
}

}  // namespace
}  // namespace kestrin
