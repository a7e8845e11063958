#include "AssetPipeline/ReferenceName.h"

#include <algorithm>
#include <vector>

#include "KestrinCore/UnicodeText.h"

namespace kestrin::ReferenceName {
namespace {

constexpr std::size_t kStemLimit = 40;
constexpr std::size_t kHashLength = 12;

// All pieces between dots but the last, empty ones left out. A name with nothing left is its own stem.
std::string withoutExtension(std::string_view fileName) {
    std::vector<std::string_view> pieces;
    for (std::size_t start = 0; start <= fileName.size();) {
        const auto end = std::min(fileName.find('.', start), fileName.size());
        if (end > start) pieces.push_back(fileName.substr(start, end - start));
        start = end + 1;
    }
    std::string stem;
    for (std::size_t i = 0; i + 1 < pieces.size(); ++i) {
        if (i > 0) stem += '.';
        stem += pieces[i];
    }
    return stem.empty() ? std::string(fileName) : stem;
}

std::string_view firstCharacters(std::string_view whole, std::size_t count) {
    std::size_t length = 0;
    for (const auto character : text::graphemes(whole)) {
        if (count-- == 0) break;
        length += character.size();
    }
    return whole.substr(0, length);
}

bool isHexadecimal(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

}  // namespace

std::string make(std::string_view fileName, std::string_view md5) {
    const auto full = withoutExtension(fileName);
    std::string stem;
    for (const auto character : text::graphemes(firstCharacters(full, kStemLimit))) {
        const bool kept = character == "-" || character == "_" || text::isLetterOrNumber(character);
        stem += kept ? character : std::string_view("-");
    }
    // Of a path that stands in for a digest a letter may be longer than a byte.
    return "mq-" + stem + "-" + std::string(firstCharacters(md5, kHashLength));
}

std::optional<std::string> hashSuffix(std::string_view referenceName) {
    const auto hyphen = referenceName.rfind('-');
    if (hyphen == std::string_view::npos) return std::nullopt;
    const auto suffix = referenceName.substr(hyphen + 1);
    if (suffix.size() != kHashLength || !std::all_of(suffix.begin(), suffix.end(), isHexadecimal)) {
        return std::nullopt;
    }
    return text::lowercased(suffix);
}

}  // namespace kestrin::ReferenceName
