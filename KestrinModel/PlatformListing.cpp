#include "KestrinModel/PlatformListing.h"

#include "KestrinCore/JSONRecords.h"

namespace kestrin {

using JSONRecords::setOptional;

JSONValue VersionContent::toJSON() const {
    auto members = unknownFields;
    setOptional(members, "versionString", versionString);
    setOptional(members, "copyright", copyright);
    setOptional(members, "releaseType", releaseType);
    return members;
}

VersionContent VersionContent::fromJSON(const JSONValue& value) {
    const ObjectDecoder members(value);
    return {
        .versionString = members.optionalString("versionString"),
        .copyright = members.optionalString("copyright"),
        .releaseType = members.optionalString("releaseType"),
        .unknownFields = members.unknownFields({"versionString", "copyright", "releaseType"}),
    };
}

JSONValue ReviewDetailContent::toJSON() const {
    auto members = unknownFields;
    setOptional(members, "contactFirstName", contactFirstName);
    setOptional(members, "contactLastName", contactLastName);
    setOptional(members, "contactPhone", contactPhone);
    setOptional(members, "contactEmail", contactEmail);
    setOptional(members, "demoAccountRequired", demoAccountRequired);
    setOptional(members, "demoAccountName", demoAccountName);
    setOptional(members, "notes", notes);
    return members;
}

ReviewDetailContent ReviewDetailContent::fromJSON(const JSONValue& value) {
    const ObjectDecoder members(value);
    return {
        .contactFirstName = members.optionalString("contactFirstName"),
        .contactLastName = members.optionalString("contactLastName"),
        .contactPhone = members.optionalString("contactPhone"),
        .contactEmail = members.optionalString("contactEmail"),
        .demoAccountRequired = members.optionalBool("demoAccountRequired"),
        .demoAccountName = members.optionalString("demoAccountName"),
        .notes = members.optionalString("notes"),
        .unknownFields =
            members.unknownFields({"contactFirstName", "contactLastName", "contactPhone", "contactEmail",
                                   "demoAccountRequired", "demoAccountName", "notes"}),
    };
}

}  // namespace kestrin
