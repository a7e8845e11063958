#include "KestrinModel/PlacementSlot.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <vector>

#include "KestrinCore/UnicodeText.h"
#include "Tests/Support/Generators.h"

namespace kestrin {
namespace {

TEST(PlacementSlot, IsDescribedByItsGroupAndType) {
    EXPECT_EQ((PlacementSlot{"screenshots", "APP_IPHONE_67"}).description(), "screenshots/APP_IPHONE_67");
    EXPECT_EQ((PlacementSlot{"", ""}).description(), "/");
}

TEST(PlacementSlot, IsReadFromExactlyTwoNonEmptyPieces) {
    struct Row {
        const char* description;
        std::optional<PlacementSlot> slot;
    };
    const Row rows[] = {
        {"a/b", PlacementSlot{"a", "b"}},
        {" / ", PlacementSlot{" ", " "}},
        {"é/日", PlacementSlot{"é", "日"}},
        {"a/b/c", std::nullopt},
        {"a/", std::nullopt},
        {"/b", std::nullopt},
        {"ab", std::nullopt},
        {"a//b", std::nullopt},
        {"/a/b", std::nullopt},
        {"a/b/", std::nullopt},
        {"//", std::nullopt},
        {"/", std::nullopt},
        {"", std::nullopt},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.description);
        EXPECT_EQ(PlacementSlot::fromDescription(row.description), row.slot);
    }
}

TEST(PlacementSlot, IsTheSameInComposedAndDecomposedForm) {
    EXPECT_EQ((PlacementSlot{"caf\u00E9", "\u212B"}), (PlacementSlot{"cafe\u0301", "A\u030A"}));
    EXPECT_NE((PlacementSlot{"a", "b"}), (PlacementSlot{"b", "a"}));
    EXPECT_NE((PlacementSlot{"a", "b/c"}), (PlacementSlot{"a/b", "c"}));
}

TEST(PlacementSlot, IsOrderedByItsDescription) {
    // "-" comes before "/", which comes before letters: the group alone would order these otherwise.
    std::vector<PlacementSlot> slots = {{"a", "z"}, {"ab", "a"}, {"a-", "a"}, {"a", "b"}};
    std::sort(slots.begin(), slots.end());
    EXPECT_EQ(slots, (std::vector<PlacementSlot>{{"a-", "a"}, {"a", "b"}, {"a", "z"}, {"ab", "a"}}));
}

RC_GTEST_PROP(PlacementSlotProperty, ItsDescriptionIsReadBack, ()) {
    const auto slot = *arbitrary::slot();
    RC_ASSERT(PlacementSlot::fromDescription(slot.description()) == slot);
}

RC_GTEST_PROP(PlacementSlotProperty, IsOrderedAsItsDescriptionIs, ()) {
    const auto name =
        rc::gen::oneOf(arbitrary::text(), rc::gen::element<std::string>("a", "/", "a/a", "", "e\u0301"));
    const PlacementSlot a{*name, *name}, b{*name, *name};
    const auto byDescription = text::compare(a.description(), b.description());
    if (byDescription != 0) RC_ASSERT((a <=> b) == byDescription);
    RC_ASSERT(((a <=> b) == 0) == (a == b));
}

}  // namespace
}  // namespace kestrin
