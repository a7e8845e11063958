// The query of a request, from parameters to text.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace kestrin {

// One parameter of a query; the comment is its encoded form before percent-encoding.
struct QueryParameter {
    struct Filter {  // filter[name]=a,b
        std::string name;
        std::vector<std::string> values;
        bool operator==(const Filter&) const = default;
    };
    struct Fields {  // fields[type]=a,b
        std::string type;
        std::vector<std::string> fields;
        bool operator==(const Fields&) const = default;
    };
    struct Include {  // include=a,b
        std::vector<std::string> relationships;
        bool operator==(const Include&) const = default;
    };
    struct Limit {  // limit=200
        std::int64_t count;
        bool operator==(const Limit&) const = default;
    };
    struct Sort {  // sort=a,-b
        std::vector<std::string> keys;
        bool operator==(const Sort&) const = default;
    };

    std::variant<Filter, Fields, Include, Limit, Sort> kind;

    static QueryParameter filter(std::string name, std::vector<std::string> values);
    static QueryParameter fields(std::string type, std::vector<std::string> fields);
    static QueryParameter include(std::vector<std::string> relationships);
    static QueryParameter limit(std::int64_t count);
    static QueryParameter sort(std::vector<std::string> keys);

    bool operator==(const QueryParameter&) const = default;
};

namespace QueryEncoder {

// In the order given: each key percent-encoded whole, its values percent-encoded one by one and joined with a comma
// that stays one, parameters joined with "&". No parameters give the empty text.
std::string encode(const std::vector<QueryParameter>& parameters);

// ASCII letters, digits, "-", ".", "_" and "~" as they are, every other byte as "%" and two upper-case digits.
std::string percentEncode(std::string_view text);

}  // namespace QueryEncoder
}  // namespace kestrin
