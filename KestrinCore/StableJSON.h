// JSON whose bytes depend on its content alone: what stands in project files, state files and request bodies.
//
// Files of this tool live in version control, so the same content must give the same bytes on every machine, and
// what was read and not changed must be written as it was. The form: two blanks of indentation per level, one
// member or element per line, `"key" : value`, members in ascending byte order of their names, slashes and
// non-ASCII characters as they are, one line feed at the end. An empty array or object is its opening bracket, an
// empty line, and its closing bracket on a line of its own. In strings the quotation mark, the backslash and the
// control characters below U+0020 are escaped (\n, \r, \t, \b, \f, else \u00xx with lower-case digits), nothing else.
//
// Numbers: a whole number that fits 64 bits is its digits. Any other has the fewest digits that read back to the
// same value: plain (0.25) when its magnitude is at least 0.0001 and below 2^63, else with one digit before the
// point and an exponent of sign and at least two digits (1.5e-05, 1e+19). So each value has one spelling, and a
// document that was written here is written the same after any number of readings.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <unordered_set>

#include "KestrinCore/JSONDecoding.h"
#include "KestrinCore/JSONValue.h"

namespace kestrin::StableJSON {

// How deep arrays and objects may be nested, to be read as well as to be written. Nothing of ours comes near it;
// beyond it lies only a document that was made to exhaust the stack of its reader.
inline constexpr std::size_t kMaximumDepth = 512;

// A value that JSON can't hold (NaN, an infinity), or one nested deeper than kMaximumDepth. Nothing is written.
class EncodingError : public Error {
 public:
    std::string errorDescription() const override;
};

// Throws EncodingError. Text that isn't UTF-8 is repaired.
std::string encode(const JSONValue& value);
template <JSONEncodable T>
std::string encode(const T& record) {
    return encode(record.toJSON());
}

// encode() of an object that is too large to be in memory whole, be it as a value or as text: its members are given one
// after another, and what is ready goes to `take` in pieces.
class ObjectWriter {
 public:
    using Take = std::function<void(std::string_view)>;
    explicit ObjectWriter(Take take);

    // Each name once, in ascending byte order. Throws EncodingError, after which the object can't be finished.
    void add(std::string_view name, const JSONValue& value);
    // The last piece.
    void finish();

 private:
    void handOver();

    Take take_;
    std::string pending_;
    bool isEmpty_ = true;
};

// The same values in as few bytes as possible: sorted, no blanks, no line feed.
std::string encodeCompact(const JSONValue& value);

// Any one JSON document (RFC 8259), in any layout; a UTF-8 byte order mark before it is passed over. Of members of
// the same name the last counts. A number without a fraction (1.0 and 1e3 too) is an integer, unless it takes more
// than 64 bits. Throws DecodingError for anything else, text that isn't UTF-8, a number outside
// the range of a double, and nesting deeper than kMaximumDepth included.
JSONValue decode(std::string_view bytes);
// The same for who needs only some members of a large document: those below the outermost object whose names aren't among
// `names` may be missing from the value, which then takes less time and memory. They have to be JSON all the same.
using MemberNames = std::unordered_set<std::string_view>;
JSONValue decodeOnly(const MemberNames& names, std::string_view bytes);

template <JSONDecodable T>
T decode(std::string_view bytes) {
    return T::fromJSON(decode(bytes));
}

}  // namespace kestrin::StableJSON
