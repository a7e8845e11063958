// Text as Unicode defines it: the one place where strings are compared, ordered, counted, folded and repaired.
//
// A string is UTF-8. Two strings are the same text when they are canonically equivalent, that is, when their NFC
// forms are equal (UAX #15); they are ordered by the Unicode scalars of the NFC form, which is the byte order of
// its UTF-8. User-perceived characters are extended grapheme clusters (UAX #29, Indic conjuncts included). All
// operations take any bytes: an ill-formed sequence counts as U+FFFD. None takes more time per byte for a longer
// text, whatever is in it.
//
// Nobody else includes ICU.
#pragma once

#include <compare>
#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace kestrin::text {

bool equal(std::string_view a, std::string_view b);
std::weak_ordering compare(std::string_view a, std::string_view b);

// For ordered containers whose keys are text: TextMap<T> finds a decomposed name under its composed form.
struct Less {
    using is_transparent = void;
    bool operator()(std::string_view a, std::string_view b) const { return compare(a, b) < 0; }
};
template <class Value>
using TextMap = std::map<std::string, Value, Less>;
using TextSet = std::set<std::string, Less>;

bool isASCII(std::string_view s);
bool isValidUTF8(std::string_view s);

// The same text with every ill-formed sequence as U+FFFD, one per maximal subpart (The Unicode Standard,
// section 3.9, "U+FFFD Substitution of Maximal Subparts"). Well-formed text comes back unchanged.
std::string repaired(std::string_view s);

std::string toNFC(std::string_view s);  // always well-formed

std::size_t graphemeCount(std::string_view s);
// The grapheme clusters in order, as pieces of `s`.
std::vector<std::string_view> graphemes(std::string_view s);
std::size_t utf16Length(std::string_view s);

// Whether the scalar has the property White_Space (line feed, no-break space and the like included).
bool isWhitespace(char32_t scalar);

// The scalar that a text, most often one character, begins with; 0 for an empty text.
char32_t firstScalar(std::string_view s);

bool isPunctuation(char32_t scalar);  // general category P
bool isSymbol(char32_t scalar);       // general category S, most emoji included
bool isIdeographic(char32_t scalar);  // the property Ideographic: Han and its like, not kana and Hangul

// Whether the character's first scalar is alphabetic (the property Alphabetic) or numeric (it has a Numeric_Type).
bool isLetterOrNumber(std::string_view character);

// The text without its trailing white space. A character is white space when the first scalar of its grapheme
// cluster is; a cluster is dropped whole.
std::string_view withoutTrailingWhitespace(std::string_view s);

// Full case mappings, independent of language ("İ" gives "i̇", a final "Σ" gives "ς").
std::string lowercased(std::string_view s);
std::string uppercased(std::string_view s);

// For comparison of names regardless of letter case, accents and width, as Foundation's
// folding(options: [.caseInsensitive, .diacriticInsensitive, .widthInsensitive], locale: en_US_POSIX): combining
// marks are dropped, case is folded, full-width and half-width forms become their usual ones.
std::string folded(std::string_view s);

}  // namespace kestrin::text
