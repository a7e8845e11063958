// The laws of text hold for any bytes.
#include <cstdint>
#include <cstdlib>

#include "KestrinCore/UnicodeText.h"

namespace text = kestrin::text;

namespace {

void require(bool holds) {
    if (!holds) std::abort();
}

void checkOne(std::string_view s) {
    const auto repaired = text::repaired(s), nfc = text::toNFC(s);
    require(text::isValidUTF8(repaired) && text::isValidUTF8(nfc));
    require(text::isValidUTF8(s) == (repaired == s));
    require(text::toNFC(nfc) == nfc && text::equal(s, nfc) && text::compare(s, nfc) == 0);
    require(text::graphemeCount(s) == text::graphemeCount(repaired));
    require(text::graphemeCount(s) <= text::utf16Length(s));
    require(text::isValidUTF8(text::folded(s)) && text::isValidUTF8(text::lowercased(s)));
    require(text::isValidUTF8(text::uppercased(s)));
    const auto trimmed = text::withoutTrailingWhitespace(s);
    require(s.starts_with(trimmed) && text::withoutTrailingWhitespace(trimmed) == trimmed);
}

void checkTwo(std::string_view a, std::string_view b) {
    require(text::compare(a, b) == (text::toNFC(a) <=> text::toNFC(b)));
    require(text::equal(a, b) == (text::compare(a, b) == 0));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view s(reinterpret_cast<const char*>(data), size);
    checkOne(s);
    checkTwo(s.substr(0, size / 2), s.substr(size / 2));
    return 0;
}
