// The long texts of a listing as plain text files: UTF-8, lines ended by line feeds, one more line feed at the end.
//
// decode(encode(text)) is normalizeLineEndings(text): reading and writing keep everything but how lines end.
#pragma once

#include <string>
#include <string_view>

namespace kestrin::TextFile {

// The text of a file. Ill-formed UTF-8 is repaired with U+FFFD, line ends are normalised, and exactly one final line
// feed goes: a file that ends in several has the others in its text. A byte order mark is text like any other.
std::string decode(std::string_view bytes);

// The file of a text: its line ends normalised, and one line feed after it.
std::string encode(std::string_view text);

// Every CR LF, then every CR that is left, as a line feed.
std::string normalizeLineEndings(std::string_view text);

}  // namespace kestrin::TextFile
