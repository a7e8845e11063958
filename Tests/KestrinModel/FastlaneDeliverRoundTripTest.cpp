// What leaves a project as a deliver folder comes back as it was.
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "KestrinCore/UnicodeText.h"
#include "KestrinModel/FastlaneDeliverExporter.h"
#include "KestrinModel/FastlaneDeliverImporter.h"
#include "Tests/Support/ListingNames.h"
#include "Tests/Support/TemporaryFolder.h"

namespace kestrin {
namespace {

namespace fs = std::filesystem;

// Texts that come back: no carriage return, no byte order mark at the beginning, no white space at the end.
rc::Gen<std::string> keptText() {
    return rc::gen::map(
        rc::gen::container<std::vector<std::string>>(rc::gen::element<std::string>(
            "a", "Z", " ", "\n", "\t", "é", "e\u0301", "日本", "😀", "\u00A0", "עברית", "–", "\\")),
        [](const std::vector<std::string>& pieces) {
            std::string text;
            for (const auto& piece : pieces) text += piece;
            return std::string(text::withoutTrailingWhitespace(text));
        });
}

// Most of the fields stay empty, as they do in many a project.
rc::Gen<std::string> perhaps(rc::Gen<std::string> text) {
    return rc::gen::weightedOneOf<std::string>({{3, rc::gen::just(std::string())}, {1, std::move(text)}});
}

std::optional<std::string> present(std::string text) {
    return text.empty() ? std::nullopt : std::optional(std::move(text));
}

// A project that holds nothing but what a deliver folder can.
rc::Gen<Project> deliverableProject() {
    return rc::gen::exec([] {
        Project project;
        for (const char* rawValue : {"fil", "zh-Hans"}) {
            if (!*rc::gen::arbitrary<bool>()) continue;
            const StoreLocale locale{rawValue};
            for (const auto& row : FastlaneDeliverImporter::fileNames) {
                if (auto text = *perhaps(keptText()); !text.empty()) {
                    project.setValue(text, row.field, locale, kIOS);
                }
            }
            project.setValue("Name", ListingField::name, locale, kIOS);  // no text, no folder, no locale
            project.manifest.locales.push_back(locale);
        }
        project.manifest.platforms = {kIOS};
        project.app.info.primaryCategory =
            present(*rc::gen::element<std::string>("", "TRAVEL", "PHOTO_VIDEO"));
        project.app.info.secondaryCategory = present(*rc::gen::element<std::string>("", "GAMES"));
        if (auto copyright = present(*perhaps(keptText())))
            project.platforms[kIOS].version.copyright = copyright;
        for (const auto& row : FastlaneDeliverExporter::reviewFileNames) {
            if (auto text = present(*perhaps(keptText()))) project.platforms[kIOS].review.*row.field = text;
        }
        return project;
    });
}

std::optional<fs::path> noFile(const std::string&) {
    return std::nullopt;
}

FastlaneExportSummary exportInto(const TemporaryFolder& folder, const Project& project) {
    return FastlaneDeliverExporter::exportListing(project, kIOS, folder.path(), noFile, noFile);
}

Project importFrom(const TemporaryFolder& folder) {
    Project project;
    FastlaneDeliverImporter::importListing(folder.path(), project, kIOS);
    return project;
}

RC_GTEST_PROP(FastlaneDeliverRoundTrip, AnExportImportedIntoAnEmptyProjectIsTheProject, ()) {
    const auto project = *deliverableProject();
    const TemporaryFolder folder;
    exportInto(folder, project);
    RC_ASSERT(importFrom(folder) == project);
}

RC_GTEST_PROP(FastlaneDeliverRoundTrip, ASecondExportWritesTheSameBytes, ()) {
    const auto project = *deliverableProject();
    const TemporaryFolder folder, other;

    const auto first = exportInto(folder, project);
    const auto files = folder.files();
    const auto second = exportInto(folder, project);
    exportInto(other, importFrom(folder));

    RC_ASSERT(first == second);
    RC_ASSERT(first.textFileCount == files.size());
    RC_ASSERT(folder.files() == files);
    RC_ASSERT(other.files() == files);
}

RC_GTEST_PROP(FastlaneDeliverRoundTrip, AnExportOverAnotherIsLikeOneIntoAnEmptyFolderForTheSameLocales, ()) {
    auto before = *deliverableProject();
    const auto after = *deliverableProject();
    const TemporaryFolder folder, fresh;
    before.manifest.locales = after.manifest.locales;

    exportInto(folder, before);
    exportInto(folder, after);
    exportInto(fresh, after);

    RC_ASSERT(folder.files() == fresh.files());
}

TEST(FastlaneDeliverRoundTrip, LosesExactlyWhatTheExportSaysItLoses) {
    struct Row {
        const char* when;
        const char* text;
        const char* back;
    };
    const Row rows[] = {
        {"white space at the end", "a \n\n", "a"},
        {"carriage returns", "a\r\nb\rc", "a\nb\nc"},
        {"a byte order mark at the beginning", "\uFEFFa", "a"},
        {"a text of white space only", " \n", ""},
    };
    const StoreLocale german{"de-DE"};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.when);
        Project project;
        project.manifest.locales = {german};
        project.setValue(row.text, ListingField::description, german, kIOS);
        const TemporaryFolder folder;
        exportInto(folder, project);
        EXPECT_EQ(importFrom(folder).value(ListingField::description, german, kIOS), row.back);
    }
}

}  // namespace
}  // namespace kestrin
