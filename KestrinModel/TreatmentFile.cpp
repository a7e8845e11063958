#include "KestrinModel/TreatmentFile.h"

#include "KestrinCore/JSONRecords.h"

namespace kestrin {

TreatmentFile TreatmentFile::of(const Treatment& treatment) {
    return {treatment.name, treatment.appIconName, treatment.locales, treatment.unknownFields};
}

Treatment TreatmentFile::treatment() const {
    return {.name = name,
            .appIconName = appIconName,
            .locales = locales,
            .media = {},
            .unknownFields = unknownFields};
}

JSONValue TreatmentFile::toJSON() const {
    auto members = unknownFields;
    members.insert_or_assign("name", name);
    JSONRecords::setOptional(members, "appIconName", appIconName);
    members.insert_or_assign("locales", JSONRecords::rawValues(locales));
    return members;
}

TreatmentFile TreatmentFile::fromJSON(const JSONValue& value) {
    const ObjectDecoder members(value);
    return {
        .name = members.optionalString("name").value_or(""),
        .appIconName = members.optionalString("appIconName"),
        .locales = JSONRecords::identifiers<StoreLocale>(members.stringList("locales")),
        .unknownFields = members.unknownFields({"name", "appIconName", "locales"}),
    };
}

}  // namespace kestrin
