#include "KestrinModel/ListingValidator.h"

#include "KestrinCore/UnicodeText.h"
#include "KestrinModel/KeywordAnalysis.h"

namespace kestrin {
namespace {

std::optional<ListingIssue::Kind> limitIssue(const std::string& value, std::size_t limit) {
    // A character has at least one UTF-16 unit, so that most texts need no segmentation.
    if (text::utf16Length(value) <= limit) return std::nullopt;
    const CharacterCount count(value);
    if (count.graphemes > limit) return ListingIssue::OverLimit{count, limit};
    return ListingIssue::OverLimitInUTF16Only{count, limit};
}

std::optional<ListingIssue::Kind> keywordsIssue(const std::string& value) {
    KeywordAnalysis analysis(value);
    if (analysis.duplicates.empty()) return std::nullopt;
    return ListingIssue::DuplicateKeywords{std::move(analysis.duplicates)};
}

void checkLocales(const LocalizedTexts& locales, std::span<const ListingField> fields,
                  const std::optional<StorePlatform>& platform, std::vector<ListingIssue>& issues) {
    for (const auto& [locale, texts] : locales) {
        for (const auto field : fields) {
            const auto& value = texts[field];
            if (const auto limit = info(field).limit) {
                if (auto kind = limitIssue(value, *limit)) issues.push_back({field, locale, platform, *kind});
            }
            if (field == ListingField::keywords) {
                if (auto kind = keywordsIssue(value)) issues.push_back({field, locale, platform, *kind});
            }
        }
    }
}

}  // namespace

std::vector<ListingIssue> ListingValidator::issues(const Project& project) {
    std::vector<ListingIssue> issues;
    checkLocales(project.app.locales, ListingFields::appInfo, std::nullopt, issues);
    for (const auto& [platform, listing] : project.platforms) {
        checkLocales(listing.locales, ListingFields::version, platform, issues);
    }
    return issues;
}

}  // namespace kestrin
