// The query of a request: what it says, what an endpoint lets it say, and what it then means.
//
// One parameter stands once, its values joined by commas. A parameter that the endpoint doesn't have, a value that
// it doesn't take, a parameter given twice: 400, as the real service answers.
#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kestrin::sandbox {

// "%2F" to "/"; nullopt for a "%" without two hexadecimal digits behind it.
std::optional<std::string> percentDecoded(std::string_view text);
std::string percentEncoded(std::string_view text);

// Parameters in the order of the wire, decoded; a value is split at its literal commas before it is decoded.
struct QueryParameter {
    std::string name;
    std::vector<std::string> values;
};
using Query = std::vector<QueryParameter>;

// Throws Refusal 400 for text that isn't properly encoded.
Query parseQuery(std::string_view text);

struct Filter {
    std::string name;                      // "platform" of filter[platform]
    std::vector<std::string> values = {};  // what it may ask for; empty: anything
    bool required = false;
};

// What the query of one endpoint may hold.
struct QueryRules {
    std::vector<Filter> filters;
    std::vector<std::string> exists;  // names of exists[…]
    std::vector<std::string> sorts;   // each also with a leading "-"
    std::vector<std::string> includes;
    std::vector<std::string> fields;              // resource types of fields[…]
    std::vector<std::string> relationshipLimits;  // names of limit[…]
    bool paged = false;                           // takes `limit` and `cursor`
};

inline constexpr int kMaximumPageSize = 200;
inline constexpr int kMaximumRelationshipSize = 50;

// The meaning of a query that kept the rules.
struct ReadOptions {
    std::map<std::string, std::vector<std::string>> filters;
    std::map<std::string, bool> exists;
    std::vector<std::string> sort;  // with their "-"
    std::vector<std::string> include;
    std::map<std::string, std::set<std::string>> fields;
    std::map<std::string, std::size_t> relationshipLimits;
    std::optional<std::size_t> limit;
    std::string cursor;

    bool includes(std::string_view relationship) const;
};

// Throws Refusal with an item per parameter that breaks the rules.
ReadOptions readOptions(const Query& query, const QueryRules& rules);

}  // namespace kestrin::sandbox
