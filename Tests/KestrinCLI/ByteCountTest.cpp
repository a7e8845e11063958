#include "KestrinCLI/ByteCount.h"

#include <gtest/gtest.h>

#include <limits>

namespace kestrin {
namespace {

TEST(ByteCount, IsInStepsOfAThousandWithOneDecimalPlaceAtMost) {
    struct Row {
        std::int64_t bytes;
        const char* text;
    };
    const Row rows[] = {
        {0, "Zero kB"},
        {-1, "Zero kB"},
        {1, "1 byte"},
        {2, "2 bytes"},
        {999, "999 bytes"},
        {1'000, "1 kB"},
        {1'499, "1 kB"},
        {1'500, "2 kB"},
        {999'499, "999 kB"},
        {999'500, "1 MB"},
        {1'000'000, "1 MB"},
        {1'049'999, "1 MB"},
        {1'050'000, "1.1 MB"},
        {18'940'000, "18.9 MB"},
        {999'949'999, "999.9 MB"},
        {999'950'000, "1 GB"},
        {2'147'483'648, "2.1 GB"},
        {4'300'000'000'000, "4.3 TB"},
        {std::numeric_limits<std::int64_t>::max(), "9.2 EB"},
    };
    for (const Row& row : rows) EXPECT_EQ(byteCount(row.bytes), row.text) << row.bytes;
}

}  // namespace
}  // namespace kestrin
