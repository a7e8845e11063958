#include "Sandbox/Query.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>

#include "KestrinCore/Split.h"
#include "Sandbox/Refusal.h"
#include "Sandbox/Schema.h"

namespace kestrin::sandbox {
namespace {

int hexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

bool contains(const std::vector<std::string>& list, std::string_view value) {
    return std::find(list.begin(), list.end(), value) != list.end();
}

std::string decodedOrRefused(std::string_view raw) {
    std::string blanks(raw);
    std::replace(blanks.begin(), blanks.end(), '+', ' ');
    if (auto text = percentDecoded(blanks)) return *std::move(text);
    throw Refusal(refusals::parameter("INVALID", raw, "The query is not properly percent-encoded"));
}

// "limit[appInfos]" is the bracketed name "appInfos" of the family "limit".
std::optional<std::string> bracketed(std::string_view name, std::string_view family) {
    if (!name.starts_with(family) || name.size() < family.size() + 2) return std::nullopt;
    if (name[family.size()] != '[' || name.back() != ']') return std::nullopt;
    return std::string(name.substr(family.size() + 1, name.size() - family.size() - 2));
}

std::optional<int> positiveNumber(const std::vector<std::string>& values, int maximum) {
    if (values.size() != 1) return std::nullopt;
    const auto& text = values.front();
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
    return number >= 1 && number <= maximum ? std::optional(number) : std::nullopt;
}

// Reads a query by its rules; what breaks them is collected.
class QueryReader {
 public:
    explicit QueryReader(const QueryRules& rules) : rules_(rules) {}

    void read(const QueryParameter& parameter) {
        if (!seen_.insert(parameter.name).second) {
            return refuse("INVALID", parameter.name, "The parameter stands more than once");
        }
        if (!readNamed(parameter) && !readBracketed(parameter)) {
            refuse("ILLEGAL", parameter.name,
                   fmt::format("The parameter '{}' can not be used with this request", parameter.name));
        }
    }

    ReadOptions finish() {
        for (const auto& filter : rules_.filters) {
            if (filter.required && !options_.filters.contains(filter.name)) {
                refuse("REQUIRED", fmt::format("filter[{}]", filter.name), "A filter is required");
            }
        }
        if (!problems_.empty()) throw Refusal(std::move(problems_));
        return std::move(options_);
    }

 private:
    bool readNamed(const QueryParameter& parameter) {
        const auto& [name, values] = parameter;
        if (name == "include" && !rules_.includes.empty()) {
            options_.include = allowed(name, values, rules_.includes);
        } else if (name == "sort" && !rules_.sorts.empty()) {
            readSort(values);
        } else if (name == "limit" && rules_.paged) {
            options_.limit = number(name, values, kMaximumPageSize);
        } else if (name == "cursor" && rules_.paged && values.size() == 1) {
            options_.cursor = values.front();
        } else {
            return false;
        }
        return true;
    }

    bool readBracketed(const QueryParameter& parameter) {
        const auto& [name, values] = parameter;
        if (const auto filter = bracketed(name, "filter")) return readFilter(*filter, parameter);
        if (const auto type = bracketed(name, "fields")) return readFields(*type, parameter);
        if (const auto relationship = bracketed(name, "limit")) {
            if (!contains(rules_.relationshipLimits, *relationship)) return false;
            if (const auto size = number(name, values, kMaximumRelationshipSize)) {
                options_.relationshipLimits[*relationship] = *size;
            }
            return true;
        }
        if (const auto relationship = bracketed(name, "exists")) return readExists(*relationship, parameter);
        return false;
    }

    bool readFilter(const std::string& filter, const QueryParameter& parameter) {
        const auto rule = std::find_if(rules_.filters.begin(), rules_.filters.end(),
                                       [&](const Filter& each) { return each.name == filter; });
        if (rule == rules_.filters.end()) return false;
        options_.filters[filter] =
            rule->values.empty() ? parameter.values : allowed(parameter.name, parameter.values, rule->values);
        return true;
    }

    bool readFields(const std::string& type, const QueryParameter& parameter) {
        if (!contains(rules_.fields, type)) return false;
        const auto* schema = findResourceType(type);
        for (const auto& field : parameter.values) {
            if (schema != nullptr && !schema->hasField(field)) {
                refuse("INVALID", parameter.name, fmt::format("'{}' is not a valid field name", field));
            }
            options_.fields[type].insert(field);
        }
        return true;
    }

    bool readExists(const std::string& relationship, const QueryParameter& parameter) {
        if (!contains(rules_.exists, relationship)) return false;
        const auto values = allowed(parameter.name, parameter.values, {"true", "false"});
        options_.exists[relationship] = values == std::vector<std::string>{"true"};
        return true;
    }

    void readSort(const std::vector<std::string>& values) {
        for (const auto& value : values) {
            if (!contains(rules_.sorts, std::string_view(value).substr(value.starts_with('-') ? 1 : 0))) {
                refuse("INVALID", "sort", fmt::format("'{}' is not a valid sort field", value));
            }
        }
        options_.sort = values;
    }

    std::vector<std::string> allowed(const std::string& name, const std::vector<std::string>& values,
                                     const std::vector<std::string>& choices) {
        for (const auto& value : values) {
            if (!contains(choices, value)) {
                refuse("INVALID", name, fmt::format("'{}' is not a valid value", value));
            }
        }
        return values;
    }

    std::optional<std::size_t> number(const std::string& name, const std::vector<std::string>& values,
                                      int maximum) {
        const auto value = positiveNumber(values, maximum);
        if (!value) {
            refuse("INVALID", name, fmt::format("The value must be a whole number from 1 to {}", maximum));
            return std::nullopt;
        }
        return static_cast<std::size_t>(*value);
    }

    void refuse(std::string_view code, std::string_view name, std::string detail) {
        problems_.push_back(refusals::parameter(code, name, std::move(detail)));
    }

    const QueryRules& rules_;
    ReadOptions options_;
    std::set<std::string> seen_;
    std::vector<ErrorItem> problems_;
};

}  // namespace

std::optional<std::string> percentDecoded(std::string_view text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            result += text[i];
            continue;
        }
        if (i + 2 >= text.size()) return std::nullopt;
        const int high = hexDigit(text[i + 1]), low = hexDigit(text[i + 2]);
        if (high < 0 || low < 0) return std::nullopt;
        result += static_cast<char>(high * 16 + low);
        i += 2;
    }
    return result;
}

std::string percentEncoded(std::string_view text) {
    constexpr std::string_view kPlain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~";
    std::string result;
    for (const char c : text) {
        if (kPlain.find(c) != std::string_view::npos) {
            result += c;
        } else {
            result += fmt::format("%{:02X}", static_cast<unsigned char>(c));
        }
    }
    return result;
}

Query parseQuery(std::string_view text) {
    Query query;
    if (text.empty()) return query;
    for (const auto piece : split(text, '&')) {
        const auto equals = piece.find('=');
        QueryParameter parameter{decodedOrRefused(piece.substr(0, equals)), {}};
        const auto value = equals == std::string_view::npos ? "" : piece.substr(equals + 1);
        for (const auto part : split(value, ',')) parameter.values.push_back(decodedOrRefused(part));
        query.push_back(std::move(parameter));
    }
    return query;
}

bool ReadOptions::includes(std::string_view relationship) const {
    return contains(include, relationship);
}

ReadOptions readOptions(const Query& query, const QueryRules& rules) {
    QueryReader reader(rules);
    for (const auto& parameter : query) reader.read(parameter);
    return reader.finish();
}

}  // namespace kestrin::sandbox
