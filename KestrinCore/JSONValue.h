// A JSON value of any kind, as it is kept in memory.
#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "KestrinCore/FlatMap.h"

namespace kestrin {

class JSONValue;

using JSONArray = std::vector<JSONValue>;

// Members in ascending byte order of their names. Names are the same only when their bytes are: a document may
// hold a composed and a decomposed spelling side by side, and neither may be lost.
using JSONObject = FlatMap<std::string, JSONValue>;

// One of: string, signed 64-bit integer, 64-bit floating point number, boolean, array, object, null.
// A number without a fraction that fits 64 bits is always an integer when it comes out of a document (1.0 and 1e3
// are), so `1.0` and `1` are the same value there; an accessor never converts. Equality is structural: an integer
// and a number are never equal, and NaN isn't equal to itself.
class JSONValue {
 public:
    JSONValue() = default;  // null
    JSONValue(std::nullptr_t) {}
    JSONValue(std::string value) : storage_(std::move(value)) {}
    JSONValue(std::string_view value) : storage_(std::string(value)) {}
    JSONValue(const char* value) : storage_(std::string(value)) {}
    JSONValue(std::int64_t value) : storage_(value) {}
    JSONValue(int value) : storage_(std::int64_t{value}) {}
    JSONValue(double value) : storage_(value) {}
    JSONValue(bool value) : storage_(value) {}
    JSONValue(JSONArray value);
    JSONValue(JSONObject value);

    // Each is present only for a value of that very kind; valid until the value changes. There is none for
    // numbers with a fraction: nothing of ours holds one.
    const std::string* stringValue() const { return std::get_if<std::string>(&storage_); }
    const std::int64_t* integerValue() const { return std::get_if<std::int64_t>(&storage_); }
    const bool* boolValue() const { return std::get_if<bool>(&storage_); }
    const JSONObject* objectValue() const;
    const JSONArray* arrayValue() const;
    JSONObject* objectValue();
    JSONArray* arrayValue();
    std::string* stringValue() { return std::get_if<std::string>(&storage_); }

    bool isNull() const { return std::holds_alternative<std::monostate>(storage_); }

    using Storage =
        std::variant<std::monostate, std::string, std::int64_t, double, bool, JSONArray, JSONObject>;
    const Storage& storage() const { return storage_; }

    bool operator==(const JSONValue& other) const;

 private:
    Storage storage_;
};

}  // namespace kestrin
