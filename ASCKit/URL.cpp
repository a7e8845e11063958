#include "ASCKit/URL.h"

#include <algorithm>
#include <charconv>

namespace kestrin {
namespace {

constexpr std::string_view kPunctuation = "-._~:/?#[]@!$&'()*+,;=";

bool isLetter(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}
bool isDigit(char c) {
    return c >= '0' && c <= '9';
}
bool isHexDigit(char c) {
    return isDigit(c) || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f');
}

bool hasOnlyAllowedCharacters(std::string_view text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (isLetter(c) || isDigit(c) || kPunctuation.find(c) != std::string_view::npos) continue;
        const bool isEscape =
            c == '%' && i + 2 < text.size() && isHexDigit(text[i + 1]) && isHexDigit(text[i + 2]);
        if (!isEscape) return false;
    }
    return true;
}

bool isScheme(std::string_view text) {
    return !text.empty() && isLetter(text.front()) && std::all_of(text.begin(), text.end(), [](char c) {
        return isLetter(c) || isDigit(c) || c == '+' || c == '-' || c == '.';
    });
}

std::string lowercasedASCII(std::string_view text) {
    std::string lower(text);
    for (char& c : lower) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    return lower;
}

// An address taken apart (RFC 3986, appendix B). Absent parts are nullopt, parts without text are empty.
struct Parts {
    std::optional<std::string_view> scheme, authority;
    std::string_view path;
    std::optional<std::string_view> fragment;
};

Parts split(std::string_view text) {
    Parts parts;
    if (const auto hash = text.find('#'); hash != text.npos) {
        parts.fragment = text.substr(hash + 1);
        text = text.substr(0, hash);
    }
    text = text.substr(0, text.find('?'));
    const auto colon = text.find(':');
    if (colon != text.npos && colon < text.find('/')) {
        parts.scheme = text.substr(0, colon);
        text.remove_prefix(colon + 1);
    }
    if (text.starts_with("//")) {
        text.remove_prefix(2);
        const auto slash = std::min(text.find('/'), text.size());
        parts.authority = text.substr(0, slash);
        text.remove_prefix(slash);
    }
    parts.path = text;
    return parts;
}

struct Authority {
    bool hasUser = false;
    std::string_view host, port;
};

// nullopt for one without a host or with a port that can't be.
std::optional<Authority> splitAuthority(std::string_view text) {
    Authority authority;
    if (const auto at = text.rfind('@'); at != text.npos) {
        authority.hasUser = true;
        text.remove_prefix(at + 1);
    }
    const auto bracket = text.starts_with('[') ? text.find(']') : 0;
    if (bracket == text.npos) return std::nullopt;
    const auto colon = text.find(':', bracket);
    authority.host = text.substr(0, colon);
    if (colon != text.npos) authority.port = text.substr(colon + 1);
    if (authority.host.empty() || authority.port.find_first_not_of("0123456789") != text.npos)
        return std::nullopt;
    return authority;
}

bool isHost(std::string_view host) {
    if (!host.starts_with('[')) return host.find_first_of("[]@:") == host.npos;
    host = host.substr(1, host.size() - 2);
    return !host.empty() && std::all_of(host.begin(), host.end(),
                                        [](char c) { return isHexDigit(c) || c == ':' || c == '.'; });
}

std::optional<std::uint16_t> portNumber(std::string_view digits, std::uint16_t otherwise) {
    if (digits.empty()) return otherwise;
    std::uint16_t number = 0;
    const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (result.ec != std::errc()) return std::nullopt;
    return number;
}

bool isAuthority(std::string_view text) {
    const auto authority = splitAuthority(text);
    return authority && isHost(authority->host) && portNumber(authority->port, 0);
}

}  // namespace

std::optional<URL> URL::parse(std::string_view text) {
    if (text.empty() || !hasOnlyAllowedCharacters(text)) return std::nullopt;
    const auto parts = split(text);
    if (parts.scheme && !isScheme(*parts.scheme)) return std::nullopt;
    if (parts.authority && !isAuthority(*parts.authority)) return std::nullopt;
    if (parts.fragment && parts.fragment->find('#') != text.npos) return std::nullopt;
    return URL(std::string(text));
}

std::string URL::path() const {
    return std::string(split(text_).path);
}

std::optional<URL::Origin> URL::origin() const {
    const auto parts = split(text_);
    if (!parts.scheme || !parts.authority) return std::nullopt;
    auto scheme = lowercasedASCII(*parts.scheme);
    if (scheme != "http" && scheme != "https") return std::nullopt;
    const auto authority = splitAuthority(*parts.authority);
    if (!authority || authority->hasUser) return std::nullopt;
    const auto port = portNumber(authority->port, scheme == "https" ? 443 : 80);
    return Origin{std::move(scheme), lowercasedASCII(authority->host), port.value_or(0)};
}

}  // namespace kestrin
