// What changed inside one text, word by word, for whoever shows a change to a person.
//
// Words are the same when they are canonically equivalent. Texts of any size are taken. Where little differs, the
// time grows with the length of the texts; where much does, with the product of their numbers of words, though 64
// words of one take a single step (EditScript.h has the bounds). Measured on one core of 2.6 GHz, for two texts each
// (a description may have 4,000 characters):
//
//   texts                                           words      time       memory
//   4,000 characters of prose, unrelated            700        0.5 ms     under 5 MB
//   4,000 Han characters, none in common            4,000      2 ms       under 5 MB
//   40,000 Han characters, none in common           40,000     35 ms      12 MB
//   1 MB of prose, different in 100 places          180,000    130 ms     55 MB
//   1 MB of prose, unrelated                        180,000    1.5 s      67 MB
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kestrin::TextDiff {

struct Segment {
    enum class Kind { unchanged, removed, added };

    std::string text;  // never empty
    Kind kind = Kind::unchanged;

    bool operator==(const Segment&) const = default;
};

// A piece of a text: a word and the white space behind it. Both may be empty, but not both at once; the word only for
// the first token of a text that begins with white space.
struct Token {
    std::string_view word, space;
    bool operator==(const Token&) const = default;
};

// The way from `from` to `to` in segments, of which no two neighbours are of one kind. The unchanged and the removed
// ones, joined, are `from` (where a word is only written otherwise, as “é” may be, they hold the spelling of `to`);
// the unchanged and the added ones are `to`, byte for byte. What is removed from a place comes before what is added
// there.
//
// White space takes no part in the comparison of words; where only it differs, it alone is shown:
//
//   words("cat.", "cats.")   removed "cat", added "cats", unchanged "."
//   words("a b", "a  b")     unchanged "a", removed " ", added "  ", unchanged "b"
//   words("", "")            nothing
std::vector<Segment> words(std::string_view from, std::string_view to);

// A run of letters and digits is one word; each punctuation mark, symbol, ideograph and kana is a word of its own.
// “Hello, big world!” is (Hello), (,␣), (big␣), (world), (!). The tokens point into `text`; joined, they are `text`.
std::vector<Token> tokens(std::string_view text);

}  // namespace kestrin::TextDiff
