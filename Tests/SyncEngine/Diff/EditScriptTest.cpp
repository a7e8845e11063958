#include "SyncEngine/Diff/EditScript.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <numeric>

namespace kestrin {
namespace {

using Numbers = std::vector<std::int32_t>;

Numbers lettersOf(std::string_view text) {
    return Numbers(text.begin(), text.end());
}

// The script as a line: "-a" goes, "+b" comes, "c" stays.
std::string outline(std::string_view from, std::string_view to) {
    const auto script = EditScript::shortest(lettersOf(from), lettersOf(to));
    std::string line;
    std::size_t i = 0, j = 0;
    while (i < from.size() || j < to.size()) {
        if (i < from.size() && script.removed[i]) {
            line.append("-").push_back(from[i++]);
        } else if (script.inserted[j]) {
            line.append("+").push_back(to[j++]);
        } else {
            line.push_back(from[i++]), ++j;
        }
    }
    return line;
}

std::size_t editsOf(const EditScript& script) {
    return static_cast<std::size_t>(std::count(script.removed.begin(), script.removed.end(), true) +
                                    std::count(script.inserted.begin(), script.inserted.end(), true));
}

// What the algorithm's definition says, word for word: every diagonal of every round, all points kept.
EditScript byDefinition(const Numbers& from, const Numbers& to) {
    const auto n = static_cast<int>(from.size()), m = static_cast<int>(to.size());
    std::vector<std::map<int, int>> rounds;
    std::map<int, int> furthest{{1, 0}};
    const auto isAtTheEnd = [&](int d) {
        for (int k = -d; k <= d; k += 2) {
            const bool inserts = k == -d || (k != d && furthest[k - 1] < furthest[k + 1]);
            int x = inserts ? furthest[k + 1] : furthest[k - 1] + 1;
            while (x < n && x - k < m &&
                   from[static_cast<std::size_t>(x)] == to[static_cast<std::size_t>(x - k)])
                ++x;
            furthest[k] = x;
            if (x >= n && x - k >= m) return true;
        }
        return false;
    };
    for (int d = 0;; ++d) {
        rounds.push_back(furthest);
        if (isAtTheEnd(d)) break;
    }

    EditScript script{std::vector<bool>(from.size()), std::vector<bool>(to.size())};
    int x = n, y = m;
    for (int d = static_cast<int>(rounds.size()) - 1; d > 0; --d) {
        auto& before = rounds[static_cast<std::size_t>(d)];
        const int k = x - y;
        const bool inserts = k == -d || (k != d && before[k - 1] < before[k + 1]);
        x = before[inserts ? k + 1 : k - 1];
        y = inserts ? x - k - 1 : x - k + 1;
        if (inserts) {
            script.inserted[static_cast<std::size_t>(y)] = true;
        } else {
            script.removed[static_cast<std::size_t>(x)] = true;
        }
    }
    return script;
}

std::size_t lengthOfLongestCommonSubsequence(const Numbers& a, const Numbers& b) {
    std::vector<std::size_t> row(b.size() + 1);
    for (const auto element : a) {
        std::size_t diagonal = 0;
        for (std::size_t j = 0; j < b.size(); ++j) {
            const auto above = row[j + 1];
            row[j + 1] = element == b[j] ? diagonal + 1 : std::max(above, row[j]);
            diagonal = above;
        }
    }
    return row.back();
}

// By element, since a range would shrink with the size of the case, to nothing but zeros in a small one.
rc::Gen<Numbers> fewDifferentNumbers() {
    return rc::gen::container<Numbers>(rc::gen::element<std::int32_t>(0, 1, 2, 3));
}

TEST(EditScript, TakesTheWayOfMyers) {
    struct Row {
        const char *when, *from, *to, *script;
    };
    const Row rows[] = {
        {"both are empty", "", "", ""},
        {"everything comes", "", "ab", "+a+b"},
        {"everything goes", "ab", "", "-a-b"},
        {"nothing differs", "abc", "abc", "abc"},
        {"nothing is common", "ab", "cd", "-a-b+c+d"},
        {"one comes at the start", "b", "ab", "+ab"},
        {"one comes at the end", "a", "ab", "a+b"},
        {"one goes in the middle", "abc", "ac", "a-bc"},
        {"one of a run goes", "aaa", "aa", "aa-a"},
        {"the example of Myers’ paper", "ABCABBA", "CBABAC", "-A-BC+BAB-BA+C"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(outline(row.from, row.to), row.script);
    }
}

TEST(EditScript, TakesLongSequencesWithNothingInCommon) {
    Numbers from(3000), to(2000);
    std::iota(from.begin(), from.end(), 0);
    std::iota(to.begin(), to.end(), 10'000);
    EXPECT_EQ(EditScript::shortest(from, to),
              (EditScript{std::vector<bool>(3000, true), std::vector<bool>(2000, true)}));
}

TEST(EditScript, TakesALongSequenceAndAShortOne) {
    Numbers numbers(5000);
    std::iota(numbers.begin(), numbers.end(), 0);
    std::vector<bool> allButTheLast(5000, true);
    allButTheLast.back() = false;
    EXPECT_EQ(EditScript::shortest(numbers, {4999}), (EditScript{allButTheLast, {false}}));
    EXPECT_EQ(EditScript::shortest({4999}, numbers), (EditScript{{false}, allButTheLast}));
}

// Of an element that occurs twice over there, far apart, one alone can stay; in between nothing is common.
TEST(EditScript, KeepsAnElementOnceThatOccursFarApart) {
    Numbers from(300), to(300);
    std::iota(from.begin(), from.end(), 1000);
    std::iota(to.begin(), to.end(), 2000);
    from[10] = to[0] = to[150] = to[290] = 1;
    const auto script = EditScript::shortest(from, to);
    EXPECT_EQ(editsOf(script), 598u);
    EXPECT_EQ(script, byDefinition(from, to));
}

RC_GTEST_PROP(EditScript, IsTheOneOfTheAlgorithmsDefinition, ()) {
    const auto from = *fewDifferentNumbers();
    const auto to = *fewDifferentNumbers();
    RC_ASSERT(EditScript::shortest(from, to) == byDefinition(from, to));
}

RC_GTEST_PROP(EditScript, IsTheOneOfTheAlgorithmsDefinitionForSizesThatDifferALot, ()) {
    const auto shorter = *rc::gen::resize(4, fewDifferentNumbers());
    const auto longer = *rc::gen::container<Numbers>(80, rc::gen::inRange(0, 4));
    RC_ASSERT(EditScript::shortest(shorter, longer) == byDefinition(shorter, longer));
    RC_ASSERT(EditScript::shortest(longer, shorter) == byDefinition(longer, shorter));
}

RC_GTEST_PROP(EditScript, IsTheOneOfTheAlgorithmsDefinitionWhereLittleDiffers, ()) {
    const auto from = *rc::gen::container<Numbers>(300, rc::gen::inRange(0, 30));
    auto to = from;
    for (int edits = *rc::gen::inRange(0, 8); edits > 0; --edits) {
        const auto place = to.begin() + *rc::gen::inRange(0, 290);
        if (*rc::gen::arbitrary<bool>()) {
            to.erase(place);
        } else {
            to.insert(place, *rc::gen::inRange(0, 30));
        }
    }
    RC_ASSERT(EditScript::shortest(from, to) == byDefinition(from, to));
}

// Long ones that differ at their ends alone, so that little is searched, but all of it, up to both of the ends.
RC_GTEST_PROP(EditScript, IsTheOneOfTheAlgorithmsDefinitionBehindALongBeginningThatIsTheSame, ()) {
    const auto ending = rc::gen::resize(12, fewDifferentNumbers());
    Numbers from(400, 7), to(400, 7);
    for (const auto number : *ending) from.push_back(number);
    for (const auto number : *ending) to.push_back(number);
    RC_ASSERT(EditScript::shortest(from, to) == byDefinition(from, to));
}

RC_GTEST_PROP(EditScript, IsAsShortAsAny, ()) {
    const auto from = *rc::gen::container<Numbers>(200, rc::gen::inRange(0, 20));
    const auto to = *rc::gen::container<Numbers>(190, rc::gen::inRange(0, 20));
    RC_ASSERT(editsOf(EditScript::shortest(from, to)) ==
              from.size() + to.size() - 2 * lengthOfLongestCommonSubsequence(from, to));
}

}  // namespace
}  // namespace kestrin
