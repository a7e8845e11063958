#include "ASCKit/Resources/AttributeReading.h"

namespace kestrin::AttributeReading {
namespace {

template <class Value>
std::optional<Value> copied(const Value* value) {
    return value ? std::optional(*value) : std::nullopt;
}

}  // namespace

std::optional<std::string> text(const JSONObject& object, const std::string& key) {
    const auto* value = valueIn(object, key);
    return value ? copied(value->stringValue()) : std::nullopt;
}

std::string textOrEmpty(const JSONObject& object, const std::string& key) {
    return text(object, key).value_or("");
}

std::optional<std::int64_t> integer(const JSONObject& object, const std::string& key) {
    const auto* value = valueIn(object, key);
    return value ? copied(value->integerValue()) : std::nullopt;
}

std::optional<bool> boolean(const JSONObject& object, const std::string& key) {
    const auto* value = valueIn(object, key);
    return value ? copied(value->boolValue()) : std::nullopt;
}

const JSONObject& objectOrEmpty(const JSONObject& object, const std::string& key) {
    static const JSONObject kEmpty;
    const auto* value = valueIn(object, key);
    const auto* nested = value ? value->objectValue() : nullptr;
    return nested ? *nested : kEmpty;
}

bool isList(const JSONObject& object, const std::string& key) {
    const auto* value = valueIn(object, key);
    return value && value->arrayValue();
}

std::vector<std::string> strings(const JSONObject& object, const std::string& key) {
    std::vector<std::string> result;
    const auto* value = valueIn(object, key);
    const auto* list = value ? value->arrayValue() : nullptr;
    if (!list) return result;
    for (const auto& item : *list) {
        if (const auto* string = item.stringValue()) result.push_back(*string);
    }
    return result;
}

}  // namespace kestrin::AttributeReading
