#include "Sandbox/Refusal.h"

#include <fmt/format.h>

namespace kestrin::sandbox {
namespace {

struct Title {
    std::string_view code;  // or the beginning of it
    std::string_view title;
};

// The first that a code begins with counts.
constexpr Title kTitles[] = {
    {"PARAMETER_ERROR.ILLEGAL", "A parameter is not allowed"},
    {"PARAMETER_ERROR.INVALID", "A parameter has an invalid value"},
    {"PARAMETER_ERROR.REQUIRED", "A required parameter is missing"},
    {"ENTITY_INVALID", "The request body is not valid JSON"},
    {"ENTITY_UNPROCESSABLE", "The request entity is not a valid document"},
    {"NOT_AUTHORIZED", "Authentication credentials are missing or invalid"},
    {"FORBIDDEN_ERROR", "This request is forbidden for security reasons"},
    {"NOT_FOUND", "The specified resource does not exist"},
    {"PATH_ERROR", "The URL path is not valid"},
    {"METHOD_NOT_ALLOWED", "The request method is not valid for the resource path"},
    {"ENTITY_ERROR.ATTRIBUTE.REQUIRED", "A required attribute is missing"},
    {"ENTITY_ERROR.ATTRIBUTE.UNKNOWN", "The provided entity includes an unknown attribute"},
    {"ENTITY_ERROR.ATTRIBUTE", "An attribute has an invalid value"},
    {"ENTITY_ERROR.RELATIONSHIP.REQUIRED", "A required relationship is missing"},
    {"ENTITY_ERROR.RELATIONSHIP.UNKNOWN", "The provided entity includes an unknown relationship"},
    {"ENTITY_ERROR.RELATIONSHIP", "A relationship has an invalid value"},
    {"ENTITY_ERROR", "There is a problem with the request entity"},
    {"STATE_ERROR", "The request cannot be fulfilled because of the state of another resource"},
    {"RATE_LIMIT_EXCEEDED", "The request rate limit has been reached"},
};

std::string titleFor(std::string_view code) {
    for (const auto& row : kTitles) {
        if (code.starts_with(row.code)) return std::string(row.title);
    }
    return "An unexpected error occurred";
}

}  // namespace

Json errorObject(const ErrorItem& item, std::string_view id) {
    Json object{{"id", id},
                {"status", std::to_string(item.status)},
                {"code", item.code},
                {"title", titleFor(item.code)},
                {"detail", item.detail}};
    if (!item.pointer.empty()) object["source"] = {{"pointer", item.pointer}};
    if (!item.parameter.empty()) object["source"] = {{"parameter", item.parameter}};
    if (!item.meta.is_null()) object["meta"] = item.meta;
    return object;
}

HTTPReply errorReply(const std::vector<ErrorItem>& items, std::string_view id) {
    Json errors = Json::array();
    for (const auto& item : items) errors.push_back(errorObject(item, id));
    return {items.front().status, {}, "application/json", dumped({{"errors", errors}})};
}

namespace refusals {

ErrorItem notFound(std::string_view type, std::string_view id) {
    return {404, "NOT_FOUND", fmt::format("There is no resource of type '{}' with id '{}'", type, id)};
}

ErrorItem attribute(std::string_view code, std::string_view name, std::string detail) {
    return {409, fmt::format("ENTITY_ERROR.ATTRIBUTE.{}", code), std::move(detail),
            fmt::format("/data/attributes/{}", name)};
}

ErrorItem relationship(std::string_view code, std::string_view name, std::string detail) {
    return {409, fmt::format("ENTITY_ERROR.RELATIONSHIP.{}", code), std::move(detail),
            fmt::format("/data/relationships/{}", name)};
}

ErrorItem state(std::string_view code, std::string detail) {
    return {409, code.empty() ? "STATE_ERROR" : fmt::format("STATE_ERROR.{}", code), std::move(detail)};
}

ErrorItem parameter(std::string_view code, std::string_view name, std::string detail) {
    ErrorItem item{400, fmt::format("PARAMETER_ERROR.{}", code), std::move(detail)};
    item.parameter = name;
    return item;
}

ErrorItem unprocessable(std::string_view pointer, std::string detail) {
    return {422, "ENTITY_UNPROCESSABLE", std::move(detail), std::string(pointer)};
}

ErrorItem forbidden(std::string detail) {
    return {403, "FORBIDDEN_ERROR", std::move(detail)};
}

}  // namespace refusals
}  // namespace kestrin::sandbox
