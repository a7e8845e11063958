#include "KestrinCore/AnyCodingKey.h"

#include <gtest/gtest.h>

namespace kestrin {
namespace {

TEST(AnyCodingKey, AsANameHasNoNumber) {
    const AnyCodingKey key(std::string("7"));
    EXPECT_EQ(key.stringValue, "7");
    EXPECT_EQ(key.intValue, std::nullopt);
}

TEST(AnyCodingKey, AsAnIndexHasItsDecimalText) {
    for (const std::int64_t index :
         {std::int64_t{0}, std::int64_t{7}, std::int64_t{-12}, INT64_MAX, INT64_MIN}) {
        const AnyCodingKey key(index);
        EXPECT_EQ(key.stringValue, std::to_string(index));
        EXPECT_EQ(key.intValue, index);
    }
}

TEST(AnyCodingKey, IsEqualByBothOfItsFields) {
    EXPECT_EQ(AnyCodingKey(std::string("a")), AnyCodingKey(std::string("a")));
    EXPECT_EQ(AnyCodingKey(std::int64_t{7}), AnyCodingKey(std::int64_t{7}));
    EXPECT_NE(AnyCodingKey(std::string("a")), AnyCodingKey(std::string("b")));
    EXPECT_NE(AnyCodingKey(std::int64_t{7}), AnyCodingKey(std::int64_t{8}));
    EXPECT_NE(AnyCodingKey(std::int64_t{7}), AnyCodingKey(std::string("7")));
}

}  // namespace
}  // namespace kestrin
