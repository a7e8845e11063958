#include "AssetPipeline/ReferenceName.h"

#include <gtest/gtest.h>

namespace kestrin {
namespace {

constexpr std::string_view kDigest = "0123456789abcdef0123456789abcdef";

TEST(ReferenceName, IsTheStemAndTheFirstTwelveDigitsOfTheDigest) {
    struct Row {
        const char* when;
        std::string fileName;
        std::string name;
    };
    const Row rows[] = {
        {"other characters are hyphens", "Shot 1 (EN).PNG", "mq-Shot-1--EN--0123456789ab"},
        {"a name without a dot is its own stem", "preview", "mq-preview-0123456789ab"},
        {"only the last piece is the extension", "a.b.c.png", "mq-a-b-c-0123456789ab"},
        {"empty pieces are dropped", "..a..b.png", "mq-a-b-0123456789ab"},
        {"a name of one piece behind a dot is its own stem", ".png", "mq--png-0123456789ab"},
        {"letters and numbers of any script stay", "スクリーン１_é.png", "mq-スクリーン１_é-0123456789ab"},
        {"a decomposed letter stays whole", "e\u0301.png", "mq-e\u0301-0123456789ab"},
        {"an emoji is one hyphen", "👩‍👩‍👧.png", "mq---0123456789ab"},
        {"nothing is lower-cased", "HERO.png", "mq-HERO-0123456789ab"},
        {"the stem is cut to forty", std::string(50, 'x') + ".png",
         "mq-" + std::string(40, 'x') + "-0123456789ab"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(ReferenceName::make(row.fileName, kDigest), row.name);
    }
}

TEST(ReferenceName, TakesADigestShorterThanTwelveDigitsWhole) {
    EXPECT_EQ(ReferenceName::make("a.png", "0123"), "mq-a-0123");
    EXPECT_EQ(ReferenceName::make("a.png", ""), "mq-a-");
}

TEST(ReferenceName, CutsNoLetterOfAPathThatStandsInForADigest) {
    EXPECT_EQ(ReferenceName::make("夏.png", "missing:Médiathèque/夏.png"), "mq-夏-missing:Médi");
    EXPECT_EQ(ReferenceName::make("夏.png", "missing:夏夏夏夏夏.png"), "mq-夏-missing:夏夏夏夏");
}

TEST(ReferenceName, HashSuffixIsTwelveHexadecimalDigitsBehindTheLastHyphen) {
    struct Row {
        const char* when;
        const char* name;
        std::optional<std::string> suffix;
    };
    const Row rows[] = {
        {"upper case is lowered", "mq-a-0123456789AB", "0123456789ab"},
        {"too short", "mq-a-012345", std::nullopt},
        {"too long", "mq-a-0123456789abc", std::nullopt},
        {"not hexadecimal", "mq-a-0123456789ag", std::nullopt},
        {"no hyphen", "0123456789ab", std::nullopt},
        {"empty", "", std::nullopt},
        {"a name of another's making with a digest's shape", "x-0123456789ab", "0123456789ab"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(ReferenceName::hashSuffix(row.name), row.suffix);
    }
}

TEST(ReferenceName, FindsTheDigestAgainInANameOfItsOwn) {
    EXPECT_EQ(ReferenceName::hashSuffix(ReferenceName::make("Shot-1.png", kDigest)), "0123456789ab");
}

}  // namespace
}  // namespace kestrin
