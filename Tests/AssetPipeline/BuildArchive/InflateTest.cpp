#include "AssetPipeline/BuildArchive/Inflate.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "Tests/AssetPipeline/BuildArchive/ArchiveErrors.h"
#include "Tests/Support/ArchiveBytes.h"
#include "Tests/Support/Generators.h"
#include "Tests/Support/PeakMemory.h"
#include "Tests/Support/Repeated.h"

namespace kestrin {
namespace {

bool isMalformed(const std::function<void()>& code) {
    return archiveErrorOf(code) == BuildArchiveError::Kind::malformed;
}

RC_GTEST_PROP(Inflate, UndoesDeflate, ()) {
    const auto content = *arbitrary::bytes();
    RC_ASSERT(Inflate::raw(deflated(content), content.size()) == content);
    RC_ASSERT(Inflate::zlib(zlibStream(content), content.size()) == content);
}

TEST(Inflate, OfNothingIsNothingWhateverTheDataIs) {
    EXPECT_EQ(Inflate::raw("no deflate data", 0), "");
    EXPECT_EQ(Inflate::raw("", 0), "");
}

TEST(Inflate, DataThatExpandsToLessIsMalformed) {
    EXPECT_TRUE(isMalformed([] { Inflate::raw(deflated("abc"), 4); }));
}

TEST(Inflate, DataThatExpandsToMoreIsCut) {
    EXPECT_EQ(Inflate::raw(deflated("abcdef"), 3), "abc");
    EXPECT_EQ(Inflate::zlib(zlibStream("abcdef"), 3), "abc");
}

TEST(Inflate, WhatIsNoDeflateDataIsMalformed) {
    EXPECT_TRUE(isMalformed([] { Inflate::raw("\xFF\xFF\xFF\xFF", 1); }));
    EXPECT_TRUE(isMalformed([] { Inflate::raw("", 1); }));
    EXPECT_TRUE(isMalformed([] { Inflate::raw(deflated(repeated(100, "abc")).substr(0, 3), 300); }));
}

TEST(Inflate, AZlibStreamNeedsMoreThanItsHeader) {
    EXPECT_TRUE(isMalformed([] { Inflate::zlib("x\x9C", 1); }));
    EXPECT_TRUE(isMalformed([] { Inflate::zlib("", 0); }));
    EXPECT_TRUE(isMalformed([] { Inflate::zlib("x\x9C", 0); }));
    EXPECT_EQ(Inflate::zlib("x\x9C?", 0), "");
}

TEST(Inflate, NeitherTheHeaderNorTheChecksumOfAZlibStreamIsLookedAt) {
    auto stream = zlibStream("abcdef");
    stream[0] = stream[1] = '?';
    stream.back() = static_cast<char>(stream.back() + 1);
    EXPECT_EQ(Inflate::zlib(stream, 6), "abcdef");
}

TEST(Inflate, ExpandsAsFarAsDeflateCan) {
    const std::string zeros(1 << 20, '\0');
    EXPECT_EQ(Inflate::raw(deflated(zeros), zeros.size()), zeros);
}

TEST(Inflate, TakesNoMemoryForASizeThatTheDataCannotHave) {
    const auto peak = peakMemoryOf([] {
        EXPECT_TRUE(isMalformed([] { Inflate::raw(std::string(1024, '\0'), std::uint64_t{2} << 30); }));
        EXPECT_TRUE(isMalformed([] { Inflate::raw("abc", ~std::uint64_t{0}); }));
    });
    EXPECT_LT(peak, (std::size_t{16} << 20) * memoryFactor);
}

}  // namespace
}  // namespace kestrin
