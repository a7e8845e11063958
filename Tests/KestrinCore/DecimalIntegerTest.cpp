#include "KestrinCore/DecimalInteger.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <string>

namespace kestrin {
namespace {

TEST(DecimalInteger, IsDigitsWithAnOptionalSignAndNothingElse) {
    const std::pair<const char*, std::optional<std::int64_t>> rows[] = {
        {"0", 0},
        {"25", 25},
        {"+25", 25},
        {"-25", -25},
        {"-0", 0},
        {"007", 7},
        {"9223372036854775807", INT64_MAX},
        {"-9223372036854775808", INT64_MIN},
        {"9223372036854775808", std::nullopt},
        {"-9223372036854775809", std::nullopt},
        {"", std::nullopt},
        {"+", std::nullopt},
        {"-", std::nullopt},
        {"+-1", std::nullopt},
        {"-+1", std::nullopt},
        {"--1", std::nullopt},
        {"++1", std::nullopt},
        {" 1", std::nullopt},
        {"1 ", std::nullopt},
        {"1.0", std::nullopt},
        {"1e1", std::nullopt},
        {"0x1", std::nullopt},
        {"٣", std::nullopt},
    };
    for (const auto& [text, number] : rows) EXPECT_EQ(decimalInteger(text), number) << text;
}

RC_GTEST_PROP(DecimalIntegerProperty, IsReadBackFromItsDigits, (std::int64_t number)) {
    RC_ASSERT(decimalInteger(std::to_string(number)) == number);
}

}  // namespace
}  // namespace kestrin
