#include "KestrinCore/Message.h"

#include <libintl.h>

#include <clocale>

namespace kestrin::message {
namespace {

constexpr const char* kDomain = "kestrin";

std::string_view replacement(std::string_view name, std::initializer_list<Argument> arguments, bool& found) {
    for (const auto& [argumentName, text] : arguments) {
        if (argumentName == name) {
            found = true;
            return text;
        }
    }
    found = false;
    return {};
}

}  // namespace

std::string localized(const char* key, std::string_view english, std::initializer_list<Argument> arguments) {
    const char* translated = dgettext(kDomain, key);
    // gettext answers with the very pointer it was given when it has no translation.
    std::string_view text = translated == key ? english : std::string_view(translated);

    std::string result;
    while (!text.empty()) {
        const auto open = text.find('{');
        const auto close = open == std::string_view::npos ? open : text.find('}', open);
        if (close == std::string_view::npos) break;
        bool found = false;
        const auto filling = replacement(text.substr(open + 1, close - open - 1), arguments, found);
        if (found) {
            result.append(text.substr(0, open)).append(filling);
            text.remove_prefix(close + 1);
        } else {
            result.append(text.substr(0, open + 1));
            text.remove_prefix(open + 1);
        }
    }
    return result.append(text);
}

void useEnvironmentLanguage() {
    std::setlocale(LC_MESSAGES, "");
    bind_textdomain_codeset(kDomain, "UTF-8");
}

}  // namespace kestrin::message
