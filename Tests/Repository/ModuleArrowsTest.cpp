#include "Tests/Repository/ModuleArrows.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Tests/Support/TemporaryFolder.h"

namespace kestrin {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr auto kAgainst = "goes against the arrows of the modules";
constexpr auto kNotFromRoot = "is not written from the root of the repository";
constexpr auto kICU = "only KestrinCore/UnicodeText.cpp asks ICU";

TEST(ModuleArrows, HoldInThisRepository) {
    const auto report = ModuleArrows::check(KESTRIN_SOURCE_DIR);

    EXPECT_THAT(report.problems, IsEmpty());
    EXPECT_GT(report.files, 50u);  // it did look
}

TEST(ModuleArrows, SayWhoMayIncludeWhom) {
    struct Row {
        const char* path;
        const char* include;
        std::optional<std::string> objection;
    };
    const Row rows[] = {
        {"KestrinCore/UUID.cpp", "\"KestrinCore/UUID.h\"", {}},
        {"KestrinCore/UUID.cpp", "<vector>", {}},
        {"KestrinCore/UUID.cpp", "\"KestrinModel/Slug.h\"", kAgainst},
        {"KestrinModel/Slug.h", "\"KestrinCore/UUID.h\"", {}},
        {"KestrinModel/Slug.h", "\"ASCKit/ASCClient.h\"", kAgainst},
        {"ASCKit/Transport/ASCClient.h", "\"KestrinModel/Slug.h\"", kAgainst},
        {"ASCKit/ASCClient.h", "\"SyncEngine/Push/PushPlanner.h\"", kAgainst},
        {"AssetPipeline/MediaInfo.h", "\"KestrinModel/PlacementSlot.h\"", {}},
        {"AssetPipeline/MediaInfo.h", "\"KestrinModel/Project.h\"", kAgainst},
        {"AssetPipeline/SpecMatcher.h", "\"ASCKit/Resources/AssetLibraryRefData.h\"", {}},
        {"AssetPipeline/SpecMatcher.h", "\"ASCKit/ASCClient.h\"", kAgainst},
        {"SyncEngine/Diff/DiffEngine.h", "\"KestrinModel/Project.h\"", {}},
        {"SyncEngine/Diff/DiffEngine.h", "\"KestrinCLI/Output.h\"", kAgainst},
        {"KestrinCLI/main.cpp", "\"SyncEngine/Diff/DiffEngine.h\"", {}},
        {"KestrinCLI/main.cpp", "\"Sandbox/Server.h\"", kAgainst},
        {"SyncEngine/Diff/DiffEngine.h", "\"Tests/Support/TemporaryFolder.h\"", kAgainst},
        {"Sandbox/Server.cpp", "\"SyncEngine/Diff/DiffEngine.h\"", kAgainst},
        {"Sandbox/Server.cpp", "\"KestrinCore/JSONValue.h\"", {}},
        {"Tests/Sandbox/ServerTest.cpp", "\"Sandbox/Server.h\"", {}},
        {"Extra/Thing.cpp", "\"KestrinCore/UUID.h\"", "the folder has no row in the table of modules"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(std::string(row.path) + " includes " + row.include);
        EXPECT_EQ(ModuleArrows::objection(row.path, row.include), row.objection);
    }
}

TEST(ModuleArrows, AreNotEvadedByAnotherSpelling) {
    EXPECT_EQ(ModuleArrows::objection("KestrinCore/UUID.cpp", "\"../KestrinModel/Slug.h\""), kNotFromRoot);
    EXPECT_EQ(ModuleArrows::objection("KestrinCore/UUID.cpp", "\"UUID.h\""), kNotFromRoot);
    EXPECT_EQ(ModuleArrows::objection("KestrinCore/UUID.cpp", "<KestrinModel/Slug.h>"), kAgainst);
}

TEST(ModuleArrows, LetOnlyOneFileAskICU) {
    EXPECT_EQ(ModuleArrows::objection("KestrinCore/UnicodeText.cpp", "<unicode/uchar.h>"), std::nullopt);
    EXPECT_EQ(ModuleArrows::objection("KestrinCore/UnicodeText.h", "<unicode/uchar.h>"), kICU);
    EXPECT_EQ(ModuleArrows::objection("SyncEngine/Diff/TextDiff.cpp", "\"unicode/brkiter.h\""), kICU);
}

TEST(ModuleArrows, ReadIncludesAsTheCompilerDoes) {
    EXPECT_THAT(ModuleArrows::includes("#pragma once\n"
                                       "#include <map>\n"
                                       "  #  include\t\"KestrinCore/UUID.h\"  // why\n"
                                       "int include = 1;\n"
                                       "// #include \"KestrinModel/Slug.h\"\n"
                                       "#include \"KestrinModel/Slug.h\""),
                ElementsAre("<map>", "\"KestrinCore/UUID.h\"", "\"KestrinModel/Slug.h\""));
}

TEST(ModuleArrows, FindAWrongIncludeInATree) {
    const TemporaryFolder folder;
    folder.write("KestrinCore/Deep/UUID.cpp", "#include <map>\n#include \"SyncEngine/Diff/DiffEngine.h\"\n");
    folder.write("KestrinModel/Slug.h", "#include \"KestrinCore/UUID.h\"\n");
    folder.write("build/release/KestrinCore/Made.cpp", "#include \"SyncEngine/Diff/DiffEngine.h\"\n");

    const auto report = ModuleArrows::check(folder.path());

    EXPECT_THAT(report.problems, ElementsAre("KestrinCore/Deep/UUID.cpp: \"SyncEngine/Diff/DiffEngine.h\" " +
                                             std::string(kAgainst)));
    EXPECT_EQ(report.files, 2u);
}

}  // namespace
}  // namespace kestrin
