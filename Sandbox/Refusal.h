// Why a request is refused, as the JSON:API error document that says so.
//
// Codes are App Store Connect's: dotted, from general to special, so that a client matches them by prefix. `title`
// and `detail` are for people.
#pragma once

#include <exception>
#include <string>
#include <string_view>
#include <vector>

#include "Sandbox/HTTPMessage.h"
#include "Sandbox/JSON.h"

namespace kestrin::sandbox {

struct ErrorItem {
    int status = 500;
    std::string code;
    std::string detail;
    std::string pointer = {};    // into the body, such as "/data/attributes/name"; "" for none
    std::string parameter = {};  // of the query, such as "filter[state]"; "" for none
    Json meta = nullptr;
};

// Thrown by handlers; the first item's status is the reply's.
class Refusal : public std::exception {
 public:
    explicit Refusal(ErrorItem item) : items{std::move(item)} {}
    explicit Refusal(std::vector<ErrorItem> all) : items(std::move(all)) {}

    const char* what() const noexcept override { return items.front().detail.c_str(); }

    std::vector<ErrorItem> items;  // at least one
};

// `id` tells this occurrence from every other.
Json errorObject(const ErrorItem& item, std::string_view id);
HTTPReply errorReply(const std::vector<ErrorItem>& items, std::string_view id);

namespace refusals {

ErrorItem notFound(std::string_view type, std::string_view id);

// 409 at an attribute. `code` is what follows "ENTITY_ERROR.ATTRIBUTE.".
ErrorItem attribute(std::string_view code, std::string_view name, std::string detail);
// 409 at a relationship. `code` is what follows "ENTITY_ERROR.RELATIONSHIP.".
ErrorItem relationship(std::string_view code, std::string_view name, std::string detail);

// 409: the data are right, but the thing is in the wrong state for them.
ErrorItem state(std::string_view code, std::string detail);

// 400 at a query parameter. `code` is what follows "PARAMETER_ERROR.".
ErrorItem parameter(std::string_view code, std::string_view name, std::string detail);

// 422: JSON, but not the shape of a document.
ErrorItem unprocessable(std::string_view pointer, std::string detail);

ErrorItem forbidden(std::string detail);

}  // namespace refusals
}  // namespace kestrin::sandbox
