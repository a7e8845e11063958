#include "KestrinModel/Slug.h"

namespace kestrin {
namespace {

bool isKept(char c) {
    return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9');
}

std::string baseName(std::string_view name) {
    std::string base;
    for (const char c : text::lowercased(text::folded(name))) {
        if (isKept(c)) {
            base += c;
        } else if (!base.empty() && base.back() != '-') {
            base += '-';  // the further bytes of a scalar beyond ASCII meet the "-" of its first
        }
    }
    if (!base.empty() && base.back() == '-') base.pop_back();
    return base.empty() ? "page" : base;
}

}  // namespace

Slug Slug::make(std::string_view name, const std::set<Slug>& avoiding) {
    const auto base = baseName(name);
    Slug slug{base};
    for (std::size_t number = 2; avoiding.contains(slug); ++number) {
        slug.rawValue = base + "-" + std::to_string(number);
    }
    return slug;
}

}  // namespace kestrin
