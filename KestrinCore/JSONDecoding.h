// From a JSON value to a record: typed look-ups that say where a document is wrong, and the keeping of members
// that a record doesn't know.
#pragma once

#include <concepts>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "KestrinCore/AnyCodingKey.h"
#include "KestrinCore/Error.h"
#include "KestrinCore/JSONValue.h"

namespace kestrin {

// The members of a JSON object that a record of this version doesn't know, kept so that a newer version's fields
// survive an older one. On writing, a known field always wins over an unknown one of the same name.
using UnknownFields = JSONObject;

// The document isn't what the record needs. Callers that know which file it was turn this into their own error;
// the way to the fault is for whoever debugs.
class DecodingError : public Error {
 public:
    DecodingError(std::vector<AnyCodingKey> where, std::string what)
        : codingPath(std::move(where)), problem(std::move(what)) {}

    std::string errorDescription() const override;  // "platforms[2]: expected a string"

    std::vector<AnyCodingKey> codingPath;  // from the outermost member inwards; empty: the document itself
    std::string problem;
};

// A record that can be read from JSON: `static T fromJSON(const JSONValue&)`, throwing DecodingError.
template <class T>
concept JSONDecodable = requires(const JSONValue& value) {
    { T::fromJSON(value) } -> std::same_as<T>;
};

// A record that can be written as JSON: `JSONValue toJSON() const`.
template <class T>
concept JSONEncodable = requires(const T& record) {
    { record.toJSON() } -> std::same_as<JSONValue>;
};

// Reads the members of one JSON object, which must live as long. A member that is null reads as absent; one of
// another type than asked for is a DecodingError that names it.
class ObjectDecoder {
 public:
    explicit ObjectDecoder(const JSONValue& value);  // DecodingError unless it is an object
    explicit ObjectDecoder(JSONValue&&) = delete;

    bool contains(std::string_view key) const;  // null counts as present here

    std::string string(std::string_view key) const;  // DecodingError when absent
    std::optional<std::string> optionalString(std::string_view key) const;
    std::optional<std::int64_t> optionalInteger(std::string_view key) const;
    std::optional<bool> optionalBool(std::string_view key) const;
    std::vector<std::string> stringList(std::string_view key) const;  // absent reads as empty
    const JSONObject* optionalObject(std::string_view key) const;
    const JSONArray* optionalArray(std::string_view key) const;
    const JSONValue* optionalValue(std::string_view key) const;

    // Nested records; what they report is put under `key`.
    template <JSONDecodable T>
    std::optional<T> optionalRecord(std::string_view key) const {
        const JSONValue* value = optionalValue(key);
        if (!value) return std::nullopt;
        return within(key, [&] { return T::fromJSON(*value); });
    }

    // All members but the `known` ones. An object with no others gives an empty map.
    UnknownFields unknownFields(std::initializer_list<std::string_view> known) const;

    [[noreturn]] static void fail(std::string_view key, std::string problem);

 private:
    template <class Decode>
    static auto within(std::string_view key, Decode&& decode) {
        try {
            return decode();
        } catch (DecodingError& error) {
            error.codingPath.insert(error.codingPath.begin(), AnyCodingKey(std::string(key)));
            throw;
        }
    }

    const JSONObject& members_;
};

}  // namespace kestrin
