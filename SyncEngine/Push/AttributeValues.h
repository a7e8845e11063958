// Planned values in the form in which the API takes them.
#pragma once

#include <map>
#include <string>

#include "KestrinCore/JSONValue.h"
#include "KestrinModel/ListingField.h"
#include "SyncEngine/Content/ContentAttribute.h"

namespace kestrin::AttributeValues {

// A text; an empty one is the null that clears the attribute.
inline JSONValue text(const std::string& value) {
    return value.empty() ? JSONValue() : JSONValue(value);
}

// Each value under the name of its attribute. For App Review, whether a demo account is required is a truth value.
JSONObject attributes(const std::map<ListingField, std::string>& values);
JSONObject attributes(const std::map<VersionAttribute, std::string>& values);
JSONObject reviewAttributes(const std::map<ReviewAttribute, std::string>& values);

}  // namespace kestrin::AttributeValues
