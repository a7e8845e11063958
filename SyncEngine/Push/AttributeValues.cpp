#include "SyncEngine/Push/AttributeValues.h"

namespace kestrin::AttributeValues {
namespace {

template <class Attribute>
JSONObject texts(const std::map<Attribute, std::string>& values) {
    JSONObject object;
    for (const auto& [attribute, value] : values) object.emplace(rawValue(attribute), text(value));
    return object;
}

}  // namespace

JSONObject attributes(const std::map<ListingField, std::string>& values) {
    return texts(values);
}

JSONObject attributes(const std::map<VersionAttribute, std::string>& values) {
    return texts(values);
}

JSONObject reviewAttributes(const std::map<ReviewAttribute, std::string>& values) {
    auto object = texts(values);
    const auto required = values.find(ReviewAttribute::demoAccountRequired);
    if (required != values.end() && !required->second.empty()) {
        object.insert_or_assign(std::string(rawValue(required->first)), required->second == "true");
    }
    return object;
}

}  // namespace kestrin::AttributeValues
