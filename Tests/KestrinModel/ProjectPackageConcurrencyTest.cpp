// Two programs at one package. Both are processes, as they are in life.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>

#include "KestrinCore/FileError.h"
#include "KestrinModel/ProjectPackageFile.h"
#include "Tests/Support/TemporaryFolder.h"

namespace kestrin {
namespace {

namespace fs = std::filesystem;

// A project all of whose values are the same word.
Project projectOf(const std::string& word) {
    Project project;
    for (const char* locale : {"de-DE", "en-US", "fr-FR", "ja", "pt-BR", "ru", "zh-Hans"}) {
        for (const auto field : ListingFields::all)
            project.setValue(word, field, {locale}, StorePlatform::iOS);
    }
    return project;
}

const int kSaves = 100;

// In a process of its own; never returns. Its exit status says whether all saves went well.
[[noreturn]] void saveAgainAndAgain(const fs::path& package) {
    const Project projects[] = {projectOf("odd"), projectOf("even")};
    try {
        for (int i = 0; i < kSaves; ++i) ProjectPackageFile::save(projects[i % 2], package);
    } catch (const std::exception&) {
        _exit(1);
    }
    _exit(0);
}

TEST(ProjectPackageConcurrency, ALoadDuringSavesGivesAWholeProject) {
    const TemporaryFolder folder(TemporaryFolder::quickPlace());
    const auto package = folder / "P.kestrin";
    const auto odd = projectOf("odd");
    const auto even = projectOf("even");
    ProjectPackageFile::save(odd, package);

    const pid_t other = fork();
    ASSERT_GE(other, 0);
    if (other == 0) saveAgainAndAgain(package);
    int status = 0;
    int loads = 0;
    while (waitpid(other, &status, WNOHANG) == 0) {
        ++loads;
        try {
            const auto project = ProjectPackageFile::load(package);
            EXPECT_TRUE(project == odd || project == even);
        } catch (const FileError& error) {
            EXPECT_EQ(error.reason, std::errc::device_or_resource_busy);  // overtaken again and again
        }
    }

    EXPECT_EQ(status, 0) << "a save failed";
    EXPECT_GT(loads, 0);
    EXPECT_EQ(ProjectPackageFile::load(package), even);
}

// In a process of its own. A save that another one overtakes may fail; what it leaves is for the test to say.
[[noreturn]] void saveWhateverHappens(const fs::path& package, const std::string& word) {
    for (int i = 0; i < kSaves; ++i) {
        try {
            ProjectPackageFile::save(projectOf(word), package);
        } catch (const std::exception&) {
        }
    }
    _exit(0);
}

TEST(ProjectPackageConcurrency, SavesThatOvertakeEachOtherLoseNoFileOfTheUsers) {
    const TemporaryFolder folder(TemporaryFolder::quickPlace());
    for (int i = 0; i < 40; ++i) folder.write("P.kestrin/Docs/" + std::to_string(i) + "/notes.md", "mine");
    const auto package = folder / "P.kestrin";
    const std::string words[] = {"one", "two", "three"};

    std::vector<pid_t> others;
    for (const auto& word : words) {
        others.push_back(fork());
        ASSERT_GE(others.back(), 0);
        if (others.back() == 0) saveWhateverHappens(package, word);
    }
    for (const pid_t other : others) waitpid(other, nullptr, 0);

    const auto project = ProjectPackageFile::load(package);
    EXPECT_TRUE(std::any_of(std::begin(words), std::end(words),
                            [&](const auto& word) { return project == projectOf(word); }));
    for (int i = 0; i < 40; ++i) {
        EXPECT_TRUE(folder.has("P.kestrin/Docs/" + std::to_string(i) + "/notes.md")) << i;
    }
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), {}), 1) << "stages are left";
}

}  // namespace
}  // namespace kestrin
