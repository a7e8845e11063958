#include "Tests/EndToEnd/Runner/Transcript.h"

#include <gtest/gtest.h>

namespace kestrin::endtoend {
namespace {

using Lines = std::vector<std::string>;

std::string errorOf(std::string_view text) {
    try {
        parseTranscript(text);
        return "";
    } catch (const TranscriptError& error) {
        return error.what();
    }
}

TEST(Transcript, IsAPromiseAndWhatIsTypedAndShown) {
    const auto transcript = parseTranscript(
        "# A promise.\n"
        "# It goes on.\n"
        "\n"
        "% mkdir p\n"
        "% cd p\n"
        "> set\n"
        "\n"
        "$ ask\n"
        "< yes\n"
        "< \n"
        "< no{{no line feed}}\n"
        "> out\n"
        ">\n"
        "! error\n"
        "? 1\n"
        "# the end\n");

    EXPECT_EQ(transcript.promise, "A promise.");
    ASSERT_EQ(transcript.exchanges.size(), 2u);
    const auto& stage = transcript.exchanges[0];
    EXPECT_TRUE(stage.setsTheStage);
    EXPECT_EQ(stage.head, (Lines{"# A promise.", "# It goes on.", "", "% mkdir p", "% cd p"}));
    EXPECT_EQ(stage.script, "mkdir p\ncd p\n");
    EXPECT_EQ(stage.shown, Lines{"> set"});
    const auto& user = transcript.exchanges[1];
    EXPECT_FALSE(user.setsTheStage);
    EXPECT_EQ(user.script, "ask\n");
    EXPECT_EQ(user.typed, "yes\n\nno");
    EXPECT_EQ(user.shown, (Lines{"> out", ">", "! error", "? 1"}));
    EXPECT_EQ(transcript.tail, Lines{"# the end"});
}

TEST(Transcript, TakesEachLineOfTheUserForACommandOfItsOwn) {
    const auto transcript = parseTranscript("# A promise.\n$ one\n$ two\n% three\n");
    ASSERT_EQ(transcript.exchanges.size(), 3u);
    EXPECT_EQ(transcript.exchanges[1].script, "two\n");
}

TEST(Transcript, EndsAStageScriptWhereSomethingStandsBetween) {
    EXPECT_EQ(parseTranscript("# P.\n% one\n\n% two\n$ x\n").exchanges.size(), 3u);
    EXPECT_EQ(parseTranscript("# P.\n% one\n> shown\n% two\n$ x\n").exchanges.size(), 3u);
}

TEST(Transcript, ReadsTheStatusZeroAsNone) {
    EXPECT_EQ(parseTranscript("# P.\n$ x\n? 0\n").exchanges[0].shown, Lines{});
}

TEST(Transcript, RefusesWhatItCannotRead) {
    struct Row {
        const char* when;
        const char* text;
        const char* error;
    };
    const Row rows[] = {
        {"an empty file", "", "line 1: the first line isn't the promise (“# …”)"},
        {"no promise", "$ x\n", "line 1: the first line isn't the promise (“# …”)"},
        {"no command of the user", "# P.\n% x\n", "line 2: nothing is promised without a command (“$ …”)"},
        {"output of nothing", "# P.\n> x\n", "line 2: no command above this line"},
        {"output after a gap", "# P.\n$ x\n\n> x\n", "line 4: no command above this line"},
        {"an unknown mark", "# P.\n$ x\nx\n", "line 3: a line begins with one of # $ % < > ! ? and a blank"},
        {"no blank after the mark", "# P.\n$ x\n>x\n",
         "line 3: a line begins with one of # $ % < > ! ? and a blank"},
        {"typed too late", "# P.\n$ x\n> x\n< y\n", "line 4: typed lines stand before shown ones"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(errorOf(row.text), row.error);
    }
}

TEST(ShownLines, MarkTheStreamOfEachLine) {
    EXPECT_EQ(shownLines({{'>', "a\n\nb\n"}, {'!', "c\n"}}, 0), (Lines{"> a", ">", "> b", "! c"}));
    EXPECT_EQ(shownLines({}, 0), Lines{});
    EXPECT_EQ(shownLines({}, 3), Lines{"? 3"});
}

TEST(ShownLines, DoNotShowHowALineWasCutIntoWrites) {
    EXPECT_EQ(shownLines({{'>', "a"}, {'>', ""}, {'>', "b\nc"}, {'>', "\n"}}, 0), (Lines{"> ab", "> c"}));
}

TEST(ShownLines, KeepTheOrderOfBothStreams) {
    EXPECT_EQ(shownLines({{'>', "a\n"}, {'!', "b\n"}, {'>', "c\n"}}, 1), (Lines{"> a", "! b", "> c", "? 1"}));
}

TEST(ShownLines, TellWhereALineFeedIsMissing) {
    EXPECT_EQ(shownLines({{'>', "Really? [y/N] "}, {'!', "no\n"}, {'>', "x"}}, 0),
              (Lines{"> Really? [y/N] {{no line feed}}", "! no", "> x{{no line feed}}"}));
}

TEST(LineMatches, LiteralTextAndPatterns) {
    struct Row {
        const char* when;
        const char* expected;
        const char* actual;
        bool matches;
    };
    const Row rows[] = {
        {"the same text", "> a.b", "> a.b", true},
        {"a dot is a dot", "> a.b", "> axb", false},
        {"another stream", "> a", "! a", false},
        {"a trailing blank counts", "> a", "> a ", false},
        {"a pattern", "> took {{\\d+}} ms", "> took 12 ms", true},
        {"a pattern that doesn't fit", "> took {{\\d+}} ms", "> took a ms", false},
        {"text around a pattern is literal", "> (a) {{.*}}", "> a b", false},
        {"a pattern that ends in a count", "> {{\\d{3}}}!", "> 123!", true},
        {"an empty pattern marks the end of a line", "> locales: {{}}", "> locales: ", true},
        {"two patterns", "> {{a|b}}-{{c}}!", "> b-c!", true},
        {"a pattern takes the whole line", "> {{a}}", "> ab", false},
        {"braces that don't close are text", "> {{a", "> {{a", true},
        {"a missing line feed must be expected", "> a", "> a{{no line feed}}", false},
        {"an expected missing line feed must be missing", "> a{{no line feed}}", "> a", false},
        {"a pattern and a missing line feed", "> {{.}}{{no line feed}}", "> a{{no line feed}}", true},
        {"the status", "? 1", "? 2", false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(lineMatches(row.expected, row.actual), row.matches);
    }
}

Exchange exchangeShowing(Lines shown) {
    Exchange exchange;
    exchange.head = {"$ x"};
    exchange.shown = std::move(shown);
    return exchange;
}

TEST(Compare, IsEqualWhenEveryLineFits) {
    const auto same = compare(exchangeShowing({"> a", "> {{\\d}}"}), {"> a", "> 1"});
    EXPECT_TRUE(same.isEqual);
    EXPECT_EQ(same.updated, (Lines{"> a", "> {{\\d}}"}));
}

TEST(Compare, ShowsADiffOfTheExchange) {
    const auto differs =
        compare(exchangeShowing({"> a", "> b", "> {{.}}", "? 1"}), {"> a", "> x", "> d", "> e"});
    EXPECT_FALSE(differs.isEqual);
    EXPECT_EQ(differs.diff, " $ x\n > a\n-> b\n > {{.}}\n-? 1\n+> d\n+> e\n");
    EXPECT_EQ(differs.updated, (Lines{"> a", "> {{.}}", "> d", "> e"}));
}

TEST(Compare, SeesWhatIsMissingAndWhatIsTooMuch) {
    EXPECT_FALSE(compare(exchangeShowing({"> a"}), {}).isEqual);
    EXPECT_FALSE(compare(exchangeShowing({}), {"> a"}).isEqual);
    EXPECT_FALSE(compare(exchangeShowing({}), {"? 1"}).isEqual);
    EXPECT_FALSE(compare(exchangeShowing({"> a", "! b"}), {"! b", "> a"}).isEqual) << "the order counts";
}

TEST(Compare, StaysCheapForOutputWithoutEnd) {
    const Lines flood(100000, "> y");
    const auto differs = compare(exchangeShowing({"> x"}), flood);
    EXPECT_FALSE(differs.isEqual);
    EXPECT_EQ(differs.updated.size(), flood.size());
}

}  // namespace
}  // namespace kestrin::endtoend
