#include "SyncEngine/Content/ContentValue.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "Tests/SyncEngine/Content/ContentGenerators.h"

namespace kestrin {
namespace {

using ContentValue::areEquivalent;
using ContentValue::normalized;

TEST(ContentValue, NormalizedHasLineFeedsAndNoTrailingWhiteSpace) {
    struct Row {
        const char* when;
        std::string value;
        std::string normalized;
    };
    const Row rows[] = {
        {"nothing to do", "a b", "a b"},
        {"an empty text", "", ""},
        {"trailing line ends", "a\r\n\r\n", "a"},
        {"a lone carriage return", "a\rb", "a\nb"},
        {"CR LF inside", "a\r\nb", "a\nb"},
        {"CR CR LF is two ends", "a\r\r\nb", "a\n\nb"},
        {"LF CR is two ends", "a\n\rb", "a\n\nb"},
        {"only white space", " \t\r\n\u00a0\u3000", ""},
        {"a trailing no-break space", "a\u00a0", "a"},
        {"a trailing line separator", "a\u2028", "a"},
        {"leading white space stays", "\n a", "\n a"},
        {"inner white space stays", "a  \t b", "a  \t b"},
        {"a zero-width space isn't white space", "a\u200b", "a\u200b"},
        {"a blank that carries a mark is white space", "a \u0301", "a"},
        {"nothing is recomposed", "e\u0301 ", "e\u0301"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(normalized(row.value), row.normalized);
    }
}

TEST(ContentValue, EndsAndLineEndingsMakeNoDifference) {
    struct Row {
        const char* when;
        const char* a;
        const char* b;
        bool areEquivalent;
    };
    const Row rows[] = {
        {"equal", "a", "a", true},
        {"both empty", "", "", true},
        {"a trailing blank and a trailing line feed", "a ", "a\n", true},
        {"white space alone and nothing", " \n", "", true},
        {"line endings", "a\r\nb\rc", "a\nb\nc", true},
        {"composed and decomposed", "\u00e9", "e\u0301", true},
        {"composed and decomposed with other ends", "\u00e9\r\n", "e\u0301", true},
        {"leading white space", " a", "a", false},
        {"inner white space", "a  b", "a b", false},
        {"letter case", "A", "a", false},
        {"an accent", "e", "\u00e9", false},
        {"a missing line feed", "a\n\nb", "a\nb", false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(areEquivalent(row.a, row.b), row.areEquivalent);
        EXPECT_EQ(areEquivalent(row.b, row.a), row.areEquivalent);
    }
}

RC_GTEST_PROP(ContentValueProperties, NormalizingTwiceChangesNothingMore, ()) {
    const auto once = normalized(*generated::text());
    RC_ASSERT(normalized(once) == once);
}

RC_GTEST_PROP(ContentValueProperties, EquivalenceIsAnEquivalenceRelation, ()) {
    const auto short_ = rc::gen::resize(3, generated::text());
    const auto a = *short_, b = *short_, c = *short_;

    RC_ASSERT(areEquivalent(a, a));
    RC_ASSERT(areEquivalent(a, b) == areEquivalent(b, a));
    RC_ASSERT(!(areEquivalent(a, b) && areEquivalent(b, c)) || areEquivalent(a, c));
}

RC_GTEST_PROP(ContentValueProperties, OtherEndsAndLineEndingsStayEquivalent, ()) {
    const auto value = *generated::text();
    const auto end = *rc::gen::elementOf<std::vector<std::string>>({"", " ", "\n", "\r\n", "\t\u00a0"});

    RC_ASSERT(areEquivalent(value, normalized(value) + end));
}

}  // namespace
}  // namespace kestrin
