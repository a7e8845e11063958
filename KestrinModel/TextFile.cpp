#include "KestrinModel/TextFile.h"

#include "KestrinCore/UnicodeText.h"

namespace kestrin::TextFile {

std::string decode(std::string_view bytes) {
    auto result = normalizeLineEndings(text::repaired(bytes));
    if (result.ends_with('\n')) result.pop_back();
    return result;
}

std::string encode(std::string_view text) {
    return normalizeLineEndings(text) + "\n";
}

std::string normalizeLineEndings(std::string_view text) {
    std::string result;
    result.reserve(text.size() + 1);  // encode appends one
    for (;;) {
        const auto carriageReturn = text.find('\r');
        result += text.substr(0, carriageReturn);
        if (carriageReturn == std::string_view::npos) return result;
        result += '\n';
        text.remove_prefix(carriageReturn + 1);
        if (text.starts_with('\n')) text.remove_prefix(1);
    }
}

}  // namespace kestrin::TextFile
