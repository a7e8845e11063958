#include "KestrinCore/JSONValue.h"

namespace kestrin {

JSONValue::JSONValue(JSONArray value) : storage_(std::move(value)) {}
JSONValue::JSONValue(JSONObject value) : storage_(std::move(value)) {}

const JSONObject* JSONValue::objectValue() const {
    return std::get_if<JSONObject>(&storage_);
}
const JSONArray* JSONValue::arrayValue() const {
    return std::get_if<JSONArray>(&storage_);
}
JSONObject* JSONValue::objectValue() {
    return std::get_if<JSONObject>(&storage_);
}
JSONArray* JSONValue::arrayValue() {
    return std::get_if<JSONArray>(&storage_);
}

bool JSONValue::operator==(const JSONValue& other) const {
    return storage_ == other.storage_;
}

}  // namespace kestrin
