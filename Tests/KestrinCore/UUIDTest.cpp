#include "KestrinCore/UUID.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

namespace kestrin {
namespace {

TEST(UUID, IsWrittenInUpperCaseWhateverTheCaseItWasReadIn) {
    const auto uuid = UUID::parse("0f9c1b2a-3d4e-4f50-8a6b-7c8d9e0f1a2b");
    ASSERT_TRUE(uuid);
    EXPECT_EQ(uuid->text(), "0F9C1B2A-3D4E-4F50-8A6B-7C8D9E0F1A2B");
}

TEST(UUID, RefusesAnyOtherForm) {
    for (const auto* text : {"", "0F9C1B2A3D4E4F508A6B7C8D9E0F1A2B", "{0F9C1B2A-3D4E-4F50-8A6B-7C8D9E0F1A2B}",
                             "0F9C1B2A-3D4E-4F50-8A6B-7C8D9E0F1A2", "0F9C1B2A-3D4E-4F50-8A6B-7C8D9E0F1A2G",
                             "0F9C1B2A-3D4E-4F50-8A6B07C8D9E0F1A2B", "0F9C1B2A-3D4E-4F50-8A6B-7C8D9E0F1A2B ",
                             " 0F9C1B2A-3D4E-4F50-8A6B-7C8D9E0F1A2B", "0F9C1B2-A3D4E-4F50-8A6B-7C8D9E0F1A2B",
                             "0F9C1B2A-3D4E-4F50-8A6B-7C8D9E0F1A2é"}) {
        EXPECT_FALSE(UUID::parse(text)) << text;
    }
}

TEST(UUID, IsReadInMixedCaseToTheSameBytes) {
    const auto uuid = UUID::parse("00fF10a0-0000-0000-0000-0000000000aB");
    ASSERT_TRUE(uuid);
    EXPECT_EQ(uuid->bytes,
              (std::array<std::uint8_t, 16>{0x00, 0xff, 0x10, 0xa0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xab}));
    EXPECT_EQ(UUID().text(), "00000000-0000-0000-0000-000000000000");
}

RC_GTEST_PROP(UUID, WrittenAndReadIsTheSame, ()) {
    UUID uuid;
    for (auto& byte : uuid.bytes) byte = *rc::gen::arbitrary<std::uint8_t>();
    RC_ASSERT(UUID::parse(uuid.text()) == uuid);
}

TEST(UUID, RandomOnesAreOfVersionFourAndDiffer) {
    const auto uuid = UUID::random();
    EXPECT_EQ(uuid.text()[14], '4');
    EXPECT_THAT(uuid.text()[19], testing::AnyOf('8', '9', 'A', 'B'));
    EXPECT_NE(uuid, UUID::random());
    EXPECT_EQ(UUID::parse(uuid.text()), uuid);
}

}  // namespace
}  // namespace kestrin
