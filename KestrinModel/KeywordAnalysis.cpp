#include "KestrinModel/KeywordAnalysis.h"

#include "KestrinCore/Split.h"
#include "KestrinCore/UnicodeText.h"

namespace kestrin {
namespace {

std::string_view trimmed(std::string_view piece) {
    constexpr std::string_view kBlanksAndTabs = " \t";
    const auto first = piece.find_first_not_of(kBlanksAndTabs);
    if (first == std::string_view::npos) return {};
    return piece.substr(first, piece.find_last_not_of(kBlanksAndTabs) - first + 1);
}

std::size_t blanksAround(std::string_view piece) {
    const auto first = piece.find_first_not_of(' ');
    if (first == std::string_view::npos) return 2 * piece.size();
    return first + (piece.size() - 1 - piece.find_last_not_of(' '));
}

std::vector<std::string> duplicatesAmong(const std::vector<std::string>& keywords) {
    std::vector<std::string> duplicates;
    text::TextSet seen, reported;
    for (const auto& keyword : keywords) {
        auto lowercase = text::lowercased(keyword);
        if (!seen.contains(lowercase)) {
            seen.insert(std::move(lowercase));
        } else if (reported.insert(std::move(lowercase)).second) {
            duplicates.push_back(keyword);
        }
    }
    return duplicates;
}

}  // namespace

KeywordAnalysis::KeywordAnalysis(std::string_view text) {
    for (const auto piece : split(text, ',')) {
        wastedSpaces += blanksAround(piece);
        if (const auto keyword = trimmed(piece); !keyword.empty()) keywords.emplace_back(keyword);
    }
    duplicates = duplicatesAmong(keywords);
}

}  // namespace kestrin
