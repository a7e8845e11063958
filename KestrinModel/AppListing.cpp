#include "KestrinModel/AppListing.h"

#include "KestrinCore/JSONRecords.h"

namespace kestrin {

using JSONRecords::setOptional;

JSONValue AppInfoContent::toJSON() const {
    auto members = unknownFields;
    setOptional(members, "primaryCategory", primaryCategory);
    setOptional(members, "secondaryCategory", secondaryCategory);
    return members;
}

AppInfoContent AppInfoContent::fromJSON(const JSONValue& value) {
    const ObjectDecoder members(value);
    return {
        .primaryCategory = members.optionalString("primaryCategory"),
        .secondaryCategory = members.optionalString("secondaryCategory"),
        .unknownFields = members.unknownFields({"primaryCategory", "secondaryCategory"}),
    };
}

}  // namespace kestrin
