#include "KestrinCLI/WorkingFolder.h"

#include <gtest/gtest.h>

#include "Tests/Support/ProcessState.h"
#include "Tests/Support/TemporaryFolder.h"

namespace kestrin {
namespace {

namespace fs = std::filesystem;

// A process that stands in a folder which was removed while it stood there.
class WorkingFolderTest : public testing::Test {
 protected:
    WorkingFolderTest() {
        fs::create_directory(package);
        fs::current_path(package);
        fs::remove(package);
    }

    static bool isSomewhere() {
        std::error_code gone;
        return !fs::current_path(gone).empty();
    }

    const TemporaryFolder parent;
    const CurrentFolder before{parent.path()};
    const fs::path package = fs::current_path() / "p.kestrin";
};

TEST_F(WorkingFolderTest, IsTheOneThatNowStandsWhereTheShellSaysItIs) {
    fs::create_directory(package);
    const EnvironmentVariable shellsWord("PWD", package.c_str());
    findWorkingFolderAgain();
    EXPECT_EQ(fs::current_path(), package);
}

TEST_F(WorkingFolderTest, StaysGoneWhereTheShellsWordLeadsNowhere) {
    parent.write("file", "");
    const auto file = parent / "file";
    for (const char* word :
         {static_cast<const char*>(nullptr), "", ".", "p.kestrin", package.c_str(), file.c_str()}) {
        SCOPED_TRACE(word ? word : "(none)");
        const EnvironmentVariable shellsWord("PWD", word);
        findWorkingFolderAgain();
        EXPECT_FALSE(isSomewhere());
    }
}

TEST_F(WorkingFolderTest, StaysWhereItIsWhileThatIsThere) {
    fs::create_directory(package);
    fs::current_path(package);
    const EnvironmentVariable shellsWord("PWD", "/");
    findWorkingFolderAgain();
    EXPECT_EQ(fs::current_path(), package);
}

}  // namespace
}  // namespace kestrin
