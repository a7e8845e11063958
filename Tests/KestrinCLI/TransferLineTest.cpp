#include "KestrinCLI/TransferLine.h"

#include <gtest/gtest.h>

#include "Tests/Support/FakeConsole.h"
#include "Tests/Support/FakeTime.h"

namespace kestrin {
namespace {

using namespace std::chrono_literals;
using Statuses = std::vector<std::string>;

struct TransferLineTest : testing::Test {
    FakeConsole console;
    FakeTime time;
};

TEST_F(TransferLineTest, TellsBytesAndAfterASecondTheRate) {
    TransferLine line(console, time.clock());
    line.show("downloading 1 of 3", 500'000);
    time.advance(999ms);
    line.show("downloading 2 of 3", 1'500'000);
    time.advance(2001ms);
    line.show("downloading 3 of 3", 6'000'000);
    EXPECT_EQ(console.statuses, (Statuses{"downloading 1 of 3: 500 kB", "downloading 2 of 3: 1.5 MB",
                                          "downloading 3 of 3: 6 MB, 2 MB/s"}));
}

TEST_F(TransferLineTest, TellsTheTotalWhereItIsKnown) {
    TransferLine line(console, time.clock());
    time.advance(10s);
    line.show("uploading clip.mov", 1'200'000, 18'900'000);
    EXPECT_EQ(console.statuses, Statuses{"uploading clip.mov: 1.2 MB of 18.9 MB, 120 kB/s"});
}

TEST_F(TransferLineTest, ChangesTenTimesASecondAtMost) {
    TransferLine line(console, time.clock());
    for (int i = 0; i < 100; ++i) {
        line.show("uploading", i);
        time.advance(10ms);
    }
    EXPECT_EQ(console.statuses.size(), 10u);
}

TEST_F(TransferLineTest, VanishesWithTheTransfer) {
    {
        TransferLine line(console, time.clock());
        line.show("uploading", 1);
    }
    EXPECT_EQ(console.statuses, (Statuses{"uploading: 1 byte", ""}));
}

TEST_F(TransferLineTest, IsNeverPartOfWhatIsPrinted) {
    TransferLine(console, time.clock()).show("uploading", 1);
    EXPECT_EQ(console.terminal, "");
}

TEST_F(TransferLineTest, EachUploadHasALineOfItsOwn) {
    const auto tell = uploadLines(console, time.clock());
    tell({.fileName = "a.png", .sent = 0, .total = 4'000'000});
    time.advance(2s);
    tell({.fileName = "a.png", .sent = 4'000'000, .total = 4'000'000});
    tell({.fileName = "a.png", .sent = 4'000'000, .total = 4'000'000, .isOver = true});
    time.advance(2s);
    tell({.fileName = "", .sent = 0, .total = 1'000});
    tell({.isOver = true});
    EXPECT_EQ(console.statuses,
              (Statuses{"uploading a.png: Zero kB of 4 MB", "uploading a.png: 4 MB of 4 MB, 2 MB/s", "",
                        "uploading: Zero kB of 1 kB", ""}));
}

TEST_F(TransferLineTest, TheEndOfAnUploadThatNeverBeganIsNothing) {
    uploadLines(console, time.clock())({.isOver = true});
    EXPECT_TRUE(console.statuses.empty());
}

}  // namespace
}  // namespace kestrin
