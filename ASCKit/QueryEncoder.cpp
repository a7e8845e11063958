#include "ASCKit/QueryEncoder.h"

#include "KestrinCore/Error.h"

namespace kestrin {
namespace {

std::string joined(const std::vector<std::string>& values) {
    std::string text;
    for (const auto& value : values) {
        if (&value != &values.front()) text += ',';
        text += QueryEncoder::percentEncode(value);
    }
    return text;
}

std::string encoded(std::string_view key, std::string_view encodedValue) {
    return QueryEncoder::percentEncode(key).append("=").append(encodedValue);
}

std::string encoded(const QueryParameter& parameter) {
    return std::visit(
        Overloaded{
            [](const QueryParameter::Filter& p) {
                return encoded("filter[" + p.name + "]", joined(p.values));
            },
            [](const QueryParameter::Fields& p) {
                return encoded("fields[" + p.type + "]", joined(p.fields));
            },
            [](const QueryParameter::Include& p) { return encoded("include", joined(p.relationships)); },
            [](const QueryParameter::Limit& p) { return encoded("limit", std::to_string(p.count)); },
            [](const QueryParameter::Sort& p) { return encoded("sort", joined(p.keys)); },
        },
        parameter.kind);
}

bool isUnreserved(unsigned char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' ||
           c == '.' || c == '_' || c == '~';
}

}  // namespace

QueryParameter QueryParameter::filter(std::string name, std::vector<std::string> values) {
    return {Filter{std::move(name), std::move(values)}};
}
QueryParameter QueryParameter::fields(std::string type, std::vector<std::string> fields) {
    return {Fields{std::move(type), std::move(fields)}};
}
QueryParameter QueryParameter::include(std::vector<std::string> relationships) {
    return {Include{std::move(relationships)}};
}
QueryParameter QueryParameter::limit(std::int64_t count) {
    return {Limit{count}};
}
QueryParameter QueryParameter::sort(std::vector<std::string> keys) {
    return {Sort{std::move(keys)}};
}

std::string QueryEncoder::encode(const std::vector<QueryParameter>& parameters) {
    std::string query;
    for (const auto& parameter : parameters) {
        if (!query.empty()) query += '&';
        query += encoded(parameter);
    }
    return query;
}

std::string QueryEncoder::percentEncode(std::string_view text) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    std::string result;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (isUnreserved(byte)) {
            result += c;
        } else {
            result.append({'%', kDigits[byte >> 4], kDigits[byte & 15]});
        }
    }
    return result;
}

}  // namespace kestrin
