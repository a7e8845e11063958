#include "KestrinCore/Split.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <string>

namespace kestrin {
namespace {

using Pieces = std::vector<std::string_view>;

TEST(Split, KeepsEmptyPieces) {
    struct Row {
        const char* text;
        Pieces pieces;
    };
    const Row rows[] = {
        {"", {""}},      {"a", {"a"}},           {"a,b", {"a", "b"}}, {"a,,b", {"a", "", "b"}},
        {",", {"", ""}}, {",a,", {"", "a", ""}}, {"a;b", {"a;b"}},    {" a , b ", {" a ", " b "}},
    };
    for (const Row& row : rows) EXPECT_EQ(split(row.text, ','), row.pieces) << row.text;
}

RC_GTEST_PROP(SplitProperty, JoinedThePiecesAreTheText, ()) {
    const auto text = *rc::gen::container<std::string>(rc::gen::element('a', 'b', '/'));
    std::string joined;
    for (const auto piece : split(text, '/')) joined.append(piece) += '/';
    RC_ASSERT(joined == text + "/");
}

}  // namespace
}  // namespace kestrin
