#include "ASCKit/JSONAPIDocument.h"

#include "KestrinCore/MapLookup.h"
#include "KestrinCore/StableJSON.h"

namespace kestrin {
namespace {

// The members of an object, each taken out once. Replies reach many megabytes: values are moved, not copied.
class Members {
 public:
    explicit Members(JSONValue value) : value_(std::move(value)) {
        if (!value_.objectValue()) throw DecodingError({}, "expected an object");
    }

    // nullopt for an absent member and for null.
    std::optional<JSONValue> take(const char* key) {
        auto& members = *value_.objectValue();
        const auto member = members.find(key);
        if (member == members.end() || member->second.isNull()) return std::nullopt;
        return std::move(member->second);
    }

    std::string takeString(const char* key) {
        auto value = take(key);
        if (!value) ObjectDecoder::fail(key, "missing");
        if (!value->stringValue()) ObjectDecoder::fail(key, "expected a string");
        return std::move(*value->stringValue());
    }

    JSONObject takeObject(const char* key) {
        auto value = take(key);
        if (!value) return {};
        if (!value->objectValue()) ObjectDecoder::fail(key, "expected an object");
        return std::move(*value->objectValue());
    }

 private:
    JSONValue value_;
};

std::vector<ResourceObject> resources(JSONArray values) {
    std::vector<ResourceObject> list;
    list.reserve(values.size());
    for (auto& value : values) list.push_back(ResourceObject::fromJSON(std::move(value)));
    return list;
}

std::vector<ResourceObject> primaryData(std::optional<JSONValue> data) {
    if (!data) ObjectDecoder::fail("data", "missing");
    if (auto* list = data->arrayValue()) return resources(std::move(*list));
    std::vector<ResourceObject> single;
    single.push_back(ResourceObject::fromJSON(*std::move(data)));
    return single;
}

std::vector<ResourceObject> includedResources(std::optional<JSONValue> included) {
    if (!included) return {};
    if (!included->arrayValue()) ObjectDecoder::fail("included", "expected an array");
    return resources(std::move(*included->arrayValue()));
}

std::optional<URL> nextLink(const JSONObject& links) {
    const auto next = links.find("next");
    if (next == links.end() || !next->second.stringValue()) return std::nullopt;
    return URL::parse(*next->second.stringValue());
}

}  // namespace

ResourceObject ResourceObject::fromJSON(JSONValue value) {
    Members members(std::move(value));
    return {members.takeString("type"), members.takeString("id"), members.takeObject("attributes"),
            members.takeObject("relationships"), members.takeObject("links")};
}

std::optional<std::string> ResourceObject::relatedID(std::string_view relationship) const {
    const auto memberOf = [](const JSONValue* value, const std::string& key) -> const JSONValue* {
        const auto* members = value ? value->objectValue() : nullptr;
        return members ? valueIn(*members, key) : nullptr;
    };
    const auto* found = valueIn(relationships, std::string(relationship));
    const auto* identifier = memberOf(memberOf(found, "data"), "id");
    if (!identifier || !identifier->stringValue()) return std::nullopt;
    return *identifier->stringValue();
}

std::optional<std::string> ResourceObject::string(std::initializer_list<std::string_view> names) const {
    for (const auto name : names) {
        const auto attribute = attributes.find(std::string(name));
        if (attribute == attributes.end()) continue;
        if (const auto* text = attribute->second.stringValue()) return *text;
    }
    return std::nullopt;
}

ResourceFields::ResourceFields(std::initializer_list<std::string_view> names) : members_(names) {
    members_.insert({"type", "id", "attributes", "relationships", "links", "data"});
    members_.insert("next");  // of the document's own links
}

ResourceFields& ResourceFields::operator+=(const ResourceFields& others) {
    members_.insert(others.members_.begin(), others.members_.end());
    return *this;
}

JSONAPIDocument JSONAPIDocument::fromJSON(JSONValue value) {
    Members members(std::move(value));
    JSONAPIDocument document;
    document.data = primaryData(members.take("data"));
    document.included = includedResources(members.take("included"));
    document.nextURL = nextLink(members.takeObject("links"));
    document.meta = members.take("meta");
    return document;
}

JSONAPIDocument JSONAPIDocument::decode(std::string_view bytes) {
    return fromJSON(StableJSON::decode(bytes));
}

JSONAPIDocument JSONAPIDocument::decodeOnly(const ResourceFields& fields, std::string_view bytes) {
    return fromJSON(StableJSON::decodeOnly(fields.members_, bytes));
}

bool JSONAPIDocument::hasNullData(std::string_view bytes) {
    try {
        const auto value = StableJSON::decode(bytes);
        const ObjectDecoder members(value);
        return members.contains("data") && !members.optionalValue("data");
    } catch (const DecodingError&) {
        return false;
    }
}

}  // namespace kestrin
