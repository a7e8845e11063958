#include "KestrinCore/JSONDecoding.h"

#include <algorithm>

namespace kestrin {

std::string DecodingError::errorDescription() const {
    std::string path;
    for (const auto& key : codingPath) {
        if (key.intValue) {
            path += "[" + key.stringValue + "]";
        } else {
            path += (path.empty() ? "" : ".") + key.stringValue;
        }
    }
    return path.empty() ? problem : path + ": " + problem;
}

ObjectDecoder::ObjectDecoder(const JSONValue& value)
    : members_([&]() -> const JSONObject& {
          if (const auto* object = value.objectValue()) return *object;
          throw DecodingError({}, "expected an object");
      }()) {}

void ObjectDecoder::fail(std::string_view key, std::string problem) {
    throw DecodingError({AnyCodingKey(std::string(key))}, std::move(problem));
}

bool ObjectDecoder::contains(std::string_view key) const {
    return members_.contains(std::string(key));
}

const JSONValue* ObjectDecoder::optionalValue(std::string_view key) const {
    const auto member = members_.find(std::string(key));
    if (member == members_.end() || member->second.isNull()) return nullptr;
    return &member->second;
}

std::string ObjectDecoder::string(std::string_view key) const {
    auto value = optionalString(key);
    if (!value) fail(key, "missing");
    return *std::move(value);
}

std::optional<std::string> ObjectDecoder::optionalString(std::string_view key) const {
    const auto* value = optionalValue(key);
    if (!value) return std::nullopt;
    if (const auto* string = value->stringValue()) return *string;
    fail(key, "expected a string");
}

std::optional<std::int64_t> ObjectDecoder::optionalInteger(std::string_view key) const {
    const auto* value = optionalValue(key);
    if (!value) return std::nullopt;
    if (const auto* integer = value->integerValue()) return *integer;
    fail(key, "expected an integer");
}

std::optional<bool> ObjectDecoder::optionalBool(std::string_view key) const {
    const auto* value = optionalValue(key);
    if (!value) return std::nullopt;
    if (const auto* boolean = value->boolValue()) return *boolean;
    fail(key, "expected true or false");
}

std::vector<std::string> ObjectDecoder::stringList(std::string_view key) const {
    std::vector<std::string> strings;
    const auto* array = optionalArray(key);
    if (!array) return strings;
    for (const auto& element : *array) {
        const auto* string = element.stringValue();
        if (!string) {
            const auto index = static_cast<std::int64_t>(strings.size());
            throw DecodingError({AnyCodingKey(std::string(key)), AnyCodingKey(index)}, "expected a string");
        }
        strings.push_back(*string);
    }
    return strings;
}

const JSONObject* ObjectDecoder::optionalObject(std::string_view key) const {
    const auto* value = optionalValue(key);
    if (!value) return nullptr;
    if (const auto* object = value->objectValue()) return object;
    fail(key, "expected an object");
}

const JSONArray* ObjectDecoder::optionalArray(std::string_view key) const {
    const auto* value = optionalValue(key);
    if (!value) return nullptr;
    if (const auto* array = value->arrayValue()) return array;
    fail(key, "expected an array");
}

UnknownFields ObjectDecoder::unknownFields(std::initializer_list<std::string_view> known) const {
    UnknownFields unknown;
    for (const auto& [key, value] : members_) {
        if (std::find(known.begin(), known.end(), key) == known.end()) unknown.emplace(key, value);
    }
    return unknown;
}

}  // namespace kestrin
